// selvane-cli rsu run as a program in a fresh program folder with its own settings file: the
// printed form, the steps in their order, the exit status, and Apply read back by a later run.

#include "CliRunner.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using clitest::CliRun;

std::string ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string("<none>");
}

class RsuCli : public ::testing::Test
{
protected:
    CliRun Cli(const QStringList& args)
    {
        return clitest::RunCli(
            home.path(),
            QStringList{"--set", "cdDrive=" SELVANE_RESOURCES "/SelvPro13000.mdb"} + args);
    }
    QString File(const QString& name) const { return QDir(home.path()).filePath(name); }

    QTemporaryDir home;
};

TEST_F(RsuCli, PrintsTheFormAfterTheStepsInTheirOrder)
{
    const CliRun design = Cli({"rsu", "database"});
    ASSERT_EQ(design.exit, 0) << design.err;
    ASSERT_EQ(design.lines.size(), 32u);
    EXPECT_EQ(design.lines[0], "Index\tCaption\tOn\tWidth");
    EXPECT_EQ(design.lines[4], "3\tObject Id\t1\t1.2");
    EXPECT_EQ(design.lines[31], "30\tDescription\t0\t1");
    EXPECT_EQ(ReadBytes(File("default2.Rpl")), ReadBytes(SELVANE_RESOURCES "/default2.Rpl"));

    // Later steps win; a width is kept as typed, commas and all; the notes box speaks.
    const CliRun log = Cli({"rsu", "log", "--col", "5=1,3", "--new", "--col", "0=1,1,5", "--col",
                            "3=1,", "--col", "0=0,2", "--line", "2 - Double", "--font",
                            "Liberation Sans, Narrow,12.5", "--save", File("out")});
    ASSERT_EQ(log.exit, 0) << log.err;
    ASSERT_EQ(log.lines.size(), 28u);
    EXPECT_EQ(log.lines[1], "0\tObject\t0\t2");
    EXPECT_EQ(log.lines[4], "3\tObserving Notes\t1\t");
    EXPECT_EQ(log.lines[6], "5\tConstellation\t0\t");
    const std::string saved = ReadBytes(File("out.Rpl"));
    EXPECT_TRUE(saved.starts_with("\"2 - Double\",\"Liberation Sans, Narrow\",12.5\r\n0,\"2\"\r\n"
                                  "0,\"\"\r\n0,\"\"\r\n1,\"\"\r\n"))
        << saved;
    EXPECT_EQ(log.err, "[I] Notes only will be displayed: When you select the NOTES check box, "
                       "only observing notes will be displayed.  To see other logbook "
                       "information, just leave this unchecked.\n");
}

TEST_F(RsuCli, UsageErrorsAndFailedSteps)
{
    for (const QStringList& args : std::vector<QStringList>{
             {"rsu"},
             {"rsu", "tables"},
             {"rsu", "database", "--bogus"},
             {"rsu", "database", "--col", "x=1,2"},
             {"rsu", "database", "--col", "31=1,2"},
             {"rsu", "log", "--col", "27=1,2"},
             {"rsu", "log", "--col", "3=2,1"},
             {"rsu", "log", "--col", "3=1"},
             {"rsu", "log", "--col", "3=1,1\n2"},
             {"rsu", "log", "--open"},
             {"rsu", "log", "--font", "Arial"},
             {"rsu", "log", "--save", "a", "--apply"},
         }) {
        SCOPED_TRACE(args.join(' ').toStdString());
        const CliRun run = Cli(args);
        EXPECT_EQ(run.exit, 2);
        EXPECT_TRUE(run.lines.empty());
        EXPECT_NE(run.err.find("usage: selvane-cli ... rsu"), std::string::npos) << run.err;
    }

    // A failed step ends the steps; the form is printed as it stands.
    const CliRun open =
        Cli({"rsu", "database", "--col", "30=1,9", "--open", File("none.Rpt"), "--col", "1=1,9"});
    EXPECT_EQ(open.exit, 1);
    ASSERT_EQ(open.lines.size(), 32u);
    EXPECT_EQ(open.lines[2], "1\tImg\t0\t1");
    EXPECT_EQ(open.lines[31], "30\tDescription\t1\t9");
    EXPECT_NE(open.err.find("File not found\nOccurred in : frmRSU.cmdOpen_Click"),
              std::string::npos)
        << open.err;

    // A short file named by the setting: the opening fails, the design stays, the steps run.
    const CliRun opening =
        Cli({"--set", "defReport=" + File("default2.Rpl"), "rsu", "database", "--col", "0=1,3"});
    EXPECT_EQ(opening.exit, 1);
    ASSERT_EQ(opening.lines.size(), 32u);
    EXPECT_EQ(opening.lines[1], "0\tPlan\t1\t3");
    EXPECT_EQ(opening.lines[4], "3\tObject Id\t1\t1.2");
    EXPECT_NE(opening.err.find("Input past end of file\nOccurred in : frmRSU.Form_Load"),
              std::string::npos)
        << opening.err;
}

TEST_F(RsuCli, ApplyIsReadBackByALaterRun)
{
    ASSERT_EQ(Cli({"rsu", "database", "--new", "--col", "30=1,4.5", "--apply"}).exit, 0);
    EXPECT_NE(ReadBytes(File("s.ini")).find("defReport=" + File("Default.Rpt").toStdString()),
              std::string::npos);
    const CliRun again = Cli({"rsu", "database"});
    EXPECT_EQ(again.lines[4], "3\tObject Id\t0\t");
    EXPECT_EQ(again.lines[31], "30\tDescription\t1\t4.5");

    // Saved under another name and applied from there: the setting follows the file.
    ASSERT_EQ(Cli({"rsu", "database", "--col", "0=1,.5", "--save", File("mine.rpt")}).exit, 0);
    ASSERT_EQ(Cli({"rsu", "database", "--open", File("mine.rpt"), "--apply"}).exit, 0);
    EXPECT_EQ(Cli({"rsu", "database"}).lines[1], "0\tPlan\t1\t.5");
}

} // namespace
