// The report settings files and the commands of the settings windows: files written and read
// back, the place of a record deciding its column, short files and text where a number stands,
// a fuzzed reader, the save name rule, Apply with and without a held file, and the opening.

#include "reports/ReportSettings.h"
#include "reports/ReportSetup.h"

#include "data/SettingsStore.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

using namespace reports;

namespace {

std::string ReadBytes(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void WriteBytes(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

// The fault message of a read, or empty when it succeeded.
std::string ReadFault(std::string_view text, ReportForm& form)
{
    try {
        ReadReportForm(text, form);
    } catch (const services::Fault& fault) {
        return fault.what();
    }
    return {};
}

// A form with texts that a reader could stumble over.
ReportForm OddForm(SettingsKind kind)
{
    ReportForm form = DesignForm(kind);
    form.cboLine = "2 - Double, \"wide\"";
    form.fontName = "Liberation Sans, Narrow";
    form.fontSize = 10.5;
    const std::vector<std::string> widths{"",  "1,5", "\"", "  .75 ", "2\"3",
                                          "é", ",,",  "0x", "-1",     " "};
    for (std::size_t i = 0; i < form.columns.size(); ++i)
        form.columns[i] = {i % 3 != 1, widths[i % widths.size()]};
    return form;
}

} // namespace

TEST(ReadReportForm, WrittenFormsReadBackWhole)
{
    for (SettingsKind kind : {SettingsKind::Database, SettingsKind::Log}) {
        for (const ReportForm& written : {DesignForm(kind), OddForm(kind)}) {
            SCOPED_TRACE(written.cboLine);
            ReportForm read = DesignForm(kind);
            read.columns.assign(read.columns.size(), ReportColumn{true, "9"});
            ASSERT_EQ(ReadFault(WriteReportForm(written), read), "");
            EXPECT_EQ(read, written);
        }
    }
    // One record a line, CR LF at each end.
    const std::string text = WriteReportForm(DesignForm(SettingsKind::Log));
    EXPECT_EQ(services::vb::SplitLines(text).size(), 1u + kLogReportColumns);
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
}

TEST(ReadReportForm, TheRecordsPlaceDecidesItsColumn)
{
    ReportForm form = DesignForm(SettingsKind::Database);
    form.columns[0] = {true, "0.5"};
    form.columns[30] = {false, "3"};
    std::vector<std::string> lines = services::vb::SplitLines(WriteReportForm(form));
    std::swap(lines[1], lines[31]); // the records of columns 0 and 30
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    // Blank lines between records and fields split over lines are read as Input # reads them.
    text.insert(text.find("\r\n") + 2, "\r\n  \r\n");
    text.replace(text.find("\"Arial\","), 8, "\"Arial\"\r\n");

    ReportForm read = DesignForm(SettingsKind::Database);
    ASSERT_EQ(ReadFault(text, read), "");
    EXPECT_EQ(read.columns[0], (ReportColumn{false, "3"}));
    EXPECT_EQ(read.columns[30], (ReportColumn{true, "0.5"}));
    EXPECT_EQ(read.fontSize, 10);
    EXPECT_EQ(read.WidthTwips(30), 720);

    // The box is on for 1 only, as the value is rounded half to even.
    const std::vector<std::pair<const char*, bool>> boxes{
        {"1", true},  {"1.4", true}, {"0.6", true}, {"1.5", false},  {"0.5", false},
        {"2", false}, {"-1", false}, {"", false},   {"1e300", false}};
    for (const auto& [value, on] : boxes) {
        SCOPED_TRACE(value);
        std::string one = WriteReportForm(DesignForm(SettingsKind::Log));
        const std::size_t first = one.find("\r\n") + 2;
        one.replace(first, 1, value);
        ReportForm log = DesignForm(SettingsKind::Log);
        ASSERT_EQ(ReadFault(one, log), "");
        EXPECT_EQ(log.columns[0].on, on);
    }
}

TEST(ReadReportForm, ShortFilesAndTextForNumbersLeaveTheFormAsItWas)
{
    const ReportForm before = OddForm(SettingsKind::Database);
    struct Row
    {
        const char* what;
        std::string text;
        const char* fault;
    };
    std::string badSize = WriteReportForm(before);
    badSize.replace(badSize.find(",10.5"), 5, ",big");
    std::string badBox = WriteReportForm(before);
    badBox.replace(badBox.find("\r\n") + 2, 1, "\"yes\"");
    const std::vector<Row> rows{
        {"a log file read by the database window", WriteReportForm(DesignForm(SettingsKind::Log)),
         kInputPastEnd},
        {"an empty file", "", kInputPastEnd},
        {"blank lines only", "\r\n \r\n", kInputPastEnd},
        {"the last width missing",
         WriteReportForm(before).substr(0, WriteReportForm(before).rfind(',')), kInputPastEnd},
        {"text as the font size", badSize, kTypeMismatch},
        {"text as a box value", badBox, kTypeMismatch},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        ReportForm form = before;
        EXPECT_EQ(ReadFault(row.text, form), row.fault);
        EXPECT_EQ(form, before);
    }

    // The log file gives out at the database window's 28th column.
    ReportForm form = before;
    std::string logFile = WriteReportForm(DesignForm(SettingsKind::Log));
    EXPECT_EQ(ReadFault(logFile + "1,\"2\"\r\n", form), kInputPastEnd);
    logFile += "1,\"2\"\r\n1,\"2\"\r\n1,\"2\"\r\n";
    EXPECT_EQ(ReadFault(logFile, form), kInputPastEnd);
    EXPECT_EQ(ReadFault(logFile + "1,\"2\"\r\n", form), "");
    EXPECT_EQ(form.columns[30], (ReportColumn{true, "2"}));
}

TEST(ReportForm, WidthsAndSpacingAsTheReportsTakeThem)
{
    ReportForm form = DesignForm(SettingsKind::Database);
    const std::vector<std::pair<const char*, int>> widths{
        {"1.5", 2160}, {".7", 1008},  {" 2in", 2880}, {"abc", 0},
        {"", 0},       {"1,5", 1440}, {"1e400", 0},   {"-1", -1440}};
    for (const auto& [width, twips] : widths) {
        SCOPED_TRACE(width);
        form.columns[0].width = width;
        EXPECT_EQ(form.WidthTwips(0), twips);
    }
    EXPECT_EQ(form.WidthTwips(31), 0);
    EXPECT_EQ(form.WidthTwips(-1), 0);
    for (const auto& [line, percent] : std::vector<std::pair<const char*, int>>{
             {"1 - Single", 100}, {"3", 300}, {"", 0}, {"x2", 0}}) {
        form.cboLine = line;
        EXPECT_EQ(form.LineSpacingPercent(), percent) << line;
    }
    form.fontName = "Arial";
    form.fontSize = 10.5;
    EXPECT_EQ(form.lblfont(), "Arial, 10.5");
}

TEST(ReadReportForm, ShippedFilesAreTheDesignForms)
{
    const std::filesystem::path resources = SELVANE_RESOURCE_DIR;
    for (SettingsKind kind : {SettingsKind::Database, SettingsKind::Log}) {
        SCOPED_TRACE(DefaultFileName(kind));
        EXPECT_EQ(ReadBytes(resources / DefaultFileName(kind)), WriteReportForm(DesignForm(kind)));
    }
}

// Random bytes and every cut of a valid file: the reader ends with a form or one of its two
// faults, never a crash, a hang or a third kind of failure.
TEST(ReadReportForm, FuzzedFilesGiveAFormOrAFault)
{
    const auto started = std::chrono::steady_clock::now();
    std::mt19937 random(20261125);
    const std::string alphabet = "\"\",,,\r\n\r\n 0123456789.-+eE&HAz\t\xC3\xA9";
    int forms = 0;
    int faults = 0;
    const auto check = [&](const std::string& text, SettingsKind kind) {
        ReportForm form = DesignForm(kind);
        const std::string fault = ReadFault(text, form);
        if (fault.empty()) {
            ++forms;
            EXPECT_EQ(form.columns.size(), static_cast<std::size_t>(ColumnCount(kind)));
        } else {
            ++faults;
            EXPECT_TRUE(fault == kInputPastEnd || fault == kTypeMismatch) << fault;
            EXPECT_EQ(form, DesignForm(kind));
        }
    };
    for (int run = 0; run < 3000; ++run) {
        std::string text(random() % 400, '\0');
        const bool anyByte = run % 2 == 0;
        for (char& c : text)
            c = anyByte ? static_cast<char>(random() % 256) : alphabet[random() % alphabet.size()];
        check(text, run % 3 == 0 ? SettingsKind::Log : SettingsKind::Database);
    }
    // Valid files mutated in a few places.
    const std::string valid = WriteReportForm(OddForm(SettingsKind::Database));
    for (int run = 0; run < 2000; ++run) {
        std::string text = valid;
        for (int edit = 0; edit < 3; ++edit)
            text[random() % text.size()] = alphabet[random() % alphabet.size()];
        check(text, SettingsKind::Database);
    }
    for (SettingsKind kind : {SettingsKind::Database, SettingsKind::Log}) {
        const std::string file = WriteReportForm(OddForm(kind));
        for (std::size_t cut = 0; cut <= file.size(); ++cut)
            check(file.substr(0, cut), kind);
    }
    EXPECT_GT(forms, 0);
    EXPECT_GT(faults, 0);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                        std::chrono::steady_clock::now() - started)
                        .count();
    // The figure for a file written and read back, for the record; nothing is asserted.
    const auto roundTrips = std::chrono::steady_clock::now();
    const ReportForm form = OddForm(SettingsKind::Database);
    for (int run = 0; run < 1000; ++run) {
        ReportForm read = DesignForm(SettingsKind::Database);
        ReadReportForm(WriteReportForm(form), read);
    }
    const auto us = std::chrono::duration_cast<std::chrono::microseconds>(
                        std::chrono::steady_clock::now() - roundTrips)
                        .count();
    std::cout << "a database form written and read back in " << us / 1000.0 << " us\n";
    std::cout << "fuzzed " << forms + faults << " files in " << ms << " ms (" << forms << " forms, "
              << faults << " faults)\n";
}

namespace {

class ReportSetupTest : public ::testing::Test
{
protected:
    ReportSetupTest() { ui.echo = false; }

