// selvane-cli backup, restore and compact run as a program in a fresh program folder.

#include "CliRunner.h"

#include "data/Database.h"
#include "tests/data/TestDatabases.h"

#include <QDate>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;
using clitest::CliRun;

class BackupCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(
            0, Run({"log", "add", "ObjectID=NGC 224", "Catalog=NGC 2000", "mskTime=21:00"}).exit);
    }

    CliRun Run(const QStringList& args) { return clitest::RunCli(home.path(), args); }
    std::string Path(const std::string& name) const
    {
        return home.path().toStdString() + "/" + name;
    }
    long Entries(const std::string& file)
    {
        data::OpenOptions readOnly;
        readOnly.readOnly = true;
        return std::stol(testing_data::One(*data::Database::Open(Path(file), readOnly),
                                           "Select count(*) From Logbook"));
    }

    QTemporaryDir home;
};

TEST_F(BackupCli, DialogueAnswersAndReplacing)
{
    const std::string offered =
        "B" + QDate::currentDate().toString("yyyyMMdd").toStdString() + ".mdb";
    const QString folder = home.path() + "/backups";
    QDir().mkpath(folder);

    CliRun run = Run({"backup", folder});
    ASSERT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(std::vector<std::string>{Path("backups/" + offered)}, run.lines);
    EXPECT_NE(run.err.find("[I] Logbook Backed Up!: The logbook database has been backed up to " +
                           Path("backups/" + offered) + "."),
              std::string::npos)
        << run.err;
    EXPECT_EQ(1, Entries("backups/" + offered));

    // A second backup the same day offers the same name; the dialogue asks before replacing.
    ASSERT_EQ(0,
              Run({"log", "add", "ObjectID=NGC 1976", "Catalog=NGC 2000", "mskTime=21:00"}).exit);
    run = Run({"backup", folder});
    EXPECT_EQ(1, run.exit);
    EXPECT_NE(run.err.find("[?] Enter a Location to Backup your Logbook File: " + offered +
                           " already exists.  Do you want to replace it?"),
              std::string::npos)
        << run.err;
    EXPECT_EQ(1, Entries("backups/" + offered));
    run = Run({"backup", folder, "--answer", "yes"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(2, Entries("backups/" + offered));

    // A cancelled dialogue writes nothing; a name without extension takes the default one.
    run = Run({"backup", ""});
    EXPECT_EQ(0, run.exit);
    EXPECT_TRUE(run.lines.empty());
    run = Run({"backup", folder + "/night"});
    EXPECT_EQ(std::vector<std::string>{Path("backups/night.mdb")}, run.lines);
    // The logbook itself is no place for its backup.
    run = Run({"backup", QString::fromStdString(Path("Logbook2003-1.mdb")), "--answer", "yes"});
    EXPECT_EQ(1, run.exit);
    EXPECT_NE(run.err.find("is the database itself"), std::string::npos) << run.err;
    EXPECT_EQ(2, Entries("Logbook2003-1.mdb"));
}

TEST_F(BackupCli, ShutDownCopyOnlyWithAFolder)
{
    CliRun run = Run({"backup", "--auto"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_TRUE(run.lines.empty());
    const QString folder = home.path() + "/auto";
    QDir().mkpath(folder);
    run = Run({"--set", "AutoBackupPath=" + folder, "backup", "--auto"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(std::vector<std::string>{Path("auto/Logbook2003-1.mdb")}, run.lines);
    EXPECT_EQ(1, Entries("auto/Logbook2003-1.mdb"));
    run = Run({"--set", "AutoBackupPath=" + folder + "/gone", "backup", "--auto"});
    EXPECT_EQ(1, run.exit);
    EXPECT_NE(run.err.find("does not exist"), std::string::npos) << run.err;
}

TEST_F(BackupCli, RestoreAndCompactAfterTheirQuestions)
{
    ASSERT_EQ(0, Run({"backup", home.path() + "/one.mdb"}).exit);
    ASSERT_EQ(0,
              Run({"log", "add", "ObjectID=NGC 1976", "Catalog=NGC 2000", "mskTime=21:00"}).exit);

    // A file that is no logbook is refused by name, and the logbook is untouched.
    const std::string objects = Path("SelvPro708000.mdb");
    CliRun run = Run({"restore", QString::fromStdString(objects), "--answer", "yes"});
    EXPECT_EQ(1, run.exit);
    EXPECT_NE(run.err.find("'" + objects + "' is not a logbook"), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(Path("LogbookBeforeRestore.mdb")));

    EXPECT_EQ(1, Run({"restore", home.path() + "/one.mdb"}).exit); // unanswered: No
    EXPECT_EQ(2, Entries("Logbook2003-1.mdb"));
    run = Run({"restore", home.path() + "/one.mdb", "--answer", "yes"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(1, Entries("Logbook2003-1.mdb"));
    EXPECT_EQ(2, Entries("LogbookBeforeRestore.mdb"));
    // The restored logbook is the program's logbook: entries go on from it.
    run = Run({"log", "add", "ObjectID=NGC 7000", "Catalog=NGC 2000", "mskTime=21:00"});
    EXPECT_EQ(std::vector<std::string>{"2"}, run.lines) << run.err;

    EXPECT_EQ(1, Run({"compact", "logbook"}).exit);
    run = Run({"compact", "logbook", "--answer", "yes"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_NE(run.err.find("[I] Compact and Repair Logbook: Your logbook has been compacted and "
                           "repaired successfully."),
              std::string::npos)
        << run.err;
    run = Run({"compact", "database", "--answer", "yes"});
    EXPECT_EQ(0, run.exit) << run.err;
    EXPECT_EQ(2, Entries("Logbook2003-1.mdb"));
    EXPECT_FALSE(fs::exists(Path("db1.mdb")));
}

TEST(BackupCliUsage, BadArgumentsRunNothing)
{
    QTemporaryDir home;
    const std::vector<QStringList> bad = {
        {"backup", "a.mdb", "b.mdb"},
        {"backup", "--auto", "a.mdb"},
        {"backup", "--now"},
        {"restore"},
        {"restore", ""},
        {"compact"},
        {"compact", "grid"},
        {"compact", "logbook", "--answer", "maybe"},
    };
    for (const QStringList& args : bad) {
        SCOPED_TRACE(args.join(' ').toStdString());
        EXPECT_EQ(2, clitest::RunCli(home.path(), args).exit);
    }
}

} // namespace
