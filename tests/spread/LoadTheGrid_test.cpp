#include "spread/LoadTheGrid.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "data/Schema.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "spread/FormatSpreadsheet.h"
#include "tests/TestFiles.h"

using namespace spread;

namespace {

struct Object
{
    std::string id;
    std::string raHours; // "NULL" for a missing position
    double decDeg;
    std::string catalog = "2000";
};

// A real object database in a temporary program folder, and the state that loads from it.
class LoadFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        ui.echo = false;
        const std::filesystem::path path = folder.filePath("SelvPro13000.mdb").toStdString();
        data::OpenOptions create;
        create.create = true;
        TMM.objectDb = data::Database::Open(path, create);
        data::CreateSchema(TMM.objectDb->Handle(), data::SchemaKind::ObjectDatabase);
        TMM.prefs.PDate = "03/15/2024";
        TMM.prefs.Ptime = "22:00";
        TMM.prefs.Plat = 40;
        TMM.prefs.PLon = 90;
        TMM.prefs.PTz = 6;
        TMM.prefs.timesAMPM = false;
        TMM.SQL = "Select * From SelvaneTable order by ID";
    }

    void Insert(const std::vector<Object>& objects)
    {
        // One transaction: a commit per row would take most of the test's time.
        sqlite3_exec(TMM.objectDb->Handle(), "BEGIN", nullptr, nullptr, nullptr);
        long id = 1;
        for (const Object& o : objects) {
            TMM.objectDb->Execute(
                "Insert Into SelvaneTable (ID, ObjectID, Catalog, ObjectType, RAhours, RAminutes, "
                "DeclinationDegrees, DeclinationMinutes, EPOCH, Observed, HObject) Values (" +
                std::to_string(id++) + ", '" + o.id + "', '" + o.catalog + "', 'Gx', " +
                o.raHours + ", 30.5, " + std::to_string(o.decDeg) + ", 15, 2000, False, ' ')");
        }
        sqlite3_exec(TMM.objectDb->Handle(), "COMMIT", nullptr, nullptr, nullptr);
    }

    void AfterAlternating(const std::string& id, const std::string& decDegrees,
                          const std::string& decMinutes);

    std::vector<std::string> Ids() const
    {
        std::vector<std::string> ids;
        for (int row = 1; row <= grid.MaxRows(); ++row)
            ids.emplace_back(grid.Text(row, 4));
        return ids;
    }

    static std::vector<std::string> RowTexts(const Grid& g)
    {
        std::vector<std::string> texts;
        for (int row = 1; row <= g.MaxRows(); ++row)
            texts.emplace_back(g.RowText(row));
        return texts;
    }

    std::vector<std::string> ShownTitles() const
    {
        std::vector<std::string> titles;
        for (const auto& s : ui.shown)
            titles.push_back(s.message.ShortMessage);
        return titles;
    }

    QTemporaryDir folder;
    services::ScriptedUiPort ui;
    AppState TMM{ui, data::ProgramDir{folder.path().toStdString()},
                 data::SettingsStore(folder.filePath("test.ini").toStdString())};
    Grid grid;
    GridLoad load;
    astro::FixedClock clock;
};

// Objects at +89 never set and at -80 never rise at latitude 40 north.
std::vector<Object> Alternating(int count)
{
    std::vector<Object> objects;
    for (int i = 1; i <= count; ++i)
        objects.push_back({"N" + std::to_string(i), std::to_string(i % 24), i % 2 ? -80.0 : 89.0});
    return objects;
}

TEST_F(LoadFixture, RowretCountsRowsAfterTheFilters)
{
    Insert(Alternating(20));
    TMM.prefs.Pminalt = "0";
    TMM.prefs.rowret = 5;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    EXPECT_EQ(Ids(), (std::vector<std::string>{"N2", "N4", "N6", "N8", "N10"}));
    EXPECT_EQ(TMM.status.selected + "|" + TMM.status.lblNOM, "Selected 20 objects|5 Objects");
    EXPECT_EQ(TMM.lastLoadSql, TMM.SQL);
    EXPECT_FALSE(TMM.QueryRunning);
    for (const auto& s : ui.shown)
        ADD_FAILURE() << s.message.ShortMessage << ": " << s.message.LongMessage;
}

