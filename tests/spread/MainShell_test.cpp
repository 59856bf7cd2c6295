#include "spread/MainShell.h"

#include "services/ScriptedUiPort.h"
#include "spread/Grid.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace {

TEST(RowretFromChoice, EveryChoiceAndOddTexts)
{
    struct Row
    {
        const char* text;
        long rowret;
    };
    const Row rows[] = {
        {"All Objects", 0}, {"All", 0},      {"25", 25},  {"25000", 25000},
        {" 100", 100},      {"50 rows", 50}, {"", 0},     {"abc", 0},
        {"12.7", 12},       {"-5", 0},       {"1e12", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(spread::RowretFromChoice(row.text), row.rowret);
    }
}

TEST(RowretText, RoundTripsEveryChoice)
{
    for (const std::string& choice : spread::RowsReturnedChoices()) {
        SCOPED_TRACE(choice);
        EXPECT_EQ(spread::RowretText(spread::RowretFromChoice(choice)), choice);
    }
}

struct Recorder
{
    services::ScriptedUiPort ui;
    std::vector<std::string> order;
    spread::ShutDownSteps Steps(const std::string& failing = "")
    {
        auto step = [this, failing](std::string name) {
            return [this, failing, name] {
                order.push_back(name);
                if (name == failing)
                    throw std::runtime_error(name + " failed");
            };
        };
        spread::ShutDownSteps s;
        s.SaveTheColumns = step("columns");
        s.SavePreferences = step("settings");
        s.AutoBackup = step("backup");
        s.DisconnectTelescope = step("telescope");
        s.RestoreColours = step("colours");
        s.SaveLayout = step("layout");
        s.UnloadWindows = step("unload");
        return s;
    }
    Recorder() { ui.echo = false; }
};

TEST(CloseApplication, RunsInOrderOnceOnly)
{
    Recorder r;
    spread::ShutDown shutDown(r.ui, r.Steps());
    EXPECT_FALSE(shutDown.ClosingDown());
    shutDown.CloseApplication();
    // Closing the window after the exit command must not save the settings twice.
    shutDown.CloseApplication();
    EXPECT_TRUE(shutDown.ClosingDown());
    EXPECT_EQ(r.order, (std::vector<std::string>{"columns", "settings", "backup", "telescope",
                                                 "colours", "layout", "unload"}));
    EXPECT_TRUE(r.ui.shown.empty());
}

TEST(CloseApplication, AFailingStepIsReportedAndTheRestStillRuns)
{
    for (const char* failing : {"columns", "settings", "layout"}) {
        SCOPED_TRACE(failing);
        Recorder r;
        spread::ShutDown shutDown(r.ui, r.Steps(failing));
        EXPECT_NO_THROW(shutDown.CloseApplication());
        EXPECT_EQ(r.order.size(), 7u);
        EXPECT_EQ(r.order.back(), "unload");
        ASSERT_EQ(r.ui.shown.size(), 1u);
        EXPECT_NE(r.ui.shown[0].Text().find(std::string(failing) + " failed"), std::string::npos);
        EXPECT_NE(r.ui.shown[0].Text().find("frmMainScreen.CloseApplication"), std::string::npos);
    }
}

} // namespace

namespace {

TEST(FilterGrid, HidesRowsWithoutTheTextInTheClickedColumn)
{
    spread::Grid grid;
    grid.AppendRow(" \t \t \tM31\tAndromeda Galaxy");
    grid.AppendRow(" \t \t \tM42\tOrion Nebula");
    grid.AppendRow(" \t \t \tNGC 7000\tNorth America");
    grid.AppendRow(" \t \t \tM 1\t");
    struct Row
    {
        int col;
        const char* text;
        std::vector<bool> hidden;
    };
    const Row rows[] = {
        {4, "m", {false, false, true, false}}, // case ignored
        {4, "M4", {true, false, true, true}},
        {5, "NEBULA", {true, false, true, true}},
        {5, "", {false, false, false, false}}, // empty text: everything shown
        {5, "zzz", {true, true, true, true}},
        {4, "'", {true, true, true, true}}, // a quote is only a character
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.text) + " in column " + std::to_string(row.col));
        grid.SetRowHidden(3, true); // a filter left from before must not survive
        spread::FilterGrid(grid, row.col, row.text);
        for (int r = 1; r <= grid.MaxRows(); ++r)
            EXPECT_EQ(grid.RowHidden(r), row.hidden[r - 1]) << "row " << r;
    }
    spread::ResetFilter(grid);
    for (int r = 1; r <= grid.MaxRows(); ++r)
        EXPECT_FALSE(grid.RowHidden(r));
}

} // namespace

namespace {

TEST(RealTimeTimers, Timer2ArmsTimer1OnlyWhenRearmedAndRefreshing)
{
    struct Row
    {
        const char* RefreshTime;
        bool rearm;
        bool armed;
        int intervalMs;
    };
    const Row rows[] = {
        {"0", true, false, 0},     {"", true, false, 0},      {"abc", true, false, 0},
        {"-30", true, false, 0},   {"60", true, true, 60000}, {"60", false, false, 0},
        {"2.9", true, true, 2000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.RefreshTime) + (row.rearm ? " rearmed" : ""));
        spread::RealTimeTimers timers;
        timers.RealTimeRearm = row.rearm;
        EXPECT_EQ(spread::Timer2Tick(timers, row.RefreshTime), row.armed);
        EXPECT_EQ(timers.timer1IntervalMs, row.intervalMs);
        EXPECT_EQ(timers.RealTimeRearm, row.rearm && !row.armed);
    }
}

TEST(RealTimeTimers, Timer1TakesTheClockAndRearms)
{
    spread::RealTimeTimers timers;
    timers.RealTimeRearm = false;
    EXPECT_FALSE(spread::Timer1Tick(timers, "N", "60", {2026, 11, 21, 23, 5, 59}));
    EXPECT_FALSE(spread::Timer1Tick(timers, "Y", "0", {2026, 11, 21, 23, 5, 59}));
    EXPECT_FALSE(timers.RealTimeRearm);
    // Just past midnight at the turn of a year: day, month and year all change together.
    const auto moment = spread::Timer1Tick(timers, "Y", "60", {2027, 1, 1, 0, 0, 30});
    ASSERT_TRUE(moment);
    EXPECT_EQ(moment->PDate, "01/01/27");
    EXPECT_EQ(moment->Ptime, "00:00");
    EXPECT_TRUE(timers.RealTimeRearm);
    EXPECT_TRUE(spread::Timer2Tick(timers, "60"));
}

} // namespace
