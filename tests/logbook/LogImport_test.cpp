#include "LogTestSession.h"

#include "logbook/LogImport.h"
#include "services/Fault.h"

using logbook::ImportBatch;
using logbook::ImportEntry;
using logbook::ImportRow;
using logtest::LogSession;
using Strings = std::vector<std::string>;

namespace {

ImportEntry Entry(const std::string& id, const std::string& catalog, const std::string& date,
                  const std::string& time, std::optional<std::string> type = std::nullopt)
{
    ImportEntry e;
    e.logbook = {{"objectid", id},           {"CATALOG", catalog}, {"DateObserved", date},
                 {"TimeObserved", time},     {"SeenFlag", "-1"},   {"LogType", type},
                 {"ObservationNumber", "7"}, {"DataRec", "99"},    {"NoSuchColumn", "x"}};
    return e;
}

std::string Rows(LogSession& s, const std::string& columns, const std::string& table)
{
    std::string out;
    auto rs = s.logbook->OpenRecordset("Select " + columns + " From " + table, data::Snapshot);
    for (; !rs.Eof(); rs.MoveNext())
        out += rs.Fields(0).Value() + ";";
    return out;
}

TEST(ImportEntries, NumbersDependentRowsKeysFlagsAndDuplicates)
{
    LogSession s;
    s.logbook->Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
                       "LogType) Values ('NGC 7000', '2000', '2026-01-02', '20:00:00', 'Default')");
    ImportBatch batch;
    batch.entries.push_back(Entry("NGC 224", "2000", "2026-03-01", "21:00:00", "Galaxies"));
    batch.entries.back().ccd = ImportRow{{"ObservationNumber", "1"}, {"ImageName", "a.fit"}};
    batch.entries.back().images = {{{"Sequence", "5"}, {"ImagePath", "/a.png"}},
                                   {{"ImagePath", "/b.png"}, {"ImageDescription", std::nullopt}}};
    // Equal to the entry already there, whatever the case of its texts.
    batch.entries.push_back(Entry("ngc 7000", "2000", "2026-01-02", "20:00:00"));
    batch.entries.push_back(Entry("UNKNOWN 1", "", "2026-03-01", "21:05:00", " "));
    batch.entries.back().images = {{{"ImagePath", "/c.png"}}};
    // Equal to an entry earlier in the batch.
    batch.entries.push_back(Entry("NGC 224", "2000", "2026-03-01", "21:00:00"));
    batch.entries.push_back(Entry("NGC 224", "2000", "2026-03-01", "21:10:00"));

    const auto result = logbook::ImportEntries(s.context, batch, "Imported");
    EXPECT_EQ((std::vector<long long>{2, 3, 4}), result.numbers);
    EXPECT_EQ(2, result.skipped);
    EXPECT_EQ("1|NGC 7000|0|Default;2|NGC 224|1|Galaxies;3|UNKNOWN 1|0|Imported;"
              "4|NGC 224|1|Imported;",
              Rows(s, "ObservationNumber || '|' || ObjectID || '|' || DataRec || '|' || LogType",
                   "Logbook"));
    EXPECT_EQ("2|a.fit;", Rows(s, "ObservationNumber || '|' || ImageName", "CCDLog"));
    EXPECT_EQ("2|/a.png;2|/b.png;3|/c.png;",
              Rows(s, "ObservationNumber || '|' || ImagePath", "ImageLog"));
    EXPECT_EQ("-1", s.Obj("Select Observed From SelvaneTable Where ID = 1"));
    EXPECT_TRUE(s.TakeShown().empty());

    // A second run of the same batch adds nothing.
    const auto again = logbook::ImportEntries(s.context, batch, "Imported");
    EXPECT_TRUE(again.numbers.empty());
    EXPECT_EQ(5, again.skipped);
}