// Blocks of 100 are computed while the next block is read; the row limit and a cancel still
// stop the load at the row where a one-by-one load stops, wherever that row falls.
TEST_F(LoadFixture, BlocksStopWhereAOneByOneLoadStops)
{
    // The even records are kept, one row per two records; their ids grow wider than the
    // header, so that the autosized width tells where the load stopped.
    std::vector<Object> objects = Alternating(300);
    for (std::size_t i = 0; i < objects.size(); ++i)
        objects[i].id += std::string(i / 10, '.');
    Insert(objects);
    TMM.prefs.Pminalt = "0";
    TMM.prefs.Prise = "Y";
    TMM.prefs.ShowCharts = true;
    TMM.prefs.autosizespread = true;
    load.blockSize = 1;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    ASSERT_EQ(grid.MaxRows(), 150);
    const std::vector<std::string> reference = RowTexts(grid);

    struct Case
    {
        const char* name;
        long rowret;
        int cancelAfterPumps; // a pump comes every 10 records
        int rows;
        int progress; // records taken, as the progress bar last stepped
    };
    const Case cases[] = {
        {"limit inside the first block", 30, -1, 30, 60},
        {"limit on the first block's last record", 50, -1, 50, 100},
        {"limit inside the second block", 70, -1, 70, 140},
        {"limit inside the last block", 120, -1, 120, 240},
        {"limit beyond the rows", 500, -1, 150, 300},
        {"cancel on the first block's last record", 0, 10, 50, 100},
        {"cancel inside the second block", 0, 15, 75, 150},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TMM.prefs.rowret = c.rowret;
        ui.cancelAfterPumps = c.cancelAfterPumps;
        load.blockSize = 100;
        grid = Grid();
        LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
        EXPECT_EQ(RowTexts(grid),
                  std::vector<std::string>(reference.begin(), reference.begin() + c.rows));
        EXPECT_EQ(ui.progressPos, c.progress);
        EXPECT_EQ(load.cancelled, c.cancelAfterPumps > 0);
        EXPECT_EQ(TMM.status.lblNOM, std::to_string(c.rows) + " Objects");
        EXPECT_FALSE(TMM.QueryRunning);
        // The widths measured while the rows were computed are those of the rows kept (the
        // wider ids of a block cut short left out), as a pass over the loaded rows finds them.
        std::array<double, kGridCols + 1> measured{};
        for (int col = 1; col <= kGridCols; ++col)
            measured[static_cast<std::size_t>(col)] = grid.ColWidth(col);
        FormatOptions rescan;
        rescan.autosizespread = true;
        FormatSpreadsheet(grid, TMM.CurrTab, true, rescan);
        for (int col = 1; col <= kGridCols; ++col)
            EXPECT_EQ(measured[static_cast<std::size_t>(col)], grid.ColWidth(col)) << col;
    }
    EXPECT_TRUE(ui.shown.empty());
}

// A fault of a later block is reported once, after that block is computed, and its rows stay;
// a fault in the block computed ahead past the row limit is dropped with its rows.
TEST_F(LoadFixture, FaultsOfLaterBlocks)
{
    Insert(Alternating(300));
    // Precession cannot take these epochs: each row reports an overflow and keeps its place.
    TMM.objectDb->Execute("Update SelvaneTable Set EPOCH = 99999 Where ID In (150, 250)");
    TMM.prefs.PPre = "06/15/2024";
    struct Case
    {
        long rowret;
        int rows;
        bool reported;
    };
    const Case cases[] = {
        {0, 300, true},    // in the second and third blocks: one report
        {160, 160, true},  // the second block is computed whole
        {100, 100, false}, // the second block is computed ahead and dropped
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.rowret);
        ui.shown.clear();
        TMM.prefs.rowret = c.rowret;
        load.blockSize = 100;
        grid = Grid();
        LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
        EXPECT_EQ(grid.MaxRows(), c.rows);
        EXPECT_FALSE(load.failed);
        ASSERT_EQ(ui.shown.size(), c.reported ? 1u : 0u);
        if (c.reported) {
            EXPECT_NE(ui.shown[0].Text().find("Module1.Precession"), std::string::npos)
                << ui.shown[0].Text();
            EXPECT_EQ(grid.Text(150, 4), "N150");
        }
    }
}

struct Ended
{
    int exitCode;
};

// 249 alternating objects, then one at 13h 43.8m with the given declination texts, loaded with
// every computed column on.
void LoadFixture::AfterAlternating(const std::string& id, const std::string& decDegrees,
                                   const std::string& decMinutes)
{
    Insert(Alternating(249));
    TMM.objectDb->Execute(
        "Insert Into SelvaneTable (ID, ObjectID, Catalog, ObjectType, RAhours, RAminutes, "
        "DeclinationDegrees, DeclinationMinutes, EPOCH, Observed, HObject) Values (250, '" +
        id + "', '2000', 'Gx', 13, 43.8, " + decDegrees + ", " + decMinutes +
        ", 2000, False, ' ')");
    TMM.prefs.Palt = "Y";
    TMM.prefs.Prise = "Y";
    TMM.prefs.ShowCharts = true;
    TMM.prefs.PPre = "06/15/2024";
    TMM.prefs.optimum = true;
}

