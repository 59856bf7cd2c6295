#include "spread/ui/PreferenceWindows.h"

#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/ScriptedUiPort.h"

#include "GuiApp.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>
#include <memory>
#include <tuple>

#include <gtest/gtest.h>

namespace {

// Preferences over a settings file in a temporary folder, read back as the next start would.
struct Prefs
{
    bool appReady = (App(), true);
    QTemporaryDir dir;
    std::filesystem::path file = std::filesystem::path(dir.path().toStdString()) / "s.ini";
    data::SettingsStore store{file};
    data::Preferences prefs;
    services::ScriptedUiPort ui;

    Prefs() { ui.echo = false; }
    data::Preferences ReadBack()
    {
        data::SettingsStore again(file);
        data::Preferences loaded;
        data::LoadPreferences(loaded, again, data::ProgramDir{dir.path().toStdString()});
        return loaded;
    }
};

template <typename T> T* Box(QWidget& window, const char* name)
{
    T* box = window.findChild<T*>(name);
    EXPECT_NE(box, nullptr) << name;
    return box;
}

TEST(frmPref7, ZeroIntervalIsRefusedAndNothingIsSaved)
{
    Prefs p;
    spread::frmPref7 window(p.prefs, p.store, p.ui);
    Box<QLineEdit>(window, "PInterval")->setText("0");
    Box<QCheckBox>(window, "speed1")->setChecked(true);
    window.show();
    QTest::mouseClick(Box<QPushButton>(window, "cmdOK"), Qt::LeftButton);
    ASSERT_EQ(p.ui.shown.size(), 1u);
    EXPECT_EQ(p.ui.shown[0].message.kind, "U");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.result(), QDialog::Rejected);
    EXPECT_EQ(p.prefs.PInterval, 10);
    EXPECT_FALSE(p.prefs.speed1);
    EXPECT_FALSE(std::filesystem::exists(p.file));
}

TEST(frmPref7, KeptValuesSurviveTheNextStart)
{
    Prefs p;
    p.prefs.PAzm2 = 0;
    spread::frmPref7 window(p.prefs, p.store, p.ui);
    // A stored 0 azimuth shows as an empty box, and an empty box is kept as 0.
    EXPECT_EQ(Box<QLineEdit>(window, "PAzm2")->text(), "");
    Box<QLineEdit>(window, "PInterval")->setText("20");
    Box<QLineEdit>(window, "Pminalt")->setText("15");
    Box<QLineEdit>(window, "PAzm1")->setText("90");
    Box<QLineEdit>(window, "PAzm2")->setText("180");
    Box<QCheckBox>(window, "Psupo")->setChecked(true);
    Box<QCheckBox>(window, "zerosup")->setChecked(false);
    QComboBox* rowret = Box<QComboBox>(window, "rowret");
    rowret->setCurrentIndex(rowret->findText("500"));
    window.show();
    QTest::mouseClick(Box<QPushButton>(window, "cmdOK"), Qt::LeftButton);
    EXPECT_TRUE(p.ui.shown.empty());
    EXPECT_EQ(window.result(), QDialog::Accepted);
    const data::Preferences a = p.ReadBack();
    EXPECT_EQ(std::tie(a.PInterval, a.Pminalt, a.PAzm1, a.PAzm2, a.PAzm3, a.Psupo, a.zerosup,
                       a.rowret, p.prefs.rowret),
              std::tuple(20, "15", 90.0, 180.0, 0.0, "Y", false, 500L, 500L));
}

