#include "LogTestSession.h"

#include "logbook/OalExchange.h"
#include "services/Fault.h"
#include "tests/TestFiles.h"

#include <QProcess>

#include <fstream>

using logtest::LogSession;
using Strings = std::vector<std::string>;
using testing_data::Rows;

namespace {

const std::string SchemaPath = OAL_SCHEMA;

// xmllint's verdict on a document against the 2.1 schema: empty when valid.
std::string SchemaErrors(const std::filesystem::path& file)
{
    QProcess lint;
    lint.start("xmllint", {"--noout", "--schema", QString::fromStdString(SchemaPath),
                           QString::fromStdString(file.string())});
    EXPECT_TRUE(lint.waitForFinished(60000));
    return lint.exitCode() == 0 ? std::string() : lint.readAllStandardError().toStdString();
}

using test_files::ReadText;
using test_files::WriteText;

// A logbook of varied entries: odd texts, a CCD row, images, seen and not seen, every seeing.
void FillLogbook(LogSession& s)
{
    auto& db = *s.logbook;
    db.Execute("Insert Into ObservingSites (ProfileName, Latitude, Longitude, EastWest, TimeZone) "
               "Values ('Alps', 46.25, 7.5, 'E', -1)");
    const std::array<const char*, 6> seeing{"Pefectly Stable", "Mostly Stable", "Somewhat Stable",
                                            "Unstable",        "Very Unstable", " "};
    for (int i = 0; i < 6; ++i)
        db.Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
                   "LocationObserved, EquipmentUsed, OtherEquipment, Seeing, Transparency, "
                   "Rating, ShortDescription, ObservationText, SeenFlag, DataRec, LogType) Values ("
                   "'NGC 224', '2000', '2026-03-0" +
                   std::to_string(i + 1) + "', '21:0" + std::to_string(i) +
                   ":05', 'Alps', '8 inch f/10 Schmidt-Cassegrain', 'Telrad' || char(13, 10) || "
                   "'OIII', '" +
                   seeing[i] +
                   "', 'Clear', 'A', 'short', '<p>Dust &amp; lanes ?> <b>x</b>' || "
                   "char(1) || '</p>', " +
                   (i % 2 ? "0" : "-1") + ", 1, 'Galaxies')");
    db.Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
               "LocationObserved, EquipmentUsed, SeenFlag, LogType) Values ('Mystery 1', 'ZZ', "
               "'2026-03-09', '23:59:59', 'Backyard', 'Binoculars', -1, 'Default')");
    db.Execute("Insert Into CCDLog (ObservationNumber, ImageName, ExposureTime, darkframe, Notes) "
               "Values (2, 'm31.fit', '300', -1, '<i>\"quoted\"</i>')");
    db.Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) Values (2, "
               "'first', '/img/a&b.png')");
    db.Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) Values (2, "
               "Null, '/img/c.png')");
}

