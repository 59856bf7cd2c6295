// The painted surface laid out for real: pages are read back through PageTexts, and PDFs through
// poppler's pdfinfo, pdftotext and pdffonts.

#include "reports/PainterSurface.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

using reports::PainterSurface;

// Text measuring needs the font database of a GUI application (offscreen platform).
void EnsureGuiApplication()
{
    if (QCoreApplication::instance())
        return;
    static int argc = 1;
    static char name[] = "reports_tests";
    static char* argv[] = {name, nullptr};
    static QGuiApplication app(argc, argv);
}

std::string Output(const std::string& command)
{
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return out;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        out.append(buffer, n);
    pclose(pipe);
    return out;
}

// The "emb" column of pdffonts, one entry per font.
std::vector<std::string> EmbeddedColumn(const std::string& listing)
{
    std::vector<std::string> column;
    std::istringstream lines(listing);
    std::string line;
    bool body = false;
    while (std::getline(lines, line)) {
        if (line.starts_with("---")) {
            body = true;
            continue;
        }
        std::istringstream words(line);
        std::vector<std::string> tokens{std::istream_iterator<std::string>(words), {}};
        if (body && tokens.size() >= 6)
            column.push_back(tokens[tokens.size() - 5]);
    }
    return column;
}

int Count(const std::vector<std::string>& texts, const std::string& text)
{
    return static_cast<int>(std::count(texts.begin(), texts.end(), text));
}

class PainterSurfaceTest : public ::testing::Test
{
protected:
    void SetUp() override { EnsureGuiApplication(); }
    PainterSurface surface;
};

TEST_F(PainterSurfaceTest, LongTableRepeatsHeaderKeepsRowsWholeAndFootsEveryPage)
{
    reports::TableRows rows;
    for (int i = 1; i <= 200; ++i)
        rows.push_back({"M" + std::to_string(i), "first\r\nsecond " + std::to_string(i)});
    surface.StartDoc();
    surface.SetFont({"Arial", 10});
    surface.Paragraph("Objects");
    surface.Table("^1400|<3000;", "ObjectID|Notes;", rows);
    surface.Paragraph("after the table");
    // Set after the body: still on every page.
    surface.SetFooter("Selvane 2003||Page %d");
    surface.EndDoc();

    const int pages = surface.PageCount();
    ASSERT_GE(pages, 5);
    int seen = 0;
    for (int page = 1; page <= pages; ++page) {
        SCOPED_TRACE(page);
        const std::vector<std::string> texts = surface.PageTexts(page);
        EXPECT_EQ(Count(texts, "ObjectID"), 1);
        EXPECT_EQ(Count(texts, "Selvane 2003"), 1);
        EXPECT_EQ(Count(texts, "Page " + std::to_string(page)), 1);
        for (size_t i = 0; i < texts.size(); ++i) {
            if (texts[i] != "M" + std::to_string(seen + 1))
                continue;
            ++seen;
            // The two lines of the row's second cell stand on the row's page.
            EXPECT_EQ(Count(texts, "second " + std::to_string(seen)), 1) << texts[i];
        }
    }
    EXPECT_EQ(seen, 200);
    EXPECT_EQ(Count(surface.PageTexts(pages), "after the table"), 1);

    // A row taller than a page stands alone on its own page, clipped; the next row goes on.
    std::string tall;
    for (int i = 0; i < 120; ++i)
        tall += "line " + std::to_string(i) + "\r\n";
    surface.StartDoc();
    surface.Table("+<2000|<2000;", ";", {{"a", "short"}, {"b", tall}, {"c", "short"}});
    surface.EndDoc();
    ASSERT_EQ(surface.PageCount(), 3);
    EXPECT_EQ(Count(surface.PageTexts(1), "a"), 1);
    EXPECT_EQ(Count(surface.PageTexts(2), "b"), 1);
    EXPECT_EQ(Count(surface.PageTexts(2), "line 0"), 1);
    EXPECT_EQ(Count(surface.PageTexts(2), "line 119"), 0);
    EXPECT_EQ(Count(surface.PageTexts(3), "c"), 1);
}

TEST_F(PainterSurfaceTest, ParagraphsWrapKeepBlanksAndRunOverPages)
{
    std::string text;
    for (int i = 1; i <= 120; ++i)
        text += "   row " + std::to_string(i) + "\r\n";
    text += "end";
    std::string words;
    for (int i = 0; i < 60; ++i)
        words += "wrapping words ";

    surface.StartDoc();
    surface.SetFont({"Courier New", 10});
    surface.Paragraph(text);
    surface.Paragraph("");
    surface.Paragraph(words);
    surface.EndDoc();

    ASSERT_GE(surface.PageCount(), 2);
    std::vector<std::string> all;
    for (int page = 1; page <= surface.PageCount(); ++page) {
        const auto texts = surface.PageTexts(page);
        all.insert(all.end(), texts.begin(), texts.end());
    }
    EXPECT_EQ(Count(all, "   row 1"), 1);
    EXPECT_EQ(Count(all, "   row 120"), 1);
    // The long line is wrapped into several lines that give back the whole text.
    const auto first = std::find(all.begin(), all.end(), "end") + 1;
    std::string joined;
    int lines = 0;
    for (auto it = first; it != all.end(); ++it, ++lines)
        joined += *it;
    EXPECT_GE(lines, 5);
    EXPECT_EQ(joined, words);

    // Rich text longer than a page breaks between lines; what follows goes on below it, and
    // markup Qt cannot read still prints.
    std::string html = "<html><body>";
    for (int i = 0; i < 150; ++i)
        html += "<p>Paragraph <b>" + std::to_string(i) + "</b></p>";
    html += "</body></html>";
    surface.StartDoc();
    surface.RichText(html);
    surface.RichText("<b><i>not closed <table><tr><td>cell");
    surface.Paragraph("after");
    surface.EndDoc();
    EXPECT_GE(surface.PageCount(), 3);
    EXPECT_EQ(Count(surface.PageTexts(surface.PageCount()), "after"), 1);
}

