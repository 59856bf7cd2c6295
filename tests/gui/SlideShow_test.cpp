// The slide show's windows on the offscreen platform, over the built small edition with a plan
// loaded into tab 0. The mount is a recording driver: these tests are about what the windows
// show; the keypad on the real simulator is tested in tests/scope.

#include "GuiApp.h"

#include "app/GridCommand.h"
#include "scope/ui/frmSlide.h"
#include "scope/ui/frmslideinp.h"
#include "services/ScriptedUiPort.h"
#include "spread/PlanFile.h"
#include "tests/scope/RecordingTelescope.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTimer>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class SlideWindows : public ::testing::Test
{
protected:
    void SetUp() override
    {
        App();
        ui.echo = false;
        start = spread::LoadForm(TMM, SELVANE_RESOURCE_DIR, {}, clock);
        ASSERT_TRUE(TMM.objectDb) << "build the selvane_databases target first";
        layer.MakeDriver = scope_test::RecordingDrivers(script);
        layer.profileFile = TMM.settings.File();
        TMM.prefs.telescopetype = "indi://127.0.0.1:1/Telescope Simulator";
    }

    // A plan of the objects, by their ids in the edition, loaded into tab 0.
    void LoadPlan(const std::vector<std::string>& ids)
    {
        std::vector<spread::PlanEntry> entries;
        for (const std::string& id : ids) {
            auto rs = TMM.objectDb->OpenRecordset(
                "Select ID, Catalog From SelvaneTable Where ObjectID = '" + id + "'",
                data::Snapshot);
            ASSERT_FALSE(rs.Eof()) << id;
            entries.push_back({id, rs.Fields("Catalog").Value(),
                               static_cast<double>(rs.Fields("ID").Long()), ""});
        }
        const std::filesystem::path plan = TMM.dir.File("night.PLN");
        spread::WritePlanFile(plan, entries);
        app::GridArgs args;
        args.plan = plan.string();
        ASSERT_EQ(app::LoadTab0(TMM, start, args, clock), 0);
    }

    QTemporaryDir home;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, data::ProgramDir(home.path().toStdString()),
                         data::SettingsStore(home.filePath("s.ini").toStdString())};
    astro::FixedClock clock{{2026, 11, 25, 22, 0, 0}};
    spread::LoadFormResult start;
    scope::TelescopeState state;
    scope::DriverLayer layer;
    scope_test::TelescopeScript script;
    scope::StreamSpeech voices{std::cerr, false};
    scope::Speech speech{voices};
    scope::ScopeContext s{ui, TMM.prefs, state, layer, speech, clock};
};

TEST_F(SlideWindows, StartOpensTheShowOnThePlansObjects)
{
    LoadPlan({"NGC 224", "NGC 221", "NGC 205", "NGC 598"});
    TMM.CurrTab = 0;
    bool started = false;
    scope::ui::frmSlide opening(TMM, [&] { started = true; });
    EXPECT_EQ(opening.Command2->text(), "Start The Slide Show");
    opening.Command2->click();
    ASSERT_TRUE(started);

    scope::ui::frmslideinp window(TMM, s, {});
    window.show();
    window.Open();
    EXPECT_EQ(window.cbogoto->count(), 4);
    EXPECT_EQ(window.txtObjectID->text().left(7), "NGC 224");
    EXPECT_EQ(window.StatusBar1->currentMessage().toStdString(),
              "Shown 1 out of 4    Please Wait until scope stops until you go to another object");
    // Not the keypad mount: the controller's buttons are off.
    EXPECT_FALSE(window.cmdOn->isEnabled());
    EXPECT_FALSE(window.cmdOff->isEnabled());
    EXPECT_EQ(window.cboSee->itemText(0), "Pefectly Stable");
    EXPECT_EQ(window.cboTransparency->count(), 7);
    EXPECT_EQ(window.chkaltmap->text(), "Use Alt GMTOffset (4,5,6)");

    window.cbogoto->setCurrentIndex(2);
    emit window.cbogoto->activated(2);
    EXPECT_EQ(window.slide.CurrentRow, 3);
    window.cmdPrevious->click();
    EXPECT_EQ(window.txtObjectID->text().left(7), "NGC 221");
    EXPECT_EQ(window.cbogoto->currentIndex(), 1) << "the Go to list follows the row shown";
    EXPECT_FALSE(window.Timer1->isActive());

    if (const QByteArray shots = qgetenv("SELVANE_SHOTS"); !shots.isEmpty())
        window.grab().save(QString::fromUtf8(shots) + "/frmslideinp.png");
}

TEST_F(SlideWindows, StartRefusesATabWithoutRows)
{
    TMM.CurrTab = 3;
    bool started = false;
    scope::ui::frmSlide opening(TMM, [&] { started = true; });
    opening.Command2->click();
    EXPECT_FALSE(started);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "No Objects Selected");
}

TEST_F(SlideWindows, HelpShowsTheShippedTextWithoutItsMarkup)
{
    scope::ui::frmslidehelp help(TMM.dir.path);
    EXPECT_EQ(help.windowTitle(), "Help for Slide Show");
    const QString text = help.rtfHelp->toPlainText();
    EXPECT_TRUE(text.startsWith("The Telescope Slide Show")) << text.toStdString();
    EXPECT_FALSE(text.contains('\\'));
    EXPECT_FALSE(text.contains('{'));
    EXPECT_TRUE(text.contains("Controller On lets you drive the show"));
}

} // namespace
