#include "LogTestSession.h"

#include "data/Schema.h"
#include "logbook/ObservedFlag.h"

using logtest::LogSession;
using Strings = std::vector<std::string>;

namespace {

TEST(AddToLogbook, QuestionsStatementAndFlag)
{
    LogSession s;
    std::vector<long long> opened;
    auto add = [&](const std::string& id, long long key) {
        return logbook::AddToLogbook(s.ui, *s.logbook, *s.objectDb, s.prefs, s.clock, id, "2000",
                                     key, [&](long long n) { opened.push_back(n); });
    };
    // No: nothing happens.
    EXPECT_FALSE(add("NGC 7000", 3));
    EXPECT_EQ(0, s.Count("Logbook"));

    s.ui.answers = {true, true};
    EXPECT_TRUE(add("NGC 7000", 3));
    EXPECT_EQ((Strings{"Add this object to your Default personal logbook ?",
                       "Add this object to your Default personal logbook ?",
                       "Would you like to add additional information to this log entry?"}),
              s.ui.asked);
    EXPECT_EQ("NGC 7000|2000|2026-11-24|21:30:05|-1|3|Default|<null>",
              s.Log("Select ObjectID || '|' || Catalog || '|' || DateObserved || '|' || "
                    "TimeObserved || '|' || SeenFlag || '|' || DataRec || '|' || LogType || '|' "
                    "|| ifnull(LocationObserved, '<null>') From Logbook"));
    EXPECT_EQ("-1", s.Obj("Select Observed From SelvaneTable Where ID = 3"));
    EXPECT_EQ(std::vector<long long>{1}, opened);
    EXPECT_EQ(0, s.Count("CCDLog"));

    // Key 0 flags nothing; the entry is made all the same.
    s.ui.answers = {true, false};
    EXPECT_TRUE(add("NOT LISTED", 0));
    EXPECT_EQ("2", s.Obj("Select count(*) From SelvaneTable Where Observed = -1"));
    EXPECT_EQ(2, s.Count("Logbook"));

    // A blank log type stops before asking.
    s.prefs.Ltype = " ";
    s.ui.asked.clear();
    EXPECT_FALSE(add("NGC 224", 1));
    EXPECT_TRUE(s.ui.asked.empty());
    EXPECT_EQ((Strings{"Logbook Add|Please go to MISC preferences and specify the log type.  "
                       "Normally the log type should be  DEFAULT|I"}),
              s.TakeShown());
}

TEST(AddToLogbook, ReadOnlyDatabaseFailsAfterTheEntry)
{
    LogSession s(true);
    s.ui.answers = {true};
    EXPECT_FALSE(logbook::AddToLogbook(s.ui, *s.logbook, *s.objectDb, s.prefs, s.clock, "NGC 7000",
                                       "2000", 3));
    EXPECT_EQ(1, s.Count("Logbook"));
    const Strings shown = s.TakeShown();
    ASSERT_EQ(1u, shown.size());
    EXPECT_NE(std::string::npos, shown[0].find("TMM.AddToLogbook"));
    EXPECT_NE(std::string::npos, shown[0].find(data::ReadOnlyMessage));
}

TEST(FixObservations, RebuildsFlagsAndKeys)
{
    LogSession s;
    s.logbook->Execute("Insert Into Logbook (ObjectID, Catalog, DataRec, SeenFlag) Values "
                       "('NGC 224', '2000', 99, 0)");
    s.logbook->Execute("Insert Into Logbook (ObjectID, Catalog, DataRec, SeenFlag) Values "
                       "('NOWHERE 1', 'XYZ', 55, -1)");
    // The object database was rebuilt: other keys, and NGC 1976 flagged without an entry.
    s.objectDb->Execute("Update SelvaneTable Set ID = ID + 100");
    ASSERT_TRUE(logbook::fixObs_Click(s.ui, *s.logbook, *s.objectDb, s.prefs));
    EXPECT_EQ("101", s.Obj("Select group_concat(ID) From SelvaneTable Where Observed = -1"));
    EXPECT_EQ("101,55", s.Log("Select group_concat(DataRec) From Logbook"));
    const Strings shown = s.TakeShown();
    ASSERT_EQ(1u, shown.size());
    EXPECT_EQ(0u, shown[0].find("Update Database|This option will now read through your logbook"));

    s.prefs.UseCd = true;
    EXPECT_FALSE(logbook::fixObs_Click(s.ui, *s.logbook, *s.objectDb, s.prefs));
    EXPECT_EQ((Strings{"Update Database|In order to inform the Selvane database of your "
                       "observations, you must use the database on the hard drive.  Selvane "
                       "cannot update the database on the CD ROM.|I"}),
              s.TakeShown());
}

TEST(LogbookNumbering, AnEarlierLogbookCountsOnFromItsHighestNumber)
{
    testing_data::TestFolder f;
    const auto path = f.dir.File(data::LogbookName);
    {
        data::OpenOptions options;
        options.create = true;
        auto db = data::Database::Open(path, options);
        // An earlier build's table, numbered by the highest row alone.
        db->Execute("Create Table Logbook (ObservationNumber INTEGER PRIMARY KEY, ObjectID TEXT, "
                    "Catalog TEXT, DateObserved TEXT, TimeObserved TEXT, LocationObserved TEXT, "
                    "EquipmentUsed TEXT, OtherEquipment TEXT, Seeing TEXT, Transparency TEXT, "
                    "Rating TEXT, ShortDescription TEXT, ObservationText TEXT, SeenFlag INTEGER, "
                    "DataRec INTEGER, LogType TEXT)");
        db->Execute("Create Table CCDLog (ObservationNumber INTEGER, ImageName TEXT)");
        db->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (1, 'NGC 224')");
        db->Execute("Insert Into Logbook (ObservationNumber, ObjectID) Values (2, 'NGC 7000')");
        // The CCD row of a deleted fifth entry.
        db->Execute("Insert Into CCDLog (ObservationNumber, ImageName) Values (5, 'old.fit')");
    }
    std::unique_ptr<data::Database> logbook;
    std::string logbookPath;
    data::OpenTheDatabase(f.dir, logbook, logbookPath);
    EXPECT_EQ(2, testing_data::CountRows(*logbook, "Logbook"));
    logbook->Execute("Insert Into Logbook (ObjectID) Values ('NGC 1976')");
    EXPECT_EQ("6", testing_data::One(*logbook, "Select max(ObservationNumber) From Logbook"));
    // Opening again changes nothing more.
    data::OpenTheDatabase(f.dir, logbook, logbookPath);
    EXPECT_EQ(3, testing_data::CountRows(*logbook, "Logbook"));
}

} // namespace
