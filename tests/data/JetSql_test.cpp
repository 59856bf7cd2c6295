#include "data/JetSql.h"

#include "TestDatabases.h"
#include "data/DatabaseFiles.h"
#include "services/Fault.h"

#include <gtest/gtest.h>

using namespace testing_data;

namespace {

struct Fixture
{
    TestFolder folder;
    std::unique_ptr<data::Database> objectDb;
    std::unique_ptr<data::Database> logbook;

    Fixture()
    {
        MakeObjectDatabase(folder.objectPath);
        MakeLogbook(folder.dir.File(data::LogbookName));
        objectDb = data::Database::Open(folder.objectPath);
        std::string path;
        data::OpenTheDatabase(folder.dir, logbook, path);
        data::RebuildLink(*logbook, folder.objectPath.string(), false);
    }
};

long RunSql(data::Database& db, const std::string& sql)
{
    const std::string head = sql.substr(sql.find_first_not_of(' '), 6);
    if (head == "Select" || head == "SELECT" || head == "select") {
        auto rs = db.OpenRecordset(sql, data::Snapshot);
        long rows = 0;
        for (; !rs.Eof(); rs.MoveNext())
            ++rows;
        return rows;
    }
    return db.Execute(sql);
}

} // namespace

// A statement of every form the routines send, with the run-time parts filled with sample
// values, runs on the schema as written. 'O' runs on the object database, 'L' on the logbook, which reaches
// SelvaneTable through the link.
TEST(TranslateJetSql, EveryStatementOfTheRoutinesRuns)
{
    struct Row
    {
        char db;
        const char* sql;
    };
    const std::string joinColumns =
        "SELECT Logbook.ObjectID, SelvaneTable.OtherID, SelvaneTable.ObjectType, "
        "SelvaneTable.Constellation, Logbook.ObservationNumber, Logbook.Catalog, "
        "Logbook.DateObserved, Logbook.TimeObserved, Logbook.LocationObserved, Logbook.SeenFlag, "
        "Logbook.Transparency, Logbook.Seeing, Logbook.EquipmentUsed, Logbook.Rating, "
        "Logbook.ShortDescription, Logbook.ObservationText, Logbook.LogType, CCDLog.ImageName, "
        "CCDLog.ExposureTime, CCDLog.ExposureMode, CCDLog.Telescope, CCDLog.CCDcamera, "
        "CCDLog.FocalDistance, CCDLog.FieldOfView, CCDLog.CoolingRate, CCDLog.DarkFrame, "
        "CCDLog.FlatField, CCDLog.PictureRating, CCDLog.Notes FROM (CCDLog RIGHT JOIN Logbook ON "
        "CCDLog.ObservationNumber = Logbook.ObservationNumber) LEFT JOIN SelvaneTable ON "
        "(Logbook.Catalog = SelvaneTable.Catalog) AND (Logbook.ObjectId = SelvaneTable.ObjectID)";
    const std::string searchJoin =
        "SELECT SelvaneTable.ObjectID, SelvaneTable.ObjectType, SelvaneTable.Constellation, "
        "Logbook.ObservationNumber, Logbook.Catalog, Logbook.DateObserved, Logbook.TimeObserved, "
        "Logbook.LocationObserved, Logbook.Transparency, Logbook.Seeing, Logbook.EquipmentUsed, "
        "Logbook.Rating, Logbook.ShortDescription, Logbook.ObservationText, Logbook.LogType, "
        "CCDLog.ImageName, CCDLog.ExposureTime, CCDLog.ExposureMode, CCDLog.Telescope, "
        "CCDLog.CCDcamera, CCDLog.FocalDistance, CCDLog.FieldOfView, CCDLog.CoolingRate, "
        "CCDLog.DarkFrame, CCDLog.FlatField, CCDLog.PictureRating, CCDLog.Notes, Logbook.SeenFlag "
        "FROM (CCDLog RIGHT JOIN Logbook ON CCDLog.ObservationNumber = Logbook.ObservationNumber) "
        "INNER JOIN SelvaneTable ON (Logbook.Catalog = SelvaneTable.Catalog) AND "
        "(Logbook.ObjectId = SelvaneTable.ObjectID) Where LogType = 'Default' ";
    const std::string search1 = searchJoin +
                                " and SelvaneTable.ObjectID like 'NGC*' "
                                " and LocationObserved = 'Bob''s yard' "
                                " and ObservationText Like '*50% clouds*' "
                                " and EquipmentUsed = '8\" Dob' "
                                " and DateObserved >= #02/14/2003# and DateObserved <= "
                                "#03/01/2003#"
                                " and SelvaneTable.ObjectType = 'GALXY' "
                                " and SelvaneTable.Constellation = 'And' "
                                " and Logbook.SeenFlag = -1";
    const std::string search2 = "Select * From Logbook Where LogType = 'Default' "
                                " and DateObserved>=#02/14/2003# and DateObserved<=#03/01/2003#"
                                " and Logbook.SeenFlag <> -1";
    const std::string logByType = joinColumns + " WHERE (((Logbook.LogType)='Default'))";
    const std::string built =
        "Select * From SelvaneTable  WHERE (Catalog = '2000' ) and ( Constellation = 'Ori' ) and "
        "( ObjectType = 'BRTNB' )  and ((Magnitude >= -1 and Magnitude <= 999) or "
        "isnull(Magnitude))  and ((Magnitude2 >= -1 and Magnitude2 <= 999) or "
        "isnull(Magnitude2))  and (abs(Magnitude-Magnitude2) <= 1)  and "
        "(abs(Magnitude-Magnitude2) >= 0)  and ((ObjectSize >= 0 and ObjectSize <= 9999 ) or "
        "isnull(ObjectSize))  and Separation >= 1 and Separation <= 20  and PositionAngle >= 0 "
        "and PositionAngle <= 180  and RAHours >= 0 and RAHours <= 24  and DeclinationDegrees "
        ">= -90 and DeclinationDegrees <= 90  and ObjectID Like 'NGC 1*'  and OtherID Like 'M "
        "?2'  ORDER BY Magnitude Asc, ObjectID Desc";

    const std::vector<Row> rows = {
        // Database schema and opening.
        {'O', "Select * From SelvaneTable Where ID = 2"},
        {'O', "Select * From CatalogLookup Where ImpCount>0 Order By CatalogDescription"},
        {'L', "Select max(ObservationNumber) From Logbook"},
        {'L', "Select * From LastLogEntry"},
        {'L', "SELECT Logbook.ObjectId, Logbook.Catalog, xref.Her FROM Logbook INNER JOIN xref ON "
              "Logbook.ObjectId = xref.NGC "},
        // Object filter and SQL builder.
        {'O', "Select CatalogName From CatalogLookup Where CatalogDescription = 'NGC 2000'"},
        {'O', "Select ObjectType, ObjectTypeDesc From ValidObjectTypes Where ObjectTypeDesc = "
              "'Galaxy'"},
        {'O', "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' order by "
              "MessierNumber"},
        {'O', "Select * From SelvaneTable where Observed = -1 Order By ObjectID"},
        {'L', "SELECT  Logbook.*,SelvaneTable.* FROM Logbook INNER JOIN SelvaneTable ON "
              "(Logbook.Catalog = SelvaneTable.Catalog) AND (Logbook.ObjectId = "
              "SelvaneTable.ObjectID);"},
        {'O', "Select * From SelvaneTable Where ImageFile <> ' ' and Catalog = '2000' order by "
              "ObjectID"},
        {'O', "Select * From SelvaneTable Where Magnitude <= 8 order by Magnitude"},
        {'O', "Select * From SelvaneTable Where Magnitude <= 8 And (Catalog = '2000' or Catalog "
              "= 'IC' )"},
        {'O', "Select * From SelvaneTable Where MessierNumber > 0 and Observed = -1 and catalog "
              "= '2000'"},
        {'O', "Select * From SelvaneTable Where Catalog = '2000' and Observed = -1 and HOBJECT "
              "<> ''"},
        {'O', built.c_str()},
        {'O', "Select ID, CatalogName, CatalogDescription From CatalogLookup Order By "
              "CatalogDescription"},
        {'L', "Select * from ObservingSites where ProfileName = 'Home'"},
        // Spreadsheet loading.
        {'L', "Select * From skyroverxref Where objectid = 'NGC 224'"},
        {'L', "Select DateObserved, TimeObserved, Rating, ObservationText From Logbook Where "
              "ObjectID = 'NGC 224'"},
        // Observing plans.
        {'O', "Select ID From SelvaneTable Where ObjectID = 'NGC 224' and Catalog = '2000'"},
        // Log entry.
        {'L', "Select * From Equipment Order By Equipment"},
        {'L', "Select * From Logbook Where ObservationNumber = 1"},
        {'L', "Select * From Logbook where Logtype='Bob''s' Order By DateObserved Desc"},
        {'L', "Select * From Logbook where ObjectID Like 'NGC*'"},
        {'L', "Select ObservationNumber from Logbook Order By ObservationNumber Desc"},
        {'L', "Select * From CCDLog where ObservationNumber = 1"},
        {'L', "Select * From SessionLog where SessionDate = #02/14/2003#"},
        {'L', "Delete From SessionLog where SessionDate = #02/14/2003#"},
        {'L', "Delete From Imagelog where ObservationNumber = 9"},
        {'L', "Delete From Logbook Where ObservationNumber = 9"},
        {'L', "Select Seeing From LastLogEntry "},
        {'L', "Insert into ImageLog (ObservationNumber, ImageDescription, ImagePath)  Values(1, "
              "'Bob''s sketch', '/home/bob/m31 [1].png')"},
        {'L', "Select * From ImageLog where Sequence = 1"},
        {'O', "Select * From Selvanetable where Objectid='NGC 224' and Catalog='2000'"},
        // Log storage and the observed flag.
        {'O', "Update SelvaneTable Set Observed = True Where ID = 1"},
        {'O', "Update SelvaneTable Set Observed = False  Where ObjectID = 'NGC 224' and Catalog "
              "= '2000'"},
        {'L', "Select * From Logbook Where ObjectID = 'NGC 224' and Catalog = '2000'"},
        {'O', "Update SelvaneTable Set Observed = 0 where Observed = -1"},
        {'L', "Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, SeenFlag, "
              "DataRec, LogType) values('NGC 224', '2000', #4/5/2003#, '22:10:00', -1, "
              "1,'Default')"},
        // Log spreadsheet and search.
        {'L', joinColumns.c_str()},
        {'L', logByType.c_str()},
        {'L', "Select * From PerLogType Order By LogType"},
        {'L', "Select Logbook.ObjectID, Logbook.Catalog, ImageLog.ImagePath, "
              "ImageLog.ImageDescription from ImageLog INNER JOIN Logbook On "
              "ImageLog.ObservationNumber = Logbook.ObservationNumber Where Logtype = 'Default'"},
        {'L', "Select ObservationText From Logbook where ObservationNumber=1"},
        {'L', search1.c_str()},
        {'L', search2.c_str()},
        {'L', "Select * From Logbook Where LogType = 'Default' Order By DateObserved, "
              "TimeObserved"},
        // Exports.
        {'L', "SELECT * FROM Logbook LEFT JOIN CCDLog ON Logbook.ObservationNumber = "
              "CCDLog.ObservationNumber;"},
        // Plan, at-scope and finder reports.
        {'L', "Select * From Logbook Where ObjectId = 'NGC 224' and Catalog = '2000' and LogType "
              "= 'Default' Order By DateObserved Desc"},
        {'L', "Select * From UserCatalog Where ObjectId = 'NGC 224' Order By Author, ObjectId  "},
        {'O', "Select ID, Hobject From SelvaneTable Where ObjectID = 'NGC 1976' and Catalog = "
              "'2000'"},
        {'L', "Select Distinct ObjectID, Catalog, DateObserved, TimeObserved, LocationObserved, "
              "EquipmentUsed, Seeing, Transparency, Rating, ShortDescription, DataRec from "
              "Logbook Order By ObjectID"},
        // Certificates and statistics.
        {'L', "SELECT Logbook.ObjectId, Logbook.Catalog, Logbook.DateObserved, xref.Her FROM "
              "Logbook INNER JOIN xref ON Logbook.ObjectId = xref.NGC Where (((LOGBOOK.Catalog) = "
              "'2000')) ORDER BY her;"},
        {'L', "SELECT distinct(SelvaneTable.ObjectId), Logbook.ObjectId, SelvaneTable.Catalog, "
              "SelvaneTable.MessierNumber,  DateObserved,  Logbook.Catalog, Logbook.DataRec FROM "
              "Logbook LEFT JOIN SelvaneTable ON (Logbook.ObjectId = SelvaneTable.ObjectID) and "
              "(Logbook.Catalog =SelvaneTable.Catalog)  Where SelvaneTable.Catalog = '2000' and "
              "(SelvaneTable.MessierNumber) > 0 Order By SelvaneTable.MessierNumber"},
        {'O', "Select * From Selvanetable where ObjectType = 'GALXY' and Observed = -1"},
        {'L', "Select ObjectID from Logbook Where ObjectID = 'SUN'"},
        {'L', "Select distinct(ObjectID) from Logbook Where Catalog = 'COMET'"},
    };

    Fixture f;
    for (size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(std::to_string(i) + ": " + rows[i].sql);
        data::Database& db = rows[i].db == 'O' ? *f.objectDb : *f.logbook;
        EXPECT_NO_THROW(RunSql(db, rows[i].sql));
    }
}

