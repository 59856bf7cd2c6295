// selvane-cli oal run as a program: a logbook written by log add goes out to a file and comes
// back into another program folder's empty logbook.

#include "CliRunner.h"
#include "tests/TestFiles.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using clitest::CliRun;
using clitest::RunCli;
using Lines = std::vector<std::string>;

TEST(OalCli, ExportImportAndRefusals)
{
    QTemporaryDir from, to;
    const QString file = from.filePath("night.oal");
    for (const char* id : {"m31", "NGC 7000"})
        ASSERT_EQ(0, RunCli(from.path(), {"log", "add", "txtObjectID=" + QString(id),
                                          "Catalog=NGC 2000", "mskDate=2026-11-20", "mskTime=21"})
                         .exit);

    CliRun run =
        RunCli(from.path(), {"--set", "ObserverName=Ada Observer", "oal", "export", file, "--sql",
                             "Select * From Logbook Where ObjectID = 'NGC 7000'"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(Lines{"1"}, run.lines);
    const std::string xml = test_files::ReadText(file.toStdString());
    EXPECT_NE(xml.find("<surname>Observer</surname>"), std::string::npos);
    EXPECT_NE(xml.find("<observation id=\"obs_2\">"), std::string::npos);

    run = RunCli(from.path(), {"oal", "export", file});
    EXPECT_EQ(Lines{"2"}, run.lines);
    run = RunCli(to.path(), {"oal", "import", file, "--type", "Imported"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ((Lines{"1", "2"}), run.lines);
    // The same file again: every entry is there already.
    run = RunCli(to.path(), {"oal", "import", file});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_TRUE(run.lines.empty());
    run = RunCli(to.path(), {"log", "list"});
    ASSERT_EQ(3u, run.lines.size());
    for (const char* id : {"NGC 224\t", "NGC 7000\t"})
        EXPECT_TRUE(run.lines[1].starts_with(id) || run.lines[2].starts_with(id)) << id;
    // The entries keep their own log type; --type is for entries without one.
    EXPECT_TRUE(run.lines[1].ends_with("\tDefault")) << run.lines[1];

    const QString notLog = to.filePath("notes.txt");
    test_files::WriteText(notLog.toStdString(), "just notes\n");
    run = RunCli(to.path(), {"oal", "import", notLog});
    EXPECT_EQ(1, run.exit);
    EXPECT_TRUE(run.lines.empty());
    EXPECT_EQ("[E] Open Astronomy Log: The file " + notLog.toStdString() +
                  " is not an Open Astronomy Log (version 2.0 or 2.1).\n",
              run.err);

    for (const QStringList& args :
         {QStringList{"oal"}, QStringList{"oal", "export"}, QStringList{"oal", "send", file},
          QStringList{"oal", "import", file, "--sql", "x"},
          QStringList{"oal", "export", file, "--sql"}})
        EXPECT_EQ(2, RunCli(to.path(), args).exit) << args.join(' ').toStdString();
}

} // namespace
