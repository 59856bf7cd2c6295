// frmBuildTour's file over hand-made grids: the text byte for byte, the refusal of an empty tab
// and a destination that cannot be written.

#include "scope/Tour.h"

#include "services/ScriptedUiPort.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace {

// One grid row from the cells it needs (column number to text); the others stay blank.
std::string Row(const std::map<int, std::string>& cells)
{
    std::string text;
    for (int col = 1; col <= spread::kGridCols; ++col) {
        if (col > 1)
            text += '\t';
        if (const auto found = cells.find(col); found != cells.end())
            text += found->second;
    }
    return text;
}

// A southern observed object without altitude, a northern one without other identifier, and
// one whose name holds quotes and blanks around its other identifier, at 23h 59m 59.9s, whose
// tenths must be cut and never rounded into the next hour.
spread::Grid ThreeRows()
{
    spread::Grid grid;
    grid.AppendRow(Row({{3, "X"},
                        {4, "NGC 1976"},
                        {5, "M 42"},
                        {6, "BRTNB"},
                        {7, "05 35 24.0"},
                        {8, "-05 27 00.0"},
                        {10, ""},
                        {11, "123.45"},
                        {15, "Ori"},
                        {16, "85.00"},
                        {17, "4.0"}}));
    grid.AppendRow(Row({{3, " "},
                        {4, "NGC 224"},
                        {5, ""},
                        {6, "GALXY"},
                        {7, "00 42 44.3"},
                        {8, "+41 16 09.9"},
                        {10, "+12.34"},
                        {11, "45.60"},
                        {15, "And"},
                        {16, "178.00"},
                        {17, "3.4"}}));
    grid.AppendRow(Row({{3, " "},
                        {4, " Sh2-\"7\" "},
                        {5, "  The \"Loop\" "},
                        {6, "BRTNB"},
                        {7, "23 59 59.9"},
                        {8, "-00 00 30.0"},
                        {10, "-3.00"},
                        {11, "0.00"},
                        {15, "Peg"},
                        {16, ""},
                        {17, ""}}));
    return grid;
}