// The search by object id without the join names a column the statement does not reach: the
// engine refuses it and the user sees why.
TEST(TranslateJetSql, SearchByIdWithoutTheJoinIsRefused)
{
    Fixture f;
    try {
        f.logbook->OpenRecordset("Select * From Logbook Where LogType = 'Default'  and "
                                 "SelvaneTable.ObjectID like 'NGC*' ",
                                 data::Snapshot);
        FAIL() << "no error";
    } catch (const services::Fault& e) {
        EXPECT_STREQ("no such column: SelvaneTable.ObjectID", e.what());
    }
}

// What the dialect means, checked by the rows each statement finds.
TEST(TranslateJetSql, DialectFindsTheRowsJetWould)
{
    struct Row
    {
        char db;
        const char* sql;
        long rows;
    };
    const std::vector<Row> rows = {
        // Text compares without regard to case, in = and in Like.
        {'O', "Select * From SelvaneTable Where ObjectID = 'ngc 224'", 1},
        {'O', "Select * From SelvaneTable Where objectid = 'NGC 224' and CATALOG = '2000'", 1},
        {'O', "Select * From SelvaneTable Where OtherID Like 'm ?2'", 1},
        {'O', "Select * From SelvaneTable Where ObjectID Like 'ngc*'", 3},
        {'O', "Select * From SelvaneTable Where ObjectID Like 'NGC 7*0'", 1},
        // A literal % in a Like pattern is a percent sign, not a wildcard.
        {'O', "Select * From SelvaneTable Where ObjectID Like 'NGC%'", 0},
        {'O', "Select * From SelvaneTable Where ObjectID Like \"NGC 1976\"", 1},
        // True is -1 and False 0, as stored.
        {'O', "Select * From SelvaneTable Where Observed = True", 1},
        {'O', "Select * From SelvaneTable Where Observed = False", 2},
        {'O', "Select * From SelvaneTable Where Observed <> TRUE", 2},
        // Date literals against ISO dates, in the United States order.
        {'L', "Select * From Logbook Where DateObserved = #02/14/2003#", 1},
        {'L', "Select * From Logbook Where DateObserved = #2/14/2003#", 1},
        {'L', "Select * From Logbook Where DateObserved >= #2/15/2003#", 1},
        {'L', "Select * From Logbook Where DateObserved Between #1/1/2003# And #12/31/2003#", 2},
        {'L', "Select * From Logbook Where DateObserved < #03/01/03#", 1},
        // isnull() and distinct().
        {'O', "Select * From SelvaneTable Where isnull(Magnitude)", 1},
        {'O', "Select * From SelvaneTable Where (isnull(Magnitude) or Magnitude < 3.5)", 2},
        {'O', "Select * From SelvaneTable Where not isnull( Magnitude ) and abs(Magnitude) > 3.5",
         1},
        {'L', "Select distinct(ObjectID) From Logbook", 1},
        // Bracketed names and names in any case.
        {'O', "Select [ObjectID], [otherid] From [SelvaneTable] Where [Catalog] = '2000'", 3},
        // A quote doubled inside a text, and the characters that mean something outside one.
        {'O', "Select * From SelvaneTable Where ObjectID = 'it''s #1; [x] & True'", 0},
        {'O', "Select * From SelvaneTable Where 'a' & 'b' = 'ab'", 3},
        // The logbook reaches the object table through the link.
        {'L', "Select * From SelvaneTable Where MessierNumber > 0", 2},
    };
    Fixture f;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.sql);
        data::Database& db = row.db == 'O' ? *f.objectDb : *f.logbook;
        EXPECT_EQ(row.rows, RunSql(db, row.sql));
    }
}

