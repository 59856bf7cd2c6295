// Adds, updates and deletes through selvane-cli, each killed with SIGKILL at a random moment
// near its end: every entry whose command returned must be there as written, both database
// files must pass SQLite's integrity check, no object may be flagged observed without an
// entry, and the fix command must bring flags and logbook into agreement.
// SELVANE_LOG_CRASH_CASES sets the number of commands (60 by default).

#include "CliRunner.h"

#include "data/Database.h"
#include "tests/data/TestDatabases.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>
#include <set>

namespace {

struct Entry
{
    std::string objectId;
    std::string shortText;
    std::string rating;
    bool certain = true; // false: a killed command may or may not have changed it
};

using testing_data::One;

std::set<std::string> Column(data::Database& db, const std::string& sql)
{
    std::set<std::string> values;
    auto rs = db.OpenRecordset(sql, data::Snapshot);
    for (; !rs.Eof(); rs.MoveNext())
        values.insert(rs.Fields(0).Value());
    return values;
}

TEST(LogCrash, KilledCommandsLoseNothingThatReturned)
{
    const int cases = std::getenv("SELVANE_LOG_CRASH_CASES")
                          ? std::atoi(std::getenv("SELVANE_LOG_CRASH_CASES"))
                          : 60;
    QTemporaryDir home;
    const QString dir = home.path();
    const std::vector<std::string> names{"NGC 224",  "NGC 1976", "NGC 7000", "NGC 6720",
                                         "NGC 6853", "NGC 5194", "NGC 3031", "NGC 4594"};
    const std::vector<std::string> ratings{"A+", "A", "B+", "B", "C"};
    std::mt19937 random(20261124);

    // A first run seeds the folder; one quiet add then gives the time a command takes.
    ASSERT_EQ(0, clitest::RunCli(dir, {"log", "list"}).exit);
    QElapsedTimer timer;
    timer.start();
    clitest::CliRun first = clitest::RunCli(
        dir, {"log", "add", "ObjectID=NGC 224", "Catalog=NGC 2000", "mskTime=21:00"});
    ASSERT_EQ(0, first.exit) << first.err;
    const qint64 typical = timer.elapsed();
    std::map<long long, Entry> entries{{1, {"NGC 224", "", "", true}}};

    int returned = 0, killed = 0;
    for (int i = 0; i < cases; ++i) {
        const int choice = static_cast<int>(random() % 10);
        std::vector<long long> known;
        for (const auto& [n, e] : entries)
            if (e.certain)
                known.push_back(n);
        const std::string text = "case " + std::to_string(i);
        const std::string rating = ratings[random() % ratings.size()];
        QStringList args{"log"};
        long long target = 0;
        std::string object;
        if (choice < 6 || known.empty()) {
            object = names[random() % names.size()];
            args << "add" << QString::fromStdString("ObjectID=" + object) << "Catalog=NGC 2000"
                 << "mskTime=21:30" << QString::fromStdString("shortdescription=" + text)
                 << QString::fromStdString("Rating=" + rating);
        } else {
            target = known[random() % known.size()];
            if (choice < 8)
                args << "update" << QString::number(target)
                     << QString::fromStdString("shortdescription=" + text)
                     << QString::fromStdString("Rating=" + rating);
            else
                args << "delete" << QString::number(target) << "--answer"
                     << "yes";
        }

        QProcess process;
        clitest::StartCli(process, dir, args);
        const int wait = static_cast<int>(typical / 2 + random() % (typical * 3 / 4 + 1));
        if (!process.waitForFinished(wait)) {
            process.kill();
            process.waitForFinished(10000);
        }
        const clitest::CliRun run = clitest::Finish(process);
        if (run.exit == 0) {
            ++returned;
            if (args[1] == "add")
                entries[std::stoll(run.lines.at(0))] = {object, text, rating, true};
            else if (args[1] == "update")
                entries[target] = {entries[target].objectId, text, rating, true};
            else
                entries.erase(target);
        } else {
            ASSERT_EQ(-1, run.exit) << run.err; // killed, never a refusal
            ++killed;
            if (target != 0)
                entries[target].certain = false;
        }
    }
    std::cout << "[ figures  ] " << cases << " commands: " << returned << " returned, " << killed
              << " killed; " << entries.size() << " entries known\n";

    data::OpenOptions readOnly;
    readOnly.readOnly = true;
    {
        auto logbook = data::Database::Open(dir.toStdString() + "/Logbook2003-1.mdb", readOnly);
        auto objects = data::Database::Open(dir.toStdString() + "/SelvPro708000.mdb", readOnly);
        EXPECT_EQ("ok", One(*logbook, "PRAGMA integrity_check"));
        EXPECT_EQ("ok", One(*objects, "PRAGMA integrity_check"));
        for (const auto& [n, e] : entries) {
            if (!e.certain)
                continue;
            const std::string where =
                " From Logbook Where ObservationNumber = " + std::to_string(n);
            EXPECT_EQ(e.objectId, One(*logbook, "Select ObjectID" + where)) << n;
            if (!e.shortText.empty()) {
                EXPECT_EQ(e.shortText + "|" + e.rating,
                          One(*logbook, "Select ShortDescription || '|' || Rating" + where))
                    << n;
            }
        }
        // Every flagged object has an entry.
        const std::set<std::string> logged =
            Column(*logbook, "Select Distinct ObjectID From Logbook Where Catalog = '2000'");
        for (const std::string& flagged :
             Column(*objects, "Select ObjectID From SelvaneTable Where Observed = -1"))
            EXPECT_TRUE(logged.count(flagged)) << flagged << " is flagged without an entry";
        // Kills that came after the Logbook row was written: entries nobody heard of.
        std::cout << "[ figures  ] entries written by killed adds: "
                  << std::stoll(One(*logbook, "Select count(*) From Logbook")) -
                         static_cast<long long>(entries.size())
                  << "\n";
        // A number is never given twice.
        EXPECT_EQ(One(*logbook, "Select count(*) From Logbook"),
                  One(*logbook, "Select count(Distinct ObservationNumber) From Logbook"));
    }

    ASSERT_EQ(0, clitest::RunCli(dir, {"log", "fix"}).exit);
    auto logbook = data::Database::Open(dir.toStdString() + "/Logbook2003-1.mdb", readOnly);
    auto objects = data::Database::Open(dir.toStdString() + "/SelvPro708000.mdb", readOnly);
    EXPECT_EQ(Column(*logbook, "Select Distinct ObjectID From Logbook Where Catalog = '2000'"),
              Column(*objects, "Select ObjectID From SelvaneTable Where Observed = -1"));
}

} // namespace