    // The faults shown so far, as "message @ location".
    std::vector<std::string> Faults() const
    {
        std::vector<std::string> faults;
        for (const auto& shown : ui.shown) {
            if (shown.message.kind != "E")
                continue;
            std::string text = shown.message.LongMessage;
            const std::size_t at = text.find("\nOccurred in : ");
            if (at != std::string::npos)
                text = text.substr(0, at) + " @ " + text.substr(at + 15);
            faults.push_back(text);
        }
        return faults;
    }

    std::string Path(const std::string& name) const { return f.dir.Text(name); }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
};

} // namespace

TEST_F(ReportSetupTest, SaveAddsTheExtensionUnlessTheNameEndsInIt)
{
    struct Row
    {
        SettingsKind kind;
        std::string answer;
        std::string written; // empty: nothing written
    };
    const std::vector<Row> rows{
        {SettingsKind::Database, "a", "a.Rpt"},     {SettingsKind::Database, "b.rpt", "b.rpt"},
        {SettingsKind::Database, "c.RPT", "c.RPT"}, {SettingsKind::Database, "d.Rpl", "d.Rpl.Rpt"},
        {SettingsKind::Database, "rpt", "rpt.Rpt"}, {SettingsKind::Database, "", ""},
        {SettingsKind::Database, "   ", ""},        {SettingsKind::Database, "*.Rpt", ""},
        {SettingsKind::Log, "e", "e.Rpl"},          {SettingsKind::Log, "f.rPl", "f.rPl"},
        {SettingsKind::Log, "g.Rpt", "g.Rpt.Rpl"},  {SettingsKind::Log, "*.Rpl", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.answer);
        ReportSetup setup(row.kind, TMM);
        setup.form.columns[2] = {true, "1,25"};
        ui.fileAnswers = {row.written.empty() ? row.answer : Path(row.answer)};
        const auto filesBefore = std::distance(std::filesystem::directory_iterator(f.dir.path),
                                               std::filesystem::directory_iterator());
        setup.cmdSave_Click();
        if (row.written.empty()) {
            EXPECT_EQ(setup.fileName, "");
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(f.dir.path),
                                    std::filesystem::directory_iterator()),
                      filesBefore);
            continue;
        }
        EXPECT_EQ(setup.fileName, Path(row.written));
        EXPECT_EQ(ReadBytes(Path(row.written)), WriteReportForm(setup.form));
    }
    EXPECT_EQ(ui.asked.front(), "Save Database Report Format");
    EXPECT_EQ(ui.asked.back(), "Save Logbook Report Settings");
    EXPECT_TRUE(Faults().empty());
}