TEST(TranslateJetSql, RefusesTextAfterTheFirstStatement)
{
    const std::vector<std::string> refused = {
        "Select * From SelvaneTable; Delete From SelvaneTable",
        "Select * From SelvaneTable;Delete From SelvaneTable;",
        "Update SelvaneTable Set Observed = 0 ; select 1",
    };
    Fixture f;
    for (const std::string& sql : refused) {
        SCOPED_TRACE(sql);
        try {
            RunSql(*f.objectDb, sql);
            ADD_FAILURE() << "accepted";
        } catch (const services::Fault& e) {
            EXPECT_STREQ(data::SecondStatementMessage, e.what());
        }
    }
    // Nothing of the refused statements ran.
    EXPECT_EQ(3, CountRows(*f.objectDb, "SelvaneTable"));
    EXPECT_EQ(1, CountRows(*f.objectDb, "SelvaneTable Where Observed = -1"));
    // A ';' inside a text or at the end is no second statement.
    EXPECT_EQ(0, RunSql(*f.objectDb, "Select * From SelvaneTable Where ObjectID = 'a;b';  "));
}

TEST(TranslateJetSql, DateLiterals)
{
    struct Row
    {
        const char* jet;
        const char* sqlite; // empty: refused
    };
    const std::vector<Row> rows = {
        {"#02/14/2003#", "'2003-02-14'"},
        {"#2/4/2003#", "'2003-02-04'"},
        {"#14/02/2003#", "'2003-02-14'"}, // no 14th month: day and month swap
        {"#2/29/2000#", "'2000-02-29'"},
        {"#2/29/1900#", ""},
        {"#2/30/2003#", ""},
        {"#12/31/99#", "'1999-12-31'"},
        {"#1/1/29#", "'2029-01-01'"},
        {"#2003-02-14#", "'2003-02-14'"},
        {"#2/14/2003 10:05:00 PM#", "'2003-02-14 22:05:00'"},
        {"#2/14/2003 12:05 AM#", "'2003-02-14 00:05:00'"},
        {"#02.14.2003#", "'2003-02-14'"},
        {"#today#", ""},
        {"#2/14/2003", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.jet);
        if (*row.sqlite) {
            EXPECT_EQ(row.sqlite, data::TranslateJetSql(row.jet));
        } else {
            EXPECT_THROW(data::TranslateJetSql(row.jet), services::Fault);
        }
    }
    try {
        data::TranslateJetSql("Select * From Logbook Where DateObserved = #2/30/2003#");
    } catch (const services::Fault& e) {
        EXPECT_STREQ("Syntax error in date in query expression '#2/30/2003#'.", e.what());
    }
}

