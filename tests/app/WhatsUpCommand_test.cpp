// selvane-cli whatsup run as a program on a copy of the built small edition, in a fresh program
// folder whose logbook holds two observing sites.

#include "CliRunner.h"

#include "data/Database.h"
#include "data/SettingsStore.h"
#include "spread/WhatsUpWizard.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using clitest::CliRun;
using clitest::Split;

const std::filesystem::path Resources(SELVANE_RESOURCES);

class WhatsUpCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        std::filesystem::copy_file(Resources / "SelvPro13000.mdb", Home() / "SelvPro13000.mdb");
        std::filesystem::copy_file(Resources / "Logbook2003-1.mdb", Home() / "Logbook2003-1.mdb");
        auto logbook = data::Database::Open(Home() / "Logbook2003-1.mdb");
        logbook->Execute("Insert Into ObservingSites (ProfileName, Latitude, Longitude, "
                         "EastWest, TimeZone) Values ('Backyard', 40.5, 74, 'W', 5), "
                         "('La Palma', 28.76, 17.88, 'W', 0)");
    }

    std::filesystem::path Home() const { return home.path().toStdString(); }

    // selvane-cli on the copy, at latitude 40.5 N, longitude 74 W, zone 5, 22:00 on a fixed
    // date, then the given settings and command.
    CliRun Cli(const QStringList& args)
    {
        const QString db = QString::fromStdString((Home() / "SelvPro13000.mdb").string());
        const QStringList all{"--set", "cdDrive=" + db, "--set", "Plat=40.5",
                              "--set", "PLon=74",       "--set", "PTz=5",
                              "--set", "Ptime=22:00",   "--set", "PDate=03/15/2024"};
        return clitest::RunCli(home.path(), all + args);
    }

    // The Key/Value lines of --state.
    static std::map<std::string, std::string> State(const CliRun& run)
    {
        std::map<std::string, std::string> state;
        EXPECT_FALSE(run.lines.empty());
        if (run.lines.empty())
            return state;
        EXPECT_EQ(run.lines.front(), "Key\tValue");
        for (std::size_t i = 1; i < run.lines.size(); ++i) {
            const std::size_t tab = run.lines[i].find('\t');
            state[run.lines[i].substr(0, tab)] = run.lines[i].substr(tab + 1);
        }
        return state;
    }

    std::string Stored(const std::string& key) const
    {
        return data::SettingsStore(Home() / "s.ini").Get(key, "<missing>");
    }

    QTemporaryDir home;
};

std::string Upper(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

std::string Lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

constexpr const char* StartSql = "Select * From SelvaneTable Where MessierNumber > 0 and catalog "
                                 "= '2000' order by MessierNumber";

// "All Constellations", then 88 entries "Key-Name" in the order of their keys, each key one
// capital and two small letters, with the names' old spellings kept. The keys are the IAU
// abbreviations of the boundary table and the constellations the built database names, each
// compared without regard to case as the database compares them.
TEST(WizardConstellationList, KeysAreTheSkysAndTheDatabasesConstellations)
{
    const auto upper = Upper;
    const std::vector<std::string>& list = spread::WizardConstellationList();
    ASSERT_EQ(list.size(), 89u);
    EXPECT_EQ(list.front(), "All Constellations");
    std::vector<std::string> ordered;
    std::set<std::string> keys;
    for (std::size_t i = 1; i < list.size(); ++i) {
        const std::string key = list[i].substr(0, 3);
        EXPECT_EQ(list[i][3], '-') << list[i];
        EXPECT_EQ(key, key.substr(0, 1) + Lower(key.substr(1))) << list[i];
        EXPECT_EQ(key, Upper(key.substr(0, 1)) + key.substr(1)) << list[i];
        ordered.push_back(key);
        keys.insert(upper(key));
    }
    EXPECT_TRUE(std::is_sorted(ordered.begin(), ordered.end()));
    EXPECT_EQ(keys.size(), 88u);
    for (const char* kept : {"Ant-Antilia", "Cha-Chamaelon", "Psa-Piscis Australis", "Col-Columbia",
                             "Cvn-Canes Venatici"})
        EXPECT_NE(std::find(list.begin(), list.end(), kept), list.end()) << kept;

    std::set<std::string> boundaries;
    std::ifstream file(Resources / "constellation_data_roman87.dat");
    ASSERT_TRUE(file) << "build the resources target first";
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        std::string raLow, raHigh, decLow, abbreviation;
        fields >> raLow >> raHigh >> decLow >> abbreviation;
        boundaries.insert(upper(abbreviation));
    }
    EXPECT_EQ(keys, boundaries);

    std::set<std::string> inDatabase;
    auto db = data::Database::Open(Resources / "SelvPro13000.mdb");
    for (auto rs =
             db->OpenRecordset("Select distinct Constellation From SelvaneTable", data::Snapshot);
         !rs.Eof(); rs.MoveNext())
        inDatabase.insert(upper(rs.Fields(0).Value()));
    EXPECT_EQ(keys, inDatabase);
}