// The arcsine fault ends the process. A damaged record (an infinite declination) in a later
// block ends it once that block is computed: the fault is reported first, and the earlier
// blocks' rows are in. In the block computed ahead past the row limit it is dropped with the
// block's rows.
TEST_F(LoadFixture, FatalFaultInALaterBlock)
{
    AfterAlternating("broken", "1e999", "0");
    services::SetEndProcessHandler([](int exitCode) { throw Ended{exitCode}; });
    struct Case
    {
        long rowret;
        bool ended;
    };
    for (const Case c : {Case{0, true}, Case{200, false}}) {
        SCOPED_TRACE(c.rowret);
        ui.shown.clear();
        TMM.prefs.rowret = c.rowret;
        load.blockSize = 100;
        grid = Grid();
        int exitCode = -1;
        try {
            LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
        } catch (const Ended& ended) {
            exitCode = ended.exitCode;
        }
        TMM.QueryRunning = false;
        EXPECT_EQ(exitCode != -1, c.ended);
        EXPECT_EQ(grid.MaxRows(), 200);
        EXPECT_EQ(ui.shown.size(), c.ended ? 1u : 0u);
        if (c.ended && !ui.shown.empty()) {
            EXPECT_NE(ui.shown[0].Text().find("Module1.CalcASN"), std::string::npos)
                << ui.shown[0].Text();
        }
    }
    services::SetEndProcessHandler(nullptr);
}

// Regression: an object on the meridian at a best-time sample took the arcsine's argument a few
// units in the last place past 1 and ended the program; every row loads now.
TEST_F(LoadFixture, RoundingOnTheMeridianLoadsEveryRow)
{
    AfterAlternating("IC 928", "55", "34.072");
    services::SetEndProcessHandler([](int exitCode) { throw Ended{exitCode}; });
    EXPECT_NO_THROW(LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock));
    services::SetEndProcessHandler(nullptr);
    EXPECT_EQ(grid.MaxRows(), 250);
    EXPECT_EQ(grid.Text(250, 4), "IC 928");
    EXPECT_FALSE(grid.Text(250, 13).empty());
    EXPECT_TRUE(ui.shown.empty());
}

// A site on a pole (a state no preference window or settings file lets through) faults in every
// row on every worker thread: the process still ends after one message.
TEST_F(LoadFixture, FatalFaultOnSeveralThreadsIsReportedOnce)
{
    std::vector<Object> objects = Alternating(2000);
    Insert(objects);
    TMM.prefs.Plat = 90;
    TMM.prefs.Palt = "Y";
    load.blockSize = 100;
    const std::filesystem::path log = folder.filePath("errorlog.txt").toStdString();
    ui.SetErrorLog(log);
    services::SetEndProcessHandler([](int exitCode) { throw Ended{exitCode}; });
    EXPECT_THROW(LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock), Ended);
    services::SetEndProcessHandler(nullptr);
    TMM.QueryRunning = false;
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_NE(ui.shown[0].Text().find("Variable W = "), std::string::npos) << ui.shown[0].Text();
    const std::string text = test_files::ReadText(log);
    EXPECT_NE(text.find("Module1.CalcASN"), std::string::npos);
    EXPECT_EQ(text.find("Module1.CalcASN"), text.rfind("Module1.CalcASN")) << text;
}

TEST_F(LoadFixture, MissingPositionShowsNaAndEscapesTheAltitudeFilter)
{
    Insert({{"nopos", "NULL", -80}, {"south", "3", -80}});
    TMM.prefs.Pminalt = "10";
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    ASSERT_EQ(Ids(), std::vector<std::string>{"nopos"});
    EXPECT_EQ(grid.Text(1, 7), "n/a");
    EXPECT_EQ(grid.Text(1, 8), "n/a");
}

