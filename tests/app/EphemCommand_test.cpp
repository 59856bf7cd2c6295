// selvane-cli ephem run as a program in a fresh program folder seeded with the shipped data:
// a named comet or asteroid against the same elements typed out, the line format, the steps'
// times, magnitudes without H, faults and the argument checks.

#include "astro/Orbits.h"
#include "data/MinorBodies.h"

#include "CliRunner.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace {

using clitest::CliRun;

const char* kHeader = "Name\tDate\tRA\tDec\tDelta\tr\tMag\tElong";

class EphemCli : public ::testing::Test
{
protected:
    CliRun Run(const QStringList& args) { return clitest::RunCli(home.path(), args); }

    // The columns after the name of each line.
    static std::vector<std::string> Values(const CliRun& run)
    {
        std::vector<std::string> values;
        for (std::size_t k = 1; k < run.lines.size(); ++k)
            values.push_back(run.lines[k].substr(run.lines[k].find('\t')));
        return values;
    }

    static QString Number(double x) { return QString::number(x, 'g', 17); }

    QTemporaryDir home;
};

TEST_F(EphemCli, NamedBodiesRunOnTheirRowsElements)
{
    const CliRun comet = Run({"ephem", "comet", "1p/HALLEY", "1986-02-09 12:00", "3", "0.5"});
    ASSERT_EQ(comet.exit, 0) << comet.err;
    ASSERT_EQ(comet.lines.size(), 4u);
    EXPECT_EQ(comet.lines[0], kHeader);
    const std::regex line(R"(1P/Halley\t1986-02-(09 12|10 00|10 12):00\t\d+\.\d{6}\t-?\d+\.\d{6})"
                          R"(\t\d+\.\d{6}\t\d+\.\d{6}\t-?\d+\.\d{2}\t\d+)");
    for (std::size_t k = 1; k < 4; ++k)
        EXPECT_TRUE(std::regex_match(comet.lines[k], line)) << comet.lines[k];
    // The time may also come as an argument of its own.
    EXPECT_EQ(Run({"ephem", "comet", "1P/Halley", "1986-02-09", "12:00", "3", "0.5"}).lines,
              comet.lines);

    // The same row's elements typed out give the same places.
    const auto file = std::filesystem::path(home.filePath(data::AstCometFileName).toStdString());
    const data::CometRow c = *data::FindComet(file, "1P/Halley");
    const CliRun typed =
        Run({"ephem", "elements", "C",
             QString::fromStdString(astro::ElementDateText(c.tyear, c.tmonth, c.tday)), "0",
             Number(c.e), "0", Number(c.q), Number(c.i), Number(c.ascnode), Number(c.ArgPeri), "0",
             Number(*c.Mag), Number(*c.K), "", "", "19860209120000", "3", "0.5"});
    ASSERT_EQ(typed.exit, 0) << typed.err;
    EXPECT_EQ(Values(typed), Values(comet));
    EXPECT_EQ(typed.lines[1].substr(0, 1), "\t");

    // An asteroid's slope defaults to 0.15; a comet without K has no magnitude.
    const data::AsteroidRow a = *data::FindAsteroid(file, "Vesta");
    auto asteroid = [&](const QString& slope) {
        return Run({"ephem", "elements", "A",
                    QString::fromStdString(astro::ElementDateText(a.eyear, a.emonth, a.eday)),
                    Number(a.M), Number(a.e), Number(a.a), "0", Number(a.i), Number(a.Node),
                    Number(a.omega), "0", "", "", Number(*a.g), slope, "20250101", "2", "-30"});
    };
    const CliRun vesta = asteroid("");
    ASSERT_EQ(vesta.exit, 0) << vesta.err;
    EXPECT_EQ(Values(vesta), Values(asteroid("0.15")));
    EXPECT_NE(Values(vesta), Values(asteroid("0.5")));
    EXPECT_EQ(vesta.lines[2].substr(0, 17), "\t2024-12-02 00:00");
    const CliRun noK = Run({"ephem", "elements", "C", "20240421", "0", "0.99", "0", "0.78", "74",
                            "255", "199", "0", "5", "", "", "", "20240401", "1", "1"});
    ASSERT_EQ(noK.exit, 0) << noK.err;
    EXPECT_EQ(clitest::Split(noK.lines[1], '\t')[6], "");
}

TEST_F(EphemCli, UnknownNamesFaultsAndUsage)
{
    const CliRun unknown = Run({"ephem", "asteroid", "No Such Rock", "2024-01-01"});
    EXPECT_EQ(unknown.exit, 1);
    EXPECT_NE(unknown.err.find("\"No Such Rock\""), std::string::npos) << unknown.err;
    EXPECT_TRUE(unknown.lines.empty());

    // An asteroid without a semi-major axis faults in the set-up: the header alone, exit 1.
    const CliRun fault = Run({"ephem", "elements", "A", "20240101", "10", "0.1", "0", "0", "5",
                              "10", "20", "0", "", "", "7", "", "20240101", "3", "1"});
    EXPECT_EQ(fault.exit, 1);
    EXPECT_EQ(fault.lines, std::vector<std::string>{kHeader});
    EXPECT_NE(fault.err.find("Module2.EPHEM"), std::string::npos) << fault.err;

    const QStringList good{"ephem", "elements", "C", "20240421", "0", "0.99", "0", "0.78", "74",
                           "255",   "199",      "0", "5",        "4", "",  "",     "20240401",
                           "1",     "1"};
    const std::vector<std::pair<int, QString>> bad{
        {0, "planet"}, {1, "X"}, {2, "2024"}, {2, "20241301"}, {2, "20240230"},
        {3, "ten"},    {12, "bright"}, {15, "2024-04-01"}, {16, "0"}, {16, "100001"},
        {17, "0"},     {17, "a day"}};
    for (const auto& [at, text] : bad) {
        QStringList args = good;
        args[at + 1] = text;
        EXPECT_EQ(Run(args).exit, 2) << text.toStdString();
    }
    EXPECT_EQ(Run(good.mid(0, 18)).exit, 2);
    for (const QStringList& args :
         {QStringList{"ephem"}, QStringList{"ephem", "comet", "1P/Halley"},
          QStringList{"ephem", "comet", "1P/Halley", "2024-02-30"},
          QStringList{"ephem", "comet", "1P/Halley", "2024-01-01 24:00"},
          QStringList{"ephem", "comet", "1P/Halley", "2024-01-01", "0"},
          QStringList{"ephem", "comet", "1P/Halley", "2024-01-01", "10", "0"},
          QStringList{"ephem", "comet", "1P/Halley", "2024-01-01", "10", "1", "more"}})
        EXPECT_EQ(Run(args).exit, 2) << args.join(' ').toStdString();
}

} // namespace
