// Identify and NTOS: the query of BuildSQLSelectString2, the searches on a real SQLite object
// database and logbook, UpdatePlan's limit, and Identify at the real simulator mount (skipped
// when indiserver is not installed).

#include "scope/NearbySearch.h"

#include "data/Schema.h"
#include "scope/Speech.h"
#include "services/ScriptedUiPort.h"
#include "spread/PlanFile.h"

#include "IndiSimulator.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cmath>
#include <filesystem>
#include <sstream>

namespace {

using scope::SearchWindow;

TEST(BuildSQLSelectString2, ClausesInOrderAndRangesLeftOutAtTheirDefaults)
{
    const data::FilterLookups lookups{{{"NGC", "NGC 2000"}, {"M", "Messier"}},
                                      {{"Gx", "Galaxy"}, {"OC", "Open Cluster"}}};
    struct Row
    {
        const char* name;
        data::ObjectFilter filter;
        std::vector<std::string> bordering;
        std::string sql;
    };
    const std::string head = "Select * From SelvaneTable ";
    data::ObjectFilter defaults;
    defaults.ObCat = "All Catalogs";
    defaults.Obtod = "All Types";
    defaults.gMagL = "-1";
    defaults.gMagU = "999";
    defaults.gSepH = "9999";
    defaults.gPAH = "360";
    defaults.gFDECD = "-90";
    defaults.gTDECD = "90";
    defaults.gTRAH = "24";
    defaults.PIB = "Y";

    std::vector<Row> rows;
    rows.push_back({"defaults typed or empty: the constellation alone",
                    defaults,
                    {},
                    head + " WHERE (Constellation = 'Ori' ) "});
    data::ObjectFilter lists = defaults;
    lists.ObCat = "NGC 2000;Messier;";
    lists.Obtod = "Galaxy;";
    lists.Obcon = "Tau-Taurus;"; // the tab's constellations are not the search's
    rows.push_back({"catalogues, bordering constellations, types",
                    lists,
                    {"Tau", "Mon"},
                    head + " WHERE (Catalog = 'NGC'  or Catalog = 'M' )  and (Constellation = "
                           "'Ori'  or Constellation = 'Tau'  or Constellation = 'Mon' )  and "
                           "(ObjectType = 'Gx' ) "});
    data::ObjectFilter ranges = defaults;
    ranges.gMagL = "2";
    ranges.gMagU = "11.5";
    ranges.gSizeL = "1";
    ranges.gSizeU = "30";
    ranges.PIB3 = "Y";
    ranges.gSepL = "5";
    ranges.gTDECD = "10";
    ranges.gObjID = " O'B* ";
    rows.push_back({"ranges, blanks included, open ends, quotes",
                    ranges,
                    {},
                    head + " WHERE (Constellation = 'Ori' )  and ((Magnitude >= 2 and Magnitude "
                           "<= 11.5) or isnull(Magnitude))  and ((ObjectSize >= 1 and ObjectSize "
                           "<= 30 ) or isnull(ObjectSize))  and Separation >= 5 and Separation "
                           "<= 9999  and DeclinationDegrees <= 10  and ObjectID Like 'O''B*' "});
    data::ObjectFilter open = defaults;
    open.gMagL = "6";
    open.gMagU = "";
    open.PIB = "N";
    open.gPAL = "10";
    open.gFRAH = "2";
    rows.push_back({"upper magnitude and angle open, RA both ends",
                    open,
                    {},
                    head + " WHERE (Constellation = 'Ori' )  and Magnitude >= 6  and "
                           "PositionAngle >= 10  and RAHours >= 2 and RAHours <= 24 "});
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(scope::BuildSQLSelectString2(row.filter, lookups, "Ori", row.bordering), row.sql);
    }
    EXPECT_EQ(scope::BorderingSql("Ori"), "Select Const, BConst from BConst Where Const = 'Ori'");
}

struct Object
{
    std::string id;
    double raHours, raMinutes, decDegrees, decMinutes;
    std::string constellation;
    std::string magnitude = "NULL";
};

