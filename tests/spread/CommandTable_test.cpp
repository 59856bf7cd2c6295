#include "spread/CommandTable.h"

#include "services/ErrorLog.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "tests/TestFiles.h"

#include <QTemporaryDir>

#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

// A dispatcher over a scripted port that records every action run, in order.
struct Bench
{
    services::ScriptedUiPort ui;
    int currTab = 0;
    int tooltipCalls = 0;
    std::vector<std::string> ran;
    spread::CommandDispatcher dispatcher{ui, MakeContext()};

    Bench() { ui.echo = false; }

    spread::CommandDispatcher::Context MakeContext()
    {
        spread::CommandDispatcher::Context c;
        c.CurrTab = [this] { return currTab; };
        c.SetGridTooltipText = [this] { ++tooltipCalls; };
        c.OpenPlan = [this](const std::string& k) { ran.push_back("plan:" + k); };
        c.OpenQuery = [this](const std::string& k) { ran.push_back("query:" + k); };
        return c;
    }

    void Give(const std::string& key)
    {
        dispatcher.SetAction(key, [this, key] { ran.push_back(key); });
    }
};

TEST(CommandTable, KeysAreUniqueSoNoEntryIsShadowed)
{
    std::set<std::string_view> seen;
    for (const auto& tool : spread::CommandTable())
        EXPECT_TRUE(seen.insert(tool.key).second) << tool.key;
}

TEST(CommandTable, EveryToolIsReachableFromAKnownBand)
{
    std::set<std::string_view> bands;
    for (const auto& band : spread::CommandBands())
        bands.insert(band.name);
    for (const auto& tool : spread::CommandTable()) {
        SCOPED_TRACE(std::string(tool.key));
        EXPECT_FALSE(spread::MenuText(tool).empty());
        EXPECT_FALSE(tool.bands.empty());
        std::istringstream words{std::string(tool.bands)};
        for (std::string band; words >> band;)
            EXPECT_TRUE(bands.count(band)) << band;
    }
    for (const auto& band : spread::CommandBands()) {
        if (!band.parent.empty()) {
            EXPECT_TRUE(bands.count(band.parent)) << band.name;
        }
    }
}

// The chain compares exactly: neighbours that differ by case or by a suffix must not run each
// other's action.
TEST(ab_ToolClick, ChainIsCaseSensitiveAndExact)
{
    struct Row
    {
        const char* clicked;
        const char* expected; // the action that ran, or "" for none
    };
    const Row rows[] = {
        {"Spreadsheet", "Spreadsheet"},
        {"spreadsheet", ""},
        {"close", "close"},
        {"closeplan", "closeplan"},
        {"clos", ""},
        {"logbook", "logbook"},
        {"Logbook", ""},
        {"tolLogbook", "tolLogbook"},
        {"messier", "messier"},
        {"messier2", "messier2"},
        {"Cartes du Ciel", "Cartes du Ciel"},
        {"cartes du ciel", ""},
        {"", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.clicked);
        Bench b;
        for (const char* key : {"Spreadsheet", "close", "closeplan", "logbook", "tolLogbook",
                                "messier", "messier2", "Cartes du Ciel"})
            b.Give(key);
        b.dispatcher.ab_ToolClick(row.clicked);
        EXPECT_EQ(b.ran, *row.expected ? std::vector<std::string>{row.expected}
                                       : std::vector<std::string>{});
        EXPECT_TRUE(b.ui.shown.empty());
    }
}

