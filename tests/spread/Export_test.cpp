// The export keys on real SQLite files: the record writers byte for byte on awkward values, the
// dialogue's name rules, cancel and the long-export warning, and faults that leave files alone.

#include "spread/Export.h"
#include "spread/RecordExport.h"

#include "services/ScriptedUiPort.h"
#include "tests/TestFiles.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using namespace spread;

namespace {

using test_files::ReadText;

class ExportFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        testing_data::MakeObjectDatabase(f.objectPath);
        testing_data::MakeLogbook(f.dir.File("log.mdb"));
        TMM.objectDb = data::Database::Open(f.objectPath);
        TMM.logbookDb = data::Database::Open(f.dir.File("log.mdb"));
        // An entry with everything that is awkward in a file: quotes, markup characters, "]]>",
        // letters beyond ASCII, rich text and a plain note ending in a line break.
        TMM.logbookDb->Execute(
            "Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
            "TimeObserved, LocationObserved, Seeing, ShortDescription, ObservationText, "
            "SeenFlag, DataRec, LogType) Values (3, 'M \"31\" & <x>', 'MESSIER', "
            "'2024-03-05', '21:30:00', 'Ho]]>me', 'Café ü', 'short', "
            "'<p>Line one </p><p> Line &amp; two</p>', -1, 1, 'Default')");
        TMM.logbookDb->Execute("Insert Into CCDLog (ObservationNumber, ImageName, Notes, "
                               "darkframe) Values (3, 'm31.fit', 'first' || char(13) || "
                               "char(10) || 'sec\"ond' || char(10), -1)");
    }

    int Count(const std::string& text) const
    {
        int n = 0;
        for (const auto& shown : ui.shown)
            n += shown.Text() == text ? 1 : 0;
        return n;
    }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
};

TEST_F(ExportFixture, LogbookAsTextAndXmlByteForByte)
{
    const std::string sql = std::string(LogExportSql)
                                .replace(std::string(LogExportSql).find(';'), 1,
                                         " WHERE Logbook.ObservationNumber = 3;");
    const auto text = f.dir.File("log.txt");
    const auto xml = f.dir.File("log.xml");
    ASSERT_EQ(CSVExport(ui, sql, text, *TMM.logbookDb), 0);
    ASSERT_EQ(XMLExportLog(ui, sql, xml, *TMM.logbookDb), 0);

    EXPECT_EQ(ReadText(text),
              "\"Logbook.ObservationNumber\",\"ObjectID\",\"Catalog\",\"DateObserved\","
              "\"TimeObserved\",\"LocationObserved\",\"EquipmentUsed\",\"OtherEquipment\","
              "\"Seeing\",\"Transparency\",\"Rating\",\"ShortDescription\",\"ObservationText\","
              "\"SeenFlag\",\"DataRec\",\"LogType\",\"CCDLog.ObservationNumber\",\"ImageName\","
              "\"ExposureTime\",\"ExposureMode\",\"Telescope\",\"CCDCamera\",\"FocalDistance\","
              "\"FieldOfView\",\"Coolingrate\",\"darkframe\",\"flatfield\",\"PictureRating\","
              "\"Notes\"\n"
              "\"3\",\"M 31 & <x>\",\"MESSIER\",\"3/5/2024\",\"21:30:00\",\"Ho]]>me\",\"\",\"\","
              "\"Café ü\",\"\",\"\",\"short\",\"Line one |Line & two\",\"True\",\"1\","
              "\"Default\",\"3\",\"m31.fit\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"True\","
              "\"False\",\"\",\"first|second\"\n");
    EXPECT_EQ(Count(FinishedExportingText + text.string()), 1);

    const std::string doc = ReadText(xml);
    EXPECT_EQ(doc.rfind("<?xml version=\"1.0\"?>\n<SELVANE2003>\n<LOG>\n"
                        "<Logbook.ObservationNumber>3</Logbook.ObservationNumber>\n",
                        0),
              0u);
    for (const char* line :
         {"\n<ObjectID><![CDATA[M \"31\" & <x>]]></ObjectID>\n",
          "\n<DateObserved>3/5/2024</DateObserved>\n<TimeObserved>21:30:00</TimeObserved>\n",
          // Not guarded: the wrapped form breaks, as the layout has always allowed.
          "\n<LocationObserved><![CDATA[Ho]]>me]]></LocationObserved>\n",
          "\n<ShortDescription><![CDATA[short\r\n]]></ShortDescription>\n",
          "\n<ObservationText><![CDATA[Line one\r\nLine & two\r\n]]></ObservationText>\n",
          "\n<SeenFlag>True</SeenFlag>\n<DataRec>1</DataRec>\n",
          "\n<CCDLog.ObservationNumber>3</CCDLog.ObservationNumber>\n",
          "\n<Notes><![CDATA[first\r\nsec\"ond\r\n]]></Notes>\n</LOG>\n</SELVANE2003>\n"})
        EXPECT_NE(doc.find(line), std::string::npos) << line;
}

