// The report settings files and the commands of the settings windows: files written and read
// back, the place of a record deciding its column, short files and text where a number stands,
// a fuzzed reader, the save name rule, Apply and the opening.

#include "reports/ReportSettings.h"
#include "reports/ReportSetup.h"

#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <fstream>
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

// The fault of a read, or empty when it gave a form.
std::string ReadFault(std::string_view text, ReportForm& form)
{
    try {
        ReadReportForm(text, form);
    } catch (const services::Fault& fault) {
        return fault.what();
    }
    return {};
}

// A form with texts a reader could stumble over.
ReportForm OddForm(SettingsKind kind)
{
    ReportForm form = DesignForm(kind);
    form.cboLine = "2 - Double, \"wide\"";
    form.fontName = "Liberation Sans, Narrow";
    form.fontSize = 10.5;
    const char* widths[] = {"", "1,5", "\"", "  .75 ", "2\"3", "é", ",,", "abc"};
    for (std::size_t i = 0; i < form.columns.size(); ++i)
        form.columns[i] = {i % 3 != 1, widths[i % 8]};
    return form;
}

} // namespace

TEST(ReadReportForm, FilesReadBackByTheirRecordsPlaces)
{
    for (SettingsKind kind : {SettingsKind::Database, SettingsKind::Log}) {
        ReportForm read = DesignForm(kind);
        ASSERT_EQ(ReadFault(WriteReportForm(OddForm(kind)), read), "");
        EXPECT_EQ(read, OddForm(kind));
        // The shipped defaults are the design forms.
        EXPECT_EQ(ReadBytes(std::filesystem::path(SELVANE_RESOURCE_DIR) / DefaultFileName(kind)),
                  WriteReportForm(DesignForm(kind)));
    }
    EXPECT_EQ(OddForm(SettingsKind::Log).WidthTwips(7), 0); // "abc"
    EXPECT_EQ(OddForm(SettingsKind::Log).WidthTwips(3), 1080);

    // Swapped records swap the columns; blank lines and a record split over lines are read
    // field by field as Input # reads them.
    std::vector<std::string> lines =
        services::vb::SplitLines(WriteReportForm(OddForm(SettingsKind::Database)));
    std::swap(lines[1], lines[31]);
    lines[0].replace(lines[0].rfind(','), 1, "\r\n\r\n");
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    ReportForm read = DesignForm(SettingsKind::Database);
    ASSERT_EQ(ReadFault(text, read), "");
    EXPECT_EQ(read.fontSize, 10.5);
    EXPECT_EQ(read.columns[0], OddForm(SettingsKind::Database).columns[30]);
    EXPECT_EQ(read.columns[30], OddForm(SettingsKind::Database).columns[0]);
}

TEST(ReadReportForm, ShortFilesAndTextForNumbersLeaveTheFormAsItWas)
{
    const ReportForm before = OddForm(SettingsKind::Database);
    const std::string log = WriteReportForm(DesignForm(SettingsKind::Log));
    const std::string extra = "1,\"2\"\r\n";
    std::string badSize = WriteReportForm(before);
    badSize.replace(badSize.find(",10.5"), 5, ",big");
    std::string badBox = WriteReportForm(before);
    badBox.replace(badBox.find("\r\n") + 2, 1, "\"yes\"");
    const std::vector<std::pair<std::string, const char*>> rows{
        {log, kInputPastEnd}, // a log file in the database window: 27 columns of 31
        {log + extra + extra + extra, kInputPastEnd},
        {"", kInputPastEnd},
        {"\r\n \r\n", kInputPastEnd},
        {badSize, kTypeMismatch},
        {badBox, kTypeMismatch},
    };
    for (const auto& [text, fault] : rows) {
        SCOPED_TRACE(text.substr(0, 40));
        ReportForm form = before;
        EXPECT_EQ(ReadFault(text, form), fault);
        EXPECT_EQ(form, before);
    }
    ReportForm form = before;
    EXPECT_EQ(ReadFault(log + extra + extra + extra + extra, form), "");
}

