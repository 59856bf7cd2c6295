#include "spread/Plans.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>

#include "PlanTestSupport.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "spread/Grid.h"
#include "tests/TestFiles.h"

namespace spread {
namespace {

struct Row
{
    std::string id;
    std::string catalog;
    std::string recordId;
    std::string pln = " ";
};

// A grid row as a load writes it: the cells the plan reads, the others blank.
std::string RowText(const Row& row)
{
    std::vector<std::string> cells(kGridCols);
    cells[kPlnCol - 1] = row.pln;
    cells[kObjectIdCol - 1] = row.id;
    cells[kCatalogCol - 1] = row.catalog;
    cells[kRecordIdCol - 1] = row.recordId;
    std::string text;
    for (size_t c = 0; c < cells.size(); ++c)
        text += (c ? "\t" : "") + cells[c];
    return text;
}

Grid MakeGrid(const std::vector<Row>& rows)
{
    Grid grid;
    for (const Row& row : rows)
        grid.AppendRow(RowText(row));
    return grid;
}

// A grid of n objects "NGC 1".."NGC n" with record ids 101.. .
Grid NumberedGrid(int n)
{
    std::vector<Row> rows;
    for (int i = 1; i <= n; ++i)
        rows.push_back({"NGC " + std::to_string(i), "2000", std::to_string(100 + i)});
    return MakeGrid(rows);
}

// A column of every row of a grid, as "cell|cell|...".
std::string Column(const Grid& grid, int col)
{
    std::string out;
    for (int r = 1; r <= grid.MaxRows(); ++r)
        out += (r > 1 ? "|" : "") + std::string(grid.Text(r, col));
    return out;
}

std::vector<double> Ids(const TabPlan& plan)
{
    std::vector<double> ids;
    for (const PlanEntry& e : plan.entries)
        ids.push_back(e.PlanRecordID);
    return ids;
}

class Plans : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        ui.strict = true;
        hooks.UpdateStatusBar = [this] { calls.push_back("UpdateStatusBar"); };
        hooks.mnuRfsh_Click = [this] { calls.push_back("mnuRfsh_Click"); };
        hooks.LoadTheGrid = [this](const std::string& mode) { calls.push_back("LoadTheGrid " + mode); };
        hooks.SetMisc = [this](const std::string& text) { calls.push_back("lblMisc=" + text); };
        hooks.CalcMoonPhase = [this] { calls.push_back("CalcMoonPhase"); };
        hooks.FormatSpreadsheet = [this] { calls.push_back("FormatSpreadsheet"); };
        hooks.LoadPlan = [this] { calls.push_back("LoadPlan"); };
    }

    std::vector<std::string> Headings() const
    {
        std::vector<std::string> out;
        for (const auto& s : ui.shown)
            out.push_back(s.message.ShortMessage);
        return out;
    }

    QTemporaryDir dir;
    std::filesystem::path folder{dir.path().toStdString()};
    services::ScriptedUiPort ui;
    PlanHooks hooks;
    std::vector<std::string> calls;
    TabPlan plan;
};

TEST_F(Plans, StartAndStop)
{
    EXPECT_FALSE(StopPlan(plan, ui, hooks));
    EXPECT_TRUE(StartPlan(plan, ui, hooks));
    EXPECT_FALSE(StartPlan(plan, ui, hooks));
    EXPECT_EQ(Headings(), (std::vector<std::string>{InvalidUsageTitle, InvalidUsageTitle}));
    EXPECT_EQ(ui.shown[0].Text() + "|" + ui.shown[1].Text() + "|" + ui.shown[1].message.Title,
              std::string(NotTaggedText) + "|" + AlreadyStartedText + "|Informational Message");

    Grid grid = NumberedGrid(3);
    cmdATP_Click(plan, grid, ui, hooks);
    calls.clear();
    EXPECT_TRUE(StopPlan(plan, ui, hooks));
    EXPECT_FALSE(plan.PlanActive);
    EXPECT_EQ(plan.PlanCount(), 0);
    EXPECT_EQ(calls, (std::vector<std::string>{"mnuRfsh_Click", "LoadTheGrid BUILD", "lblMisc=",
                                               "CalcMoonPhase"}));
}