TEST(TranslateJetSql, NamesWithBlanksInTheImageTable)
{
    TestFolder folder;
    const auto path = folder.dir.File("ccdimages.mdb");
    MakeCcdImages(path);
    auto db = data::Database::Open(path);
    auto rs = db->OpenRecordset("Select * From ccd_data2 Where [Picture Name] = 'M31.FIT'",
                                data::Snapshot);
    ASSERT_FALSE(rs.Eof());
    EXPECT_EQ("1200", rs.Fields("focal lenght mm").Value());

    const auto comets = folder.dir.File("AstComet.mdb");
    MakeAstComet(comets);
    auto elements = data::Database::Open(comets);
    auto comet = elements->OpenRecordset("Select * From Comet Where Name Like '1P*'");
    ASSERT_FALSE(comet.Eof());
    EXPECT_DOUBLE_EQ(0.967277, comet.Fields("E").Double());
}

// A right join is written as the left join of the same rows, whatever the case and spacing; a
// text that reads like one stays as typed.
TEST(TranslateJetSql, RightJoinsBecomeLeftJoins)
{
    const struct
    {
        const char *jet, *sqlite;
    } rows[] = {
        {"Select * FROM (CCDLog RIGHT JOIN Logbook ON CCDLog.ObservationNumber = "
         "Logbook.ObservationNumber) INNER JOIN SelvaneTable ON (Logbook.Catalog = "
         "SelvaneTable.Catalog)",
         "Select * FROM (Logbook LEFT JOIN CCDLog ON CCDLog.ObservationNumber = "
         "Logbook.ObservationNumber) INNER JOIN SelvaneTable ON (Logbook.Catalog = "
         "SelvaneTable.Catalog)"},
        {"select x from ( a  right outer join b on a.k = b.k)",
         "select x from (b LEFT JOIN a ON a.k = b.k)"},
        {"Select * From Logbook Where ShortDescription = '(a RIGHT JOIN b ON c)'",
         "Select * From Logbook Where ShortDescription = '(a RIGHT JOIN b ON c)'"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.sqlite, data::TranslateJetSql(row.jet));
}
