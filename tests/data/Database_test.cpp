#include "data/Database.h"

#include "TestDatabases.h"
#include "services/Fault.h"
#include "tests/TestFiles.h"

#include <gtest/gtest.h>


using namespace testing_data;

namespace {

std::string FaultOf(const std::function<void()>& body)
{
    try {
        body();
    } catch (const services::Fault& e) {
        return e.what();
    }
    return "no fault";
}

} // namespace

TEST(Recordset, SnapshotWalkCountAndFieldsInAnyCase)
{
    TestFolder f;
    MakeObjectDatabase(f.objectPath);
    auto db = data::Database::Open(f.objectPath);
    auto rs = db->OpenRecordset("Select * From SelvaneTable Order By ID", data::Snapshot);
    EXPECT_FALSE(rs.Bof());
    EXPECT_EQ(1, rs.RecordCount()); // rows visited so far, as the engine counts
    rs.MoveLast();
    EXPECT_EQ(3, rs.RecordCount());
    data::Field id = rs.Fields("id");
    EXPECT_EQ(3, id.Long());
    rs.MoveFirst();
    data::Field name = rs.Fields("OBJECTID");
    data::Field mag = rs.Fields("Magnitude");
    std::vector<std::string> names;
    for (; !rs.Eof(); rs.MoveNext())
        names.push_back(name.Value() + (mag.IsNull() ? "/null" : "/" + mag.Value()));
    EXPECT_EQ((std::vector<std::string>{"NGC 224/3.4", "NGC 1976/4", "NGC 7000/null"}), names);
    EXPECT_EQ(FaultOf([&] { rs.MoveNext(); }), data::NoCurrentRecordMessage);
    EXPECT_EQ(FaultOf([&] { name.Text(); }), data::NoCurrentRecordMessage);
    EXPECT_EQ(FaultOf([&] { rs.Fields("NoSuchField"); }), data::ItemNotFoundMessage);
    EXPECT_EQ(FaultOf([&] { rs.Edit(); }), data::ReadOnlyMessage);
}

TEST(Recordset, EmptySetHasBothEnds)
{
    TestFolder f;
    MakeObjectDatabase(f.objectPath);
    auto db = data::Database::Open(f.objectPath);
    for (auto type : {data::Snapshot, data::Dynaset}) {
        SCOPED_TRACE(type);
        auto rs = db->OpenRecordset("Select * From SelvaneTable Where ID = 99", type);
        EXPECT_TRUE(rs.Eof());
        EXPECT_TRUE(rs.Bof());
        EXPECT_EQ(0, rs.RecordCount());
        EXPECT_EQ(FaultOf([&] { rs.MoveLast(); }), data::NoCurrentRecordMessage);
    }
}

TEST(Recordset, EditableSetAddsEditsAndDeletes)
{
    TestFolder f;
    MakeLogbook(f.dir.File("log.mdb"));
    auto db = data::Database::Open(f.dir.File("log.mdb"));

    // AddNew on an empty set, as the last-entry table is first written.
    auto last = db->OpenRecordset("Select * From LastLogEntry");
    ASSERT_TRUE(last.Eof());
    last.AddNew();
    last.Fields("objectid").Set("NGC 224");
    last.Fields("darkframe").SetBool(true);
    last.Fields("ObservationText").Set("<b>bright</b> core, 'oval'");
    last.Update();
    auto check = db->OpenRecordset("Select * From LastLogEntry", data::Snapshot);
    ASSERT_FALSE(check.Eof());
    EXPECT_EQ("NGC 224", check.Fields("ObjectID").Value());
    EXPECT_EQ(-1, check.Fields("darkframe").Long());
    EXPECT_EQ("<b>bright</b> core, 'oval'", check.Fields("observationtext").Value());

    // Edit while walking the same table, as the observed-flag repair does.
    auto logs = db->OpenRecordset("Select * From Logbook");
    ASSERT_EQ(2, logs.RecordCount());
    for (; !logs.Eof(); logs.MoveNext()) {
        logs.Edit();
        logs.Fields("DataRec").Set(7);
        logs.Update();
        EXPECT_EQ(7, logs.Fields("datarec").Long());
    }
    EXPECT_EQ(2, CountRows(*db, "Logbook Where DataRec = 7"));

    // Delete: the row stays current until the next move.
    auto one = db->OpenRecordset("Select * From Logbook Where ObservationNumber = 1");
    one.Delete();
    EXPECT_EQ(FaultOf([&] { one.Fields("ObjectID").Text(); }), "Record is deleted.");
    EXPECT_EQ(1, CountRows(*db, "Logbook"));

    EXPECT_EQ(FaultOf([&] { one.Update(); }), data::UpdateWithoutEditMessage);
    auto rs = db->OpenRecordset("Select * From Logbook");
    EXPECT_EQ(FaultOf([&] { rs.Fields("Seeing").Set("x"); }), data::UpdateWithoutEditMessage);
}