TEST(ImportEntries, SideTablesOnlyWhenNew)
{
    LogSession s;
    s.logbook->Execute("Insert Into SessionLog (SessionDate, sessiontext) Values ('2026-01-02', "
                       "'mine')");
    s.logbook->Execute("Insert Into ObservingSites (ProfileName, Latitude) Values ('Home', 40)");
    ImportBatch batch;
    batch.sessions = {{{"SessionDate", "2026-01-02"}, {"sessiontext", "theirs"}},
                      {{"SessionDate", "2026-01-03"}, {"sessiontext", "new"}}};
    batch.sessionSky = {{{"SessionDate", "2026-01-02"}, {"SkyQuality", "21.0"}},
                        {{"SessionDate", "2026-01-03"}, {"SkyQuality", "21.3"}}};
    batch.logTypes = {{{"LogType", "galaxies"}, {"LogTypeDesc", "dup"}},
                      {{"LogType", "Comets"}, {"LogTypeDesc", "Comets"}}};
    batch.equipment = {{{"Equipment", "8in SCT"}}, {{"Equipment", "8IN sct"}}};
    batch.sites = {{{"ProfileName", "home"}, {"Latitude", "10"}},
                   {{"ProfileName", "Dark Site"}, {"Latitude", "35.5"}}};
    logbook::ImportEntries(s.context, batch, "Default");
    EXPECT_EQ("2026-01-02|mine;2026-01-03|new;",
              Rows(s, "SessionDate || '|' || sessiontext", "SessionLog"));
    EXPECT_EQ("2026-01-03|21.3;", Rows(s, "SessionDate || '|' || SkyQuality", "SessionSky"));
    EXPECT_EQ("Default;Galaxies;Comets;", Rows(s, "LogType", "PerLogType"));
    EXPECT_EQ("8in SCT;", Rows(s, "Equipment", "Equipment"));
    EXPECT_EQ("Home|40.0;Dark Site|35.5;",
              Rows(s, "ProfileName || '|' || Latitude", "ObservingSites"));
}

TEST(ImportEntries, FailureLeavesTheLogbookAsItWas)
{
    LogSession s;
    ASSERT_EQ(SQLITE_OK, sqlite3_exec(s.logbook->Handle(),
                                      "CREATE TRIGGER refuse BEFORE INSERT ON ImageLog WHEN "
                                      "NEW.ImagePath = 'bad' BEGIN SELECT RAISE(ABORT, "
                                      "'refused'); END",
                                      nullptr, nullptr, nullptr));
    ImportBatch batch;
    batch.logTypes = {{{"LogType", "Comets"}}};
    batch.sessions = {{{"SessionDate", "2026-01-03"}}};
    batch.entries.push_back(Entry("NGC 224", "2000", "2026-03-01", "21:00:00"));
    batch.entries.push_back(Entry("NGC 1976", "2000", "2026-03-01", "21:10:00"));
    batch.entries.back().images = {{{"ImagePath", "bad"}}};
    try {
        logbook::ImportEntries(s.context, batch, "Default");
        ADD_FAILURE() << "no fault";
    } catch (const services::Fault& fault) {
        EXPECT_STREQ("refused", fault.what());
    }
    EXPECT_EQ(0, s.Count("Logbook"));
    EXPECT_EQ(0, s.Count("SessionLog"));
    EXPECT_EQ(2, s.Count("PerLogType"));
    EXPECT_EQ("0", s.Obj("Select Observed From SelvaneTable Where ID = 1"));

    // The logbook takes the next import as usual.
    s.logbook->Execute("DROP TRIGGER refuse");
    EXPECT_EQ(std::vector<long long>{1},
              logbook::ImportEntries(s.context, ImportBatch{{batch.entries[0]}}, "").numbers);
    EXPECT_EQ("Default", s.Log("Select LogType From Logbook"));
}

TEST(ImportEntries, ReadOnlyObjectDatabaseKeepsItsFlags)
{
    LogSession s;
    s.prefs.UseCd = true;
    ImportBatch batch{{Entry("NGC 224", "2000", "2026-03-01", "21:00:00")}};
    EXPECT_EQ(std::vector<long long>{1}, logbook::ImportEntries(s.context, batch, "").numbers);
    EXPECT_EQ("1", s.Log("Select DataRec From Logbook"));
    EXPECT_EQ("0", s.Obj("Select Observed From SelvaneTable Where ID = 1"));
    EXPECT_TRUE(s.TakeShown().empty());
}

} // namespace