std::string ReadBytes(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

constexpr const char* kHead = "//////////////////////////////////////\r\n"
                              "// Selvane 2003 Custom Autostar Tour\r\n"
                              "//\r\n"
                              "// Created by Selvane\r\n"
                              "//////////////////////////////////////\r\n";
constexpr const char* kTail = "AUTO SLEW OFF\r\n"
                              "AUTO SELECT TEXT \"Selvane 2003\" \"The END!\"\r\n"
                              "#END\r\n";

TEST(TourText, DetailsSignsQuotesAndDefaults)
{
    const spread::Grid grid = ThreeRows();
    // Empty title and introduction give the defaults.
    const std::string details = scope::TourText(grid, {"", "", scope::TourMode::IncludeDetails});
    EXPECT_EQ(details,
              std::string(kHead) +
                  "TITLE \"Selvane 2003\"\r\n"
                  "AUTO SELECT TEXT \"Selvane 2003\" \"Welcome to the Selvane 2003 custom "
                  "generated tour.\"\r\n"
                  "AUTO SLEW ON\r\n"
                  "AUTO SELECT USER 05:35:24 -05d27m00s \"NGC 1976 M 42\" \"OBJECT:NGC 1976 M 42 "
                  "TYPE:BRTNB RA:05:35:24 DEC:-05d27m00s AZM:123.45 SIZE:85.00 MAG:4.0 "
                  "CONST:Ori. This object has been observed  - PRESS MODE TO CONTINUE THE "
                  "TOUR.\"\r\n"
                  "AUTO SELECT USER 00:42:44 +41d16m09s \"NGC 224\" \"OBJECT:NGC 224 TYPE:GALXY "
                  "RA:00:42:44 DEC:+41d16m09s ALT:+12.34 AZM:45.60 SIZE:178.00 MAG:3.4 "
                  "CONST:And  - PRESS MODE TO CONTINUE THE TOUR.\"\r\n"
                  "AUTO SELECT USER 23:59:59 -00d00m30s \"Sh2-\"7\" The \"Loop\"\" "
                  "\"OBJECT:Sh2-\"7\" The \"Loop\" TYPE:BRTNB RA:23:59:59 DEC:-00d00m30s "
                  "ALT:-3.00 AZM:0.00 SIZE: MAG: CONST:Peg  - PRESS MODE TO CONTINUE THE "
                  "TOUR.\"\r\n" +
                  kTail);

    // Mode 0: the name alone, no details and no observed note; title and introduction as typed,
    // quotes included.
    const std::string small =
        scope::TourText(grid, {"My \"best\" night", "Hello ", scope::TourMode::MaximizeMemory});
    EXPECT_EQ(small, std::string(kHead) +
                         "TITLE \"My \"best\" night\"\r\n"
                         "AUTO SELECT TEXT \"Selvane 2003\" \"Hello \"\r\n"
                         "AUTO SLEW ON\r\n"
                         "AUTO SELECT USER 05:35:24 -05d27m00s \"NGC 1976 M 42\" \"OBJECT:NGC "
                         "1976 M 42  - PRESS MODE TO CONTINUE THE TOUR.\"\r\n"
                         "AUTO SELECT USER 00:42:44 +41d16m09s \"NGC 224\" \"OBJECT:NGC 224  - "
                         "PRESS MODE TO CONTINUE THE TOUR.\"\r\n"
                         "AUTO SELECT USER 23:59:59 -00d00m30s \"Sh2-\"7\" The \"Loop\"\" "
                         "\"OBJECT:Sh2-\"7\" The \"Loop\"  - PRESS MODE TO CONTINUE THE "
                         "TOUR.\"\r\n" +
                         kTail);
}

TEST(BuildTour, WritesRefusesAnEmptyTabAndLeavesNoFileOnAFault)
{
    QTemporaryDir temp;
    const std::filesystem::path folder = temp.path().toStdString();
    services::ScriptedUiPort ui;
    ui.echo = false;

    const std::filesystem::path file = folder / scope::kTourFileName;
    const scope::TourResult written = scope::BuildTour(ui, ThreeRows(), file, {});
    EXPECT_TRUE(written.written);
    EXPECT_EQ(written.objects, 3);
    EXPECT_EQ(ReadBytes(file), scope::TourText(ThreeRows(), {}));
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "TOUR SCRIPT CREATED");
    EXPECT_EQ(ui.shown[0].message.kind, "I");
    EXPECT_EQ(ui.shown[0].Text(), file.string() + ".  Use the Autostar Update utility to load "
                                                  "the script into your Autostar.");

    // An empty tab is refused before anything is written.
    ui.shown.clear();
    const std::filesystem::path other = folder / "empty.mtf";
    EXPECT_FALSE(scope::BuildTour(ui, spread::Grid{}, other, {}).written);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.kind, "I");
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "No Objects Selected");
    EXPECT_EQ(ui.shown[0].Text(), "The list has no objects");
    EXPECT_FALSE(std::filesystem::exists(other));

    // A destination in a folder that does not exist: the fault at frmBuildTour, no file, and
    // no temporary file either; a file standing under the name stays whole.
    ui.shown.clear();
    const std::filesystem::path missing = folder / "gone" / "t.mtf";
    EXPECT_FALSE(scope::BuildTour(ui, ThreeRows(), missing, {}).written);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.kind, "E");
    EXPECT_EQ(ui.shown[0].Text(), "Path not found\nOccurred in : frmBuildTour");
    EXPECT_FALSE(std::filesystem::exists(folder / "gone"));

    std::filesystem::create_directory(folder / "blocked.mtf");
    ui.shown.clear();
    EXPECT_FALSE(scope::BuildTour(ui, ThreeRows(), folder / "blocked.mtf", {}).written);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.kind, "E");
    EXPECT_FALSE(std::filesystem::exists(folder / "blocked.mtf.partial"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "blocked.mtf"));
}

} // namespace
