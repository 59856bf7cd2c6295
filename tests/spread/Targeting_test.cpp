// The home target: SetHome, frmTarget's toggle, GetSeparation on grid texts, and the column
// "Sep" of a load while targeting is on, on a real SQLite object database.

#include "spread/Targeting.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "astro/FaultSink.h"
#include "data/Schema.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "spread/LoadTheGrid.h"
#include "spread/Plans.h"

using namespace spread;

namespace {

class NoFaults : public astro::FaultSink
{
public:
    void ReportFault(std::string_view message, std::string_view location) override
    {
        ADD_FAILURE() << location << ": " << message;
    }
    void EndProcess(int) override { ADD_FAILURE() << "EndProcess"; }
};

TEST(GetSeparation, GridTextsAgainstTheTarget)
{
    // Reference: separations along the equator are 15 degrees an hour, along a meridian the
    // difference of declination. CalcAngSep's radian factor has 7 digits: 1e-6 degrees.
    struct Row
    {
        const char* targetRa;
        const char* targetDec;
        const char* ra;
        const char* dec;
        double degrees;
    };
    const Row rows[] = {
        {"00 00 00.0", "+00 00 00.0", "01 00 00.0", "+00 00 00.0", 15},
        // The sign of "-00" goes with the minutes: half a degree south, not north.
        {"00 00 00.0", "+00 00 00.0", "00 00 00.0", "-00 30 00.0", 0.5},
        {"00 00 00.0", "+00 30 00.0", "00 00 00.0", "-00 30 00.0", 1},
        // Across 0h: 23h 30m to 0h 30m is one hour.
        {"23 30 00.0", "+00 00 00.0", "00 30 00.0", "+00 00 00.0", 15},
        {"05 35 17.3", "-05 23 28.0", "05 35 17.3", "-05 23 28.0", 0},
        {"12 00 00.0", "+89 00 00.0", "00 00 00.0", "+89 00 00.0", 2},
    };
    NoFaults faults;
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.ra) + " " + row.dec);
        Targeting target;
        target.TargetRA = row.targetRa;
        target.TargetDec = row.targetDec;
        EXPECT_NEAR(GetSeparation(target, row.ra, row.dec, faults), row.degrees, 1e-6);
    }
}

TEST(GetSeparation, TheMountIsReadOnceUntilTheFlagIsCleared)
{
    Targeting target;
    target.TargetIsScope = true;
    target.TargetRA = "12 00 00.0"; // not read while the mount is the target
    int reads = 0;
    target.ScopeEnabled = [] { return true; };
    target.ReadScope = [&]() -> std::optional<std::pair<double, double>> {
        ++reads;
        return std::pair{1.0, -0.5};
    };
    NoFaults faults;
    EXPECT_NEAR(GetSeparation(target, "01 00 00.0", "+00 00 00.0", faults), 0.5, 1e-6);
    EXPECT_NEAR(GetSeparation(target, "01 00 00.0", "+00 30 00.0", faults), 1, 1e-6);
    EXPECT_EQ(reads, 1);
    EXPECT_TRUE(target.TargetPositionRead);

    // A telescope that is not enabled leaves the texts as the target.
    target.ScopeEnabled = [] { return false; };
    EXPECT_NEAR(GetSeparation(target, "12 00 00.0", "+00 00 00.0", faults), 0, 1e-6);
    EXPECT_EQ(reads, 1);
}

TEST(SetHome, CopiesTheRowAndHintsOnce)
{
    services::ScriptedUiPort ui;
    ui.echo = false;
    Grid grid;
    grid.SetMaxRows(2);
    grid.SetText(2, kObjectIdCol, "M 42");
    grid.SetText(2, kCatalogCol, "MESSIER");
    grid.SetText(2, 7, "05 35 17.3");
    grid.SetText(2, 8, "-05 23 28.0");
    Targeting target;
    SetHome(target, grid, 2, ui);
    EXPECT_EQ(target.TargetObjectID, "M 42");
    EXPECT_EQ(target.TargetCatalog, "MESSIER");
    EXPECT_EQ(target.TargetRA, "05 35 17.3");
    EXPECT_EQ(target.TargetDec, "-05 23 28.0");
    SetHome(target, grid, 1, ui);
    SetHome(target, grid, 3, ui); // no such row: nothing changes
    EXPECT_EQ(target.TargetObjectID, "");
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), HomeHintText);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Home Target Set");
}