TEST_F(ReportSetupTest, ApplyWritesTheHeldFileOrTheDefaultAndStoresIt)
{
    // Nothing held: the program folder's default, and the setting names it.
    ReportSetup log(SettingsKind::Log, TMM);
    log.cmdNew_Click();
    for (const ReportColumn& column : log.form.columns)
        EXPECT_EQ(column, ReportColumn{});
    log.form.columns[5] = {true, "2.5"};
    ASSERT_TRUE(log.SaveApply());
    EXPECT_EQ(log.fileName, Path("default2.Rpl"));
    EXPECT_EQ(TMM.prefs.defReportL, Path("default2.Rpl"));
    TMM.settings.Sync();
    EXPECT_EQ(data::SettingsStore(f.dir.File("s.ini")).Get("defReportL").value_or("<none>"),
              Path("default2.Rpl"));

    // A later opening reads the applied file back.
    ReportSetup again(SettingsKind::Log, TMM);
    again.Form_Load();
    EXPECT_EQ(again.form, log.form);
    EXPECT_EQ(again.fileName, Path("default2.Rpl"));

    // Opened from a file: Apply writes that file, and the setting follows it.
    ReportForm other = DesignForm(SettingsKind::Log);
    other.columns[26] = {true, "4"};
    WriteBytes(Path("mine.Rpl"), WriteReportForm(other));
    ui.fileAnswers = {Path("mine.Rpl")};
    again.cmdOpen_Click();
    EXPECT_EQ(again.form, other);
    again.form.columns[0].width = "7";
    ASSERT_TRUE(again.SaveApply());
    EXPECT_EQ(TMM.prefs.defReportL, Path("mine.Rpl"));
    ReportForm read = DesignForm(SettingsKind::Log);
    ReadReportForm(ReadBytes(Path("mine.Rpl")), read);
    EXPECT_EQ(read.columns[0].width, "7");
    EXPECT_EQ(ReadBytes(Path("default2.Rpl")), WriteReportForm(log.form));

    // A held file that cannot be written: a fault, the setting as it was.
    again.fileName = Path("no such folder/x.Rpl");
    EXPECT_FALSE(again.SaveApply());
    EXPECT_EQ(TMM.prefs.defReportL, Path("mine.Rpl"));
    ASSERT_EQ(Faults().size(), 1u);
    EXPECT_NE(Faults()[0].find(" @ frmRSU2.SaveApply"), std::string::npos) << Faults()[0];
    EXPECT_EQ(TMM.prefs.defReport, "");
}

