// selvane-cli ntos, identify and target run as a program on the built small edition; identify
// also at Debian's simulator mount (skipped without indiserver).

#include "CliRunner.h"

#include "../scope/IndiSimulator.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using clitest::CliRun;
using clitest::Split;

const char* kOrion = "Select * From SelvaneTable Where ObjectID = 'NGC 1976'";
const char* kHeader = "pln\tObject ID\tOther ID\tAng Sep\tCatalog\tMag\tConst\tType\tID";

class TargetCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        QFile settings(home.path() + "/s.ini");
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write("[Preferences]\nFIRST=False\n");
    }

    CliRun Run(const QStringList& args) { return clitest::RunCli(home.path(), args); }

    static std::vector<std::string> Column(const CliRun& run, std::size_t col, std::size_t from)
    {
        std::vector<std::string> cells;
        for (std::size_t i = from; i < run.lines.size(); ++i)
            cells.push_back(Split(run.lines[i], '\t').at(col));
        return cells;
    }

    QTemporaryDir home;
};

TEST_F(TargetCommandTest, UsageErrors)
{
    for (const QStringList& bad : {
             QStringList{"ntos", "--degrees", "x"},
             QStringList{"ntos", "--degrees"},
             QStringList{"ntos", "--row", "0"},
             QStringList{"ntos", "--sql", "x", "--build"},
             QStringList{"ntos", "--scope"},
             QStringList{"identify", "--row", "2"},
             QStringList{"identify", "--no-home"},
             QStringList{"target", "--enable"},
             QStringList{"target", "--degrees", "2"},
             QStringList{"target", "extra"},
         })
        EXPECT_EQ(Run(bad).exit, 2) << bad.join(' ').toStdString();
}

TEST_F(TargetCommandTest, NtosAroundTheOrionNebula)
{
    const CliRun run = Run({"ntos", "--sql", kOrion, "--degrees", "1"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_GE(run.lines.size(), 4u);
    EXPECT_EQ(run.lines[0], "Target RA: 05h 35m 17s\tTarget DEC: -05d 23m 23s\tConst: Ori\t"
                            "5.587916667\t-5.389666667");
    EXPECT_EQ(run.lines[1], kHeader);
    EXPECT_EQ(Split(run.lines[2], '\t'),
              (std::vector<std::string>{"", "NGC 1976", "M 42", ".0", "2000", "4.0", "Ori", "Nb",
                                        "2070"}));
    // Nearest first by value, all within the radius, all in Orion, and the hint once.
    double last = 0;
    for (const std::string& sep : Column(run, 3, 2)) {
        const double value = std::strtod(sep.c_str(), nullptr);
        EXPECT_GE(value, last) << sep;
        EXPECT_LE(value, 1.05) << sep;
        last = value;
    }
    for (const std::string& constellation : Column(run, 6, 2))
        EXPECT_EQ(constellation, "Ori");
    EXPECT_NE(run.err.find("[I] Home Target Set: You can now turn on targeting"),
              std::string::npos);

    // A radius typed as ".15" keeps the nebula and M 43 beside it.
    const CliRun narrow = Run({"ntos", "--sql", kOrion, "--degrees", ".15"});
    EXPECT_EQ(Column(narrow, 1, 2), (std::vector<std::string>{"NGC 1976", "NGC 1982"}));
}

TEST_F(TargetCommandTest, NtosMarksThePlanAndRefusesWithoutHome)
{
    const QString plan = home.path() + "/orion.pln";
    QFile file(plan);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("\"NGC 1982\",\"2000\",2076,\"\"\r\n\"NGC 1976\",\"2000\",2070,\"look\"\r\n");
    file.close();
    const CliRun run = Run({"ntos", "--plan", plan, "--row", "2", "--degrees", "0.15"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(Column(run, 0, 2), (std::vector<std::string>{"X*", "X"}));

    for (const QStringList& refused :
         {QStringList{"ntos", "--no-home"},
          QStringList{"ntos", "--sql", "Select * From SelvaneTable Where ObjectID = 'none'"}}) {
        const CliRun none = Run(refused);
        EXPECT_EQ(none.exit, 1) << refused.join(' ').toStdString();
        EXPECT_TRUE(none.lines.empty());
        EXPECT_NE(none.err.find("[I] Target Object Not Specified: Please right click on an "
                                "object in the spreadsheet"),
                  std::string::npos)
            << none.err;
    }
}

TEST_F(TargetCommandTest, TargetFillsSepAndItsLimitsFilterIt)
{
    const CliRun run = Run({"target", "--row", "1"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_GE(run.lines.size(), 3u);
    EXPECT_EQ(Split(run.lines[0], '\t').at(22), "Sep");
    EXPECT_EQ(Split(run.lines[1], '\t').at(22), "0.0");   // the target itself
    EXPECT_EQ(Split(run.lines[2], '\t').at(22), "118.2"); // M 1 to M 2

    const CliRun limited = clitest::RunCli(
        home.path(), {"--set", "gSepL=10", "--set", "gSepH=15", "target", "--then-sql",
                      "Select * From SelvaneTable Where Catalog = '2000' And Constellation = "
                      "'Tau' order by ObjectID"});
    ASSERT_EQ(limited.exit, 0) << limited.err;
    ASSERT_GE(limited.lines.size(), 2u);
    for (const std::string& sep : Column(limited, 22, 1)) {
        const double value = std::strtod(sep.c_str(), nullptr);
        EXPECT_TRUE(value >= 10 && value <= 15) << sep;
    }

    const CliRun scope = Run({"target", "--scope"});
    EXPECT_EQ(scope.exit, 1);
    EXPECT_TRUE(scope.lines.empty());
    EXPECT_NE(scope.err.find("[E] Scope Not Enabled: You have the scope checkbox selected"),
              std::string::npos);
}

TEST_F(TargetCommandTest, IdentifyWithoutAndWithAMount)
{
    const CliRun none = Run({"identify"});
    EXPECT_EQ(none.exit, 1);
    EXPECT_TRUE(none.lines.empty());

    if (!inditest::ServerInstalled())
        GTEST_SKIP() << "indiserver and indi_simulator_telescope are not installed";
    inditest::IndiSimulator simulator;
    ASSERT_TRUE(simulator.Start());
    const CliRun run = clitest::RunCli(
        home.path(), {"--set", "telescopetype=" + QString::fromStdString(simulator.Identifier()),
                      "identify", "--degrees", "3"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_GE(run.lines.size(), 2u);
    const std::vector<std::string> status = Split(run.lines[0], '\t');
    ASSERT_EQ(status.size(), 5u);
    EXPECT_TRUE(status[0].starts_with("Scope RA: ")) << status[0];
    EXPECT_TRUE(status[1].starts_with("Scope DEC: ")) << status[1];
    EXPECT_TRUE(status[2].starts_with("Const: ")) << status[2];
    EXPECT_EQ(run.lines[1], kHeader);
}

} // namespace
