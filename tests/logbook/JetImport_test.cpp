// The reading of earlier logbooks: the sample file's captured mdb-json text (so the mapping is
// checked where mdbtools is absent), the sample file itself through mdbtools, and the failures
// of file and programs.

#include "logbook/JetImport.h"

#include "services/Fault.h"
#include "services/RtfReader.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

const std::string SampleDir = OLDLOG_DIR;
const std::string SampleFile = SampleDir + "/oldlog-sample.mdb";

std::string ReadText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// The tables as captured from the sample with mdb-json (tables.txt lists them).
logbook::JetTables CapturedSample()
{
    logbook::JetTables tables;
    std::istringstream names(ReadText(SampleDir + "/tables.txt"));
    for (std::string name; std::getline(names, name);)
        if (!name.empty())
            tables.tables.emplace_back(name, ReadText(SampleDir + "/" + name + ".json"));
    return tables;
}

// A row's value by column; "<absent>" when the row does not name it, "<null>" for null.
std::string Value(const logbook::ImportRow& row, const std::string& column)
{
    for (const auto& [name, value] : row)
        if (name == column)
            return value ? *value : "<null>";
    return "<absent>";
}

std::string Columns(const logbook::ImportRow& row)
{
    std::string names;
    for (const auto& [name, value] : row)
        names += (names.empty() ? "" : ",") + name;
    return names;
}

TEST(JetBatch, CapturedSample)
{
    const logbook::ImportBatch b = logbook::JetBatch(CapturedSample(), SampleFile);
    ASSERT_EQ(3u, b.entries.size());
    const auto& e1 = b.entries[0].logbook;
    EXPECT_EQ("NGC 7662", Value(e1, "ObjectID"));
    EXPECT_EQ("2000", Value(e1, "Catalog"));
    EXPECT_EQ("1999-09-04", Value(e1, "DateObserved"));
    EXPECT_EQ("22:10:00", Value(e1, "TimeObserved"));
    EXPECT_EQ("Barlow 2x\r\nOIII\r\n", Value(e1, "OtherEquipment"));
    EXPECT_EQ("-1", Value(e1, "SeenFlag"));
    EXPECT_EQ("<absent>", Value(e1, "LogType")); // the old logbook had no log types
    // The note was written by the rich text box; the bold word stays bold.
    EXPECT_EQ("<p style=\"white-space:pre-wrap\">Bright <b>blue</b> disc</p>",
              Value(e1, "ObservationText"));
    EXPECT_EQ("Bright blue disc", logbook::RichPlainText(Value(e1, "ObservationText")));
    // Blank lines, tabs and runs of blanks survive into the plain text reports read.
    EXPECT_EQ("a  b\n\n\tc", logbook::RichPlainText(services::RtfToHtml(
                                 "{\\rtf1 a  b\\par\r\n\\par\r\n\\tab c\\par\r\n}")));
    // Neither the old number nor the old object key is carried over.
    EXPECT_EQ("ObjectID,Catalog,DateObserved,TimeObserved,LocationObserved,EquipmentUsed,"
              "OtherEquipment,Seeing,Transparency,Rating,ShortDescription,ObservationText,"
              "SeenFlag",
              Columns(e1));

    EXPECT_EQ("NGC 457", Value(b.entries[1].logbook, "ObjectID"));
    EXPECT_EQ("Two bright eyes", Value(b.entries[1].logbook, "ObservationText"));
    EXPECT_EQ("<absent>", Value(b.entries[1].logbook, "OtherEquipment"));
    EXPECT_EQ("IC 434", Value(b.entries[2].logbook, "ObjectID"));
    EXPECT_EQ("0", Value(b.entries[2].logbook, "SeenFlag"));

    // Dependent rows follow their entry: the drawing of observation 1, the CCD row of 5.
    EXPECT_FALSE(b.entries[0].ccd);
    ASSERT_EQ(1u, b.entries[0].images.size());
    EXPECT_EQ("ImageDescription,ImagePath", Columns(b.entries[0].images[0]));
    EXPECT_EQ("C:\\Sketches\\ngc7662.bmp", Value(b.entries[0].images[0], "ImagePath"));
    ASSERT_TRUE(b.entries[2].ccd);
    EXPECT_EQ("darkframe,flatfield", Columns(*b.entries[2].ccd));
    EXPECT_TRUE(b.entries[2].images.empty());

    ASSERT_EQ(1u, b.sessions.size());
    EXPECT_EQ("1999-09-04", Value(b.sessions[0], "SessionDate"));
    EXPECT_EQ("Good night, some haze", Value(b.sessions[0], "sessiontext"));
    ASSERT_EQ(1u, b.logTypes.size());
    EXPECT_EQ("Default", Value(b.logTypes[0], "LogType"));
    ASSERT_EQ(1u, b.equipment.size());
    EXPECT_EQ("6in Newtonian", Value(b.equipment[0], "Equipment"));
    ASSERT_EQ(1u, b.sites.size());
    EXPECT_EQ("Home|52|0.1|E|0",
              Value(b.sites[0], "ProfileName") + "|" + Value(b.sites[0], "Latitude") + "|" +
                  Value(b.sites[0], "Longitude") + "|" + Value(b.sites[0], "EastWest") + "|" +
                  Value(b.sites[0], "TimeZone"));
    EXPECT_TRUE(b.sessionSky.empty());
}

