// selvane-cli tour and acpscript run as a program on the built small edition, in a fresh
// program folder with its own settings file.

#include "CliRunner.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using clitest::CliRun;

std::string ReadBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string("<none>");
}

// The lines of a text whose every line must end in CR LF; a bare CR or LF fails the test.
std::vector<std::string> CrLfLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find("\r\n", start);
        if (end == std::string::npos) {
            ADD_FAILURE() << "no CR LF after: " << text.substr(start);
            break;
        }
        const std::string line = text.substr(start, end - start);
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << line;
        lines.push_back(line);
        start = end + 2;
    }
    return lines;
}

class TourCli : public ::testing::Test
{
protected:
    CliRun Cli(const QStringList& args)
    {
        return clitest::RunCli(
            home.path(), QStringList{"--set", "cdDrive=" SELVANE_RESOURCES "/SelvPro13000.mdb",
                                     "--set", "PDate=03/15/2024", "--set", "Ptime=22:00"} +
                             args);
    }
    QString File(const QString& name) const { return QDir(home.path()).filePath(name); }

    QTemporaryDir home;
};

constexpr const char* kM42 = "Select * From SelvaneTable Where MessierNumber = 42";
constexpr const char* kTwo =
    "Select * From SelvaneTable Where MessierNumber In (31, 42) Order By MessierNumber";

TEST_F(TourCli, TourFileDefaultsModesAndExitStatus)
{
    // The start list (the Messier objects) into the default file, with the default texts.
    const CliRun start = Cli({"tour"});
    ASSERT_EQ(start.exit, 0) << start.err;
    ASSERT_EQ(start.lines.size(), 2u);
    EXPECT_EQ(start.lines[0], "File\tObjects");
    EXPECT_EQ(start.lines[1], File("SelvaneTour.mtf").toStdString() + "\t110");
    EXPECT_NE(start.err.find("[I] TOUR SCRIPT CREATED: " + File("SelvaneTour.mtf").toStdString() +
                             ".  Use the Autostar Update utility to load the script into your "
                             "Autostar."),
              std::string::npos)
        << start.err;
    const std::vector<std::string> lines = CrLfLines(ReadBytes(File("SelvaneTour.mtf")));
    ASSERT_EQ(lines.size(), 8u + 110u + 3u);
    EXPECT_EQ(lines[5], "TITLE \"Selvane 2003\"");
    EXPECT_EQ(lines[6], "AUTO SELECT TEXT \"Selvane 2003\" \"Welcome to the Selvane 2003 custom "
                        "generated tour.\"");
    EXPECT_EQ(lines.back(), "#END");

    // Mode 0 with a title of our own: M 42's line holds its name alone.
    const QString file = File("m42.mtf");
    const CliRun small = Cli({"tour", "--sql", kM42, "--file", file, "--mode", "0", "--title",
                              "Orion \"tonight\"", "--intro", "Hi"});
    ASSERT_EQ(small.exit, 0) << small.err;
    EXPECT_EQ(small.lines[1], file.toStdString() + "\t1");
    const std::vector<std::string> m42 = CrLfLines(ReadBytes(file));
    ASSERT_EQ(m42.size(), 12u);
    EXPECT_EQ(m42[5], "TITLE \"Orion \"tonight\"\"");
    EXPECT_EQ(m42[6], "AUTO SELECT TEXT \"Selvane 2003\" \"Hi\"");
    EXPECT_TRUE(m42[8].starts_with("AUTO SELECT USER 05:35:")) << m42[8];
    EXPECT_NE(m42[8].find(" -05d2"), std::string::npos) << m42[8];
    EXPECT_TRUE(m42[8].ends_with("M 42  - PRESS MODE TO CONTINUE THE TOUR.\"")) << m42[8];
    EXPECT_EQ(m42[8].find("TYPE:"), std::string::npos) << m42[8];
}