// An object database and a logbook in a temporary program folder, with the constellation files.
class NearbyFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        ui.echo = false;
        for (const char* name : {"con9.txt", "conbound.txt"})
            std::filesystem::copy_file(std::filesystem::path(SELVANE_SHIPPED_RESOURCES) / name,
                                       TMM.dir.File(name));
        data::OpenOptions create;
        create.create = true;
        TMM.objectDb = data::Database::Open(TMM.dir.File("SelvPro13000.mdb"), create);
        data::CreateSchema(TMM.objectDb->Handle(), data::SchemaKind::ObjectDatabase);
        TMM.logbookDb = data::Database::Open(TMM.dir.File("Logbook2003-1.mdb"), create);
        data::CreateSchema(TMM.logbookDb->Handle(), data::SchemaKind::Logbook);
        TMM.prefs.ObCat = "All Catalogs";
        TMM.prefs.Obtod = "All Types";
        // The Orion nebula: 5h 35m 17.3s, -5 23' 28".
        TMM.target.TargetRA = "05 35 17.3";
        TMM.target.TargetDec = "-05 23 28.0";
    }

    void Insert(const std::vector<Object>& objects)
    {
        for (const Object& o : objects) {
            std::ostringstream sql;
            sql << "Insert Into SelvaneTable (ID, ObjectID, OtherID, Catalog, ObjectType, "
                   "RAhours, RAminutes, DeclinationDegrees, DeclinationMinutes, Constellation, "
                   "Magnitude, EPOCH) Values ("
                << ++lastId << ", '" << o.id << "', 'other " << o.id << "', 'NGC', 'OC', "
                << o.raHours << ", " << o.raMinutes << ", " << o.decDegrees << ", " << o.decMinutes
                << ", '" << o.constellation << "', " << o.magnitude << ", 2000)";
            TMM.objectDb->Execute(sql.str());
        }
    }

    scope::NearbySearch Ntos(double degrees, bool near = false)
    {
        scope::SearchRequest request;
        request.window = SearchWindow::NTOS;
        request.degrees = degrees;
        request.checkAdjacent = near;
        return scope::IdentifyObjects(TMM, request);
    }

    static std::vector<std::string> Ids(const scope::NearbySearch& search)
    {
        std::vector<std::string> ids;
        for (const scope::NearbyRow& row : search.rows)
            ids.push_back(row.ObjectID);
        return ids;
    }

    QTemporaryDir folder;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, data::ProgramDir{folder.path().toStdString()},
                         data::SettingsStore(folder.filePath("test.ini").toStdString())};
    long lastId = 0;
};

TEST_F(NearbyFixture, NtosSearchesTheConstellationFirstAndSortsByValue)
{
    Insert({
        {"far", 5, 35.288, 5, 23.467, "Ori"},           // 10.78 degrees north
        {"near", 5, 35.288, -5, 53.467, "Ori", "0.25"}, // half a degree south
        {"mid", 5, 35.288, -3, 23.467, "Ori", "12"},    // 2 degrees north
        {"over", 5, 35.288, -5, 13.467, "Mon"},         // 10' away, but over the border
        {"centre", 5, 35.288, -5, 23.467, "Ori", "-1.04"},
    });
    const scope::NearbySearch search = Ntos(15);
    ASSERT_TRUE(search.ran);
    EXPECT_EQ(search.constellation, "Ori");
    EXPECT_EQ(search.status.RAtext, "Target RA: 05h 35m 17s");
    EXPECT_EQ(search.status.DECtext, "Target DEC: -05d 23m 28s");
    EXPECT_EQ(search.status.Consttext, "Const: Ori");
    // By value: "10.8" would sort before "2.0" as text.
    EXPECT_EQ(Ids(search), (std::vector<std::string>{"centre", "near", "mid", "far"}));
    ASSERT_EQ(search.rows.size(), 4u);
    EXPECT_EQ(search.rows[0].AngSep, ".0");
    EXPECT_EQ(search.rows[0].Mag, "-1.0");
    EXPECT_EQ(search.rows[1].AngSep, ".5");
    EXPECT_EQ(search.rows[1].Mag, ".3"); // VB writes no leading zero
    EXPECT_EQ(search.rows[2].AngSep, "2.0");
    EXPECT_EQ(search.rows[3].AngSep, "10.8");
    EXPECT_EQ(search.rows[3].Mag, ""); // no magnitude
    EXPECT_EQ(search.rows[3].OtherID, "other far");

    // With chkNear and no BConst rows for Orion: Orion alone.
    EXPECT_EQ(Ids(Ntos(15, true)).size(), 4u);
    TMM.logbookDb->Execute("Insert Into BConst (Const, BConst) Values ('Ori', 'Mon')");
    TMM.logbookDb->Execute("Insert Into BConst (Const, BConst) Values ('Tau', 'Per')");
    EXPECT_EQ(Ids(Ntos(1, true)), (std::vector<std::string>{"centre", "over", "near"}));
    EXPECT_EQ(Ids(Ntos(1, false)), (std::vector<std::string>{"centre", "near"}));
}

