// selvane-cli slideshow on the built small edition; the mount is the real simulator (skipped
// without indiserver) or none at all.

#include "tests/app/CliRunner.h"
#include "tests/scope/IndiSimulator.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using clitest::CliRun;
using clitest::Split;

namespace {

const QString kPair = "Select * From SelvaneTable Where MessierNumber = 31 or MessierNumber = 32";

class SlideCommandTest : public ::testing::Test
{
protected:
    CliRun Run(const QStringList& args) { return clitest::RunCli(home.path(), args); }

    // CurrentRow and txtObjectID of an output line.
    static std::string RowObject(const CliRun& run, std::size_t line)
    {
        if (run.lines.size() <= line)
            return "<none>";
        const std::vector<std::string> cells = Split(run.lines[line], '\t');
        return cells.size() < 2 ? "<short>" : cells[0] + " " + cells[1];
    }

    static std::size_t Count(const std::string& text, const std::string& part)
    {
        std::size_t n = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++n;
        return n;
    }

    QTemporaryDir home;
};

TEST_F(SlideCommandTest, UsageAndAnEmptyTab)
{
    for (const QStringList& bad :
         {QStringList{"slideshow", "jump"}, QStringList{"slideshow", "pick"},
          QStringList{"slideshow", "pick", "0"}, QStringList{"slideshow", "log", "Bogus=1"},
          QStringList{"slideshow", "--sql", "x", "--build"},
          QStringList{"slideshow", "next", "--build"}})
        EXPECT_EQ(Run(bad).exit, 2) << bad.join(' ').toStdString();

    const CliRun empty =
        Run({"slideshow", "--sql", "Select * From SelvaneTable Where ObjectID = 'none'"});
    EXPECT_EQ(empty.exit, 1);
    EXPECT_TRUE(empty.lines.empty());
    EXPECT_NE(empty.err.find("No Objects Selected"), std::string::npos) << empty.err;
}

TEST_F(SlideCommandTest, NoDriverIsAFaultButTheShowGoesOn)
{
    const CliRun run = Run({"slideshow", "--sql", kPair, "next", "next", "on"});
    EXPECT_EQ(run.exit, 1);
    ASSERT_EQ(run.lines.size(), 5u) << run.err;
    EXPECT_EQ(run.lines[0], "Row\tObject\tStatus");
    EXPECT_EQ(RowObject(run, 1), "1 NGC 224 (M 31)");
    EXPECT_EQ(RowObject(run, 2), "2 NGC 221 (M 32)");
    EXPECT_EQ(RowObject(run, 3), "2 NGC 221 (M 32)");
    EXPECT_EQ(Split(run.lines[2], '\t').back(),
              "Shown 2 out of 2    Please Wait until scope stops until you go to another object");
    EXPECT_NE(run.err.find("The Slide Show is complete."), std::string::npos);
    EXPECT_NE(run.err.find("This feature is not supported with the scope you have selected."),
              std::string::npos);
}

TEST_F(SlideCommandTest, OnTheSimulatorWithTheKeypad)
{
    if (!inditest::ServerInstalled())
        GTEST_SKIP() << "indiserver is not installed";
    inditest::IndiSimulator sim;
    ASSERT_TRUE(sim.Start());
    const QString scope = QString::fromStdString("telescopetype=" + sim.Identifier());
    CliRun run = Run({"--set", scope, "--set", "keypad=True", "--set", "Dsound=True", "slideshow",
                      "--sql", kPair, "pick", "2", "prev", "on", "tick", "log", "cboSee=Unstable",
                      "txtDescription=Two galaxies", "off"});
    EXPECT_EQ(run.exit, 0) << run.err;
    ASSERT_EQ(run.lines.size(), 8u) << run.err;
    EXPECT_EQ(RowObject(run, 2), "2 NGC 221 (M 32)");
    EXPECT_EQ(RowObject(run, 3), "1 NGC 224 (M 31)");
    EXPECT_EQ(RowObject(run, 5), "1 NGC 224 (M 31)") << "a tick without a key moves nothing";
    EXPECT_NE(run.err.find("[I] Added: A logbook record has been recorded"), std::string::npos);
    // Speech is heard only when an espeak-ng voice is installed; its order holds either way.
    if (run.err.find("[speak]") != std::string::npos) {
        EXPECT_EQ(Count(run.err, "[speak] Slewing scope to the next object, "), 3u);
        const auto slewing = run.err.find("[speak] Slewing scope to the next object, NGC 224");
        ASSERT_NE(slewing, std::string::npos);
        EXPECT_NE(run.err.find("[speak] Target is Locked.", slewing), std::string::npos);
    }

    const CliRun log = Run({"log", "list", "--object", "NGC 224"});
    EXPECT_EQ(log.exit, 0) << log.err;
    bool found = false;
    for (const std::string& line : log.lines)
        found = found || line.find("Two galaxies") != std::string::npos;
    EXPECT_TRUE(found) << log.err;
}

} // namespace