// Logbooks written by other hands: names in other cases, a time kept as a Jet date/time,
// Yes/No written as booleans or numbers, nulls, columns this logbook lacks, rows out of order,
// dependent rows without an entry, RTF in the CCD and session notes.
TEST(JetBatch, OtherWritersForms)
{
    logbook::JetTables t;
    t.tables = {
        {"LOGBOOK",
         "{\"observationnumber\":7,\"objectid\":\"M 1\",\"CATALOG\":\"2000\","
         "\"dateobserved\":\"2001-02-03 00:00:00\",\"timeobserved\":\"1899-12-30 21:05:09\","
         "\"SeenFlag\":true,\"LogType\":\"Sketch\",\"Weather\":\"cold\",\"DataRec\":99}\n"
         "{\"ObservationNumber\":3,\"ObjectID\":\"O'Brien's \\\"tail\\\"\",\"Catalog\":null,"
         "\"DateObserved\":\"12/31/1998\",\"TimeObserved\":\"10:30 PM\",\"SeenFlag\":false,"
         "\"ShortDescription\":\"\\u00e9t\\u00e9 \\ud83d\\ude00\"}\n"
         "\n"
         "{\"ObjectID\":\"no number\",\"SeenFlag\":-1}\n"
         "{\"ObservationNumber\":5,\"ObjectID\":\"NGC 1\",\"SeenFlag\":1}\n"},
        {"ccdlog",
         "{\"ObservationNumber\":7,\"Notes\":\"{\\\\rtf1\\\\ansi \\\\i cold\\\\i0\\\\par\\r\\n}\","
         "\"DarkFrame\":true,\"FlatField\":0,\"ExposureTime\":30}\n"
         "{\"ObservationNumber\":7,\"Notes\":\"second row\"}\n"
         "{\"ObservationNumber\":42,\"Notes\":\"no entry\"}\n"},
        {"ImageLog", "{\"Sequence\":2,\"ObservationNumber\":3,\"ImagePath\":\"a.jpg\"}\n"
                     "{\"Sequence\":3,\"ObservationNumber\":42,\"ImagePath\":\"lost.jpg\"}\n"
                     "{\"Sequence\":4,\"ObservationNumber\":3,\"ImagePath\":\"b.jpg\"}\n"},
        {"SESSIONLOG",
         "{\"sessiondate\":\"2001-02-03 00:00:00\",\"SessionText\":\"{\\\\rtf1 \\\\ul "
         "windy\\\\ulnone\\\\par}\"}\n"},
    };
    const logbook::ImportBatch b = logbook::JetBatch(t, "x.mdb");
    ASSERT_EQ(4u, b.entries.size());

    struct Expect
    {
        const char* name;
        std::string got, want;
    };
    const auto& e3 = b.entries[0].logbook;
    const auto& e5 = b.entries[1].logbook;
    const auto& e7 = b.entries[2].logbook;
    const auto& none = b.entries[3].logbook;
    const Expect cases[] = {
        {"order by old number, unnumbered last",
         Value(e3, "ObjectID") + "|" + Value(e5, "ObjectID") + "|" + Value(e7, "ObjectID") + "|" +
             Value(none, "ObjectID"),
         "O'Brien's \"tail\"|NGC 1|M 1|no number"},
        {"names in any case come out in this logbook's spelling", Columns(e7),
         "ObjectID,Catalog,DateObserved,TimeObserved,SeenFlag,LogType"},
        {"date part of a date/time", Value(e7, "DateObserved"), "2001-02-03"},
        {"time part of a date/time", Value(e7, "TimeObserved"), "21:05:09"},
        {"other texts as stored", Value(e3, "DateObserved") + "|" + Value(e3, "TimeObserved"),
         "12/31/1998|10:30 PM"},
        {"null stays null", Value(e3, "Catalog"), "<null>"},
        {"JSON escapes and surrogate pairs", Value(e3, "ShortDescription"),
         "\xC3\xA9t\xC3\xA9 \xF0\x9F\x98\x80"},
        {"Yes/No",
         Value(e7, "SeenFlag") + Value(e3, "SeenFlag") + Value(none, "SeenFlag") +
             Value(e5, "SeenFlag"),
         "-10-1-1"},
        {"first CCD row, numbers as written, RTF notes",
         b.entries[2].ccd
             ? Columns(*b.entries[2].ccd) + "|" + Value(*b.entries[2].ccd, "ExposureTime") + "|" +
                   Value(*b.entries[2].ccd, "darkframe") + Value(*b.entries[2].ccd, "flatfield") +
                   "|" + Value(*b.entries[2].ccd, "Notes")
             : "<none>",
         "ExposureTime,darkframe,flatfield,Notes|30|-10|"
         "<p style=\"white-space:pre-wrap\"><i>cold</i></p>"},
        {"images follow their entry in table order; orphans dropped",
         std::to_string(b.entries[0].images.size()) + "|" +
             Value(b.entries[0].images[0], "ImagePath") + "|" +
             Value(b.entries[0].images.back(), "ImagePath") + "|" +
             std::to_string(b.entries[1].images.size() + b.entries[2].images.size() +
                            b.entries[3].images.size()),
         "2|a.jpg|b.jpg|0"},
        {"session note from RTF", b.sessions.empty() ? "" : Value(b.sessions[0], "sessiontext"),
         "<p style=\"white-space:pre-wrap\"><u>windy</u></p>"},
    };
    for (const Expect& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.want, c.got);
    }
}