// Finish with the apply box off and on: --state in its order, the wizard's SQL, and the
// values put back or kept; kept values are not written to the settings file, the apply box is.
TEST_F(WhatsUpCli, FinishPutsBackOrKeepsTheValues)
{
    const QStringList pages{"whatsup",  "--con",  "Ori-Orion",  "--con",       "And-Andromeda",
                            "--type",   "Galaxy", "--sort",     "Magnitude:D", "--sort",
                            "Altitude", "--date", "03/20/2024", "--time",      "9:30",
                            "--mag",    ":10",    "--blank1",   "Y",           "--minalt",
                            "15",       "--state"};
    const std::string sql =
        "Select * From SelvaneTable  WHERE (Constellation = 'And'  or Constellation = 'Ori' ) "
        "and ( ObjectType = 'Gx' )  and ((Magnitude >= -1 and Magnitude <= 10) or "
        "isnull(Magnitude))  and ((Magnitude2 >= -1 and Magnitude2 <= 999) or "
        "isnull(Magnitude2)) ORDER BY Magnitude Desc";

    const CliRun off = Cli(pages);
    ASSERT_EQ(off.exit, 0) << off.err;
    std::vector<std::string> keys;
    for (std::size_t i = 1; i < off.lines.size(); ++i)
        keys.push_back(Split(off.lines[i], '\t')[0]);
    EXPECT_EQ(keys, (std::vector<std::string>{"gMagL",   "gMagL2",     "gMagU", "gMagU2", "Obcon",
                                              "Obtod",   "ObCat",      "sort1", "sort2",  "sort3",
                                              "Des1",    "Des2",       "Des3",  "PDate",  "Plat",
                                              "PLon",    "PTz",        "Ptime", "PIB",    "PIB2",
                                              "Pminalt", "wizapppref", "wuw",   "SQL"}));
    const std::map<std::string, std::string> before{{"gMagL", "-1"},
                                                    {"gMagL2", "-1"},
                                                    {"gMagU", "999"},
                                                    {"gMagU2", "999"},
                                                    {"Obcon", "Ori-Orion;"},
                                                    {"Obtod", "All Types"},
                                                    {"ObCat", "NGC 2000;"},
                                                    {"sort1", ""},
                                                    {"sort2", ""},
                                                    {"sort3", ""},
                                                    {"Des1", ""},
                                                    {"Des2", ""},
                                                    {"Des3", ""},
                                                    {"PDate", "03/15/2024"},
                                                    {"Plat", "40.5"},
                                                    {"PLon", "74"},
                                                    {"PTz", "5"},
                                                    {"Ptime", "22:00"},
                                                    {"PIB", "N"},
                                                    {"PIB2", "Y"},
                                                    {"Pminalt", ""},
                                                    {"wizapppref", "False"},
                                                    {"wuw", "True"},
                                                    {"SQL", sql}};
    EXPECT_EQ(State(off), before);
    EXPECT_EQ(Stored("wuw"), "True");

    const CliRun on = Cli(pages + QStringList{"--apply"});
    ASSERT_EQ(on.exit, 0) << on.err;
    std::map<std::string, std::string> kept = before;
    kept["gMagL"] = "";
    kept["gMagU"] = "10";
    kept["Obcon"] = "And-Andromeda;Ori-Orion;";
    kept["Obtod"] = "Galaxy;";
    kept["ObCat"] = "";
    kept["sort1"] = "Magnitude";
    kept["Des1"] = "D";
    kept["sort2"] = "Altitude";
    kept["PDate"] = "03/20/2024";
    kept["Ptime"] = "09:30";
    kept["PIB"] = "Y";
    kept["Pminalt"] = "15";
    kept["wizapppref"] = "True";
    EXPECT_EQ(State(on), kept);
    EXPECT_EQ(Stored("wizapppref"), "True");
    EXPECT_EQ(Stored("Obcon"), "Ori-Orion;");
    EXPECT_EQ(Stored("gMagU"), "999");

    // The box stays on for the next run, which therefore keeps its values too.
    const CliRun again = Cli({"whatsup", "--con", "Cyg-Cygnus", "--state"});
    ASSERT_EQ(again.exit, 0) << again.err;
    EXPECT_EQ(State(again)["Obcon"], "Cyg-Cygnus;");
    const CliRun cleared = Cli({"whatsup", "--no-apply", "--con", "Cyg-Cygnus", "--state"});
    EXPECT_EQ(State(cleared)["Obcon"], "Ori-Orion;");
    EXPECT_EQ(Stored("wizapppref"), "False");
}

