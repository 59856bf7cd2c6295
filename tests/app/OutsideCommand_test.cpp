// selvane-cli outside run as a program on a fresh program folder: a night at the telescope
// scripted on stdin, the exit statuses of faulty steps and of scripts that name unknown things.

#include "CliRunner.h"

#include <QDate>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using clitest::CliRun;

class OutsideCli : public ::testing::Test
{
protected:
    CliRun Outside(const std::string& script, QStringList args = {})
    {
        QProcess process;
        clitest::StartCli(process, home.path(), QStringList{"outside"} + args);
        process.write(QByteArray::fromStdString(script));
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(120000));
        return clitest::Finish(process);
    }

    // The lines of a run from the first one equal to `from`, `count` of them.
    static std::vector<std::string> Part(const CliRun& run, const std::string& from, int count)
    {
        const auto at = std::find(run.lines.begin(), run.lines.end(), from);
        if (at == run.lines.end() || run.lines.end() - at < count)
            return {};
        return {at, at + count};
    }

    const std::string today = QDate::currentDate().toString(Qt::ISODate).toStdString();
    const std::string twoDaysAgo =
        QDate::currentDate().addDays(-2).toString(Qt::ISODate).toStdString();
    QTemporaryDir home;
};

TEST_F(OutsideCli, AScriptedNight)
{
    CliRun run = Outside("# first light\n"
                         "txtObjectID=ngc 7000\n"
                         "pick Catalog 2000\n"
                         "txtdate=" +
                         today +
                         "\n"
                         "txttime=21\n"
                         "pick Seeing Mostly Stable\n"
                         "RichTextBox2=Pelican visible\\nwith OIII\n"
                         "txtimgname=na-01\n"
                         "chkFfield=True\n"
                         "RichTextBox3=Transparent, calm\n"
                         "^A\n"
                         "^1\n^C\n"
                         "txtObjectID=C/2026 A1\n"
                         "pick Catalog COMET\n"
                         "txtdate=" +
                         twoDaysAgo +
                         "\n"
                         "txttime=23:40\n"
                         "^A\n"
                         "print grid\n");
    ASSERT_EQ(0, run.exit) << run.err;
    EXPECT_NE(run.err.find("[I] First Time Users: Outside logbook entry"), std::string::npos);
    EXPECT_EQ(run.lines.front(), "added\t1");
    EXPECT_EQ(run.lines[1], "added\t2");
    // The comet's night is two days ago: not in the grid.
    ASSERT_EQ(Part(run, "OBJECT ID\tOBS #\tCATALOG\tDATE\tTIME", 2).size(), 2u);
    EXPECT_EQ(run.lines.size(), 4u);
    EXPECT_EQ(run.lines[3].substr(0, 20), "NGC 7000\t1\tNGC 2000\t");

    // The entry is recalled from the grid, changed and updated.
    run = Outside("grid 1\nprint\ntxtshortnotes=faint\n^U\n");
    ASSERT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(run.err.find("First Time Users"), std::string::npos);
    const std::vector<std::string> shown = Part(run, "Field\tValue", 27);
    ASSERT_EQ(shown.size(), 27u) << run.err;
    for (const char* line :
         {"txtObjectID\tNGC 7000", "txtCatalog\t2000", "txttime\t21:00:00",
          "txtseeing\tMostly Stable", "RichTextBox2\tPelican visible\\nwith OIII",
          "txtimgname\tna-01", "chkFfield\tTrue", "RichTextBox3\tTransparent, calm", "txtObs\t1"})
        EXPECT_NE(std::find(shown.begin(), shown.end(), line), shown.end()) << line;
    EXPECT_EQ(run.lines.back(), "updated\t1");

    // The spreadsheet's object comes with a clear; an entry named on opening is shown.
    run = Outside("^C\nprint\n", {"--object", "NGC 224"});
    EXPECT_NE(std::find(run.lines.begin(), run.lines.end(), "txtObjectID\tNGC 224"),
              run.lines.end());
    run = Outside("print\n", {"--obsn", "2"});
    EXPECT_NE(std::find(run.lines.begin(), run.lines.end(), "txtObjectID\tC/2026 A1"),
              run.lines.end());
    // "COMET" has no row in CatalogLookup: the entry's catalogue id is empty.
    EXPECT_NE(std::find(run.lines.begin(), run.lines.end(), "txtCatalog\t"), run.lines.end());
}

TEST_F(OutsideCli, FaultyStepsGoOnAndUnknownNamesStopEverything)
{
    // Exit 1: an entry not in the list, a refused date, a missing grid row; the rest runs.
    CliRun run = Outside("txtObjectID=NGC 224\n"
                         "pick Rating Z+\n"
                         "pick Rating A+\n"
                         "txtdate=yesterday\n"
                         "grid 3\n"
                         "txtdate=" +
                         today + "\n^A\nlist Rating\n");
    EXPECT_EQ(1, run.exit) << run.err;
    EXPECT_NE(run.err.find("\"Z+\" is not in the list of Rating"), std::string::npos);
    EXPECT_NE(run.err.find("[U] Invalid Date: You have entered an invalid date"),
              std::string::npos);
    EXPECT_NE(run.err.find("no row 3 in the grid"), std::string::npos);
    ASSERT_EQ(run.lines.size(), 10u);
    EXPECT_EQ(run.lines[0], "added\t1");
    EXPECT_EQ(run.lines[1], "Rating\tA+");

    // Exit 2, checked before anything runs: nothing is added.
    for (const char* bad : {"txtSeeing2=x", "^F1", "pick Eyepiece", "list Rating x",
                            "chkdframe=maybe", "grid none", "jump", "txtObs=1"}) {
        run = Outside(std::string("^A\n") + bad + "\n");
        EXPECT_EQ(2, run.exit) << bad;
        EXPECT_TRUE(run.lines.empty()) << bad;
    }
    run = Outside("print grid\n^2\n^D\n^G\n^K\n");
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(run.lines.size(), 2u); // still the one entry
}

} // namespace
