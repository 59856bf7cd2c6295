#include "services/ErrorLog.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "services/UiPort.h"
#include "services/Vb.h"
#include "tests/TestFiles.h"

#include <QDate>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <regex>
#include <stdexcept>

namespace {

using services::ScriptedUiPort;

using test_files::ReadText;

// A scripted port writing its error log into a fresh temporary program folder.
struct LoggedPort
{
    QTemporaryDir dir;
    ScriptedUiPort ui;
    std::filesystem::path log;

    LoggedPort()
    {
        ui.echo = false;
        log = std::filesystem::path(dir.path().toStdString()) / services::ErrorLogFileName;
        ui.SetErrorLog(log);
    }
};

// The entry as it must stand in the log, with the stamp matched by pattern: the short date of
// the program's defaults and the time "hh:mm:ss".
void ExpectEntries(const std::string& log,
                   const std::vector<std::pair<std::string, std::string>>& messageAndLocation)
{
    std::string pattern;
    for (const auto& [message, location] : messageAndLocation) {
        const std::string tail = " ERROR: " + message + " LOCATION OF ERROR: " + location + "\n\n";
        std::string escaped;
        for (char c : tail) {
            if (std::string_view(".^$|()[]{}*+?\\").find(c) != std::string_view::npos)
                escaped += '\\';
            escaped += c;
        }
        pattern += R"(\d\d/\d\d/\d\d \d\d:\d\d:\d\d)" + escaped;
    }
    EXPECT_TRUE(std::regex_match(log, std::regex(pattern))) << log;
}

TEST(ShowMessage, TitleByKind)
{
    struct Row
    {
        const char* kind;
        const char* title;
    };
    const Row rows[] = {
        {"I", "Informational Message"},
        {"E", "System Error"},
        {"U", "Data Entry Error"},
        {"X", ""},
        {"i", ""}, // kinds are compared exactly
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.kind);
        ScriptedUiPort ui;
        ui.echo = false;
        ui.ShowMessage("Body text", "Heading", row.kind, true);
        ASSERT_EQ(ui.shown.size(), 1u);
        const services::Message& m = ui.shown[0].message;
        EXPECT_EQ(m.Title + "|" + m.kind + "|" + m.ShortMessage + "|" + m.LongMessage,
                  std::string(row.title) + "|" + row.kind + "|Heading|Body text");
        EXPECT_TRUE(m.PauseWindow);
    }
}