TEST(JetBatch, UnreadableRowNamesTableAndFile)
{
    for (const char* bad :
         {"{\"a\":1", "not json", "{\"a\":[1]}", "{\"a\":\"\\x\"}", "{\"a\":1} trailing"}) {
        SCOPED_TRACE(bad);
        logbook::JetTables t;
        t.tables = {{"Logbook", std::string("{\"ObjectID\":\"M 1\"}\n") + bad + "\n"}};
        try {
            logbook::JetBatch(t, "/home/o/old.mdb");
            ADD_FAILURE() << "no fault";
        } catch (const services::Fault& f) {
            EXPECT_EQ("The earlier logbook /home/o/old.mdb cannot be read: mdb-json gave row 2 "
                      "of table Logbook in a form that cannot be read.",
                      std::string(f.what()));
            EXPECT_EQ(logbook::ImportJetLocation, f.Location());
        }
    }
}

bool HaveMdbTools()
{
    return !QStandardPaths::findExecutable("mdb-tables").isEmpty() &&
           !QStandardPaths::findExecutable("mdb-json").isEmpty();
}

// The captured text is what mdbtools gives for the sample today.
TEST(ReadJetFile, SampleThroughMdbTools)
{
    if (!HaveMdbTools())
        GTEST_SKIP() << "mdbtools is not installed";
    const logbook::JetTables read = logbook::ReadJetFile(SampleFile);
    const logbook::JetTables captured = CapturedSample();
    ASSERT_EQ(captured.tables.size(), read.tables.size());
    for (std::size_t i = 0; i < read.tables.size(); ++i) {
        SCOPED_TRACE(read.tables[i].first);
        EXPECT_EQ(captured.tables[i], read.tables[i]);
    }
}