TEST_F(ExportFixture, ObjectsAsXmlWithTheRuntimesNumbers)
{
    TMM.objectDb->Execute("Update SelvaneTable Set Magnitude = 0.000015, ObjectSize = "
                          "34.533333333333333 Where ObjectID = 'NGC 224'");
    const auto xml = f.dir.File("o.xml");
    ASSERT_EQ(XMLExportObjects(ui,
                               "Select ObjectID, ObjectSize, Magnitude, Observed, MessierNumber "
                               "From SelvaneTable Where ObjectID = 'NGC 224'",
                               xml, *TMM.objectDb),
              0);
    EXPECT_EQ(ReadText(xml), "<?xml version=\"1.0\"?>\n<SELVANE2003>\n<OBJECTS>\n"
                             "<ObjectID><![CDATA[NGC 224]]></ObjectID>\n"
                             "<ObjectSize>34.5333333333333</ObjectSize>\n"
                             "<Magnitude>1.5E-05</Magnitude>\n<Observed>False</Observed>\n"
                             "<MessierNumber>31</MessierNumber>\n</OBJECTS>\n</SELVANE2003>\n");
    EXPECT_TRUE(ui.shown.empty()); // the XML writers leave the report to Export
}

TEST_F(ExportFixture, DialogueNamesCancelAndTheLongExportWarning)
{
    struct Name
    {
        const char *answer, *ext, *filter, *file;
    };
    for (const Name& n :
         {Name{"notes.csv", ".txt", "*.txt", "notes.csv.txt"},
          Name{"mytxt", ".txt", "*.txt", "mytxt"}, Name{"LIST.TXT", ".txt", "*.txt", "LIST.TXT"},
          Name{"*.TXT", ".txt", "*.txt", ""}, Name{"   ", ".txt", "*.txt", ""},
          Name{"page.html", ".htm", "*.htm", "page.html.htm"},
          Name{"book", ".xlsx", "*.xlsx", "book.xlsx"}, Name{"list", ".XML", "*.XML", "list.xml"}})
        EXPECT_EQ(ExportFileName(n.answer, n.ext, n.filter), n.file) << n.answer;

    // A cancelled dialogue still ends with the report, once, and writes nothing.
    for (const int rows : {25000, 25001}) {
        ui.shown.clear();
        TMM.grids[0].SetMaxRows(rows);
        ui.fileAnswers.assign(1, "");
        EXPECT_TRUE(IDN3(TMM));
        EXPECT_EQ(Count(ExportMayTakeAWhile), rows > kLongExportRows ? 1 : 0) << rows;
        EXPECT_EQ(Count(FinishedExportingText), 1);
        EXPECT_EQ(ui.shown.back().message.ShortMessage, ExportCompleteTitle);
    }

    // The text export says it finished twice: its writer says so too.
    ui.shown.clear();
    TMM.SQL = "Select ObjectID From SelvaneTable Order By ID";
    ui.fileAnswers.assign(1, f.dir.Text("objects"));
    EXPECT_TRUE(IDN2(TMM));
    EXPECT_EQ(Count(FinishedExportingText + f.dir.Text("objects.txt")), 2);
    EXPECT_EQ(ReadText(f.dir.File("objects.txt")).rfind("\"ObjectID\"\n\"NGC 224\"\n", 0), 0u);

    ui.shown.clear();
    EXPECT_TRUE(Export(TMM, "", ""));
    EXPECT_EQ(Count(ExportBeforeYouContinue), 1);
    EXPECT_TRUE(ui.fileAnswers.empty());
}

TEST_F(ExportFixture, FaultsAtTheWritersLocationLeaveFilesAlone)
{
    std::filesystem::create_directory(f.dir.File("taken.txt")); // a name no file can take
    TMM.grids[0].SetMaxRows(2);
    struct Case
    {
        const char* name;
        std::function<bool()> run;
        std::string file;
        const char* location;
        const char* message;
    };
    const Case cases[] = {
        {"text into a missing folder", [&] { return IDN2(TMM); }, f.dir.Text("no/such/list.txt"),
         "TMM.CSVExport", "Path not found"},
        {"text onto a folder", [&] { return IDN2(TMM); }, f.dir.Text("taken.txt"), "TMM.CSVExport",
         nullptr},
        {"a query that fails", [&] { return Export(TMM, "XMLOBJECTS", "Select * From Nowhere"); },
         f.dir.Text("x.xml"), "TMM.XMLExportObjects", nullptr},
        {"a workbook into a missing folder", [&] { return Export(TMM, "EXCEL", ""); },
         f.dir.Text("no/such/book.xlsx"), "ctlSpread.Export", "Path not found"},
        {"a page into a missing folder", [&] { return Export(TMM, "HTML", ""); },
         f.dir.Text("no/such/page.htm"), "ctlSpread.Export", "Path not found"},
        {"the logbook without a logbook",
         [&] {
             TMM.logbookDb.reset();
             return Export(TMM, "XMLLOG", LogExportSql);
         },
         f.dir.Text("log.xml"), "TMM.XMLExportLog", nullptr},
    };
    TMM.SQL = "Select * From SelvaneTable";
    for (const Case& c : cases) {
        ui.shown.clear();
        ui.fileAnswers.assign(1, c.file);
        EXPECT_FALSE(c.run()) << c.name;
        ASSERT_EQ(ui.shown.size(), 1u) << c.name; // the fault, and no report of success
        EXPECT_NE(ui.shown[0].Text().find(c.location), std::string::npos)
            << c.name << ": " << ui.shown[0].Text();
        if (c.message) {
            EXPECT_NE(ui.shown[0].Text().find(c.message), std::string::npos) << c.name;
        }
    }
    EXPECT_TRUE(std::filesystem::is_directory(f.dir.File("taken.txt")));
    EXPECT_FALSE(std::filesystem::exists(f.dir.File("x.xml")));
}

} // namespace
