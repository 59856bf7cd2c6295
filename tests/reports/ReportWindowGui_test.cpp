// The report window on the offscreen platform: the page commands and the status line over a
// document of three pages, the controls of the opening, and Save PDF through a scripted port.

#include "reports/ui/frmUserM.h"

#include "astro/ObservingClock.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <filesystem>

#include <gtest/gtest.h>

namespace {

QApplication& App()
{
    static int argc = 1;
    static char name[] = "selvane_reports_gui_tests";
    static char* argv[] = {name, nullptr};
    static QApplication* app = new QApplication(argc, argv);
    return *app;
}

struct Fixture
{
    Fixture()
    {
        App();
        ui.strict = true;
        ui.echo = false;
    }
    QTemporaryDir dir;
    services::ScriptedUiPort ui;
    spread::AppState state{ui, data::ProgramDir{dir.path().toStdString()},
                           data::SettingsStore(dir.filePath("Selvane2000.ini").toStdString())};
    astro::FixedClock clock;
    reports::ReportContext context{state, clock};
};

// Three pages, as a report would make them.
void ThreePages(reports::PrintSurface& surface)
{
    surface.StartDoc();
    for (int page = 1; page <= 3; ++page) {
        if (page > 1)
            surface.NewPage();
        surface.SetFont({"Arial", 20, true});
        surface.Paragraph("Page body " + std::to_string(page));
        surface.SetFont({"Arial", 10});
        surface.Table("^1400|<3000;", "ObjectID|Name;",
                      {{"M31", "Andromeda"}, {"M33", "Triangulum"}});
    }
    surface.SetFooter("Selvane 2003||Page %d");
    surface.EndDoc();
}

std::string Status(const reports::frmUserM& window)
{
    return window.Sbar->currentMessage().toStdString();
}

TEST(frmUserM, OpeningAndPageCommandsStayWithinTheDocument)
{
    Fixture f;
    reports::frmUserM window(f.context);
    EXPECT_EQ(window.windowTitle().toStdString(), "Selvane 2003 Reporting");
    window.Window().ReportNumber = 10;
    window.Form_Load();
    EXPECT_EQ(Status(window), "You are on Page 1 of 1");
    EXPECT_EQ(window.txtTo->text().toStdString(), "9999");
    EXPECT_TRUE(window.chkLand->isEnabled());
    EXPECT_FALSE(window.chartOptions->isVisibleTo(&window));

    // A sheet: portrait only, and the chart options of the plan report.
    window.chkLand->setChecked(true);
    window.Window().ReportNumber = 15;
    window.Form_Load();
    EXPECT_FALSE(window.chkLand->isEnabled());
    EXPECT_FALSE(window.chkLand->isChecked());
    EXPECT_TRUE(window.chartOptions->isVisibleTo(&window));

    ThreePages(window.Surface());
    struct Step
    {
        QPushButton* button;
        const char* status;
    };
    const Step steps[] = {
        {window.Command3, "You are on Page 1 of 3"}, {window.Command2, "You are on Page 2 of 3"},
        {window.Command6, "You are on Page 3 of 3"}, {window.Command2, "You are on Page 3 of 3"},
        {window.Command5, "You are on Page 1 of 3"}, {window.Command3, "You are on Page 1 of 3"},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.button->objectName().toStdString());
        QTest::mouseClick(step.button, Qt::LeftButton);
        EXPECT_EQ(Status(window), step.status);
    }

    // Zoom 100 is the page at 96 dots to the inch (Letter: 8.5 in), a step is 10 percent.
    QTest::mouseClick(window.cmdFit, Qt::LeftButton);
    EXPECT_EQ(window.page->pixmap().width(), 816);
    QTest::mouseClick(window.cmdZoomIn, Qt::LeftButton);
    EXPECT_EQ(window.page->pixmap().width(), 898);
    EXPECT_EQ(window.PreviewDpi(), 110 * 96 / 100.0);
}

TEST(frmUserM, SavePdfWritesTheDocumentOrSaysWhyNot)
{
    Fixture f;
    reports::frmUserM window(f.context);
    ThreePages(window.Surface());

    // The extension is added to a name without one.
    const std::string name = f.dir.filePath("plan").toStdString();
    f.ui.fileAnswers.push_back(name);
    QTest::mouseClick(window.cmdSavePdf, Qt::LeftButton);
    ASSERT_TRUE(std::filesystem::exists(name + ".pdf"));
    EXPECT_TRUE(f.ui.shown.empty());
    FILE* pipe = popen(("pdfinfo '" + name + ".pdf'").c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    char buffer[4096] = {};
    const size_t n = fread(buffer, 1, sizeof buffer - 1, pipe);
    pclose(pipe);
    EXPECT_NE(std::string(buffer, n).find("Pages:           3"), std::string::npos);

    const std::string bad = f.dir.filePath("missing/plan.pdf").toStdString();
    f.ui.fileAnswers.push_back(bad);
    QTest::mouseClick(window.cmdSavePdf, Qt::LeftButton);
    ASSERT_EQ(f.ui.shown.size(), 1u);
    EXPECT_EQ(f.ui.shown[0].message.LongMessage, "Cannot write " + bad);
    EXPECT_EQ(f.ui.shown[0].message.kind, "E");

    // Cancelled: nothing is written and nothing said.
    f.ui.fileAnswers.push_back("");
    QTest::mouseClick(window.cmdSavePdf, Qt::LeftButton);
    EXPECT_EQ(f.ui.shown.size(), 1u);
}

} // namespace