TEST_F(Plans, RemovalKeepsTheOrderOfTheOthers)
{
    const struct
    {
        const char* name;
        std::vector<int> untag; // rows clicked again, in order
        std::vector<double> left;
    } rows[] = {
        {"middle", {3}, {101, 102, 104, 105}},
        {"first", {1}, {102, 103, 104, 105}},
        {"last", {5}, {101, 102, 103, 104}},
        {"two", {4, 2}, {101, 103, 105}},
        {"all: plan mode ends", {2, 1, 5, 3, 4}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        TabPlan p;
        Grid grid = NumberedGrid(5);
        for (int r = 1; r <= 5; ++r)
            ASSERT_EQ(mnuaddtoplan_Click(p, grid, r, ui, hooks), TagResult::Added);
        for (int r : row.untag) {
            EXPECT_EQ(mnuaddtoplan_Click(p, grid, r, ui, hooks), TagResult::Removed);
            EXPECT_EQ(grid.Text(r, kPlnCol), " ");
        }
        EXPECT_EQ(Ids(p), row.left);
        EXPECT_EQ(p.PlanActive, !row.left.empty());
        EXPECT_EQ(grid.MaxRows(), 5);
    }
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(Plans, TaggingStopsAtFiveHundred)
{
    Grid grid = NumberedGrid(600);
    grid.SetText(2, kPlnCol, "X*"); // marked already: skipped by "+ All to"
    grid.Clip(3, RowText({"no id", "2000", "  "}));
    EXPECT_EQ(cmdATP_Click(plan, grid, ui, hooks), 500);
    EXPECT_EQ(plan.PlanCount(), 500);
    EXPECT_EQ(Headings(), std::vector<std::string>{MaxObjectsTitle});
    EXPECT_EQ(ui.shown[0].Text(), MaxObjectsText);
    EXPECT_EQ(plan.entries.front().PlanRecordID, 101);
    const PlanEntry& second = plan.entries[1];
    EXPECT_EQ(second.PlanObjectID + "|" + second.PlanCatalog + "|" +
                  std::to_string(second.PlanRecordID),
              "NGC 4|2000|104.000000");
    EXPECT_EQ(std::string(grid.Text(502, kPlnCol)) + std::string(grid.Text(503, kPlnCol)), "X ");

    // The 501st tag by a click reports and adds nothing; removing one makes room again.
    EXPECT_EQ(mnuaddtoplan_Click(plan, grid, 503, ui, hooks), TagResult::Full);
    EXPECT_EQ(plan.PlanCount(), 500);
    EXPECT_EQ(grid.Text(503, kPlnCol), " ");
    EXPECT_EQ(ui.shown.size(), 2u);
    EXPECT_EQ(mnuaddtoplan_Click(plan, grid, 1, ui, hooks), TagResult::Removed);
    EXPECT_EQ(mnuaddtoplan_Click(plan, grid, 3, ui, hooks), TagResult::NoRecordId);
    EXPECT_EQ(mnuaddtoplan_Click(plan, grid, 503, ui, hooks), TagResult::Added);
    EXPECT_EQ(plan.entries.back().PlanRecordID, 603);
    // Full again: even a row without an id gets the message, as the limit is tested first.
    EXPECT_EQ(mnuaddtoplan_Click(plan, grid, 3, ui, hooks), TagResult::Full);
}

TEST_F(Plans, RemovingASolarSystemRowDeletesItFromTheGrid)
{
    Grid grid = MakeGrid({{"NGC 1", "2000", "101"},
                          {"MARS", "PLANETS", "9001", "X"},
                          {"NGC 2", "2000", "102"}});
    plan.PlanActive = true;
    plan.entries = {{"MARS", "PLANETS", 9001, ""}};
    grid.SetRowHidden(3, true);
    EXPECT_EQ(mnuaddtoplan_Click(plan, grid, 2, ui, hooks), TagResult::Removed);
    EXPECT_EQ(Column(grid, kObjectIdCol), "NGC 1|NGC 2");
    EXPECT_TRUE(grid.RowHidden(2));
    EXPECT_EQ(calls.back(), "FormatSpreadsheet");
    EXPECT_FALSE(plan.PlanActive);

    // The only row of a grid is blanked, and the grid keeps it.
    Grid single = MakeGrid({{"C/2020 F3", "COMET", "9002", "X"}});
    plan.PlanActive = true;
    plan.entries = {{"C/2020 F3", "COMET", 9002, ""}};
    EXPECT_EQ(mnuaddtoplan_Click(plan, single, 1, ui, hooks), TagResult::Removed);
    EXPECT_EQ(single.MaxRows(), 1);
    EXPECT_EQ(Column(single, kObjectIdCol), "");
}

TEST_F(Plans, ShowPlanNeedsATabAndEntries)
{
    EXPECT_FALSE(ShowPlan(5, plan, ui, hooks));
    EXPECT_FALSE(ShowPlan(0, plan, ui, hooks));
    plan.entries = {{"a", "X", 5, ""}};
    EXPECT_TRUE(ShowPlan(4, plan, ui, hooks));
    EXPECT_EQ(Headings(), (std::vector<std::string>{"Invalid Usage!", NotTaggedTitle}));
    EXPECT_EQ(ui.shown[0].Text(), "Please select a spreadsheet tab first");
    EXPECT_EQ(calls, std::vector<std::string>{"LoadPlan"});
}

TEST(PlanSaveName, AppendsTheExtensionAndRefusesTheMask)
{
    const struct
    {
        const char* chosen;
        const char* name;
    } rows[] = {
        {"/p/night", "/p/night.PLN"},  {"/p/night.pln", "/p/night.pln"},
        {"/p/night.Pln", "/p/night.Pln"}, {"/p/night.txt", "/p/night.txt.PLN"},
        {"/p/*.PLN", ""},              {"/p/*.pln", ""},
        {"/p/*", ""},                  {"", ""},
        {"pln", "pln.PLN"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.chosen);
        EXPECT_EQ(PlanSaveName(row.chosen), row.name);
    }
}

TEST_F(Plans, SaveWithNothingTaggedReportsIt)
{
    Grid grid = NumberedGrid(2);
    mnuaddtoplan_Click(plan, grid, 1, ui, hooks);
    mnuaddtoplan_Click(plan, grid, 1, ui, hooks); // all entries removed again
    EXPECT_FALSE(mnuSavePs_Click(0, plan, ui));
    EXPECT_FALSE(mnuSavePs_Click(6, plan, ui));
    EXPECT_EQ(Headings(), (std::vector<std::string>{NotTaggedTitle, "Invalid Usage!"}));
    EXPECT_EQ(ui.shown[0].Text(), NotTaggedText);
    EXPECT_TRUE(ui.asked.empty()); // no dialog was shown
}

TEST_F(Plans, SaveAsksBeforeOverwriting)
{
    plan.entries = {{"M 31", "2000", 234, ""}, {"free", "2000", 0, ""}};
    const std::filesystem::path file = folder / "night.PLN";

    ui.fileAnswers = {""}; // cancelled
    EXPECT_FALSE(mnuSavePs_Click(0, plan, ui));
    EXPECT_EQ(ui.asked, std::vector<std::string>{SaveDialogTitle});

    ui.fileAnswers = {(folder / "night").string()};
    EXPECT_TRUE(mnuSavePs_Click(0, plan, ui));
    EXPECT_EQ(ReadPlanBytes(file), "\"M 31\",\"2000\",234,\"\"\r\n");

    plan.entries[0].PlanNote = "changed";
    ui.asked.clear();
    ui.fileAnswers = {file.string()};
    ui.answers = {false};
    EXPECT_FALSE(mnuSavePs_Click(0, plan, ui));
    EXPECT_EQ(ui.asked, (std::vector<std::string>{SaveDialogTitle, OverwriteQuestion}));
    EXPECT_EQ(ReadPlanBytes(file), "\"M 31\",\"2000\",234,\"\"\r\n");

    ui.fileAnswers = {file.string()};
    ui.answers = {true};
    EXPECT_TRUE(mnuSavePs_Click(0, plan, ui));
    EXPECT_EQ(ReadPlanBytes(file), "\"M 31\",\"2000\",234,\"changed\"\r\n");

    ui.fileAnswers = {(folder / "missing" / "x.PLN").string()};
    EXPECT_FALSE(mnuSavePs_Click(0, plan, ui));
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_NE(ui.shown[0].Text().find(SavePlanLocation), std::string::npos);
}

TEST_F(Plans, OpenReadsThePlanAndLoadsIt)
{
    test_files::WriteText(folder / "old.pln", "\"40\",\"2000\",47\r\n\"129\",\"2000\",142\r\n");
    ui.fileAnswers = {(folder / "old.pln").string()};
    const PlanOpened opened = mnuOpenPS_Click(plan, ui, {}, hooks);
    EXPECT_TRUE(opened.opened && plan.PlanActive);
    EXPECT_EQ(opened.largestRecordId, 142);
    EXPECT_EQ(plan.PlanFile, (folder / "old.pln").string());
    EXPECT_EQ(Ids(plan), (std::vector<double>{47, 142}));
    EXPECT_EQ(calls, std::vector<std::string>{"LoadPlan"});
    EXPECT_FALSE(ui.busy);

    // A cancelled dialog and the empty mask change nothing.
    ui.fileAnswers = {""};
    EXPECT_FALSE(mnuOpenPS_Click(plan, ui, {}, hooks).opened);
    EXPECT_FALSE(cboPlan_Click(plan, folder, "*.PLN", ui, {}, hooks).opened);
    EXPECT_EQ(plan.PlanCount(), 2);
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(Plans, OpeningAShippedPlanLooksTheIdsUpAgain)
{
    auto db = plans_test::MakeObjectDb(folder / "objects.mdb",
                                       {{234, "NGC 224", "2000"}, {7800, "NGC 7331", "2000"}});
    const std::string text = "\"224\",\"2000\",241\r\n\"7331\",\"2000\",7807\r\n\"C 14\",\"CALDWELL\",13974\r\n";
    for (const char* name : {"HCLUB1.PLN", "hclub2.pln", "mine.PLN"}) {
        SCOPED_TRACE(name);
        test_files::WriteText(folder / name, text);
        TabPlan p;
        EXPECT_TRUE(cboPlan_Click(p, folder, name, ui, ShippedIdLookup(*db), hooks).opened);
        const bool shipped = std::string(name) != "mine.PLN";
        const std::vector<double> ids = shipped ? std::vector<double>{234, 7800, 13974}
                                                : std::vector<double>{241, 7807, 13974};
        EXPECT_EQ(Ids(p), ids);
    }
}

TEST_F(Plans, UnreadableFilesAreReportedAndKeepWhatWasRead)
{
    ui.SetErrorLog(folder / "errorlog.txt");
    plan.entries = {{"kept", "2000", 1, ""}};

    // Missing file: the entries stay as they were.
    EXPECT_FALSE(cboPlan_Click(plan, folder, "gone.PLN", ui, {}, hooks).opened);
    EXPECT_EQ(Ids(plan), std::vector<double>{1});
    EXPECT_FALSE(plan.PlanActive);

    // A record that cannot be read: the ones before it stay, plan mode is not entered.
    test_files::WriteText(folder / "bad.PLN",
                          "\"a\",\"2000\",5,\"\"\r\n\"b\",\"2000\",oops,\"\"\r\n");
    ui.fileAnswers = {(folder / "bad.PLN").string()};
    EXPECT_FALSE(mnuOpenPS_Click(plan, ui, {}, hooks).opened);
    EXPECT_EQ(Ids(plan), std::vector<double>{5});
    EXPECT_FALSE(plan.PlanActive || ui.busy);
    EXPECT_TRUE(calls.empty());

    ASSERT_EQ(ui.shown.size(), 2u);
    EXPECT_EQ(ui.shown[0].Text(),
              std::string(FileNotFoundText) + "\nOccurred in : " + ChosenPlanLocation);
    EXPECT_EQ(ui.shown[1].Text(),
              std::string(TypeMismatchText) + "\nOccurred in : " + OpenPlanLocation);
    EXPECT_NE(ReadPlanBytes(folder / "errorlog.txt").find(OpenPlanLocation), std::string::npos);
}

TEST_F(Plans, OpeningMoreThanFiveHundredKeepsTheFirst)
{
    std::string text;
    for (int i = 1; i <= 501; ++i)
        text += "\"" + std::to_string(i) + "\",\"2000\"," + std::to_string(i) + "\r\n";
    test_files::WriteText(folder / "big.PLN", text);
    EXPECT_TRUE(cboPlan_Click(plan, folder, "big.PLN", ui, {}, hooks).opened);
    EXPECT_EQ(plan.PlanCount(), 500);
    EXPECT_EQ(plan.entries.back().PlanRecordID, 500);
    EXPECT_EQ(Headings(), std::vector<std::string>{MaxObjectsTitle});
    EXPECT_EQ(calls, std::vector<std::string>{"LoadPlan"});
}

TEST(LoadTPlan, ListsPlansAndQueriesOfTheFolder)
{
    QTemporaryDir dir;
    const std::filesystem::path folder = dir.path().toStdString();
    for (const char* name : {"b.pln", "A.PLN", "q.qry", "notes.txt", "plans.ico", "x.Pln.bak"})
        std::ofstream(folder / name) << "";
    std::filesystem::create_directory(folder / "dir.pln");
    const ShortCutTools tools = LoadTPlan(folder);
    ASSERT_EQ(tools.plans.size(), 2u);
    ASSERT_EQ(tools.queries.size(), 1u);
    EXPECT_EQ(tools.plans[0].key + "|" + tools.plans[1].key + "|" + tools.queries[0].key,
              "A.PLN|b.pln|q.qry");
    EXPECT_EQ(tools.plans[0].icon, folder / "plans.ico");
    EXPECT_TRUE(tools.queries[0].icon.empty());
    EXPECT_TRUE(LoadTPlan(folder / "none").plans.empty());
}

} // namespace
} // namespace spread

namespace spread {
namespace {

// A plan loaded into a grid over a real object database.
class PlanLoad : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        TMM.objectDb = plans_test::MakeObjectDb(folder / "objects.mdb",
                                                {{234, "NGC 224", "2000"},
                                                 {7800, "NGC 7331", "2000"},
                                                 {555, "NGC 1", "2000"}});
        TMM.objectDb->Execute("Update SelvaneTable Set Observed = -1, RAhours = 0.7, "
                              "RAminutes = 42.7, DeclinationDegrees = 41, "
                              "DeclinationMinutes = 16 Where ID = 234");
        TMM.SQL = "Select * From SelvaneTable Where ID = 555";
        // Filters that would drop every row of a normal load.
        TMM.prefs.Psupo = "Y";
        TMM.prefs.Pminalt = "89";
        TMM.prefs.Shers = true;
    }

    QTemporaryDir dir;
    std::filesystem::path folder{dir.path().toStdString()};
    services::ScriptedUiPort ui;
    AppState TMM{ui, data::ProgramDir{folder}, data::SettingsStore(folder / "s.ini")};
    astro::FixedClock clock{astro::LocalDateTime{2003, 10, 25, 22, 0, 0}};
    Grid grid;
    TabPlan plan;
};

TEST_F(PlanLoad, RowsInTheOrderOfTaggingWithoutFilters)
{
    plan.PlanActive = true;
    plan.entries = {{"NGC 7331", "2000", 7800, "seen"},
                    {"gone", "2000", 99999, ""},
                    {"MARS", "PLANETS", 9001, ""},
                    {"NGC 224", "2000", 234, ""}};
    LoadPlan(TMM, grid, plan, clock);
    EXPECT_EQ(Column(grid, kObjectIdCol), "NGC 7331|NGC 224");
    EXPECT_EQ(Column(grid, kPlnCol), "X*|X");
    EXPECT_EQ(grid.Text(2, 3), "X"); // observed, yet kept
    EXPECT_EQ(TMM.status.selected + "|" + TMM.status.lblMisc,
              "Selected 4 objects|4 Object(s) In Your Plan");
    EXPECT_EQ(TMM.SQL, "Select * From SelvaneTable Where ID = 555");
    EXPECT_FALSE(TMM.PlanLoad);
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(PlanLoad, APlanWithoutRowsReportsNoObjects)
{
    plan.entries = {{"MARS", "PLANETS", 9001, ""}, {"gone", "2000", 99999, ""}};
    LoadPlan(TMM, grid, plan, clock);
    EXPECT_EQ(grid.MaxRows(), 0);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, NoObjectsTitle);
}

// Every load of a tab marks the rows of that tab's plan by record id, so that the entries of a
// shipped plan, whose ObjectID is the bare NGC number, are marked too; an entry with a note is
// "X*"; the plan of another tab marks nothing.
TEST_F(PlanLoad, ANormalLoadMarksTheTabsPlanByRecordId)
{
    TMM.prefs.Psupo = "N";
    TMM.prefs.Pminalt = "";
    TMM.prefs.Shers = false;
    TMM.CurrTab = 1;
    TMM.plans[1].PlanActive = true;
    TMM.plans[1].entries = {{"224", "2000", 234, ""},
                            {"NGC 1", "2000", 555, "a note"},
                            {"gone", "2000", 99999, ""}};
    TMM.plans[0].PlanActive = true;
    TMM.plans[0].entries = {{"NGC 7331", "2000", 7800, ""}};
    TMM.SQL = "Select * From SelvaneTable Order By ID";
    GridLoad load;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    EXPECT_EQ(Column(grid, kObjectIdCol), "NGC 224|NGC 1|NGC 7331");
    EXPECT_EQ(Column(grid, kPlnCol), "X|X*| ");
    EXPECT_EQ(TMM.status.lblMisc, "3 Object(s) In Your Plan");
}

} // namespace
} // namespace spread
