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
#include <sstream>
#include <string>
#include <vector>

namespace {

using clitest::CliRun;

TEST(CheckConstellationArgs, UsageErrors)
{
    const struct
    {
        std::vector<std::string> args;
        bool ok;
    } rows[] = {
        {{"-"}, true},
        {{"5h35m17s", "-05 23 28"}, true},
        {{"5h35m17s", "-05 23 28", "J2000"}, true},
        {{"-", "-"}, true}, // RA "-" and DEC "-": texts without digits
        {{}, false},
        {{"5h35m17s"}, false},
        {{"1", "2", "2000", "x"}, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.args.size());
        EXPECT_EQ(app::CheckConstellationArgs(row.args).empty(), row.ok);
    }
}

class ConstellationCli : public ::testing::Test
{
protected:
    CliRun Run(const QStringList& args) { return clitest::RunCli(home.path(), args); }

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

    // Puts a file into the program folder before the run; the start does not replace it.
    void WriteHomeFile(const std::string& name, const std::string& text)
    {
        std::ofstream(home.filePath(QString::fromStdString(name)).toStdString(), std::ios::binary)
            << text;
    }

    std::string ErrorLog()
    {
        std::ifstream in(home.filePath("errorlog.txt").toStdString(), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

    QTemporaryDir home;
};

TEST_F(ConstellationCli, SinglePositions)
{
    const struct
    {
        QStringList args;
        const char* answer;
    } cases[] = {
        {{"5h35m17s", "-05°23'28\""}, "ORIon\tOri"},        // M 42, EPOCH left out
        {{"5 35 17", "- 5 23 28", "J2000"}, "ORIon\tOri"},  // the same, typed otherwise
        {{"5 32 49", "-5 25 00", "B1950"}, "ORIon\tOri"},   // its 1950 position
        {{"13:29:53", "+47:11:43"}, "Canes VeNatici\tCvn"}, // M 51
        {{"1 58 46", "-61 34 11"}, "HYdrus\tHy"},           // alpha Hydri
        {{"north", "east"}, "PiSCes\tPsc"},                 // no digits: 0h, 0 degrees
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(" ").toStdString());
        const CliRun run = Run(QStringList{"constellation"} + c.args);
        EXPECT_EQ(run.exit, 0);
        EXPECT_EQ(run.lines, (std::vector<std::string>{"Name\tAbbr", c.answer}));
        EXPECT_EQ(run.err, "");
    }
}

TEST_F(ConstellationCli, BatchAnswersEveryLineInOrder)
{
    const CliRun run = Batch("5h35m17s\t-05°23'28\"\n"
                             "0 42 44\t+41 16 09\tJ2000\r\n"
                             "one field\n"
                             "1\t2\t2000\tfourth\n"
                             "\t\n"
                             "18 36 56\t38 47 01");
    EXPECT_EQ(run.exit, 1);
    EXPECT_EQ(run.lines, (std::vector<std::string>{"Name\tAbbr", "ORIon\tOri", "ANDromeda\tAnd",
                                                   "\t", "\t", "PiSCes\tPsc", "LYRa\tLyr"}));
    EXPECT_EQ(run.err,
              "selvane-cli: constellation: line 3 has 1 field, not RA<TAB>DEC[<TAB>EPOCH]\n"
              "selvane-cli: constellation: line 4 has 4 fields, not RA<TAB>DEC[<TAB>EPOCH]\n");

    const CliRun clean = Batch("5h35m17s\t-05°23'28\"\n");
    EXPECT_EQ(clean.exit, 0);
    EXPECT_EQ(clean.lines, (std::vector<std::string>{"Name\tAbbr", "ORIon\tOri"}));

    const CliRun empty = Batch("");
    EXPECT_EQ(empty.exit, 0);
    EXPECT_EQ(empty.lines, (std::vector<std::string>{"Name\tAbbr"}));
}

TEST_F(ConstellationCli, FaultsAreReportedAndAnsweredEmpty)
{
    // A group too long for a number: the fault of the conversion, the next line still answered.
    const CliRun overflow = Batch(std::string(400, '9') + "\t0\n0 42 44\t41 16 09\n");
    EXPECT_EQ(overflow.exit, 1);
    EXPECT_EQ(overflow.lines, (std::vector<std::string>{"Name\tAbbr", "\t", "ANDromeda\tAnd"}));
    EXPECT_EQ(overflow.err,
              "[E] The Following Error Has Occurred: Overflow\nOccurred in : GETCONST.Whole\n");

    // The names file without its last line, read again for each lookup.
    QFile shipped(SELVANE_RESOURCES "/con9.txt");
    ASSERT_TRUE(shipped.open(QIODevice::ReadOnly));
    std::string names = shipped.readAll().toStdString();
    names.erase(names.rfind('\n', names.size() - 2) + 1);
    WriteHomeFile("con9.txt", names);
    const std::string fault = "[E] The Following Error Has Occurred: Input past end of file\n"
                              "Occurred in : GETCONST.GetCon\n";
    const CliRun single = Run({"constellation", "5h35m17s", "-05 23 28"});
    EXPECT_EQ(single.exit, 1);
    EXPECT_EQ(single.lines, (std::vector<std::string>{"Name\tAbbr", "\t"}));
    EXPECT_EQ(single.err, fault);

    const CliRun batch = Batch("1\t2\n3\t4\n");
    EXPECT_EQ(batch.exit, 1);
    EXPECT_EQ(batch.lines, (std::vector<std::string>{"Name\tAbbr", "\t", "\t"}));
    EXPECT_EQ(batch.err, fault + fault);
    const std::string log = ErrorLog();
    EXPECT_NE(log.find(" ERROR: Input past end of file LOCATION OF ERROR: GETCONST.GetCon"),
              std::string::npos)
        << log;
}

TEST_F(ConstellationCli, UsageErrorsPrintNothing)
{
    for (const QStringList& args : {QStringList{"constellation"}, QStringList{"constellation", "5"},
                                    QStringList{"constellation", "1", "2", "3", "4"}}) {
        SCOPED_TRACE(args.join(" ").toStdString());
        const CliRun run = Run(args);
        EXPECT_EQ(run.exit, 2);
        EXPECT_TRUE(run.lines.empty());
        EXPECT_NE(run.err.find(app::ConstellationUsage), std::string::npos) << run.err;
    }
}

} // namespace