// The tab shows what grid loads from the wizard's SQL with the wizard's settings, row for row,
// and every row keeps to the answers.
TEST_F(WhatsUpCli, TheTabHoldsTheWizardsRows)
{
    const QStringList pages{"whatsup",       "--tab",     "3",
                            "--con",         "Ori-Orion", "--con",
                            "Mon-Monoceros", "--type",    "Open star cluster",
                            "--sort",        "Magnitude", "--date",
                            "03/15/2024",    "--mag",     "-1:9",
                            "--minalt",      "20"};
    const CliRun rows = Cli(pages);
    ASSERT_EQ(rows.exit, 0) << rows.err;
    ASSERT_GT(rows.lines.size(), 5u);
    const CliRun state = Cli(pages + QStringList{"--state"});
    const std::string sql = State(state)["SQL"];
    const CliRun grid = Cli({"--set", "sort1=Magnitude", "--set", "Pminalt=20", "grid", "--sql",
                             QString::fromStdString(sql)});
    ASSERT_EQ(grid.exit, 0) << grid.err;
    EXPECT_EQ(rows.lines, grid.lines);

    double lastMagnitude = -99;
    for (std::size_t i = 1; i < rows.lines.size(); ++i) {
        const std::vector<std::string> cells = Split(rows.lines[i], '\t');
        SCOPED_TRACE(rows.lines[i]);
        ASSERT_EQ(cells.size(), 31u);
        EXPECT_TRUE(cells[14] == "Ori" || cells[14] == "Mon");
        EXPECT_EQ(cells[5], "OC");
        EXPECT_GE(std::stod(cells[9]), 20);
        const double magnitude = std::stod(cells[16]);
        EXPECT_LE(magnitude, 9);
        EXPECT_GE(magnitude, lastMagnitude);
        lastMagnitude = magnitude;
    }
}

// Cancel on each page: the lists the pages took before it stay in force, nothing else
// changes, and the tab keeps the start list.
TEST_F(WhatsUpCli, CancelOnEachPage)
{
    for (int page = 1; page <= 6; ++page) {
        SCOPED_TRACE(page);
        const QStringList pages{"--set",
                                "ObCat=Caldwell;",
                                "whatsup",
                                "--con",
                                "And-Andromeda",
                                "--type",
                                "Galaxy",
                                "--cat",
                                "NGC 2000",
                                "--date",
                                "03/20/2024",
                                "--cancel-at",
                                QString::number(page)};
        const CliRun run = Cli(pages + QStringList{"--state"});
        ASSERT_EQ(run.exit, 0) << run.err;
        std::map<std::string, std::string> state = State(run);
        EXPECT_EQ(state["Obcon"], page > 1 ? "And-Andromeda;" : "Ori-Orion;");
        EXPECT_EQ(state["Obtod"], page > 2 ? "Galaxy;" : "All Types");
        EXPECT_EQ(state["ObCat"], page > 4 ? "NGC 2000;" : "Caldwell;");
        EXPECT_EQ(state["PDate"], page > 5 ? "03/20/2024" : "03/15/2024");
        EXPECT_EQ(state["SQL"], StartSql);
        const CliRun tab = Cli(pages);
        EXPECT_EQ(tab.lines.size(), 111u); // the header and the 110 Messier objects
    }
}

// Page 5's site fills latitude, longitude and zone; with the apply box off all three go back.
TEST_F(WhatsUpCli, SiteOfPageFive)
{
    const QStringList pages{"whatsup",    "--site", "la palma", "--date",
                            "2024-03-20", "--time", "",         "--state"};
    std::map<std::string, std::string> kept = State(Cli(pages + QStringList{"--apply"}));
    EXPECT_EQ(kept["Plat"], "28.76");
    EXPECT_EQ(kept["PLon"], "17.88");
    EXPECT_EQ(kept["PTz"], "0");
    EXPECT_EQ(kept["Ptime"], "22:00"); // an empty time box keeps it
    EXPECT_EQ(kept["PDate"], "2024-03-20");
    std::map<std::string, std::string> back = State(Cli(pages + QStringList{"--no-apply"}));
    EXPECT_EQ(back["Plat"], "40.5");
    EXPECT_EQ(back["PLon"], "74");
    EXPECT_EQ(back["PTz"], "5");
    EXPECT_EQ(back["PDate"], "03/15/2024");
}

