// selvane-cli grid, plan and sql run as a program on the built small edition (SelvPro13000.mdb)
// and the full one (SelvPro708000.mdb), in a fresh program folder with its own settings file.

#include "CliRunner.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>

#include <QFile>

#include <array>
#include <string>
#include <vector>

namespace {

using clitest::CliRun;
using clitest::Split;

class SelvaneCli : public ::testing::Test
{
protected:
    // Runs selvane-cli with the small edition and a fixed night at latitude 40.5 N, longitude
    // 74 W, then the given settings and command.
    CliRun Cli(const QStringList& args, const QString& lang = "C")
    {
        QStringList all{"--set", "cdDrive=" SELVANE_RESOURCES "/SelvPro13000.mdb",
                        "--set", "Plat=40.5", "--set", "PLon=74", "--set", "PTz=5",
                        "--set", "Ptime=22:00"};
        if (lang == "C")
            all << "--set" << "PDate=03/15/2024";
        return Run(all + args, lang);
    }

    // Runs selvane-cli in the test's program folder with its settings file, and nothing else.
    CliRun Run(const QStringList& args, const QString& lang = "C")
    {
        return clitest::RunCli(home.path(), args, lang);
    }

    QTemporaryDir home;
};

constexpr const char* Headers =
    "pln\timg\tobs\tObjectID\tOther ID\tType\tR.A.\tDec.\tEpoch\tAlt\tAzm\tRise\tTransit\tSet\t"
    "Const\tSize\tMag 1\tMag 2\tmcode\tGal Lon\tGal Lat\tPos Ang\tSep\tCatalog\tImage Path\t"
    "Herschel\tRecordID\tSky#\tUra#\tMillennium#\tDesc";

// The computed columns, by their grid column numbers (1 is the first cell of a line).
constexpr std::array<int, 8> Computed{10, 11, 12, 13, 14, 28, 29, 30};

TEST_F(SelvaneCli, MessierListWithItsComputedColumns)
{
    struct Case
    {
        const char* name;
        QStringList sets;
        std::array<bool, 8> filled; // Alt, Azm, Rise, Transit, Set, Sky#, Ura#, Millennium#
    };
    const QStringList allOn{"--set", "Prise=Y", "--set", "optimum=True", "--set",
                            "ShowCharts=True"};
    const std::vector<Case> cases{
        {"settings' defaults: altitude only", {}, {true, true, false, false, false, false,
                                                   false, false}},
        {"every computed column", allOn, {true, true, true, true, true, true, true, true}},
        {"turbo mode computes nothing", allOn + QStringList{"--set", "speed1=True"},
         {false, false, false, false, false, false, false, false}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CliRun run = Cli(c.sets + QStringList{"grid"});
        ASSERT_EQ(run.exit, 0) << run.err;
        ASSERT_EQ(run.lines.size(), 111u);
        EXPECT_EQ(run.lines[0], Headers);
        for (std::size_t i = 1; i < run.lines.size(); ++i) {
            const std::vector<std::string> cells = Split(run.lines[i], '\t');
            ASSERT_EQ(cells.size(), 31u) << run.lines[i];
            const auto cell = [&](int col) { return cells[static_cast<std::size_t>(col - 1)]; };
            // In Messier order; M 40 and M 45 have their Messier name as ObjectID.
            const std::string messier = "M " + std::to_string(i);
            EXPECT_TRUE(cell(5) == messier || cell(4) == messier) << run.lines[i];
            for (std::size_t k = 0; k < Computed.size(); ++k) {
                // A circumpolar object has no setting time.
                const bool expect = c.filled[k] && !(Computed[k] == 14 && cell(12) == "CPolar");
                EXPECT_EQ(!cell(Computed[k]).empty(), expect)
                    << cell(5) << " column " << Computed[k];
            }
        }
        EXPECT_EQ(run.err, "");
    }
}

// Values that pass through the whole load: the position columns of M 42 and its atlas pages,
// and a circumpolar object at this latitude.
TEST_F(SelvaneCli, KnownRowsOfTheList)
{
    const CliRun run = Cli({"--set", "Prise=Y", "--set", "ShowCharts=True", "grid"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_EQ(run.lines.size(), 111u);
    const auto cells = [&](std::size_t line, std::initializer_list<std::size_t> indexes) {
        const std::vector<std::string> all = Split(run.lines[line], '\t');
        std::string out;
        for (std::size_t i : indexes)
            out += (out.empty() ? "" : "|") + all.at(i);
        return out;
    };
    // Sky Atlas 2000.0 chart 11 and Uranometria 2000.0 chart 225 hold the Orion nebula.
    EXPECT_EQ(cells(42, {4, 5, 6, 7, 14, 27, 28}), "M 42|Nb|05 35 16.5|-05 23 22.8|Ori|11|225");
    EXPECT_EQ(cells(81, {4, 11, 13}), "M 81|CPolar|");
}

// The same night typed in the regional short date of the machine gives the same list.
TEST_F(SelvaneCli, ObservingDateInTheRegionalForm)
{
    const QStringList night{"--set", "Prise=Y", "--set", "optimum=True", "grid"};
    const CliRun c = Cli(night);
    const CliRun german = Cli(QStringList{"--set", "PDate=15.03.2024"} + night, "de_DE.UTF-8");
    ASSERT_EQ(c.exit, 0) << c.err;
    ASSERT_EQ(german.exit, 0) << german.err;
    EXPECT_EQ(german.lines, c.lines);
}

TEST_F(SelvaneCli, CountsQueriesAndExitStatus)
{
    struct Case
    {
        const char* name;
        QStringList args;
        int exit;
        std::vector<std::string> lines; // empty: not checked
        const char* err;                // a text stderr holds
    };
    const std::vector<Case> cases{
        {"count of the start list", {"grid", "--count"}, 0, {"110"}, ""},
        {"a query", {"grid", "--sql", "Select * From SelvaneTable Where MessierNumber = 31",
                     "--count"}, 0, {"1"}, ""},
        // No row is no error: the message goes to stderr, the header line still comes.
        {"no row", {"grid", "--sql", "Select * From SelvaneTable Where ID = -1"}, 0,
         {Headers}, "No Objects Found!"},
        {"with Palt off every altitude is 0", {"--set", "Palt=N", "--set", "Pminalt=1", "grid",
                                               "--count"}, 0, {"0"}, "No Objects Found!"},
        {"a query that fails", {"grid", "--sql", "Select * From Nowhere"}, 1, {},
         "no such table"},
        {"no object database", {"--set", "cdDrive=/nonexistent/SelvPro708000.mdb", "grid"}, 1,
         {}, "The object database could not be opened."},
        {"usage", {"grid", "--sql"}, 2, {}, "--sql needs a query"},
        {"unknown command", {"grids"}, 2, {}, "unknown command"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CliRun run = Cli(c.args);
        EXPECT_EQ(run.exit, c.exit) << run.err;
        if (!c.lines.empty()) {
            EXPECT_EQ(run.lines, c.lines);
        }
        if (c.exit != 0) {
            EXPECT_TRUE(run.lines.empty());
        }
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
    }
}

// The ObjectID each record of a shipped plan names: the older files keep NGC numbers bare.
std::vector<std::string> ShippedPlanObjects(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    std::vector<std::string> objects;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.trimmed().isEmpty())
            continue;
        std::string id = Split(line.toStdString(), ',')[0];
        id = id.substr(1, id.size() - 2);
        const bool bare = id.find_first_not_of("0123456789") == std::string::npos;
        objects.push_back(bare ? "NGC " + id : id);
    }
    return objects;
}

// Each shipped plan opened into tab 0: one row per entry the database holds, in the plan's
// order, marked in the plan column. The ids stored in these files belong to an older object
// table and are looked up again by name; the three Caldwell-catalogue entries of CALDWELL.PLN
// exist only in the full edition.
TEST_F(SelvaneCli, ShippedPlansGiveARowPerEntry)
{
    struct Case
    {
        const char* plan;
        const char* database;
        std::size_t rows;
    };
    const Case cases[] = {
        {"HCLUB1.PLN", "SelvPro708000.mdb", 200}, {"HCLUB2.PLN", "SelvPro708000.mdb", 200},
        {"CALDWELL.PLN", "SelvPro708000.mdb", 110}, {"123096.PLN", "SelvPro708000.mdb", 30},
        {"CALDWELL.PLN", "SelvPro13000.mdb", 107},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.plan) + " on " + c.database);
        const QString plan = QString(SELVANE_RESOURCES "/") + c.plan;
        const std::vector<std::string> objects = ShippedPlanObjects(plan);
        const CliRun run =
            Cli({"--set", QString("cdDrive=" SELVANE_RESOURCES "/") + c.database, "plan", plan});
        ASSERT_EQ(run.exit, 0) << run.err;
        EXPECT_EQ(run.err, "");
        ASSERT_EQ(run.lines.size(), c.rows + 1);
        EXPECT_EQ(run.lines[0], Headers);
        std::size_t next = 0; // rows come in plan order; missing entries are skipped
        for (std::size_t i = 1; i < run.lines.size(); ++i) {
            const std::vector<std::string> cells = Split(run.lines[i], '\t');
            ASSERT_EQ(cells.size(), 31u);
            EXPECT_EQ(cells[0], "X");
            while (next < objects.size() && objects[next] != cells[3])
                ++next;
            EXPECT_LT(next, objects.size()) << cells[3] << " out of the plan's order";
            ++next;
        }
    }
}

TEST_F(SelvaneCli, PlanAndSqlRefuseWhatTheyCannotRun)
{
    struct Case
    {
        const char* name;
        QStringList args;
        int exit;
        const char* err;
    };
    const std::vector<Case> cases{
        {"plan without a file", {"plan"}, 2, "plan needs a file"},
        {"plan with two files", {"plan", "a.pln", "b.pln"}, 2, "unknown argument \"b.pln\""},
        {"a missing plan file", {"plan", "/nonexistent/MY.PLN"}, 1, "File not found"},
        {"a plan without a database",
         {"--set", "cdDrive=/nonexistent/SelvPro708000.mdb", "plan",
          SELVANE_RESOURCES "/HCLUB1.PLN"},
         1, "The object database could not be opened."},
        {"sql with an argument", {"sql", "--count"}, 2, "unknown argument \"--count\" of sql"},
        {"sql without a database", {"--set", "cdDrive=/nonexistent/SelvPro708000.mdb", "sql"}, 1,
         "The object database could not be opened."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CliRun run = Cli(c.args);
        EXPECT_EQ(run.exit, c.exit) << run.err;
        EXPECT_TRUE(run.lines.empty());
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
    }
}

// sql prints the SQL line and the ORDER BY line of the filter settings; the SQL line, run as it
// stands, gives the list that grid --build loads from the same settings.
TEST_F(SelvaneCli, SqlPrintsWhatBuildRuns)
{
    struct Case
    {
        const char* name;
        QStringList sets;
        const char* orderBy;
    };
    const std::vector<Case> cases{
        {"catalogue, constellation, magnitude, sorted",
         {"--set", "ObCat=NGC 2000;", "--set", "Obcon=Ori-Orion;", "--set", "gMagU=9", "--set",
          "sort1=Magnitude", "--set", "Des1=D"},
         "ORDER BY Magnitude Desc"},
        {"a computed sort writes no ORDER BY",
         {"--set", "ObCat=NGC 2000;", "--set", "Obcon=Cyg-Cygnus;", "--set", "sort1=Altitude"},
         ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const CliRun sql = Cli(c.sets + QStringList{"sql"});
        ASSERT_EQ(sql.exit, 0) << sql.err;
        ASSERT_EQ(sql.lines.size(), 2u);
        EXPECT_TRUE(sql.lines[0].starts_with("Select * From SelvaneTable ")) << sql.lines[0];
        EXPECT_EQ(sql.lines[1], c.orderBy);
        EXPECT_TRUE(sql.lines[0].ends_with(sql.lines[1])) << sql.lines[0];

        const CliRun built = Cli(c.sets + QStringList{"grid", "--build"});
        const CliRun ran = Cli(c.sets + QStringList{"grid", "--sql",
                                                     QString::fromStdString(sql.lines[0])});
        ASSERT_EQ(built.exit, 0) << built.err;
        EXPECT_GT(built.lines.size(), 1u);
        EXPECT_EQ(ran.lines, built.lines);
    }
}

} // namespace

namespace {

struct Impossible
{
    const char* key;
    const char* value;
};

// Values no clock or site has, each with every computed column on; the rules' limits are
// checked with the rules themselves.
const Impossible kImpossible[] = {
    {"PDate", "02/29/2025"}, {"Ptime", "ten"},   {"Plat", "90"},  {"PLon", "400"},
    {"PTz", "30"},           {"PInterval", "0"}, {"PPre", "abc"},
};

const QStringList kEveryColumn{"--set", "Prise=Y",         "--set", "optimum=True",
                               "--set", "ShowCharts=True", "--set", "FIRST=False"};

} // namespace

// --set refuses a value its key's rule refuses: the rule's message naming the key, exit 2,
// nothing computed and nothing saved.
TEST_F(SelvaneCli, SetRefusesWhatNoClockOrSiteHas)
{
    for (const Impossible& bad : kImpossible) {
        const QString pair = QString("%1=%2").arg(bad.key, bad.value);
        SCOPED_TRACE(pair.toStdString());
        const CliRun run = Cli(kEveryColumn + QStringList{"--set", pair, "grid", "--count"});
        EXPECT_EQ(run.exit, 2);
        EXPECT_TRUE(run.lines.empty());
        EXPECT_EQ(run.err.rfind("selvane-cli: --set " + pair.toStdString() + ": ", 0), 0u)
            << run.err;
        EXPECT_FALSE(QFile::exists(home.filePath("s.ini")));
    }
}

// The same values written into the settings file by hand: the program starts, says once which
// value reset the preferences, and loads the list on the defaults; the next start is clean.
TEST_F(SelvaneCli, ImpossibleStoredValuesResetThePreferencesOnce)
{
    for (const Impossible& bad : kImpossible) {
        SCOPED_TRACE(std::string(bad.key) + "=" + bad.value);
        {
            QFile ini(home.filePath("s.ini"));
            ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
            ini.write(QString("[Preferences]\nFIRST=False\nPrise=Y\noptimum=True\n"
                              "ShowCharts=True\n%1=%2\n")
                          .arg(bad.key, bad.value)
                          .toUtf8());
        }
        const QStringList grid{"--set", "cdDrive=" SELVANE_RESOURCES "/SelvPro13000.mdb", "grid",
                               "--count"};
        const CliRun first = Run(grid);
        EXPECT_EQ(first.exit, 0) << first.err;
        EXPECT_EQ(first.lines, std::vector<std::string>{"110"});
        EXPECT_EQ(first.err.rfind(std::string("[I] Preferences Reset: The setting ") + bad.key +
                                      " held \"" + bad.value + "\", which Selvane cannot use.",
                                  0),
                  0u)
            << first.err;
        EXPECT_EQ(first.err.find("[I]"), first.err.rfind("[I]")) << first.err;
        const CliRun second = Run(grid);
        EXPECT_EQ(second.exit, 0);
        EXPECT_EQ(second.err, "");
        QFile::remove(home.filePath("s.ini"));
    }
}

// A fresh program folder made from the shipped files starts without an error: the list of the
// earlier logbook editions is shipped.
TEST_F(SelvaneCli, FreshStartWritesNoErrorLog)
{
    const CliRun run = Cli({"grid", "--count"});
    ASSERT_EQ(run.exit, 0) << run.err;
    QFile log(home.filePath("errorlog.txt"));
    if (log.open(QIODevice::ReadOnly)) {
        EXPECT_EQ(log.readAll().toStdString(), "");
    }
    EXPECT_TRUE(QFile::exists(home.filePath("convertlog.txt")));
}
