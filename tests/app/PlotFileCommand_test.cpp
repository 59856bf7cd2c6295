// selvane-cli plotfile run as a program: the steps in their fixed order, the saved file, the
// messages that stop it, and its argument check.

#include "app/PlotFileCommand.h"

#include "CliRunner.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

std::string ReadBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(PlotFileCli, StepsSaveOpenAndStops)
{
    QTemporaryDir home;
    const QString base = home.filePath("night");
    // The save comes last although it is given first; the adds keep their order.
    clitest::CliRun run =
        clitest::RunCli(home.path(), {"plotfile", "--save", base, "--fov", "5", "--name", "Orion",
                                      "--add2", "5 35.3 -0 5.5 M 42", "--add", "0 42 44.3 41 16 9",
                                      "--add", "23 59 59.7 -00 59 59.6  a, b "});
    EXPECT_EQ(run.exit, 0) << run.err;
    const Lines list = {"Entry", "05 35 18 | -00 05 30 | M 42", "00 42 44 | +41 16 09 | n/a",
                        "00 00 00 | -01 00 00 | a, b"};
    EXPECT_EQ(run.lines, list);
    const std::string saved = base.toStdString() + ".PLT";
    EXPECT_EQ(ReadBytes(saved), "5\r\nOrion\r\n05 35 18 | -00 05 30 | M 42\r\n"
                                "00 42 44 | +41 16 09 | n/a\r\n00 00 00 | -01 00 00 | a, b\r\n");

    // Opened, one more added after the list that was read; the comma split the name.
    run = clitest::RunCli(home.path(), {"plotfile", "--add", "1 2 3 4 5 6 x", "--open",
                                        QString::fromStdString(saved)});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.lines, (Lines{"Entry", list[1], list[2], "00 00 00 | -01 00 00 | a", "b",
                                "01 02 03 | +04 05 06 | x"}));

    const struct
    {
        QStringList args;
        const char* message;
    } stops[] = {
        {{"--open", home.filePath("none.plt")},
         "[E] The Following Error Has Occurred: File not found"},
        {{"--add", "24 0 0 0 0 0"}, "[E] Invalid Input: Enter between 0 and 23"},
        {{"--add2", "1 2 89 60"}, "[E] Invalid Input: Enter between 0 and 59.9999"},
        {{"--add", "1 2 3 x 0 0"}, "[E] Invalid Input: Enter between -89 and 89"},
        {{"--save", home.filePath("a.plt"), "--fov", "5"},
         "[U] Default Required: Please specify a default field of view and an object name"},
        {{"--save", home.filePath("no/dir/a.plt"), "--fov", "5", "--name", "n"},
         "[E] The Following Error Has Occurred: Path not found"},
    };
    for (const auto& s : stops) {
        SCOPED_TRACE(s.args.join(' ').toStdString());
        run = clitest::RunCli(home.path(), QStringList{"plotfile"} + s.args);
        EXPECT_EQ(run.exit, 1);
        EXPECT_TRUE(run.lines.empty());
        EXPECT_NE(run.err.find(s.message), std::string::npos) << run.err;
    }
}

TEST(PlotFileCli, Usage)
{
    EXPECT_EQ(app::CheckPlotFileArgs({}), "");
    EXPECT_EQ(app::CheckPlotFileArgs({"--add", "1 2 3 4 5 6", "--add2", "1 2 3 4 n a m e"}), "");
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{"--add", "1 2 3 4 5"},
                                               {"--add2", "1 2 3"},
                                               {"--open"},
                                               {"--fov", "1", "--fov", "2"},
                                               {"--save", "a", "--save", "b"},
                                               {"extra"}}) {
        SCOPED_TRACE(args.front());
        EXPECT_NE(app::CheckPlotFileArgs(args), "");
    }
    QTemporaryDir home;
    const clitest::CliRun run = clitest::RunCli(home.path(), {"plotfile", "--add", "1 2"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_NE(run.err.find("usage: selvane-cli ... plotfile"), std::string::npos);
}

} // namespace