TEST(frmPref2, ChoosingAPlaceFillsTheSite)
{
    Prefs p;
    const std::vector<data::Place> places = {{"Phoenix, Arizona, USA", 33.4531, 112.0739, 7},
                                               {"Sydney, NSW, Australia", -33.8667, -151.2, -10}};
    const std::vector<data::Place> sites = {{"Home", 46.5, 90.2, 6}};
    spread::frmPref2 window(p.prefs, p.store, p.ui, places, sites);
    QComboBox* list = Box<QComboBox>(window, "cboLocation");
    list->setCurrentIndex(2);
    emit list->activated(2);
    EXPECT_EQ(Box<QLineEdit>(window, "Plat")->text() + " " +
                  Box<QLineEdit>(window, "PLon")->text() + " " +
                  Box<QLineEdit>(window, "PTz")->text(),
              "-33.8667 -151.2 -10.0");
    window.show();
    QTest::mouseClick(Box<QPushButton>(window, "cmdOK"), Qt::LeftButton);
    EXPECT_TRUE(p.ui.shown.empty());
    EXPECT_DOUBLE_EQ(p.ReadBack().Plat, -33.8667);
    EXPECT_DOUBLE_EQ(p.ReadBack().PLon, -151.2);
}

// A latitude or longitude no site has, typed in the site window or the setup wizard: the rule's
// message (kind "U"), nothing saved, and the window stays open for a correction. The rules'
// limits are checked with the rules themselves.
TEST(frmPref2, SiteThatCannotBeComputedIsRefusedInBothWindows)
{
    struct Row
    {
        const char* key;
        const char* text;
    };
    const Row rows[] = {{"Plat", "90"}, {"PLon", "-400"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.key) + "=" + row.text);
        for (bool wizard : {false, true}) {
            Prefs p;
            const std::string folder = p.dir.path().toStdString();
            std::ofstream(folder + "/SelvPro13000.mdb") << "x";
            p.prefs.cdDrive = folder + "/SelvPro13000.mdb";
            std::unique_ptr<QDialog> window;
            if (wizard)
                window = std::make_unique<spread::frmSetupWizard>(p.prefs, p.store, p.ui,
                                                                  std::vector<data::Place>{});
            else
                window = std::make_unique<spread::frmPref2>(p.prefs, p.store, p.ui,
                                                            std::vector<data::Place>{},
                                                            std::vector<data::Place>{});
            Box<QLineEdit>(*window, row.key)->setText(row.text);
            window->show();
            window->accept();
            ASSERT_EQ(p.ui.shown.size(), 1u);
            EXPECT_EQ(p.ui.shown[0].message.kind, "U");
            EXPECT_EQ(p.ui.shown[0].Text().rfind(row.key[1] == 'l' ? "The latitude must be"
                                                                   : "The longitude must be",
                                                 0),
                      0u)
                << p.ui.shown[0].Text();
            EXPECT_TRUE(window->isVisible());
            EXPECT_DOUBLE_EQ(p.prefs.Plat, 46.5);
            EXPECT_DOUBLE_EQ(p.prefs.PLon, 90.2);
            EXPECT_FALSE(std::filesystem::exists(p.file));
        }
    }
}

TEST(frmSetupWizard, RefusesAFileThatIsNotTheObjectDatabase)
{
    Prefs p;
    const std::string folder = p.dir.path().toStdString();
    std::ofstream(folder + "/Logbook2003-1.mdb") << "x";
    std::ofstream(folder + "/SelvPro13000.mdb") << "x";
    p.ui.fileAnswers = {folder + "/Logbook2003-1.mdb", folder + "/SelvPro13000.mdb"};
    spread::frmSetupWizard wizard(p.prefs, p.store, p.ui, {});
    wizard.show();
    QPushButton* browse = Box<QPushButton>(wizard, "cmdBrowse");

    QTest::mouseClick(browse, Qt::LeftButton);
    wizard.accept();
    ASSERT_EQ(p.ui.shown.size(), 1u);
    EXPECT_EQ(p.ui.shown[0].Text(),
              "Please choose the object database, the file SelvPro708000.mdb or "
              "SelvPro13000.mdb.");
    EXPECT_TRUE(wizard.isVisible());

    QTest::mouseClick(browse, Qt::LeftButton);
    wizard.accept();
    EXPECT_EQ(p.ui.shown.size(), 1u);
    EXPECT_FALSE(wizard.isVisible());
    EXPECT_EQ(p.ReadBack().cdDrive, folder + "/SelvPro13000.mdb");
}

} // namespace
