// selvane-cli constellation run as a program in a fresh program folder seeded with the shipped
// data files: single positions, the batch on standard input, damaged files, and its argument
// check.

#include "app/ConstellationCommand.h"

#include "CliRunner.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

using clitest::CliRun;
using Lines = std::vector<std::string>;

class ConstellationCli : public ::testing::Test
{
protected:
    CliRun Run(const QStringList& args)
    {
        return clitest::RunCli(home.path(), QStringList{"constellation"} + args);
    }

    // "constellation -" with input on standard input.
    CliRun Batch(const std::string& input)
    {
        QProcess process;
        clitest::StartCli(process, home.path(), {"constellation", "-"});
        EXPECT_TRUE(process.waitForStarted());
        process.write(input.data(), static_cast<qint64>(input.size()));
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(120000));
        return clitest::Finish(process);
    }

    QTemporaryDir home;
};

// One position from the arguments; other argument counts are usage errors that print nothing.
TEST_F(ConstellationCli, SinglePositionsAndUsage)
{
    const struct
    {
        QStringList args;
        const char* answer; // nullptr: a usage error
    } cases[] = {
        {{"5h35m17s", "-05°23'28\""}, "ORIon\tOri"},       // M 42, EPOCH left out
        {{"5 35 17", "- 5 23 28", "J2000"}, "ORIon\tOri"}, // the same, typed otherwise
        {{"5 32 49", "-5 25 00", "B1950"}, "ORIon\tOri"},  // its 1950 position
        {{"-", "-"}, "PiSCes\tPsc"},                       // no digits: 0h, 0 degrees
        {{}, nullptr},
        {{"5"}, nullptr},
        {{"1", "2", "3", "4"}, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(" ").toStdString());
        const CliRun run = Run(c.args);
        if (c.answer) {
            EXPECT_EQ(run.exit, 0);
            EXPECT_EQ(run.lines, (Lines{"Name\tAbbr", c.answer}));
            EXPECT_EQ(run.err, "");
        } else {
            EXPECT_EQ(run.exit, 2);
            EXPECT_TRUE(run.lines.empty());
            EXPECT_NE(run.err.find(app::ConstellationUsage), std::string::npos) << run.err;
        }
    }
}

// Every line is answered in order; a malformed line or a faulted lookup answers empty and ends
// the run with status 1.
TEST_F(ConstellationCli, BatchAnswersEveryLine)
{
    const CliRun run = Batch("5h35m17s\t-05°23'28\"\n"
                             "0 42 44\t+41 16 09\tJ2000\r\n"
                             "one field\n"
                             "1\t2\t2000\tfourth\n" +
                             std::string(400, '9') + "\t0\n" + "18 36 56\t38 47 01");
    EXPECT_EQ(run.exit, 1);
    EXPECT_EQ(run.lines,
              (Lines{"Name\tAbbr", "ORIon\tOri", "ANDromeda\tAnd", "\t", "\t", "\t", "LYRa\tLyr"}));
    EXPECT_EQ(run.err,
              "selvane-cli: constellation: line 3 has 1 field, not RA<TAB>DEC[<TAB>EPOCH]\n"
              "selvane-cli: constellation: line 4 has 4 fields, not RA<TAB>DEC[<TAB>EPOCH]\n"
              "[E] The Following Error Has Occurred: Overflow\nOccurred in : GETCONST.Whole\n");

    const CliRun clean = Batch("5h35m17s\t-05°23'28\"\n");
    EXPECT_EQ(clean.exit, 0);
    EXPECT_EQ(clean.lines, (Lines{"Name\tAbbr", "ORIon\tOri"}));
    const CliRun empty = Batch("");
    EXPECT_EQ(empty.exit, 0);
    EXPECT_EQ(empty.lines, (Lines{"Name\tAbbr"}));
}

// The names file without its last line, read again for each lookup.
TEST_F(ConstellationCli, DamagedFilesFaultEveryLookup)
{
    QFile shipped(SELVANE_RESOURCES "/con9.txt");
    ASSERT_TRUE(shipped.open(QIODevice::ReadOnly));
    std::string names = shipped.readAll().toStdString();
    names.erase(names.rfind('\n', names.size() - 2) + 1);
    std::ofstream(home.filePath("con9.txt").toStdString(), std::ios::binary) << names;
    const std::string fault = "[E] The Following Error Has Occurred: Input past end of file\n"
                              "Occurred in : GETCONST.GetCon\n";

    const CliRun single = Run({"5h35m17s", "-05 23 28"});
    EXPECT_EQ(single.exit, 1);
    EXPECT_EQ(single.lines, (Lines{"Name\tAbbr", "\t"}));
    EXPECT_EQ(single.err, fault);
    const CliRun batch = Batch("1\t2\n3\t4\n");
    EXPECT_EQ(batch.exit, 1);
    EXPECT_EQ(batch.lines, (Lines{"Name\tAbbr", "\t", "\t"}));
    EXPECT_EQ(batch.err, fault + fault);
}

} // namespace
