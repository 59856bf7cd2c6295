// selvane-cli chart run as a program: own charts checked against a projection written here from
// the chart's published formula, the call log, the working file, the planetarium bridge on a
// command server played in this process, and the refusals.

#include "CliRunner.h"

#include "../charts/FakeCartesServer.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>

namespace {

using clitest::CliRun;
using clitest::Split;

class ChartCommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(home.isValid());
        QFile settings(home.path() + "/s.ini");
        ASSERT_TRUE(settings.open(QIODevice::WriteOnly));
        settings.write("[Preferences]\nFIRST=False\n");
    }

    CliRun Run(const QStringList& args)
    {
        return clitest::RunCli(home.path(), QStringList{"chart"} + args);
    }
    CliRun RunSet(const QStringList& sets, const QStringList& args)
    {
        return clitest::RunCli(home.path(), sets + QStringList{"chart"} + args);
    }

    QString File(const char* name) const { return home.path() + "/" + name; }
    bool Exists(const char* name) const { return QFile::exists(File(name)); }

    std::vector<std::vector<std::string>> Table(const char* name) const
    {
        std::ifstream in(File(name).toStdString());
        std::vector<std::vector<std::string>> rows;
        for (std::string line; std::getline(in, line);)
            rows.push_back(Split(line, '\t'));
        return rows;
    }

    QTemporaryDir home;
};

double Number(const std::string& text)
{
    return std::strtod(text.c_str(), nullptr);
}

// The chart's projection, from its formula: stereographic, north up, east left.
struct Pixel
{
    double x, y;
};
Pixel Project(double ra0, double dec0, double field, int w, int h, double ra, double dec)
{
    const double d = std::numbers::pi / 180;
    const double s = std::min(w, h) / (4 * std::tan(field / 4 * d));
    const double da = (ra - ra0) * 15 * d;
    const double k = 2 / (1 + std::sin(dec0 * d) * std::sin(dec * d) +
                          std::cos(dec0 * d) * std::cos(dec * d) * std::cos(da));
    return {w / 2.0 - s * k * std::cos(dec * d) * std::sin(da),
            h / 2.0 - s * k *
                          (std::cos(dec0 * d) * std::sin(dec * d) -
                           std::sin(dec0 * d) * std::cos(dec * d) * std::cos(da))};
}

TEST_F(ChartCommandTest, UsageErrors)
{
    for (const QStringList& bad :
         {QStringList{}, QStringList{"bogus"}, QStringList{"all", "--size", "15x100"},
          QStringList{"all", "--size", "100x8001"}, QStringList{"radec", "5", "x"},
          QStringList{"radec", "5"}, QStringList{"all", "--type", "04"},
          QStringList{"plot", "f.plt", "--type", "08"}, QStringList{"all", "--target", "X"},
          QStringList{"all", "--sql", "x", "--build"}, QStringList{"all", "--row", "0"},
          QStringList{"finder", "NGC 1976"}, QStringList{"all", "--mag", "bright"}})
        EXPECT_EQ(Run(bad).exit, 2) << bad.join(' ').toStdString();
}