TEST(OalExport, ValidDocumentWithItsMapping)
{
    LogSession s;
    WriteText(s.f.dir.File("scope.dat"), "8 inch f/10 Schmidt-Cassegrain   10.0 203\r\n");
    s.prefs.ObserverName = "Ada Observer";
    FillLogbook(s);
    const auto file = s.f.dir.File("log.oal");
    EXPECT_EQ(7, logbook::ExportOal(s.context, file));
    EXPECT_EQ("", SchemaErrors(file));
    const std::string xml = ReadText(file);
    for (const char* expected : {
             "<name>Ada</name>",
             "<surname>Observer</surname>",
             // The stored site, east positive, its zone in minutes east of Greenwich.
             "<name>Alps</name>\n            <longitude unit=\"deg\">7.5</longitude>\n"
             "            <latitude unit=\"deg\">46.25</latitude>\n"
             "            <timezone>60</timezone>",
             // A location without a site row: the settings' place.
             "<name>Backyard</name>\n            <longitude unit=\"deg\">-90.2</longitude>",
             "<target id=\"target_1\" xsi:type=\"oal:deepSkyGX\">\n"
             "            <datasource>NGC 2000</datasource>\n"
             "            <name>NGC 224</name>\n            <alias>M 31</alias>",
             "<constellation>And</constellation>",
             // An object of no catalogue: named by the observer, uncategorised.
             "xsi:type=\"oal:deepSkyNA\">\n            <observer>observer_1</observer>\n"
             "            <name>Mystery 1</name>",
             "<aperture>203</aperture>\n            <focalLength>2030</focalLength>",
             "<observation id=\"obs_1\">\n        <?selvane-log {",
             "<begin>2026-03-01T21:00:05+01:00</begin>\n        <seeing>1</seeing>\n"
             "        <scope>scope_1</scope>\n        <accessories>Telrad; OIII</accessories>",
             "<seeing>5</seeing>",
             "<description>Dust &amp; lanes ?&gt; x</description>\n"
             "            <rating>99</rating>",
             "<rating>7</rating>",
             "</result>\n        <image>/img/a&amp;b.png</image>\n        "
             "<image>/img/c.png</image>",
             "<begin>2026-03-09T23:59:59-06:00</begin>\n        <accessories>Binoculars",
             "?\\u003e",
         })
        EXPECT_NE(std::string::npos, xml.find(expected)) << expected;
    EXPECT_EQ(std::string::npos, xml.find("<seeing>6")) << "a blank seeing has no number";

    // Universal Time; a query's choice, each entry written whole whatever columns it gives.
    s.prefs.tLogTime = "U.T.";
    EXPECT_EQ(1, logbook::ExportOal(s.context, file,
                                    "Select ObservationNumber From Logbook Where ObjectID = "
                                    "'Mystery 1'"));
    EXPECT_EQ("", SchemaErrors(file));
    EXPECT_NE(std::string::npos, ReadText(file).find("<begin>2026-03-09T23:59:59Z</begin>"));
    EXPECT_NE(std::string::npos, ReadText(file).find("\"EquipmentUsed\":\"Binoculars\""));
    EXPECT_THROW(logbook::ExportOal(s.context, file, "Select ObjectID From Logbook"),
                 services::Fault);
    EXPECT_NE(std::string::npos, ReadText(file).find("Mystery 1"))
        << "a failed export keeps the file";

    // An empty logbook still gives a valid document.
    LogSession empty;
    EXPECT_EQ(0, logbook::ExportOal(empty.context, file));
    EXPECT_EQ("", SchemaErrors(file));
}

TEST(OalExport, RoundTripGivesTheSameRows)
{
    LogSession from;
    FillLogbook(from);
    const auto file = from.f.dir.File("log.oal");
    ASSERT_EQ(7, logbook::ExportOal(from.context, file));

    LogSession to;
    const auto result = logbook::ImportOal(to.context, file, "Other");
    ASSERT_TRUE(result);
    EXPECT_EQ((std::vector<long long>{1, 2, 3, 4, 5, 6, 7}), result->numbers);
    // DataRec is the object's key as found, so the unknown object's stays 0 as before.
    for (const char* sql : {"Select * From Logbook Order By ObservationNumber",
                            "Select * From CCDLog Order By ObservationNumber",
                            "Select * From ImageLog Order By Sequence"})
        EXPECT_EQ(Rows(*from.logbook, sql), Rows(*to.logbook, sql)) << sql;
    EXPECT_EQ("-1", to.Obj("Select Observed From SelvaneTable Where ID = 1"));
    EXPECT_TRUE(to.TakeShown().empty());
}

