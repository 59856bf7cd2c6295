// Compactions and restores through selvane-cli, each killed with SIGKILL at a random moment:
// afterwards the logbook opens, passes SQLite's integrity check and holds every row it held
// before the compaction; after a restore it holds exactly the old or exactly the new content,
// and the new one whenever the command returned.
// Each kill falls inside the work itself: the clock starts when the command says the work
// begins (its notice or its question on stderr).
// SELVANE_BACKUP_CRASH_TRIALS sets the number of trials of each kind (60 by default).

#include "CliRunner.h"

#include "data/Database.h"
#include "tests/data/TestDatabases.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <random>

namespace {

struct Outcomes
{
    int returned = 0, killed = 0;
    qint64 ms = 0;
    qint64 workMs = 0; // the work of one run to its end
};

class BackupCrash : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const char* env = std::getenv("SELVANE_BACKUP_CRASH_TRIALS");
        trials = env ? std::atoi(env) : 60;
        ASSERT_EQ(0, clitest::RunCli(dir(), {"log", "list"}).exit);
    }

    QString dir() const { return home.path(); }
    std::string logbookPath() const { return dir().toStdString() + "/Logbook2003-1.mdb"; }

    // Replaces the entries by n of them, numbered from first, with a long text each; deleted
    // rows leave free pages for the compaction to take out.
    void Fill(int first, int n)
    {
        data::OpenOptions options;
        options.wal = true;
        auto db = data::Database::Open(logbookPath(), options);
        std::string sql = "BEGIN; DELETE FROM Logbook;";
        for (int i = first; i < first + n; ++i)
            sql += "INSERT INTO Logbook (ObservationNumber, ObjectID, Catalog, ShortDescription, "
                   "ObservationText) VALUES (" +
                   std::to_string(i) + ", 'NGC " + std::to_string(i) + "', '2000', 'night " +
                   std::to_string(first) + "', '" + std::string(300, 'x') + "');";
        sql += "DELETE FROM Logbook WHERE ObservationNumber % 5 = 0; COMMIT;";
        ASSERT_EQ(SQLITE_OK, sqlite3_exec(db->Handle(), sql.c_str(), nullptr, nullptr, nullptr));
    }

    // The logbook as the program opens it, checked whole; its rows as one text.
    std::string Content()
    {
        data::OpenOptions options;
        options.wal = true;
        auto db = data::Database::Open(logbookPath(), options);
        EXPECT_EQ("ok", testing_data::One(*db, "PRAGMA integrity_check"));
        std::string text;
        for (const std::string& row : testing_data::Rows(*db, "Select ObservationNumber, ObjectID, "
                                                              "ShortDescription, ObservationText "
                                                              "From Logbook Order By 1"))
            text += row + "\n";
        return text;
    }

    // Starts selvane-cli and returns once its stderr shows marker (or it ended): the moment
    // the routine's work begins.
    static void StartAndWaitFor(QProcess& process, const QString& home, const QStringList& args,
                                const std::string& marker, std::string& err)
    {
        clitest::StartCli(process, home, args);
        process.setReadChannel(QProcess::StandardError);
        while (err.find(marker) == std::string::npos && process.state() != QProcess::NotRunning) {
            process.waitForReadyRead(20);
            err += process.readAllStandardError().toStdString();
        }
    }

    // A run to its end, which gives the length of the work after marker, then the trials, each
    // killed at a random moment of that work or just after it (some run to their end); check
    // sees the exit code (-1: killed) after each. args gives the arguments of each run.
    Outcomes Trials(const std::function<QStringList()>& args, const std::string& marker,
                    const std::function<void(int exit)>& check)
    {
        QElapsedTimer timer;
        std::string err;
        QProcess first;
        StartAndWaitFor(first, dir(), args(), marker, err);
        timer.start();
        first.waitForFinished(120000);
        Outcomes outcomes;
        outcomes.workMs = timer.elapsed();
        EXPECT_EQ(0, clitest::Finish(first).exit) << err;
        check(0);
        const auto span = static_cast<unsigned>(outcomes.workMs * 5 / 4 + 1);
        timer.restart();
        for (int i = 0; i < trials; ++i) {
            QProcess process;
            err.clear();
            StartAndWaitFor(process, dir(), args(), marker, err);
            if (!process.waitForFinished(static_cast<int>(random() % span))) {
                process.kill();
                process.waitForFinished(10000);
            }
            const clitest::CliRun run = clitest::Finish(process);
            EXPECT_TRUE(run.exit == 0 || run.exit == -1) << err << run.err;
            ++(run.exit == 0 ? outcomes.returned : outcomes.killed);
            check(run.exit);
            if (::testing::Test::HasFailure())
                break;
        }
        outcomes.ms = timer.elapsed();
        return outcomes;
    }

    QTemporaryDir home;
    int trials = 0;
    std::mt19937 random{20261124};
};

TEST_F(BackupCrash, KilledCompactionKeepsEveryRow)
{
    Fill(1, 3000);
    const std::string before = Content();
    int midway = 0;
    const Outcomes o = Trials(
        [] {
            return QStringList{"compact", "logbook", "--answer", "yes"};
        },
        "Selvane will now compact and repair your logbook.",
        [&](int exit) {
            // A compact copy left behind: the kill fell inside the compaction itself.
            midway += exit != 0 && std::filesystem::exists(dir().toStdString() + "/db1.mdb");
            EXPECT_EQ(before, Content());
        });
    std::cout << "[ figures  ] compaction (" << o.workMs << " ms of work): " << trials
              << " trials in " << o.ms << " ms, " << o.returned << " returned, " << o.killed
              << " killed (" << midway << " during the copy); every row kept\n";
}

TEST_F(BackupCrash, KilledRestoreLeavesOldOrNew)
{
    const QString a = dir() + "/A.mdb", b = dir() + "/B.mdb";
    Fill(1, 3000);
    const std::string contentA = Content();
    ASSERT_EQ(0, clitest::RunCli(dir(), {"backup", a}).exit);
    Fill(5001, 1200);
    const std::string contentB = Content();
    ASSERT_EQ(0, clitest::RunCli(dir(), {"backup", b}).exit);

    // Each trial restores the backup the logbook does not hold.
    bool holdsA = false;
    int keptOld = 0, tookNew = 0, midway = 0;
    const Outcomes o = Trials(
        [&] {
            return QStringList{"restore", holdsA ? b : a, "--answer", "yes"};
        },
        "[?] Restore Logbook:",
        [&](int exit) {
            // A rollback journal left behind: the kill fell inside a transaction (the copy or a
            // change of journal mode).
            std::error_code ec;
            midway += exit != 0 && std::filesystem::file_size(logbookPath() + "-journal", ec) > 0;
            const std::string now = Content();
            const bool isA = now == contentA;
            EXPECT_TRUE(isA || now == contentB);
            if (exit == 0) {
                EXPECT_NE(holdsA, isA) << "a restore that returned left the old content";
            }
            if (exit != 0)
                ++(isA == holdsA ? keptOld : tookNew);
            holdsA = isA;
        });
    std::cout << "[ figures  ] restore (" << o.workMs << " ms of work): " << trials << " trials in "
              << o.ms << " ms, " << o.returned << " returned, " << o.killed << " killed (" << midway
              << " left a rollback journal); the killed ones kept the "
              << "old content " << keptOld << " times, took the new " << tookNew << " times\n";
}

} // namespace
