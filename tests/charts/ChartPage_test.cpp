#include "charts/ChartPage.h"

#include "services/Fault.h"
#include "tests/TestFiles.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include "ChartFixtures.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

using chartfixtures::EnsureGuiApplication;

const charts::ChartSky& Sky()
{
    return chartfixtures::ShippedSky();
}

// The finder chart of M 42 with its eyepiece circle, 35 degrees, in day colours.
charts::ChartImage OrionChart(int width, int height)
{
    charts::ChartRequest request;
    request.raHours = 5.588139;
    request.decDeg = -5.391111;
    request.fieldDeg = 35;
    request.width = width;
    request.height = height;
    std::vector<charts::PlotObject> objects(2);
    objects[0].raHours = request.raHours;
    objects[0].decDeg = request.decDeg;
    objects[0].typeCode = 4;
    objects[0].sizeArcmin = 85;
    objects[0].objectId = "NGC 1976";
    objects[0].extraId = "42";
    objects[1] = objects[0];
    objects[1].flag = 1;
    objects[1].sizeArcmin = 240;
    return charts::RenderChart(Sky(), request, objects);
}

charts::ChartPageInfo OrionInfo()
{
    charts::ChartPageInfo info;
    info.heading = "Selvane finder chart: M 42 'Orion Nebula'";
    info.raHours = 5.588139;
    info.decDeg = -5.391111;
    info.fieldDeg = 35;
    info.limitMag = 7.6;
    info.date = "2025-11-08 21:30";
    return info;
}

// What a command prints; poppler-utils is in scripts/packages.txt, so a missing tool fails.
std::string CommandOutput(const std::string& command)
{
    std::string out;
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe)
        return out;
    char buffer[4096];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        out.append(buffer, n);
    ::pclose(pipe);
    return out;
}

// Runs of blanks as one: the text tools space words by their place on the page.
std::string OneBlank(const std::string& text)
{
    std::string out;
    for (char c : text)
        if (c != ' ' || out.empty() || out.back() != ' ')
            out += c;
    return out;
}

TEST(ChartPageTexts, CentreFieldAndLimit)
{
    struct Row
    {
        double raHours, decDeg;
        const char* expected;
    };
    // Fields by hand from the decimal values; seconds of declination carry at 59.5.
    const Row rows[] = {
        {5.588139, -5.391111, "RA 5h 35m 17.3s  Dec -5\xC2\xB0 23' 28\""},
        {0, 90, "RA 0h 0m 0s  Dec +90\xC2\xB0 0' 0\""},
        {24, -90, "RA 0h 0m 0s  Dec -90\xC2\xB0 0' 0\""},
        {-1, 0, "RA 23h 0m 0s  Dec +0\xC2\xB0 0' 0\""},
        // 10 59' 59.7" rounds to 11 0' 0"; -0.1" to no sign at all.
        {12.5, 10 + 59 / 60.0 + 59.7 / 3600, "RA 12h 30m 0s  Dec +11\xC2\xB0 0' 0\""},
        {23.99999999, -0.1 / 3600, "RA 0h 0m 0s  Dec +0\xC2\xB0 0' 0\""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.expected);
        EXPECT_EQ(charts::ChartCentreText(row.raHours, row.decDeg), row.expected);
    }
    EXPECT_EQ(charts::ChartFieldText(35), "Field 35\xC2\xB0");
    EXPECT_EQ(charts::ChartFieldText(2.5), "Field 2.5\xC2\xB0");
    EXPECT_EQ(charts::ChartLimitText(7.6), "Stars to mag 7.6");
    EXPECT_EQ(charts::ChartLimitText(9), "Stars to mag 9");
}

TEST(WriteChartPdf, WritesSearchablePageOnEachPaper)
{
    EnsureGuiApplication();
    QTemporaryDir dir;
    const charts::ChartImage chart = OrionChart(800, 600);
    struct Row
    {
        charts::PagePaper paper;
        bool landscape;
        const char* pageSize; // as pdfinfo prints it
    };
    const Row rows[] = {
        {charts::PagePaper::Letter, false, "612 x 792 pts (letter)"},
        {charts::PagePaper::A4, true, "842 x 595 pts (A4)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.pageSize);
        charts::ChartPageInfo info = OrionInfo();
        info.landscape = row.landscape;
        const std::filesystem::path path =
            dir.filePath(row.landscape ? "landscape.pdf" : "portrait.pdf").toStdString();
        charts::WriteChartPdf(path, chart, info, row.paper);
        ASSERT_EQ(test_files::ReadText(path).substr(0, 4), "%PDF");

        const std::string text =
            OneBlank(CommandOutput("pdftotext -layout '" + path.string() + "' -"));
        for (const std::string& wanted :
             {info.heading, std::string("RA 5h 35m 17.3s Dec -5\xC2\xB0 23' 28\""),
              std::string("Field 35\xC2\xB0"), std::string("Stars to mag 7.6"), info.date,
              std::string("Star magnitudes"), std::string("Globular cluster"),
              std::string("Planetary nebula"), std::string("Solar system body"),
              std::string("Eyepiece field")})
            EXPECT_NE(text.find(wanted), std::string::npos) << wanted << " not in:\n" << text;

        const std::string pdfInfo = OneBlank(CommandOutput("pdfinfo '" + path.string() + "'"));
        EXPECT_NE(pdfInfo.find("Pages: 1\n"), std::string::npos) << pdfInfo;
        EXPECT_NE(pdfInfo.find(row.pageSize), std::string::npos) << pdfInfo;
        // Every font is embedded, so the page prints the same anywhere.
        const std::string fonts = CommandOutput("pdffonts '" + path.string() + "'");
        EXPECT_NE(fonts.find("DejaVuSans "), std::string::npos) << fonts;
        std::istringstream lines(fonts.substr(fonts.find("---")));
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
            std::istringstream fields(line);
            std::vector<std::string> words{std::istream_iterator<std::string>(fields), {}};
            ASSERT_GE(words.size(), 5u) << line;
            EXPECT_EQ(words[words.size() - 5], "yes") << line; // the "emb" column
        }
    }
}

TEST(WriteChartPdf, UnwritablePathFaultsAndLeavesNoFile)
{
    EnsureGuiApplication();
    QTemporaryDir dir;
    const std::filesystem::path folder = dir.path().toStdString();
    test_files::WriteText(folder / "plain", "x");
    struct Row
    {
        std::filesystem::path path;
        const char* message;
    };
    const Row rows[] = {
        {folder / "missing" / "chart.pdf", "Path not found"},
        {folder / "plain" / "chart.pdf", "Path not found"}, // a file where a folder should be
        {folder, "Is a directory"},
    };
    const charts::ChartImage chart = OrionChart(200, 150);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path.string());
        try {
            charts::WriteChartPdf(row.path, chart, OrionInfo());
            ADD_FAILURE() << "no fault";
        } catch (const services::Fault& fault) {
            EXPECT_EQ(std::string(fault.what()), row.message);
            EXPECT_EQ(fault.Location(), "charts.WriteChartPdf");
        }
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
    EXPECT_EQ(test_files::ReadText(folder / "plain"), "x");
    EXPECT_TRUE(std::filesystem::is_directory(folder));
}

} // namespace