TEST_F(NearbyFixture, ASeparationEqualToTheRadiusIsListed)
{
    Insert({{"edge", 5, 35.288, -3, 23.467, "Ori"}});
    const scope::NearbySearch wide = Ntos(20);
    ASSERT_EQ(wide.rows.size(), 1u);
    const double edge = wide.rows[0].separation;
    EXPECT_NEAR(edge, 2, 1e-4);
    EXPECT_EQ(Ids(Ntos(edge)), std::vector<std::string>{"edge"});
    EXPECT_TRUE(Ntos(std::nextafter(edge, 0.0)).rows.empty());
}

TEST_F(NearbyFixture, NtosBeforeSetHomeIsRefusedAndMarksFollowThePlan)
{
    TMM.target = {};
    Insert({{"centre", 5, 35.288, -5, 23.467, "Ori"}});
    const scope::NearbySearch refused = Ntos(5);
    EXPECT_FALSE(refused.ran);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), scope::kNoTargetText);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Target Object Not Specified");
    EXPECT_EQ(ui.shown[0].message.kind, "I");

    TMM.target.TargetRA = "05 35 17.3";
    TMM.target.TargetDec = "-05 23 28.0";
    TMM.CurrTab = 2;
    TMM.plans[2].entries.push_back({"centre", "NGC", 1, "a note"});
    scope::NearbySearch search = Ntos(5);
    ASSERT_EQ(search.rows.size(), 1u);
    EXPECT_EQ(search.rows[0].pln, "X*");
    EXPECT_TRUE(scope::UpdatePlan(TMM, SearchWindow::NTOS, search.rows[0]));
    EXPECT_EQ(search.rows[0].pln, "");
    EXPECT_TRUE(TMM.plans[2].entries.empty());
    EXPECT_TRUE(scope::UpdatePlan(TMM, SearchWindow::NTOS, search.rows[0]));
    EXPECT_EQ(search.rows[0].pln, "X");
    ASSERT_EQ(TMM.plans[2].entries.size(), 1u);
    EXPECT_EQ(TMM.plans[2].entries[0], (spread::PlanEntry{"centre", "NGC", 1, ""}));
}

TEST_F(NearbyFixture, The501stPlanObjectIsRefused)
{
    spread::TabPlan& plan = TMM.plans[0];
    plan.PlanActive = true;
    for (int i = 1; i <= spread::kMaxPlanEntries; ++i)
        plan.entries.push_back({"x" + std::to_string(i), "NGC", double(i) + 1000, ""});
    scope::NearbyRow row;
    row.ID = 7;
    row.ObjectID = "NGC 7";
    EXPECT_FALSE(scope::UpdatePlan(TMM, SearchWindow::Identify, row));
    EXPECT_EQ(row.pln, "");
    EXPECT_EQ(plan.PlanCount(), 500);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), spread::MaxObjectsText);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Maximum Objects Exceeded!");

    // Removing one makes room again.
    scope::NearbyRow listed;
    listed.ID = 1001;
    EXPECT_TRUE(scope::UpdatePlan(TMM, SearchWindow::Identify, listed));
    EXPECT_TRUE(scope::UpdatePlan(TMM, SearchWindow::Identify, row));
    EXPECT_EQ(plan.entries.back().PlanObjectID, "NGC 7");
}