// A document of another program, in version 2.0 or 2.1.
std::string Foreign(const std::string& version, const std::string& observations)
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<oal:observations version=")" +
           version + R"(" xmlns:oal="http://groups.google.com/group/openastronomylog"
    xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
  <observers><observer id="o1"><name>A</name><surname>B</surname></observer></observers>
  <sites>
    <site id="s1"><name>Dark Site</name><longitude unit="deg">-105.5</longitude>
      <latitude unit="deg">35.25</latitude><timezone>-420</timezone></site>
  </sites>
  <sessions/>
  <targets>
    <target id="t1" xsi:type="oal:deepSkyGX"><datasource>NGC 2000</datasource><name>M 31</name></target>
    <target id="t2" xsi:type="oal:deepSkyGN"><observer>o1</observer><name>Orion Nebula</name><alias>NGC 1976</alias></target>
    <target id="t3" xsi:type="oal:deepSkyGN"><datasource>Other</datasource><name>Barnard's Loop</name></target>
    <target id="t4" xsi:type="oal:deepSkyNA"><datasource>NGC 2000</datasource><name>ngc 9999</name></target>
  </targets>
  <scopes><scope id="sc1" xsi:type="oal:scopeType"><model>Dob 12</model><aperture>305</aperture><focalLength>1500</focalLength></scope></scopes>
  <eyepieces/><lenses/><filters/><imagers/>
)" + observations +
           "</oal:observations>\n";
}

TEST(OalImport, ForeignDocumentsThroughTheirElements)
{
    const std::string observations = R"(
  <observation id="a"><observer>o1</observer><site>s1</site><target>t1</target>
    <begin>2026-03-02T04:30:00Z</begin><seeing>3</seeing><scope>sc1</scope>
    <accessories>Telrad; UHC filter</accessories>
    <result xsi:type="oal:findingsDeepSkyType" lang="en"><description>A long first line of notes that runs well past fifty characters
second line</description><rating>3</rating></result>
    <image>m31.jpg</image></observation>
  <observation id="b"><observer>o1</observer><target>t2</target>
    <begin>2026-03-02T23:15:00+01:00</begin><accessories>Binoculars; Chair</accessories>
    <result xsi:type="oal:findingsDeepSkyType"><description>faint</description><rating>7</rating></result></observation>
  <observation id="c"><observer>o1</observer><site>s1</site><target>t3</target>
    <begin>2026-03-03T01:00:00-07:00</begin><result><description></description></result></observation>
  <observation id="d"><observer>o1</observer><target>t4</target>
    <begin>2026-03-04T20:00:00</begin><result><description>x</description></result></observation>
)";
    for (const std::string version : {"2.0", "2.1"}) {
        SCOPED_TRACE(version);
        LogSession s;
        const auto file = s.f.dir.File("foreign.oal");
        WriteText(file, Foreign(version, observations));
        if (version == "2.1") {
            EXPECT_EQ("", SchemaErrors(file));
        }
        const auto result = logbook::ImportOal(s.context, file, "Imported");
        ASSERT_TRUE(result);
        EXPECT_EQ((std::vector<long long>{1, 2, 3, 4}), result->numbers);
        EXPECT_EQ(
            (Strings{
                // By name as OtherID in the datasource's catalogue; the site's standard time
                // (UTC-7); with a scope every accessory is other equipment.
                "1|NGC 224|2000|2026-03-01|21:30:00|Dark Site|Dob 12|Telrad\r\nUHC filter\r\n|"
                "Somewhat Stable|<null>|<null>|A long first line of notes that runs well past "
                "fif",
                // By alias as ObjectID; no site: the settings' zone (6 hours west).
                "2|NGC 1976|2000|2026-03-02|16:15:00|<null>|Binoculars|Chair\r\n|<null>|<null>|"
                "<null>|faint",
                // Not in the datasource's catalogue: the name upper-cased, no catalogue id.
                "3|BARNARD'S LOOP||2026-03-03|01:00:00|Dark Site|<null>|<null>|<null>|<null>|"
                "<null>|<null>",
                // A time without an offset stays as written.
                "4|NGC 9999|2000|2026-03-04|20:00:00|<null>|<null>|<null>|<null>|<null>|<null>|"
                "x",
            }),
            Rows(*s.logbook, "Select ObservationNumber, ObjectID, Catalog, DateObserved, "
                             "TimeObserved, LocationObserved, EquipmentUsed, OtherEquipment, "
                             "Seeing, Transparency, Rating, ShortDescription From Logbook "
                             "Order By ObservationNumber"));
        EXPECT_EQ("-1|1|Imported", s.Log("Select SeenFlag || '|' || DataRec || '|' || LogType "
                                         "From Logbook Where ObservationNumber = 1"));
        EXPECT_EQ("0", s.Log("Select SeenFlag From Logbook Where ObservationNumber = 2"));
        EXPECT_EQ("1|m31.jpg", s.Log("Select ObservationNumber || '|' || ImagePath From ImageLog"));
        EXPECT_EQ("Dark Site|35.25|105.5|W|7.0",
                  s.Log("Select ProfileName || '|' || Latitude || '|' || Longitude || '|' || "
                        "EastWest || '|' || TimeZone From ObservingSites"));
        EXPECT_NE(std::string::npos,
                  s.Log("Select ObservationText From Logbook Where ObservationNumber = 1")
                      .find("second line"));

        // Universal Time.
        s.prefs.tLogTime = "UT";
        s.logbook->Execute("Delete From Logbook");
        ASSERT_TRUE(logbook::ImportOal(s.context, file, "Imported"));
        EXPECT_EQ("2026-03-02 04:30:00|2026-03-02 22:15:00",
                  s.Log("Select group_concat(DateObserved || ' ' || TimeObserved, '|') From "
                        "(Select * From Logbook Order By ObservationNumber Limit 2)"));
    }
}