TEST_F(ChartCommandTest, AllRowsDrawnWhereTheProjectionPutsThem)
{
    const CliRun run =
        Run({"allsel", "--row", "2", "--size", "800x600", "--mag", "6.5", "--png", File("c.png"),
             "--objects", File("o.txt"), "--calls", File("calls.txt")});
    ASSERT_EQ(run.exit, 0) << run.err;
    ASSERT_EQ(run.lines.size(), 2u);
    EXPECT_EQ(run.lines[0], "Target\tRA\tDec\tField\tMag\tStars\tPlotted");
    const std::vector<std::string> chart = Split(run.lines[1], '\t');
    ASSERT_EQ(chart.size(), 7u);
    EXPECT_EQ(chart[0], "D");
    EXPECT_EQ(chart[3], "35");
    EXPECT_EQ(chart[4], "6.50");
    const double ra0 = Number(chart[1]), dec0 = Number(chart[2]);
    // Row 2 of the start list is M 2, whose declination is -00 49: the call carries degrees 0
    // and negative minutes, its PlotDSO a north flag of 0.
    EXPECT_NEAR(ra0, 21.5575, 0.001);
    EXPECT_NEAR(dec0, -0.8233, 0.001);

    const auto calls = Table("calls.txt");
    ASSERT_FALSE(calls.empty());
    ASSERT_EQ(calls[0].size(), 15u);
    EXPECT_EQ(calls[0][0], "DrawChart");
    EXPECT_EQ(calls[0][3], "0");
    EXPECT_LT(Number(calls[0][4]), 0);
    EXPECT_EQ(calls[0][7], "Selvane 2003");
    int plots = 0;
    for (const auto& call : calls) {
        if (call[0] != "PlotDSO")
            continue;
        ++plots;
        ASSERT_EQ(call.size(), 14u);
        if (call[8] == "NGC 7089") {
            EXPECT_EQ(call[3], "0");
            EXPECT_EQ(call[5], "0"); // north flag
            EXPECT_EQ(call[6], "3"); // globular
            EXPECT_NE(call[10].find("\\\\ODECLINATION :\\\\D -00 49 23.9"), std::string::npos);
        }
    }
    EXPECT_EQ(std::to_string(plots), chart[6]);

    // Every star and object lies where the formula puts it, and the picture has ink there.
    const QImage image(File("c.png"));
    ASSERT_EQ(image.size(), QSize(800, 600));
    const auto objects = Table("o.txt");
    ASSERT_GT(objects.size(), 1u);
    EXPECT_EQ(objects[0].size(), 10u);
    int stars = 0;
    for (std::size_t i = 1; i < objects.size(); ++i) {
        const auto& o = objects[i];
        ASSERT_EQ(o.size(), 10u);
        const Pixel p = Project(ra0, dec0, 35, 800, 600, Number(o[4]), Number(o[5]));
        EXPECT_NEAR(Number(o[7]), p.x, 0.02) << o[1];
        EXPECT_NEAR(Number(o[8]), p.y, 0.02) << o[1];
        if (o[0] == "star") {
            ++stars;
            EXPECT_LE(Number(o[6]), 6.5);
            // Within a pixel of its place the faintest star is dark.
            int darkest = 255;
            for (int dx = -1; dx <= 1; ++dx)
                for (int dy = -1; dy <= 1; ++dy)
                    darkest = std::min(darkest, image
                                                    .pixelColor(QPoint(static_cast<int>(p.x) + dx,
                                                                       static_cast<int>(p.y) + dy))
                                                    .lightness());
            EXPECT_LT(darkest, 100) << o[1];
        }
    }
    EXPECT_EQ(std::to_string(stars), chart[5]);
    // The chart closed before the command ended.
    EXPECT_FALSE(Exists("home/DSO.DAT"));
}

TEST_F(ChartCommandTest, OpenChartsMissingThingsAndUnwritableOutputStop)
{
    // A chart left open blocks own charts.
    const CliRun open = Run({"all", "--chart-open", "--png", File("a.png")});
    EXPECT_EQ(open.exit, 1);
    EXPECT_NE(open.err.find("[I] Invalid Usage: Only 1 chart can be opened at a time"),
              std::string::npos);
    EXPECT_FALSE(Exists("a.png"));

    const CliRun beyond = Run({"sob", "--row", "5000", "--png", File("b.png")});
    EXPECT_EQ(beyond.exit, 1);
    EXPECT_NE(beyond.err.find("no row 5000"), std::string::npos);
    EXPECT_FALSE(Exists("b.png"));

    const CliRun unknown = Run({"finder", "NGC 99999", "2000", "--png", File("f.png")});
    EXPECT_EQ(unknown.exit, 1);
    EXPECT_NE(unknown.err.find("[I] Not Found: Object is not in the Selvane database"),
              std::string::npos);
    EXPECT_EQ(Run({"const", "Xyz-Nothing"}).exit, 1);
    EXPECT_EQ(Run({"plot", File("missing.plt")}).exit, 1);

    const CliRun zero = Run({"radec", "0", "0"});
    EXPECT_EQ(zero.exit, 1);
    EXPECT_NE(zero.err.find("Please verify that the ACP control panel"), std::string::npos);

    const CliRun unwritable =
        Run({"sc", "--calls", File("calls.txt"), "--png", home.path() + "/no/such/folder/x.png"});
    EXPECT_EQ(unwritable.exit, 1);
    EXPECT_FALSE(Exists("calls.txt"));
}