TEST_F(TourCli, RefusalsFaultsAndUsage)
{
    // An empty list: refused, nothing written.
    const CliRun empty = Cli({"tour", "--sql", "Select * From SelvaneTable Where ID = -1"});
    EXPECT_EQ(empty.exit, 1);
    EXPECT_TRUE(empty.lines.empty());
    EXPECT_NE(empty.err.find("[I] No Objects Selected: The list has no objects"), std::string::npos)
        << empty.err;
    EXPECT_FALSE(QFile::exists(File("SelvaneTour.mtf")));

    // A destination that cannot be written: the fault at frmBuildTour, no file.
    const CliRun unwritable = Cli({"tour", "--sql", kM42, "--file", File("gone/t.mtf")});
    EXPECT_EQ(unwritable.exit, 1);
    EXPECT_TRUE(unwritable.lines.empty());
    EXPECT_NE(unwritable.err.find("[E] The Following Error Has Occurred: Path not found\n"
                                  "Occurred in : frmBuildTour"),
              std::string::npos)
        << unwritable.err;
    EXPECT_FALSE(QFile::exists(File("gone")));
    EXPECT_NE(ReadBytes(File("errorlog.txt")).find("frmBuildTour"), std::string::npos);

    for (const QStringList& bad :
         {QStringList{"tour", "--mode", "2"}, QStringList{"tour", "--file"},
          QStringList{"tour", "--sql", "x", "--build"}, QStringList{"tour", "extra"},
          QStringList{"acpscript", "--file", "x.sfl"}, QStringList{"acpscript", "--plan"}}) {
        const CliRun run = Cli(bad);
        EXPECT_EQ(run.exit, 2) << bad.join(' ').toStdString();
        EXPECT_NE(run.err.find("usage: selvane-cli ... "), std::string::npos) << run.err;
    }
}

TEST_F(TourCli, AcpScriptOnTheShippedScript)
{
    const std::string shipped = ReadBytes(SELVANE_RESOURCES "/SelvaneSlideShow.vbs");
    ASSERT_NE(shipped, "<none>");

    // No ACP folder: refused, the shipped script untouched and no list.
    const CliRun absent = Cli({"acpscript", "--sql", kTwo});
    EXPECT_EQ(absent.exit, 1);
    EXPECT_TRUE(absent.lines.empty());
    EXPECT_NE(absent.err.find("[I] ACP Not Installed: Please install it before you run this "
                              "option"),
              std::string::npos)
        << absent.err;
    EXPECT_FALSE(QFile::exists(File("SelvaneSlideShow.sfl")));
    EXPECT_EQ(ReadBytes(File("SelvaneSlideShow.vbs")), shipped);

    QTemporaryDir acp;
    const CliRun run = Cli({"--set", "ACPPath=" + acp.path(), "acpscript", "--sql", kTwo});
    ASSERT_EQ(run.exit, 0) << run.err;
    const std::string sfl = File("SelvaneSlideShow.sfl").toStdString();
    EXPECT_EQ(run.lines,
              (std::vector<std::string>{"File", sfl, File("SelvaneSlideShow.vbs").toStdString()}));
    EXPECT_NE(run.err.find("[I] Script Object List is complete.: You can now go to ACP and run "
                           "the script titled SelvaneSlideShow.vbs in the Selvane 2003 "
                           "directory."),
              std::string::npos);

    const std::vector<std::string> list = CrLfLines(ReadBytes(File("SelvaneSlideShow.sfl")));
    ASSERT_EQ(list.size(), 14u);
    EXPECT_EQ(list[0], "!START");
    EXPECT_EQ(list[2], "M 31, NGC 224");
    EXPECT_EQ(list[7], "!START");
    EXPECT_TRUE(list[8].starts_with("05.5")) << list[8];
    EXPECT_TRUE(list[8].find(" -05.") != std::string::npos) << list[8];

    // The script keeps every line of the shipped one but the list's, now pointing at ours.
    const std::vector<std::string> before = CrLfLines(shipped);
    const std::vector<std::string> after = CrLfLines(ReadBytes(File("SelvaneSlideShow.vbs")));
    ASSERT_EQ(after.size(), before.size());
    int rewritten = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i].starts_with("Set a = FS.OpenTextFile(")) {
            ++rewritten;
            EXPECT_EQ(after[i], "Set a = FS.OpenTextFile(\"" + sfl + "\", ForReading, False)");
        } else {
            EXPECT_EQ(after[i], before[i]);
        }
    }
    EXPECT_EQ(rewritten, 1);
    EXPECT_FALSE(QFile::exists(File("SelvaneSlideShow.tmp")));
}

} // namespace