TEST(OalImport, BrokenObservationsAndFilesThatAreNoLog)
{
    LogSession s;
    const auto file = s.f.dir.File("mixed.oal");
    WriteText(file, Foreign("2.1", R"(
  <observation id="bad-target"><observer>o1</observer><target>t9</target>
    <begin>2026-03-02T04:30:00Z</begin><result><description/></result></observation>
  <observation id="bad-time"><observer>o1</observer><target>t1</target>
    <begin>2026-03-02 04:30:00</begin><result><description/></result></observation>
  <observation id="bad-record"><?selvane-log {"Logbook": [1, 2]?>
    <observer>o1</observer><target>t1</target><begin>2026-03-02T04:30:00Z</begin></observation>
  <observation id="good"><observer>o1</observer><target>t1</target>
    <begin>2026-03-05T04:30:00Z</begin><result><description/></result></observation>
)"));
    const auto result = logbook::ImportOal(s.context, file, "");
    ASSERT_TRUE(result);
    EXPECT_EQ(std::vector<long long>{1}, result->numbers);
    const std::string name = file.string();
    EXPECT_EQ((Strings{"Open Astronomy Log|Observation bad-target of " + name +
                           " was skipped: its target \"t9\" is not in the file.|E",
                       "Open Astronomy Log|Observation bad-time of " + name +
                           " was skipped: its begin \"2026-03-02 04:30:00\" is not a date and "
                           "time.|E",
                       "Open Astronomy Log|Observation bad-record of " + name +
                           " was skipped: its selvane-log record is damaged.|E"}),
              s.TakeShown());

    const std::vector<std::pair<std::string, std::string>> noLogs{
        {"text.oal", "not xml at all"},
        {"other.xml", "<?xml version=\"1.0\"?><observations version=\"2.1\"/>"},
        {"old.oal", "<oal:observations version=\"1.7\" "
                    "xmlns:oal=\"http://groups.google.com/group/openastronomylog\"/>"},
        {"cut.oal", Foreign("2.1", "<observation id=\"x\"><observer>").substr(0, 400)},
    };
    for (const auto& [fileName, text] : noLogs) {
        SCOPED_TRACE(fileName);
        WriteText(s.f.dir.File(fileName), text);
        EXPECT_FALSE(logbook::ImportOal(s.context, s.f.dir.File(fileName), ""));
        EXPECT_EQ((Strings{"Open Astronomy Log|The file " + s.f.dir.File(fileName).string() +
                           " is not an Open Astronomy Log (version 2.0 or 2.1).|E"}),
                  s.TakeShown());
    }
    EXPECT_FALSE(logbook::ImportOal(s.context, s.f.dir.File("missing.oal"), ""));
    EXPECT_EQ(1u, s.TakeShown().size());
    EXPECT_EQ(1, s.Count("Logbook"));
}

} // namespace