TEST_F(LoadFixture, NoObjectsFoundAfterFiltersOrACancel)
{
    Insert(Alternating(30));
    struct Case
    {
        const char* name;
        std::string Palt;
        std::string Pminalt;
        int cancelAfterPumps;
    };
    const Case cases[] = {
        // With Palt off every altitude is 0, so a minimum above 0 drops every row.
        {"Palt off and a minimum altitude", "N", "5", -1},
        {"cancelled before the first kept row", "Y", "0", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ui.shown.clear();
        ui.cancelAfterPumps = c.cancelAfterPumps;
        TMM.prefs.Palt = c.Palt;
        TMM.prefs.Pminalt = c.Pminalt;
        // Only southern objects first, so a cancel comes before any row is kept.
        TMM.SQL = "Select * From SelvaneTable order by DeclinationDegrees, ID";
        load.blockSize = 1;
        LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
        EXPECT_EQ(grid.MaxRows(), 0);
        EXPECT_EQ(ShownTitles(), std::vector<std::string>{NoObjectsTitle});
        EXPECT_EQ(TMM.status.lblNOM, "0 Objects");
    }
}

TEST_F(LoadFixture, GcvsHeadersOnlyWhenEveryRowIsGcvs)
{
    Insert({{"R And", "0", 38, "GCVS"}, {"S And", "1", 39, "GCVS"}, {"M 31", "0", 41}});
    struct Case
    {
        const char* sql;
        const char* header5;
    };
    const Case cases[] = {
        {"Select * From SelvaneTable Where Catalog = 'GCVS'", "Var Type"},
        {"Select * From SelvaneTable", "Other ID"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.sql);
        TMM.SQL = c.sql;
        LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
        EXPECT_EQ(grid.Header(5), c.header5);
    }
}

// The observing date is kept in the regional short form: the same night typed under two
// regional settings gives the same rows.
TEST_F(LoadFixture, ObservingDateReadByTheRegionalRule)
{
    Insert(Alternating(6));
    TMM.prefs.Prise = "Y";
    TMM.prefs.optimum = true;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    const std::vector<std::string> monthFirst = RowTexts(grid);

    struct Case
    {
        const char* dateformat;
        const char* datesep;
        const char* PDate;
    };
    const Case cases[] = {
        {"dd.mm.yyyy", ".", "15.03.2024"},
        {"yyyy-mm-dd", "-", "2024-03-15"},
        {"dd/mm/yy", "/", "15/03/24"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.PDate);
        TMM.prefs.dateformat = c.dateformat;
        TMM.prefs.datesep = c.datesep;
        TMM.prefs.PDate = c.PDate;
        Grid other;
        LoadTheGrid(TMM, other, LoadMode::NoBuild, load, clock);
        EXPECT_EQ(RowTexts(other), monthFirst);
    }
    EXPECT_TRUE(ui.shown.empty());
}

// BUILD without a builder of the caller's takes the filter settings; any other mode runs the
// SQL as it stands.
TEST_F(LoadFixture, BuildTakesTheFilterSettings)
{
    Insert({{"M 31", "0", 41}, {"NGC 7000", "20", 44}, {"M 42", "5", -5}});
    TMM.objectDb->Execute("Insert Into CatalogLookup (CatalogName, CatalogDescription) Values "
                          "('2000', 'NGC 2000')");
    TMM.prefs.ObCat = "NGC 2000;";
    TMM.prefs.Obcon = "";
    TMM.prefs.gFDECD = "0";
    TMM.prefs.PIB = "Y"; // the test objects have no magnitude
    TMM.prefs.sort1 = "ObjectID";
    TMM.SQL = "Select * From SelvaneTable Where ID = 3";
    LoadTheGrid(TMM, grid, LoadMode::Build, load, clock);
    EXPECT_EQ(Ids(), (std::vector<std::string>{"M 31", "NGC 7000"}));
    EXPECT_NE(TMM.SQL.find("WHERE"), std::string::npos);
    EXPECT_EQ(TMM.lastLoadSql, TMM.SQL);
    EXPECT_FALSE(TMM.OrderBy.empty() || load.failed);
}

TEST_F(LoadFixture, StateChoosesTheDatabaseTabAndFilters)
{
    Insert(Alternating(4));
    TMM.prefs.Pminalt = "0";

    // A plan load keeps the rows the altitude filter would drop.
    TMM.PlanLoad = true;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    EXPECT_EQ(grid.MaxRows(), 4);
    TMM.PlanLoad = false;

    // The logbook holds no SelvaneTable here: the failure is reported once, the load says so.
    data::OpenOptions create;
    create.create = true;
    TMM.logbookDb =
        data::Database::Open(folder.filePath("log.mdb").toStdString(), create);
    TMM.UseLogDatabase = true;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    EXPECT_TRUE(load.failed);
    EXPECT_EQ(grid.MaxRows(), 0);
    ASSERT_EQ(ui.shown.size(), 2u); // the fault, then "No Objects Found!"
    EXPECT_NE(ui.shown[0].Text().find(LoadLocation), std::string::npos);
    TMM.UseLogDatabase = false;

    // An image tab holds no grid: nothing happens. One query runs at a time.
    ui.shown.clear();
    grid.AppendRow("kept");
    TMM.CurrTab = 5;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    EXPECT_TRUE(ui.shown.empty());
    TMM.CurrTab = 0;
    TMM.QueryRunning = true;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, clock);
    EXPECT_EQ(ShownTitles(), std::vector<std::string>{OneQueryTitle});
    EXPECT_EQ(grid.Text(1, 1), "kept");
}

TEST(ParseLoadMode, EverySpellingInUse)
{
    EXPECT_EQ(ParseLoadMode("BUILD"), LoadMode::Build);
    EXPECT_EQ(ParseLoadMode("NOBUILD"), LoadMode::NoBuild);
    EXPECT_EQ(ParseLoadMode("NO BUILD"), LoadMode::NoBuild);
}

} // namespace