TEST_F(ChartCommandTest, FinderPanelsConstellationsAndPlotFiles)
{
    const CliRun finder =
        Run({"finder", "NGC 1976", "2000", "--size", "300x300", "--png", File("f.png")});
    ASSERT_EQ(finder.exit, 0) << finder.err;
    ASSERT_EQ(finder.lines.size(), 4u);
    EXPECT_EQ(Split(finder.lines[1], '\t')[3], "75");
    EXPECT_EQ(Split(finder.lines[2], '\t')[3], "15");
    EXPECT_EQ(Split(finder.lines[3], '\t')[3], "3");
    EXPECT_EQ(QImage(File("f.png")).size(), QSize(900, 300));

    // Serpens centres on its head.
    const CliRun serpens = Run({"const", "Ser-Serpens"});
    ASSERT_EQ(serpens.exit, 0) << serpens.err;
    EXPECT_NEAR(Number(Split(serpens.lines[1], '\t')[1]), 15.667, 0.01);

    // A plot file whose first entry is "-00 30": the centre keeps its sign.
    {
        std::ofstream plt(File("s.plt").toStdString(), std::ios::binary);
        plt << "10\r\nSouth\r\n05 35 00 | -00 30 00 | A\r\n05 36 00 | +01 00 00 | B\r\n";
    }
    const CliRun plot = Run({"plot", File("s.plt"), "--type", "02", "--calls", File("p.txt")});
    ASSERT_EQ(plot.exit, 0) << plot.err;
    EXPECT_NEAR(Number(Split(plot.lines[1], '\t')[2]), -0.5, 1e-6);
    const auto calls = Table("p.txt");
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0][5], "10");
    EXPECT_EQ(calls[1][5], "0"); // north flag of "-00"
    EXPECT_EQ(calls[1][6], "2");
    EXPECT_EQ(calls[2][5], "1");
}

TEST_F(ChartCommandTest, PlanetariumTargetSendsTheChart)
{
    fakecdc::FakeCartesServer server("OK! Cartes du Ciel", fakecdc::AllOk);
    const QString setting = "planetarium=cdc://127.0.0.1:" + QString::number(server.Address().port);
    const CliRun run = RunSet({"--set", setting}, {"sob", "--target", "C", "--row", "1"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const std::vector<std::string> chart = Split(run.lines[1], '\t');
    EXPECT_EQ(chart[0], "C");
    EXPECT_EQ(chart[4], "");
    EXPECT_EQ(chart[6], "1");
    const std::vector<std::string> lines = server.Lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), "SETCHARTEQUINOX J2000");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "SETFOV 35"), lines.end());
    EXPECT_EQ(lines.back(), "QUIT");

    // Nothing listening: the message names the program and the address, and nothing is made.
    const int closed = fakecdc::ClosedPort();
    const CliRun none = RunSet({"--set", "planetarium=cdc://127.0.0.1:" + QString::number(closed)},
                               {"all", "--target", "C"});
    EXPECT_EQ(none.exit, 1);
    EXPECT_NE(none.err.find("Cartes du Ciel at 127.0.0.1:" + std::to_string(closed)),
              std::string::npos);
    EXPECT_EQ(none.lines.size(), 1u);
}

} // namespace
