// selvane-cli whatsup run as a program on a copy of the built small edition, in a fresh program
// folder whose logbook holds two observing sites.

#include "CliRunner.h"

#include "data/Database.h"
#include "data/SettingsStore.h"
#include "spread/WhatsUpWizard.h"

#include <gtest/gtest.h>

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
using State = std::map<std::string, std::string>;

const std::filesystem::path Resources(SELVANE_RESOURCES);

std::string Upper(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

class WhatsUpCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        std::filesystem::copy_file(Resources / "SelvPro13000.mdb", Home() / "SelvPro13000.mdb");
        std::filesystem::copy_file(Resources / "Logbook2003-1.mdb", Home() / "Logbook2003-1.mdb");
        data::Database::Open(Home() / "Logbook2003-1.mdb")
            ->Execute("Insert Into ObservingSites (ProfileName, Latitude, Longitude, EastWest, "
                      "TimeZone) Values ('Backyard', 40.5, 74, 'W', 5), ('La Palma', 28.76, "
                      "17.88, 'W', 0)");
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
    static State StateOf(const CliRun& run)
    {
        State state;
        EXPECT_EQ(run.exit, 0) << run.err;
        EXPECT_EQ(run.lines.empty() ? "" : run.lines.front(), "Key\tValue");
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

// The keys of page 1 are the IAU abbreviations of the boundary table and the constellations
// the built database names, each compared without regard to case as the database compares them.
TEST(WizardConstellationList, KeysAreTheSkysAndTheDatabasesConstellations)
{
    const std::vector<std::string>& list = spread::WizardConstellationList();
    ASSERT_EQ(list.size(), 89u);
    EXPECT_EQ(list.front(), "All Constellations");
    std::set<std::string> keys;
    for (std::size_t i = 1; i < list.size(); ++i)
        keys.insert(Upper(list[i].substr(0, 3)));

    std::set<std::string> boundaries;
    std::ifstream file(Resources / "constellation_data_roman87.dat");
    ASSERT_TRUE(file) << "build the resources target first";
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::string raLow, raHigh, decLow, abbreviation;
        if (line[0] != '#' && fields >> raLow >> raHigh >> decLow >> abbreviation)
            boundaries.insert(Upper(abbreviation));
    }
    EXPECT_EQ(keys, boundaries);

    std::set<std::string> inDatabase;
    auto db = data::Database::Open(Resources / "SelvPro13000.mdb");
    for (auto rs =
             db->OpenRecordset("Select distinct Constellation From SelvaneTable", data::Snapshot);
         !rs.Eof(); rs.MoveNext())
        inDatabase.insert(Upper(rs.Fields(0).Value()));
    EXPECT_EQ(keys, inDatabase);
}

// Finish with the apply box off and on, against the values the wizard opened with (a Cancel
// on page 1): --state in its order, the wizard's SQL either way, the values put back or kept.
// Kept values are not written to the settings file; the apply box is, and holds for the next run.
TEST_F(WhatsUpCli, FinishPutsBackOrKeepsTheValues)
{
    const State start = StateOf(Cli({"whatsup", "--cancel-at", "1", "--state"}));
    const QStringList pages{"whatsup",  "--con",    "Ori-Orion", "--con",       "And-Andromeda",
                            "--type",   "Galaxy",   "--sort",    "Magnitude:D", "--sort",
                            "Altitude", "--site",   "la palma",  "--date",      "03/20/2024",
                            "--time",   "",         "--mag",     ":10",         "--blank1",
                            "Y",        "--minalt", "15",        "--state"};
    const std::string sql =
        "Select * From SelvaneTable  WHERE (Constellation = 'And'  or Constellation = 'Ori' ) "
        "and ( ObjectType = 'Gx' )  and ((Magnitude >= -1 and Magnitude <= 10) or "
        "isnull(Magnitude))  and ((Magnitude2 >= -1 and Magnitude2 <= 999) or "
        "isnull(Magnitude2)) ORDER BY Magnitude Desc";

    const CliRun off = Cli(pages);
    std::vector<std::string> keys;
    for (std::size_t i = 1; i < off.lines.size(); ++i)
        keys.push_back(Split(off.lines[i], '\t')[0]);
    EXPECT_EQ(keys, (std::vector<std::string>{"gMagL",   "gMagL2",     "gMagU", "gMagU2", "Obcon",
                                              "Obtod",   "ObCat",      "sort1", "sort2",  "sort3",
                                              "Des1",    "Des2",       "Des3",  "PDate",  "Plat",
                                              "PLon",    "PTz",        "Ptime", "PIB",    "PIB2",
                                              "Pminalt", "wizapppref", "wuw",   "SQL"}));
    State back = start;
    back["SQL"] = sql;
    EXPECT_EQ(StateOf(off), back);
    EXPECT_EQ(start.at("Obcon"), "Ori-Orion;");
    EXPECT_EQ(start.at("PLon"), "74");

    State kept = back;
    for (const std::string change :
         {"gMagL=", "gMagU=10", "Obcon=And-Andromeda;Ori-Orion;", "Obtod=Galaxy;",
          "ObCat=", "sort1=Magnitude", "Des1=D", "sort2=Altitude", "PDate=03/20/2024", "Plat=28.76",
          "PLon=17.88", "PTz=0", "PIB=Y", "Pminalt=15", "wizapppref=True"})
        kept[change.substr(0, change.find('='))] = change.substr(change.find('=') + 1);
    EXPECT_EQ(StateOf(Cli(pages + QStringList{"--apply"})), kept); // Ptime: the box was empty
    EXPECT_EQ(Stored("wizapppref"), "True");
    EXPECT_EQ(Stored("Obcon"), "Ori-Orion;");
    EXPECT_EQ(Stored("wuw"), "True");

    EXPECT_EQ(StateOf(Cli({"whatsup", "--con", "Cyg-Cygnus", "--state"}))["Obcon"], "Cyg-Cygnus;");
    const CliRun cleared = Cli({"whatsup", "--no-apply", "--con", "Cyg-Cygnus", "--state"});
    EXPECT_EQ(StateOf(cleared)["Obcon"], "Ori-Orion;");
    EXPECT_EQ(Stored("wizapppref"), "False");
}

// The What's Up lists without pages: Messier by constellation (PmSort 4), Herschel by altitude
// (PsSort 1, done by the grid, here descending), each above the horizon and at most magnitude 8.
TEST_F(WhatsUpCli, MessierAndHerschelLists)
{
    const State messier = StateOf(Cli({"whatsup", "--messier", "--tab", "2", "--state"}));
    EXPECT_EQ(messier.at("SQL"), "Select * From SelvaneTable Where MessierNumber > 0 and catalog "
                                 "= '2000' and Magnitude <= 8 ORDER BY Constellation Asc");
    EXPECT_EQ(messier.at("sort1"), "");

    const CliRun run = Cli({"--set", "Pssorto=D", "whatsup", "--herschel"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_GT(run.lines.size(), 10u);
    double lastAltitude = 90;
    for (std::size_t i = 1; i < run.lines.size(); ++i) {
        const std::vector<std::string> cells = Split(run.lines[i], '\t');
        SCOPED_TRACE(run.lines[i]);
        EXPECT_GE(std::stod(cells[9]), 0);
        EXPECT_LE(std::stod(cells[9]), lastAltitude);
        EXPECT_LE(std::stod(cells[16]), 8);
        lastAltitude = std::stod(cells[9]);
    }
}

// Usage errors name the bad answer, site, sort or page (exit 2); the tab guard and an
// unreadable date are errors of the run (exit 1). Neither prints a tab.
TEST_F(WhatsUpCli, UsageErrorsAndRefusals)
{
    const char* const tabGuard = "[I] Invalid Usage!: Please select a spreadsheet tab first";
    const struct
    {
        QStringList args;
        int exit;
        const char* err;
    } cases[] = {
        {{"--con", "Ori"}, 2, "the constellations page does not list \"Ori\""},
        {{"--type", "Galaxies"}, 2, "the object types page does not list \"Galaxies\""},
        {{"--cat", "Caldwell"}, 2, "the catalogs page does not list \"Caldwell\""},
        {{"--site", "Nowhere"}, 2, "unknown site \"Nowhere\""},
        {{"--sort", "Brightness"}, 2, "unknown sort name \"Brightness\""},
        {{"--sort", "Rise", "--sort", "Set", "--sort", "Sky#", "--sort", "Ura#"},
         2,
         "a fourth --sort \"Ura#\""},
        {{"--cancel-at", "0"}, 2, "--cancel-at needs a page from 1 to 6, not \"0\""},
        {{"--cancel-at", "7"}, 2, "--cancel-at needs a page from 1 to 6, not \"7\""},
        {{"--herschel", "--minalt", "10"}, 2, "--herschel opens no wizard page"},
        {{"--tab", "5"}, 1, tabGuard},
        {{"--messier", "--tab", "-1"}, 1, tabGuard},
        {{"--date", "02/30/2024"}, 1, "Type mismatch"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CliRun run = Cli(QStringList{"whatsup"} + c.args);
        EXPECT_EQ(run.exit, c.exit);
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
        EXPECT_TRUE(run.lines.empty());
    }
}

} // namespace
