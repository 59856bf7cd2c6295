// selvane-cli sun, moon and moonphases run as a program in a fresh program folder: the header
// and line forms, the clock and site taken from the settings, usage errors and faults.

#include "CliRunner.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace {

using clitest::CliRun;

// Greenwich on a winter evening, 24-hour times.
const QStringList kGreenwich = {
    "--set", "PDate=2024-01-15", "--set", "Ptime=20:00", "--set", "Plat=51.4769",
    "--set", "Plon=0",           "--set", "PTz=0",       "--set", "timesAMPM=False"};

class SunMoonCli : public ::testing::Test
{
protected:
    CliRun Run(const QStringList& args) { return clitest::RunCli(home.path(), args); }
    QTemporaryDir home;
};

TEST_F(SunMoonCli, SunHeaderAndLine)
{
    const CliRun run = Run(kGreenwich + QStringList{"sun"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_EQ(run.lines.size(), 2u);
    EXPECT_EQ(run.lines[0], "TrueLon\tDist\tRA\tDec\tAppLon\tRA2\tDec2\tDiam\tRise\tSet\tAlt\t"
                            "SemiDiam\tTwiBegin\tTwiEnd");
    const std::vector<std::string> f = clitest::Split(run.lines[1], '\t');
    ASSERT_EQ(f.size(), 14u);
    // Sunrise 07:59, sunset 16:19 at Greenwich that day (astropy, the same horizon); the
    // theory comes within a minute or two.
    const std::regex forms[14] = {std::regex("29\\d\u00b0\\d\\d'\\d\\d\\.\\d\""),
                                  std::regex(R"(0\.98\d{3})"),
                                  std::regex(R"(19h \d{1,2}m [\d.]+s )"),
                                  std::regex("-2\\d\u00b0\\d\\d'\\d\\d\\.\\d\""),
                                  std::regex("29\\d\u00b0\\d\\d'\\d\\d\\.\\d\""),
                                  std::regex(R"(19h \d\dm \d\ds)"),
                                  std::regex("-2\\d\u00b0\\d\\d' \\d\\d\""),
                                  std::regex(R"(32' \d\d")"),
                                  std::regex("0(7:5[7-9]|8:0[01])"),
                                  std::regex("16:(1[7-9]|2[01])"),
                                  std::regex(R"(-\d\d\.\d\d)"),
                                  std::regex(R"(16\.\d\d')"),
                                  std::regex(R"([56]\.\d{4})"),
                                  std::regex(R"(1[78]\.\d{4})")};
    for (int i = 0; i < 14; ++i)
        EXPECT_TRUE(std::regex_match(f[static_cast<std::size_t>(i)], forms[i]))
            << i << ": " << f[static_cast<std::size_t>(i)];
}

TEST_F(SunMoonCli, MoonHeaderAndLine)
{
    const CliRun run = Run(kGreenwich + QStringList{"moon"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_EQ(run.lines.size(), 2u);
    EXPECT_EQ(run.lines[0], "Lon\tDist\tRA\tDec\tLat\tRA2\tDec2\tDiam\tRise\tSet\tAlt\tSemiDiam\t"
                            "Illum\tElong\tAge\tIcon\tNextNew\tNextFull");
    const std::vector<std::string> f = clitest::Split(run.lines[1], '\t');
    ASSERT_EQ(f.size(), 18u);
    EXPECT_TRUE(std::regex_match(f[1], std::regex(R"(\d{6})"))) << f[1];
    // Moonrise 10:21, moonset 21:49 (astropy, the same horizon).
    EXPECT_TRUE(std::regex_match(f[8], std::regex("10:(19|2[0-3])"))) << f[8];
    EXPECT_TRUE(std::regex_match(f[9], std::regex("21:(4[7-9]|5[01])"))) << f[9];
    EXPECT_TRUE(std::regex_match(f[14], std::regex(R"(\d{1,2}\.\d\d)"))) << f[14];
    EXPECT_EQ(f[15], "moon02.ico");
    EXPECT_EQ(f[16], "2024-02-09");
    EXPECT_EQ(f[17], "2024-01-25");
}

TEST_F(SunMoonCli, MoonPhasesOfAYear)
{
    const CliRun run = Run({"moonphases", "2024"});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_EQ(run.lines.size(), 30u);
    EXPECT_EQ(run.lines[0], "Phase\tJD\tDate");
    // New moon 2023 December 12 23:32 UT by the almanac; the formula is a minute late.
    EXPECT_TRUE(
        std::regex_match(run.lines[1], std::regex(R"(New\t2460291\.4\d{4}\t2023-12-12 23:3\d)")))
        << run.lines[1];
    EXPECT_TRUE(
        std::regex_match(run.lines[2], std::regex(R"(Full\t\d{7}\.\d{5}\t2023-12-2\d \d\d:\d\d)")))
        << run.lines[2];
}

TEST_F(SunMoonCli, UsageErrorsAndFaults)
{
    const struct
    {
        QStringList args;
        int exit;
    } rows[] = {
        {{"sun", "now"}, 2},
        {{"moon", "x"}, 2},
        {{"moonphases"}, 2},
        {{"moonphases", "abc"}, 2},
        {{"moonphases", "2024", "2025"}, 2},
        {{"moonphases", "40000"}, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.args.join(" ").toStdString());
        EXPECT_EQ(Run(row.args).exit, row.exit);
    }
    // The settings refuse an observing date that is no date (they reset to the defaults), so
    // the clock always reaches the routines as a date.
    {
        QFile ini(home.filePath("s.ini"));
        ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
        ini.write("[Preferences]\nPDate=31/31/2024\n");
    }
    EXPECT_EQ(Run({"sun"}).exit, 0);
}

} // namespace