TEST(ReportFault, MessageAndLogEntry)
{
    struct Row
    {
        const char* message;
        const char* location;
        const char* longMessage;
    };
    const Row rows[] = {
        {"Division by zero", "Module1.CalcJulian",
         "Division by zero\nOccurred in : Module1.CalcJulian"},
        // No location: no "Occurred in" line, and the log entry ends right after its label.
        {"File not found", "", "File not found"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        LoggedPort port;
        port.ui.ReportFault(row.message, row.location);
        ASSERT_EQ(port.ui.shown.size(), 1u);
        const services::Message& m = port.ui.shown[0].message;
        EXPECT_EQ(m.Title + "|" + m.kind + "|" + m.ShortMessage + "|" + m.LongMessage,
                  std::string("System Error|E|The Following Error Has Occurred|") +
                      row.longMessage);
        ExpectEntries(ReadText(port.log), {{row.message, row.location}});
    }
}

TEST(ReportFault, EntryStampIsTodayAndEntriesAppend)
{
    LoggedPort port;
    const QDate before = QDate::currentDate();
    port.ui.ReportFault("first", "A.B");
    port.ui.LogFault("second", "");
    const QDate after = QDate::currentDate();
    // LogFault writes without a window.
    EXPECT_EQ(port.ui.shown.size(), 1u);
    const std::string log = ReadText(port.log);
    ExpectEntries(log, {{"first", "A.B"}, {"second", ""}});
    const std::string stamp = log.substr(0, 8);
    EXPECT_TRUE(stamp == services::vb::ShortDate(before) || stamp == services::vb::ShortDate(after))
        << stamp;
}

TEST(ReportFault, UnwritableLogStillShowsTheMessage)
{
    QTemporaryDir dir;
    ScriptedUiPort ui;
    ui.echo = false;
    ui.SetErrorLog(std::filesystem::path(dir.path().toStdString()) / "missing" / "errorlog.txt");
    ui.ReportFault("Disk full", "TMM.RebuildLink");
    EXPECT_EQ(ui.shown.size(), 1u);

    ScriptedUiPort nowhere;
    nowhere.echo = false;
    nowhere.ReportFault("No log set", "X.Y");
    EXPECT_EQ(nowhere.shown.size(), 1u);
}

TEST(DeleteErrorLog, RemovesAndIgnoresMissing)
{
    LoggedPort port;
    port.ui.LogFault("x", "y");
    ASSERT_TRUE(std::filesystem::exists(port.log));
    services::DeleteErrorLog(port.log);
    EXPECT_FALSE(std::filesystem::exists(port.log));
    services::DeleteErrorLog(port.log); // no file: nothing happens
    EXPECT_FALSE(std::filesystem::exists(port.log));
}

TEST(Trap, ReportsUnderTheRightLocation)
{
    struct Row
    {
        const char* name;
        std::function<void()> body;
        const char* message;
        const char* location;
    };
    const Row rows[] = {
        {"fault with its own location",
         [] { throw services::Fault("Bad plan file", "ctlSpread.OpenPlan"); }, "Bad plan file",
         "ctlSpread.OpenPlan"},
        {"fault without location", [] { throw services::Fault("Bad plan file", ""); },
         "Bad plan file", "frmChange.AddEntry"},
        {"standard exception", [] { throw std::runtime_error("disk I/O error"); }, "disk I/O error",
         "frmChange.AddEntry"},
        {"anything else", [] { throw 42; }, "Unexpected error.", "frmChange.AddEntry"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LoggedPort port;
        int output = 1;
        const bool ok = services::Trap(port.ui, "frmChange.AddEntry", [&] {
            row.body();
            output = 2;
        });
        EXPECT_FALSE(ok);
        EXPECT_EQ(output, 1);
        ASSERT_EQ(port.ui.shown.size(), 1u);
        EXPECT_EQ(port.ui.shown[0].message.LongMessage,
                  std::string(row.message) + "\nOccurred in : " + row.location);
        ExpectEntries(ReadText(port.log), {{row.message, row.location}});
    }
}

TEST(Trap, SuccessReportsNothing)
{
    LoggedPort port;
    int output = 1;
    EXPECT_TRUE(services::Trap(port.ui, "X.Y", [&] { output = 2; }));
    EXPECT_EQ(output, 2);
    EXPECT_TRUE(port.ui.shown.empty());
    EXPECT_FALSE(std::filesystem::exists(port.log));
}

TEST(TrapSilently, LogsWithoutWindow)
{
    LoggedPort port;
    EXPECT_FALSE(services::TrapSilently(port.ui, "TelescopeStuff.Connect",
                                        [] { throw std::runtime_error("Not connected"); }));
    EXPECT_TRUE(port.ui.shown.empty());
    ExpectEntries(ReadText(port.log), {{"Not connected", "TelescopeStuff.Connect"}});
}

TEST(EndProcess, CallsTheReplacedHandler)
{
    struct Ended
    {
        int code;
    };
    services::SetEndProcessHandler([](int code) { throw Ended{code}; });
    try {
        services::EndProcess(3);
        ADD_FAILURE() << "EndProcess returned";
    } catch (const Ended& e) {
        EXPECT_EQ(e.code, 3);
    }
    services::SetEndProcessHandler(nullptr);
}

TEST(ScriptedUiPort, StrictQuestionWithoutAnswerFails)
{
    ScriptedUiPort ui;
    ui.echo = false;
    ui.answers = {true, false};
    EXPECT_TRUE(ui.Ask("Save?", "Plan", true));
    EXPECT_FALSE(ui.Ask("Again?", "Plan", false));
    // Not strict: the default answer.
    EXPECT_FALSE(ui.Ask("Third?", "Plan", true));
    ui.strict = true;
    EXPECT_THROW(ui.Ask("Fourth?", "Plan", true), services::Fault);
    EXPECT_THROW(ui.AskOpenFile("Open Plan", "*.PLN"), services::Fault);
    EXPECT_THROW(ui.InputBox("Year?", "Moon", ""), services::Fault);
    EXPECT_EQ(ui.asked.size(), 6u);
}

} // namespace