// Random bytes, valid files with a few bytes changed, and every cut of a valid file: the reader
// ends with a form or one of its two faults, never a crash, a hang or another failure.
TEST(ReadReportForm, FuzzedFilesGiveAFormOrAFault)
{
    std::mt19937 random(20261125);
    const std::string alphabet = "\"\",,,\r\n\r\n 0123456789.-+eE&HAz\t\xC3\xA9";
    const std::string valid = WriteReportForm(OddForm(SettingsKind::Database));
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
    for (int run = 0; run < 5000; ++run) {
        std::string text = run < 3000 ? std::string(random() % 400, '\0') : valid;
        for (std::size_t i = 0; i < (run < 3000 ? text.size() : 3); ++i) {
            const char c = run % 2 == 0 && run < 3000 ? static_cast<char>(random() % 256)
                                                      : alphabet[random() % alphabet.size()];
            text[run < 3000 ? i : random() % text.size()] = c;
        }
        check(text, run % 3 == 0 && run < 3000 ? SettingsKind::Log : SettingsKind::Database);
    }
    for (std::size_t cut = 0; cut <= valid.size(); ++cut)
        check(valid.substr(0, cut), SettingsKind::Database);
    EXPECT_GT(forms, 0);
    EXPECT_GT(faults, 0);
}

namespace {

class ReportSetupTest : public ::testing::Test
{
protected:
    ReportSetupTest() { ui.echo = false; }

    // The last message, as "text" (faults: "message @ location").
    std::string Last() const
    {
        std::string text = ui.shown.empty() ? "<none>" : ui.shown.back().Text();
        const std::size_t at = text.find("\nOccurred in : ");
        return at == std::string::npos ? text : text.substr(0, at) + " @ " + text.substr(at + 15);
    }
    std::string Path(const std::string& name) const { return f.dir.Text(name); }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
};

} // namespace

TEST_F(ReportSetupTest, SaveAddsTheExtensionUnlessTheNameEndsInIt)
{
    const std::vector<std::tuple<SettingsKind, std::string, std::string>> rows{
        {SettingsKind::Database, "a", "a.Rpt"},
        {SettingsKind::Database, "b.rpt", "b.rpt"},
        {SettingsKind::Database, "d.Rpl", "d.Rpl.Rpt"},
        {SettingsKind::Database, "", ""},
        {SettingsKind::Database, "   ", ""},
        {SettingsKind::Database, "*.Rpt", ""},
        {SettingsKind::Log, "e", "e.Rpl"},
        {SettingsKind::Log, "f.rPL", "f.rPL"},
        {SettingsKind::Log, "*.Rpl", ""},
    };
    for (const auto& [kind, answer, written] : rows) {
        SCOPED_TRACE(answer);
        ReportSetup setup(kind, TMM);
        ui.fileAnswers = {written.empty() ? answer : Path(answer)};
        setup.cmdSave_Click();
        EXPECT_EQ(setup.fileName, written.empty() ? "" : Path(written));
        if (!written.empty()) {
            EXPECT_EQ(ReadBytes(Path(written)), WriteReportForm(setup.form));
        }
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(f.dir.path), {}), 5);
    EXPECT_EQ(ui.asked.front(), "Save Database Report Format");
    EXPECT_EQ(ui.asked.back(), "Save Logbook Report Settings");
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(ReportSetupTest, OpeningNewAndApply)
{
    // No default file: a fault at the opening, the design kept.
    ReportSetup log(SettingsKind::Log, TMM);
    log.Form_Load();
    EXPECT_EQ(log.form, DesignForm(SettingsKind::Log));
    EXPECT_EQ(Last(), "File not found @ frmRSU2.Form_Load");

    // Nothing held: Apply writes the default and the setting names it; a later opening reads it.
    log.cmdNew_Click();
    EXPECT_EQ(log.form.columns[0], ReportColumn{});
    log.form.columns[5] = {true, "2.5"};
    ASSERT_TRUE(log.SaveApply());
    EXPECT_EQ(TMM.prefs.defReportL, Path("default2.Rpl"));
    TMM.settings.Sync();
    EXPECT_EQ(data::SettingsStore(f.dir.File("s.ini")).Get("defReportL").value_or(""),
              Path("default2.Rpl"));
    ReportSetup again(SettingsKind::Log, TMM);
    again.Form_Load();
    EXPECT_EQ(again.form, log.form);

    // A log file opened in the database window is short: form and held name stay.
    ReportSetup database(SettingsKind::Database, TMM);
    ui.fileAnswers = {Path("default2.Rpl")};
    database.cmdOpen_Click();
    EXPECT_EQ(Last(), "Input past end of file @ frmRSU.cmdOpen_Click");
    EXPECT_EQ(database.form, DesignForm(SettingsKind::Database));
    EXPECT_EQ(database.fileName, "");

    // A held file that cannot be written: a fault, the setting as it was.
    again.fileName = Path("no such folder/x.Rpl");
    EXPECT_FALSE(again.SaveApply());
    EXPECT_EQ(Last(), "Path not found @ frmRSU2.SaveApply");
    EXPECT_EQ(TMM.prefs.defReportL, Path("default2.Rpl"));
}