// Double spacing takes twice the room for the same paragraph lines and table rows; the next
// document starts single-spaced again.
TEST_F(PainterSurfaceTest, LineSpacingStretchesParagraphsAndRows)
{
    const auto pages = [&](int percent, bool table) {
        surface.StartDoc();
        if (percent != 0)
            surface.SetLineSpacing(percent);
        if (table)
            surface.Table("<2000;", "Name;",
                          reports::TableRows(200, std::vector<std::string>{"x"}));
        else
            for (int i = 0; i < 300; ++i)
                surface.Paragraph("line " + std::to_string(i));
        surface.EndDoc();
        return surface.PageCount();
    };
    const int single = pages(100, false);
    ASSERT_GE(single, 3);
    EXPECT_GE(pages(200, false), 2 * single - 1);
    EXPECT_LE(pages(200, false), 2 * single + 1);
    EXPECT_EQ(pages(0, false), single);
    const int rows = pages(100, true);
    EXPECT_GT(pages(200, true), rows);
}

TEST_F(PainterSurfaceTest, PdfHasPaperTextAndEmbeddedFonts)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    struct Row
    {
        reports::Paper paper;
        reports::Orientation orientation;
        const char* size; // pdfinfo's "Page size", in points
    };
    const Row rows[] = {
        {reports::Paper::Letter, reports::Orientation::Portrait, "612 x 792 pts (letter)"},
        // Qt writes the A4 box rounded to whole points.
        {reports::Paper::A4, reports::Orientation::Landscape, "842 x 595 pts (A4)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.size);
        const std::string path = dir.filePath("report.pdf").toStdString();
        surface.SetPaper(row.paper);
        surface.SetOrientation(row.orientation);
        surface.StartDoc();
        surface.SetHeader("|Plan Report|");
        surface.Paragraph("Messier 31");
        surface.NewPage();
        surface.SetFont({"Courier New", 10, true});
        surface.Paragraph("Messier 33");
        surface.SetFooter("Selvane 2003||Page %d");
        surface.EndDoc();
        std::string error;
        ASSERT_TRUE(surface.WritePdf(path, error)) << error;
        EXPECT_FALSE(std::filesystem::exists(path + ".part~"));

        const std::string info = Output("pdfinfo '" + path + "'");
        EXPECT_NE(info.find(row.size), std::string::npos) << info;
        EXPECT_NE(info.find("Pages:           2"), std::string::npos) << info;
        const std::string second = Output("pdftotext -layout -f 2 -l 2 '" + path + "' -");
        EXPECT_NE(second.find("Messier 33"), std::string::npos) << second;
        EXPECT_NE(second.find("Page 2"), std::string::npos) << second;
        EXPECT_NE(second.find("Plan Report"), std::string::npos) << second;
        EXPECT_EQ(second.find("Messier 31"), std::string::npos) << second;
        const std::string fonts = Output("pdffonts '" + path + "'");
        EXPECT_NE(fonts.find("Liberation"), std::string::npos) << fonts;
        EXPECT_EQ(EmbeddedColumn(fonts), std::vector<std::string>(2, "yes")) << fonts;
    }
}

TEST_F(PainterSurfaceTest, PdfThatCannotBeWrittenLeavesNoFile)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    surface.StartDoc();
    surface.Paragraph("text");
    surface.EndDoc();
    // A missing folder, and a name that is a folder (the rename fails after the writing).
    const std::string missing = dir.filePath("no such folder/report.pdf").toStdString();
    const std::string folder = dir.filePath("taken.pdf").toStdString();
    std::filesystem::create_directory(folder);
    std::filesystem::create_directory(folder + "/inside");
    for (const std::string& path : {missing, folder}) {
        SCOPED_TRACE(path);
        std::string error;
        EXPECT_FALSE(surface.WritePdf(path, error));
        EXPECT_EQ(error, "Cannot write " + path);
        EXPECT_FALSE(std::filesystem::exists(path + ".part~"));
    }
    EXPECT_FALSE(std::filesystem::exists(missing));
    EXPECT_TRUE(std::filesystem::is_directory(folder + "/inside"));
}

} // namespace
