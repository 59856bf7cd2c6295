// The key createtour on the main window over a copy of the small edition: the tour window's
// defaults, its save dialog, its two modes and the file it writes; the refusal of an empty tab
// before the window opens. With SELVANE_SCREENSHOT_DIR
// naming a folder, the tour window is saved there as tour-window.png.

#include "app/TourWiring.h"
#include "scope/Tour.h"
#include "scope/ui/frmBuildTour.h"

#include "LogbookFolder.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

std::string ReadBytes(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

struct TourScreen : LogbookScreen
{
    TourScreen() : LogbookScreen({}, {1000, 700}) { app::WireTours(*window, state, ui); }

    scope::ui::frmBuildTour* TourWindow() { return window->findChild<scope::ui::frmBuildTour*>(); }

    void LoadList(const std::string& sql)
    {
        state.SQL = sql;
        window->LoadCurrentTab("NOBUILD");
        Settle();
    }
};

TEST(TourWiring, TheTourWindowWritesTheCurrentTab)
{
    TourScreen s;
    // Nothing loaded yet: refused before the window.
    s.window->ab_ToolClick("createtour");
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].ShortMessage, "No Objects Selected");
    EXPECT_EQ(s.ui.shown[0].LongMessage, "The list has no objects");
    EXPECT_EQ(s.TourWindow(), nullptr);

    s.LoadList("Select * From SelvaneTable Where MessierNumber In (31, 42, 45)");
    ASSERT_EQ(s.state.grids[0].MaxRows(), 3);
    s.ui.shown.clear();
    s.window->ab_ToolClick("createtour");
    scope::ui::frmBuildTour* tour = s.TourWindow();
    ASSERT_NE(tour, nullptr);
    EXPECT_TRUE(tour->isVisible());
    EXPECT_EQ(tour->txtTitle->text(), "Selvane 2003");
    EXPECT_EQ(tour->txtIntro->text(), "Welcome to the Selvane 2003 custom generated tour.");
    EXPECT_EQ(tour->txtFile->text().toStdString(), s.dir.File("SelvaneTour.mtf").string());
    EXPECT_TRUE(tour->optMode[1]->isChecked());
    if (const char* folder = std::getenv("SELVANE_SCREENSHOT_DIR"); folder && *folder) {
        QDir().mkpath(folder);
        Settle();
        EXPECT_TRUE(tour->grab().save(QDir(folder).filePath("tour-window.png")));
    }

    // A cancelled dialog keeps the destination; a chosen one replaces it.
    s.ui.saveAnswers = {"", s.dir.File("chosen.mtf").string()};
    tour->Command1->click();
    EXPECT_EQ(tour->txtFile->text().toStdString(), s.dir.File("SelvaneTour.mtf").string());
    tour->Command1->click();
    EXPECT_EQ(tour->txtFile->text().toStdString(), s.dir.File("chosen.mtf").string());

    tour->txtTitle->clear();
    tour->txtIntro->setText("Three \"bright\" ones");
    tour->optMode[0]->click();
    tour->cmdOK->click();
    EXPECT_FALSE(tour->isVisible());
    EXPECT_EQ(ReadBytes(s.dir.File("chosen.mtf")),
              scope::TourText(s.state.grids[0],
                              {"", "Three \"bright\" ones", scope::TourMode::MaximizeMemory}));
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].ShortMessage, "TOUR SCRIPT CREATED");

    // Opened again, the defaults are back.
    s.window->ab_ToolClick("createtour");
    EXPECT_EQ(s.TourWindow(), tour);
    EXPECT_EQ(tour->txtTitle->text(), "Selvane 2003");
    EXPECT_TRUE(tour->optMode[1]->isChecked());
    tour->cmdCancel->click();
    EXPECT_FALSE(tour->isVisible());
}

} // namespace