// Each failure names the file and, where a program failed, the program; stand-in programs
// play the failing tools.
TEST(ReadJetFile, Failures)
{
    QTemporaryDir temp;
    const std::string dir = temp.path().toStdString();
    auto script = [&](const std::string& name, const std::string& body) {
        const std::string path = dir + "/" + name;
        std::ofstream(path) << "#!/bin/sh\n" << body << "\n";
        QFile::setPermissions(QString::fromStdString(path),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    };
    const std::string notJet = dir + "/notes.mdb";
    std::ofstream(notJet) << "Standard text, not a database at all\n";
    const std::string okTables = script("tables-ok", "echo Logbook");
    const std::string okJson = script("json-ok", "echo '{\"ObjectID\":\"M 1\"}'");

    struct Case
    {
        const char* name;
        std::string file, tables, json;
        int timeoutMs;
        std::string message;
    };
    const std::string S = SampleFile;
    const Case cases[] = {
        {"no such file", dir + "/none.mdb", okTables, okJson, 5000,
         "The earlier logbook " + dir + "/none.mdb cannot be opened."},
        {"not a Jet file", notJet, okTables, okJson, 5000,
         notJet + " is not a logbook of an earlier edition: it is no Jet database."},
        {"no Logbook table", S, script("tables-other", "printf 'Other\\nLogbooks\\n'"), okJson,
         5000, S + " is not a logbook of an earlier edition: it has no Logbook table."},
        {"mdb-tables missing", S, dir + "/mdb-tables", okJson, 5000,
         "The earlier logbook " + S + " cannot be read: the program " + dir +
             "/mdb-tables (mdbtools) cannot be started. Is mdbtools installed?"},
        {"mdb-json fails", S, okTables,
         script("json-fails", "echo 'Error: Table Logbook does not exist' >&2; exit 1"), 5000,
         "The earlier logbook " + S + " cannot be read: " + dir +
             "/json-fails (mdbtools) failed with status 1: Error: Table Logbook does not "
             "exist."},
        {"mdb-json crashes", S, okTables, script("json-crash", "kill -9 $$"), 5000,
         "The earlier logbook " + S + " cannot be read: " + dir +
             "/json-crash (mdbtools) failed (it crashed)."},
        {"mdb-tables hangs", S, script("tables-hang", "exec sleep 30"), okJson, 300,
         "The earlier logbook " + S + " cannot be read: " + dir +
             "/tables-hang (mdbtools) did not finish within 300 milliseconds."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        try {
            logbook::ReadJetFile(c.file, {c.tables, c.json, c.timeoutMs});
            ADD_FAILURE() << "no fault";
        } catch (const services::Fault& f) {
            EXPECT_EQ(c.message, std::string(f.what()));
        }
    }
    // The stand-ins themselves work.
    EXPECT_EQ(1u, logbook::ReadJetFile(S, {okTables, okJson, 5000}).tables.size());
}

} // namespace