// The What's Up lists without pages: Messier by constellation (PmSort 4), Herschel by altitude
// (PsSort 1, done by the grid), each above the horizon and at most magnitude 8.
TEST_F(WhatsUpCli, MessierAndHerschelLists)
{
    const CliRun messier = Cli({"whatsup", "--messier", "--tab", "2", "--state"});
    ASSERT_EQ(messier.exit, 0) << messier.err;
    EXPECT_EQ(State(messier)["SQL"], "Select * From SelvaneTable Where MessierNumber > 0 and "
                                     "catalog = '2000' and Magnitude <= 8 ORDER BY "
                                     "Constellation Asc");
    EXPECT_EQ(State(messier)["sort1"], "");

    for (const char* list : {"--messier", "--herschel"}) {
        SCOPED_TRACE(list);
        const CliRun run = Cli({"--set", "Pssorto=D", "whatsup", list});
        ASSERT_EQ(run.exit, 0) << run.err;
        ASSERT_GT(run.lines.size(), 10u);
        std::string lastConstellation;
        double lastAltitude = 90;
        for (std::size_t i = 1; i < run.lines.size(); ++i) {
            const std::vector<std::string> cells = Split(run.lines[i], '\t');
            SCOPED_TRACE(run.lines[i]);
            EXPECT_GE(std::stod(cells[9]), 0);
            EXPECT_LE(std::stod(cells[16]), 8);
            if (std::string(list) == "--messier") {
                // The database orders text without regard to case.
                const std::string constellation = Upper(cells[14]);
                EXPECT_LE(lastConstellation, constellation);
                lastConstellation = constellation;
            } else {
                EXPECT_LE(std::stod(cells[9]), lastAltitude);
                lastAltitude = std::stod(cells[9]);
            }
        }
    }
}

// Usage errors name the bad answer, site, sort or page (exit 2); the tab guard and an
// unreadable date are errors of the run (exit 1); the new settings pass --set by their type.
TEST_F(WhatsUpCli, UsageErrorsAndRefusals)
{
    struct Case
    {
        QStringList args;
        int exit;
        const char* err;
    };
    const Case cases[] = {
        {{"whatsup", "--con", "Ori"}, 2, "the constellations page does not list \"Ori\""},
        {{"whatsup", "--type", "Galaxies"}, 2, "the object types page does not list \"Galaxies\""},
        {{"whatsup", "--cat", "Caldwell"}, 2, "the catalogs page does not list \"Caldwell\""},
        {{"whatsup", "--site", "Nowhere"}, 2, "unknown site \"Nowhere\""},
        {{"whatsup", "--sort", "Brightness"}, 2, "unknown sort name \"Brightness\""},
        {{"whatsup", "--sort", "Rise", "--sort", "Set", "--sort", "Sky#", "--sort", "Ura#"},
         2,
         "a fourth --sort \"Ura#\""},
        {{"whatsup", "--cancel-at", "0"}, 2, "--cancel-at needs a page from 1 to 6, not \"0\""},
        {{"whatsup", "--cancel-at", "7"}, 2, "--cancel-at needs a page from 1 to 6, not \"7\""},
        {{"whatsup", "--blank2", "yes"}, 2, "--blank2 takes Y or N, not \"yes\""},
        {{"whatsup", "--mag", "10"}, 2, "--mag needs LOW:HIGH, not \"10\""},
        {{"whatsup", "--herschel", "--minalt", "10"}, 2, "--herschel opens no wizard page"},
        {{"whatsup", "--tab"}, 2, "--tab needs a value"},
        {{"whatsup", "--tab", "5"}, 1, "[I] Invalid Usage!: Please select a spreadsheet tab first"},
        {{"whatsup", "--messier", "--tab", "-1"},
         1,
         "[I] Invalid Usage!: Please select a spreadsheet tab first"},
        {{"whatsup", "--date", "02/30/2024"}, 1, "Type mismatch"},
        {{"--set", "wuw=perhaps", "whatsup"}, 2, "wuw"},
        {{"--set", "wizapppref=True", "--set", "wuw=False", "whatsup", "--con", "Lyr-Lyra",
          "--date", "03/15/2024", "--state"},
         0,
         ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CliRun run = Cli(c.args);
        EXPECT_EQ(run.exit, c.exit) << run.err;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
        if (c.exit != 0)
            EXPECT_TRUE(run.lines.empty());
        else {
            // wizapppref set on the command line keeps the wizard's values.
            std::map<std::string, std::string> state = State(run);
            EXPECT_EQ(state["Obcon"], "Lyr-Lyra;");
            EXPECT_EQ(state["wuw"], "True");
        }
    }
}

} // namespace