TEST(ab_ToolClick, ShortCutsOpenPlansAndQueriesWhateverTheCase)
{
    struct Row
    {
        const char* clicked;
        std::vector<std::string> expected;
    };
    const Row rows[] = {
        {"Tonight.pln", {"plan:Tonight.pln"}},
        {"M31 AREA.PLN", {"plan:M31 AREA.PLN"}},
        {"Galaxies.Qry", {"query:Galaxies.Qry"}},
        {"pln", {}},
        {"list.pln.bak", {}},
        {".qry", {"query:.qry"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.clicked);
        Bench b;
        b.dispatcher.ab_ToolClick(row.clicked);
        EXPECT_EQ(b.ran, row.expected);
        EXPECT_TRUE(b.ui.shown.empty());
    }
}

TEST(ab_ToolClick, TabGuardRefusesOnImageTabsOnly)
{
    struct Row
    {
        const char* key;
        int tab;
        bool runs;
    };
    const Row rows[] = {
        {"findobject", 0, true},    {"findobject", 4, true}, {"findobject", 5, false},
        {"querybuilder", 6, false}, {"mnusaveps", 5, false}, {"scds", 6, false},
        {"sortcolumn", 6, true}, // sorting ascending carries no guard
        {"redmode", 5, true},       {"exit", 6, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.key) + " on tab " + std::to_string(row.tab));
        Bench b;
        b.currTab = row.tab;
        b.Give(row.key);
        b.dispatcher.ab_ToolClick(row.key);
        EXPECT_EQ(b.ran.size(), row.runs ? 1u : 0u);
        EXPECT_EQ(b.tooltipCalls, row.tab < 5 ? 1 : 0);
        if (row.runs) {
            EXPECT_TRUE(b.ui.shown.empty());
        } else {
            ASSERT_EQ(b.ui.shown.size(), 1u);
            const auto& m = b.ui.shown[0].message;
            EXPECT_EQ(m.kind + "|" + m.Title + "|" + m.ShortMessage + "|" + m.LongMessage,
                      "I|Informational Message|Invalid Usage!|Please select a spreadsheet tab "
                      "first");
        }
    }
}

TEST(ab_ToolClick, KeyWithoutActionSaysNotAvailableAfterTheGuard)
{
    Bench b;
    b.dispatcher.ab_ToolClick("athemars");
    ASSERT_EQ(b.ui.shown.size(), 1u);
    EXPECT_EQ(b.ui.shown[0].message.kind, "I");
    EXPECT_EQ(b.ui.shown[0].Text(), "This command is not available in this version.");

    // On an image tab a guarded key says the guard's words, not the missing action's.
    Bench onImage;
    onImage.currTab = 6;
    onImage.dispatcher.ab_ToolClick("wiz1");
    ASSERT_EQ(onImage.ui.shown.size(), 1u);
    EXPECT_EQ(onImage.ui.shown[0].Text(), "Please select a spreadsheet tab first");

    // A short-cut without an opener is not available either.
    services::ScriptedUiPort ui;
    ui.echo = false;
    spread::CommandDispatcher bare(ui, {});
    bare.ab_ToolClick("Tonight.PLN");
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), spread::NotAvailableText);
}

TEST(ab_ToolClick, NotAvailableKeysFollowTheActionsGiven)
{
    Bench b;
    const auto all = b.dispatcher.NotAvailableKeys();
    EXPECT_EQ(all.size(), spread::CommandTable().size());
    b.Give("redmode");
    b.Give("tollogreportnew");
    const auto rest = b.dispatcher.NotAvailableKeys();
    EXPECT_EQ(rest.size(), all.size() - 2);
    EXPECT_EQ(rest.front(), "tolOutside");
    EXPECT_THROW(b.dispatcher.SetAction("noSuchTool", [] {}), std::invalid_argument);
}

TEST(ab_ToolClick, FailureIsReportedAndLoggedNeverThrown)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const std::filesystem::path log = dir.filePath("errorlog.txt").toStdString();

    struct Row
    {
        const char* name;
        std::function<void()> body;
        const char* message;
        const char* location;
    };
    const Row rows[] = {
        {"std exception", [] { throw std::runtime_error("disk gone"); }, "disk gone",
         "frmMainScreen.ab_ToolClick"},
        {"fault keeps its own location",
         [] { throw services::Fault("Bad file", "TMM.RebuildLink"); }, "Bad file",
         "TMM.RebuildLink"},
        {"anything else", [] { throw 42; }, "Unexpected error.", "frmMainScreen.ab_ToolClick"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::remove(log);
        Bench b;
        b.ui.SetErrorLog(log);
        b.dispatcher.SetAction("exit", row.body);
        EXPECT_NO_THROW(b.dispatcher.ab_ToolClick("exit"));
        ASSERT_EQ(b.ui.shown.size(), 1u);
        EXPECT_EQ(b.ui.shown[0].message.kind, "E");
        const std::string text = test_files::ReadText(log);
        EXPECT_NE(text.find(row.message), std::string::npos) << text;
        EXPECT_NE(text.find(std::string("LOCATION OF ERROR: ") + row.location), std::string::npos)
            << text;
    }
}

} // namespace