TEST(Recordset, SetsThatCannotBeWrittenSaySo)
{
    TestFolder f;
    MakeLogbook(f.dir.File("log.mdb"));
    auto db = data::Database::Open(f.dir.File("log.mdb"));
    const std::vector<std::string> readOnly = {
        "Select max(ObservationNumber) From Logbook",
        "Select Distinct ObjectID From Logbook",
        "Select Logbook.ObjectID, xref.Her From Logbook Inner Join xref On Logbook.ObjectID = "
        "xref.NGC",
    };
    for (const std::string& sql : readOnly) {
        SCOPED_TRACE(sql);
        auto rs = db->OpenRecordset(sql);
        EXPECT_FALSE(rs.Updatable());
        EXPECT_EQ(FaultOf([&] { rs.AddNew(); }), data::ReadOnlyMessage);
    }
    // Fields of equal names in a join are told apart by their table.
    auto join = db->OpenRecordset("SELECT Logbook.*, CCDLog.* FROM Logbook INNER JOIN CCDLog ON "
                                  "Logbook.ObservationNumber = CCDLog.ObservationNumber",
                                  data::Snapshot);
    EXPECT_EQ("m31.fit", join.Fields("ccdlog.imagename").Value());
    EXPECT_EQ(1, join.Fields("CCDLog.ObservationNumber").Long());
    EXPECT_EQ(FaultOf([&] { db->Execute("Select * From Logbook"); }),
              "Cannot execute a select query.");
}

TEST(Database, RefusesFilesThatAreNotItsDatabases)
{
    TestFolder f;
    const auto path = f.dir.File("SelvPro708000.mdb");
    struct Row
    {
        const char* name;
        std::string bytes; // nothing written when empty and missing is set
        bool missing;
        std::string message;
    };
    std::string jet(2048, '\0');
    jet.replace(4, 15, "Standard Jet DB");
    std::string truncated;
    {
        MakeObjectDatabase(f.dir.File("whole.mdb"));
        truncated = test_files::ReadText(f.dir.File("whole.mdb"));
        truncated.resize(truncated.size() / 2);
    }
    const std::vector<Row> rows = {
        {"missing", "", true, "Could not find file '" + path.string() + "'."},
        {"Jet", jet, false,
         "'" + path.string() +
             "' is a Jet database of the earlier edition, which Selvane cannot read. Selvane "
             "reads SQLite 3 databases only."},
        {"text", "ObjectID,Catalog\nNGC 224,2000\n", false,
         "Unrecognized database format '" + path.string() + "'."},
        {"empty", "", false, "Unrecognized database format '" + path.string() + "'."},
        {"truncated", truncated, false,
         "The database '" + path.string() +
             "' cannot be read: database disk image is malformed"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(path);
        if (!row.missing)
            test_files::WriteText(path, row.bytes);
        EXPECT_EQ(row.message, FaultOf([&] { data::Database::Open(path); }));
        // Nothing was created or changed.
        EXPECT_EQ(!row.missing, std::filesystem::exists(path));
        if (!row.missing) {
            EXPECT_EQ(row.bytes.size(), std::filesystem::file_size(path));
        }
    }
}

TEST(Database, ReadOnlyFileIsNeverWritten)
{
    TestFolder f;
    MakeObjectDatabase(f.objectPath);
    const auto before = std::filesystem::last_write_time(f.objectPath);
    for (bool exclusive : {false, true}) {
        SCOPED_TRACE(exclusive);
        data::OpenOptions options;
        options.readOnly = true;
        options.exclusive = exclusive;
        auto db = data::Database::Open(f.objectPath, options);
        EXPECT_TRUE(db->ReadOnly());
        EXPECT_EQ(FaultOf([&] { db->Execute("Update SelvaneTable Set Observed = True"); }),
                  data::ReadOnlyMessage);
        auto rs = db->OpenRecordset("Select * From SelvaneTable Where ID = 1");
        rs.Edit();
        rs.Fields("Observed").SetBool(true);
        EXPECT_EQ(FaultOf([&] { rs.Update(); }), data::ReadOnlyMessage);
    }
    EXPECT_EQ(before, std::filesystem::last_write_time(f.objectPath));
    auto db = data::Database::Open(f.objectPath);
    EXPECT_EQ(1, CountRows(*db, "SelvaneTable Where Observed = -1"));
}