TEST_F(ReportSetupTest, OpeningAndOpenFaultsKeepTheForm)
{
    // No default file in the folder: a fault at the opening, the design kept.
    ReportSetup database(SettingsKind::Database, TMM);
    database.Form_Load();
    EXPECT_EQ(database.form, DesignForm(SettingsKind::Database));
    EXPECT_EQ(database.fileName, "");
    EXPECT_EQ(Faults(), std::vector<std::string>{"File not found @ frmRSU.Form_Load"});

    // The setting wins over the default; a log file there is too short.
    WriteBytes(Path("Default.Rpt"), WriteReportForm(OddForm(SettingsKind::Database)));
    WriteBytes(Path("log.Rpl"), WriteReportForm(DesignForm(SettingsKind::Log)));
    TMM.prefs.defReport = Path("log.Rpl");
    database.Form_Load();
    EXPECT_EQ(database.form, DesignForm(SettingsKind::Database));
    EXPECT_EQ(Faults().back(), "Input past end of file @ frmRSU.Form_Load");
    TMM.prefs.defReport.clear();
    database.Form_Load();
    EXPECT_EQ(database.form, OddForm(SettingsKind::Database));
    EXPECT_EQ(database.fileName, Path("Default.Rpt"));

    // Open: a short file and a cancelled dialogue leave form and held name alone.
    ui.fileAnswers = {Path("log.Rpl"), ""};
    database.cmdOpen_Click();
    database.cmdOpen_Click();
    EXPECT_EQ(database.form, OddForm(SettingsKind::Database));
    EXPECT_EQ(database.fileName, Path("Default.Rpt"));
    EXPECT_EQ(Faults().back(), "Input past end of file @ frmRSU.cmdOpen_Click");
    EXPECT_EQ(Faults().size(), 3u);
    EXPECT_EQ(ui.asked.back(), "Open Database Report");
}

TEST_F(ReportSetupTest, TheNotesBoxTellsWhatItDoesWhenSetOn)
{
    ReportSetup log(SettingsKind::Log, TMM);
    log.NotesClick(false);
    EXPECT_TRUE(ui.shown.empty());
    log.NotesClick(true);
    EXPECT_TRUE(log.form.columns[kNotesColumn].on);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.kind, "I");
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Notes only will be displayed");
    EXPECT_EQ(ui.shown[0].message.LongMessage,
              "When you select the NOTES check box, only observing notes will be displayed.  To "
              "see other logbook information, just leave this unchecked.");
}