TEST(cmdTurn_Click, TogglesAndRefusesTheScopeWithoutTelescope)
{
    services::ScriptedUiPort ui;
    ui.echo = false;
    Targeting target;
    EXPECT_EQ(TargetLabelsOf(target, false).lblHome, "none");
    EXPECT_EQ(TargetLabelsOf(target, true).captionHome, "Telescope");
    EXPECT_EQ(TurnCaption(target), "Turn On");

    EXPECT_FALSE(cmdTurn_Click(target, true, ui));
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.kind, "E");
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Scope Not Enabled");
    EXPECT_FALSE(target.TargetingOn);

    EXPECT_TRUE(cmdTurn_Click(target, false, ui));
    EXPECT_EQ(TurnCaption(target), "Turn Off");
    EXPECT_EQ(OnOffText(target), "Targeting is On");
    target.ScopeEnabled = [] { return true; };
    EXPECT_TRUE(cmdTurn_Click(target, true, ui));
    EXPECT_FALSE(target.TargetingOn);
    EXPECT_TRUE(target.TargetIsScope);
    EXPECT_EQ(OnOffText(target), "Targeting is Off");
}

// A real object database in a temporary program folder.
class TargetLoad : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        ui.echo = false;
        data::OpenOptions create;
        create.create = true;
        TMM.objectDb =
            data::Database::Open(folder.filePath("SelvPro13000.mdb").toStdString(), create);
        data::CreateSchema(TMM.objectDb->Handle(), data::SchemaKind::ObjectDatabase);
        TMM.prefs.speed1 = true;
        TMM.prefs.ObCat = "All Catalogs";
        TMM.prefs.Obcon = "All Constellations";
        TMM.prefs.PDate = "03/15/2024";
        // Objects along the equator, 0.5 hours apart: 0, 7.5, 15, 22.5 and 30 degrees from 0h;
        // Separation (the double star's) 99.
        for (int i = 0; i < 5; ++i)
            TMM.objectDb->Execute(
                "Insert Into SelvaneTable (ID, ObjectID, Catalog, ObjectType, RAhours, RAminutes, "
                "DeclinationDegrees, DeclinationMinutes, EPOCH, Observed, Separation, Magnitude, "
                "Magnitude2) Values (" +
                std::to_string(i + 1) + ", 'E" + std::to_string(i) + "', 'NGC', 'Gx', " +
                std::to_string(i / 2) + ", " + std::to_string(i % 2 * 30) +
                ", 0, 0, 2000, False, 99, 5, 5)");
        TMM.target.TargetRA = "00 00 00.0";
        TMM.target.TargetDec = "+00 00 00.0";
    }

    std::vector<std::string> Column(int col) const
    {
        std::vector<std::string> cells;
        for (int row = 1; row <= grid().MaxRows(); ++row)
            cells.emplace_back(grid().Text(row, col));
        return cells;
    }
    const Grid& grid() const { return TMM.grids[0]; }

    void Load(LoadMode mode = LoadMode::Build)
    {
        GridLoad load;
        LoadTheGrid(TMM, TMM.grids[0], mode, load, clock);
    }

    QTemporaryDir folder;
    services::ScriptedUiPort ui;
    AppState TMM{ui, data::ProgramDir{folder.path().toStdString()},
                 data::SettingsStore(folder.filePath("test.ini").toStdString())};
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
};

TEST_F(TargetLoad, SepShowsTheDistanceAndTheLimitsFilterIt)
{
    Load();
    EXPECT_EQ(Column(23), std::vector<std::string>(5, "99.0"));

    TMM.target.TargetingOn = true;
    Load();
    EXPECT_EQ(Column(23), (std::vector<std::string>{"0.0", "7.5", "15.0", "22.5", "30.0"}));

    // The limits apply to the distance (degrees), and the SQL asks nothing of Separation,
    // which holds 99 for every row.
    TMM.prefs.gSepL = "7";
    TMM.prefs.gSepH = "23";
    Load();
    EXPECT_EQ(TMM.SQL.find("Separation"), std::string::npos) << TMM.SQL;
    EXPECT_EQ(Column(4), (std::vector<std::string>{"E1", "E2", "E3"}));

    // A plan load keeps its rows whatever the limits.
    TMM.PlanLoad = true;
    TMM.SQL = "Select * From SelvaneTable order by ID";
    Load(LoadMode::NoBuild);
    EXPECT_EQ(Column(4).size(), 5u);
    TMM.PlanLoad = false;

    // Off again: the field, and its clause in the SQL, which no row meets.
    TMM.target.TargetingOn = false;
    Load();
    EXPECT_NE(TMM.SQL.find("Separation >= 7 "), std::string::npos) << TMM.SQL;
    EXPECT_EQ(grid().MaxRows(), 0);
}

TEST_F(TargetLoad, TheMountIsReadOncePerLoad)
{
    TMM.target.TargetingOn = true;
    TMM.target.TargetIsScope = true;
    int reads = 0;
    TMM.target.ScopeEnabled = [] { return true; };
    TMM.target.ReadScope = [&]() -> std::optional<std::pair<double, double>> {
        ++reads;
        return std::pair{2.0, 0.0};
    };
    Load();
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(Column(23), (std::vector<std::string>{"30.0", "22.5", "15.0", "7.5", "0.0"}));
    Load();
    EXPECT_EQ(reads, 2);
}

} // namespace