TEST(SortRows, ValueColumnsByValueTextColumnsByText)
{
    std::vector<scope::NearbyRow> rows(3);
    rows[0].ObjectID = "b";
    rows[0].separation = 10.5;
    rows[0].Mag = "10.0";
    rows[1].ObjectID = "c";
    rows[1].separation = 2;
    rows[1].Mag = "";
    rows[2].ObjectID = "a";
    rows[2].separation = 0.3;
    rows[2].Mag = "9.0";
    const auto ids = [&] {
        std::string text;
        for (const auto& row : rows)
            text += row.ObjectID;
        return text;
    };
    scope::SortRows(rows, 3, false);
    EXPECT_EQ(ids(), "bca");
    scope::SortRows(rows, 5, true);
    EXPECT_EQ(ids(), "cab");
    scope::SortRows(rows, 1, true);
    EXPECT_EQ(ids(), "abc");
}

// Identify at the simulator mount: its centre and status are where the mount points.
TEST_F(NearbyFixture, IdentifyAtTheSimulatorMount)
{
    if (!inditest::ServerInstalled())
        GTEST_SKIP() << "indiserver and indi_simulator_telescope are not installed";
    inditest::IndiSimulator simulator;
    ASSERT_TRUE(simulator.Start());
    TMM.prefs.telescopetype = simulator.Identifier();
    scope::TelescopeState state;
    scope::DriverLayer layer;
    layer.MakeDriver = scope::MakeTelescope;
    std::ostringstream spoken;
    scope::StreamSpeech platform(spoken, false);
    scope::Speech speech(platform);
    const astro::FixedClock clock({2024, 3, 15, 22, 0, 0});
    scope::ScopeContext context{ui, TMM.prefs, state, layer, speech, clock};

    scope::SearchRequest request;
    request.window = SearchWindow::Identify;
    request.degrees = 1;
    request.ReadScope = [&]() -> std::optional<std::pair<double, double>> {
        const auto p = scope::ReadScopePositionAt(context, scope::kPositionLocation);
        if (!p)
            return std::nullopt;
        return std::pair{p->ra, p->dec};
    };
    // The mount aligned on the Orion nebula, and objects half a degree and two degrees away.
    ASSERT_TRUE(scope::SyncScope(context, "05 35 17.3", "-05 23 28.0"));
    Insert({{"M 42", 5, 35.288, -5, 23.467, "Ori"},
            {"near", 5, 35.288, -5, 53.467, "Ori"},
            {"mid", 5, 35.288, -3, 23.467, "Ori"}});
    const scope::NearbySearch search = scope::IdentifyObjects(TMM, request);
    ASSERT_TRUE(search.ran);
    EXPECT_EQ(state.Scope, nullptr); // the link is dropped after the read
    // Within the drift of a tracking mount between the sync and the read.
    EXPECT_NEAR(scope::CentreRaHours(search.centre), 5 + 35 / 60.0 + 17.3 / 3600, 1e-3);
    EXPECT_NEAR(scope::CentreDecDeg(search.centre), -(5 + 23 / 60.0 + 28 / 3600.0), 1e-3);
    EXPECT_TRUE(search.status.RAtext.starts_with("Scope RA: 05h 35m ")) << search.status.RAtext;
    EXPECT_TRUE(search.status.DECtext.starts_with("Scope DEC: -05d 23m ")) << search.status.DECtext;
    EXPECT_EQ(search.status.Consttext, "Const: Ori");
    EXPECT_EQ(Ids(search), (std::vector<std::string>{"M 42", "near"}));
}

} // namespace
