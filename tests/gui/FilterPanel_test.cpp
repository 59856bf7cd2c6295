// The filter panel on the offscreen platform, over a copy of the built small edition to which a
// second catalogue is added (the edition itself holds only the NGC 2000 catalogue).

#include "spread/ui/ctlSpreadFilter.h"

#include "astro/ObservingClock.h"
#include "data/Database.h"
#include "data/Preferences.h"
#include "services/ScriptedUiPort.h"
#include "spread/AppState.h"
#include "spread/Grid.h"

#include "GuiApp.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using spread::ctlSpreadFilter;

const std::filesystem::path SmallEdition =
    std::filesystem::path(SELVANE_RESOURCE_DIR) / "SelvPro13000.mdb";

// Rows of a second catalogue and of a catalogue left unselected, each with the one property
// that should keep or drop it when Caldwell, Orion, open clusters and galaxies, magnitude up to
// 10 are chosen.
const char* const AddedRows[] = {
    "'C 901', 'CALDWELL', 'OC', 5, 35, -5, 'Ori', 8",    // kept
    "'C 902', 'CALDWELL', 'Gx', 5, 40, -2, 'Ori', 9.9",  // kept
    "'C 903', 'CALDWELL', 'OC', 5, 36, -4, 'Ori', 12",   // too faint
    "'C 904', 'CALDWELL', 'OC', 6, 30, 5, 'Mon', 6",     // another constellation
    "'C 905', 'CALDWELL', 'Nb', 5, 35, -5, 'Ori', 5",    // another type
    "'C 906', 'CALDWELL', 'OC', 5, 37, -3, 'Ori', NULL", // no magnitude, blanks excluded
    "'IC 9001', 'IC', 'OC', 5, 38, -1, 'Ori', 7",        // catalogue not chosen
};

// The program folder with the edition, its settings file, the state and one panel.
class FilterPanel : public ::testing::Test
{
protected:
    void SetUp() override
    {
        App();
        ASSERT_TRUE(std::filesystem::exists(SmallEdition))
            << "build the selvane_databases target first: " << SmallEdition;
        ASSERT_TRUE(dir.isValid());
        std::filesystem::copy_file(SmallEdition, DbPath());
        {
            auto db = data::Database::Open(DbPath());
            db->Execute("Insert Into CatalogLookup (ID, CatalogName, CatalogDescription) Values "
                        "(2, 'CALDWELL', 'Caldwell'), (3, 'IC', 'Index Catalogue')");
            long id = 900000;
            for (const char* row : AddedRows)
                db->Execute("Insert Into SelvaneTable (ID, ObjectID, Catalog, ObjectType, "
                            "RAhours, RAminutes, DeclinationDegrees, constellation, Magnitude, "
                            "DeclinationMinutes, ImageFile, HObject, EPOCH) Values (" +
                            std::to_string(id++) + ", " + row + ", 0, ' ', ' ', 2000)");
        }
        ui.echo = false;
        state = MakeState();
        panel = std::make_unique<ctlSpreadFilter>(*state);
        panel->ReloadLookups();
        panel->resize(900, 300);
        panel->show();
    }

    std::filesystem::path Dir() const { return dir.path().toStdString(); }
    std::filesystem::path DbPath() const { return Dir() / "SelvPro13000.mdb"; }

    std::unique_ptr<spread::AppState> MakeState()
    {
        auto s = std::make_unique<spread::AppState>(ui, data::ProgramDir{Dir()},
                                                    data::SettingsStore(Dir() / "Selvane2000.ini"));
        data::LoadPreferences(s->prefs, s->settings, s->dir);
        s->prefs.PDate = "01/15/2024";
        s->prefs.Ptime = "22:00";
        s->objectDb = data::Database::Open(DbPath());
        return s;
    }

    // Text typed into a box over what it held.
    static void Type(QLineEdit& box, const QString& text)
    {
        box.setFocus();
        box.selectAll();
        QTest::keyClick(&box, Qt::Key_Delete);
        QTest::keyClicks(&box, text);
    }

    static std::vector<std::string> Selected(const QListWidget& list)
    {
        std::vector<std::string> texts;
        for (const QListWidgetItem* item : list.selectedItems())
            texts.push_back(item->text().toStdString());
        std::sort(texts.begin(), texts.end());
        return texts;
    }

    QTemporaryDir dir;
    services::ScriptedUiPort ui;
    std::unique_ptr<spread::AppState> state;
    std::unique_ptr<ctlSpreadFilter> panel;
};

// Every value of a filter, for comparing two filters as a whole.
std::vector<std::string> Values(const data::ObjectFilter& f)
{
    return {f.ObCat,   f.Obcon,    f.Obtod,  f.gMagL,  f.gMagU, f.gMagL2, f.gMagU2,
            f.gSizeL,  f.gSizeU,   f.gSepL,  f.gSepH,  f.gPAL,  f.gPAH,   f.gFRAH,
            f.gTRAH,   f.gFDECD,   f.gTDECD, f.gFRAM,  f.gTRAM, f.gFDECM, f.gTDECM,
            f.gmagdif, f.gmagdif2, f.gObjID, f.gOther, f.PIB,   f.PIB2,   f.PIB3,
            f.sort1,   f.sort2,    f.sort3,  f.Des1,   f.Des2,  f.Des3};
}

TEST_F(FilterPanel, RefreshLoadsExactlyTheChosenObjects)
{
    spread::Grid& grid = state->grids[0];
    grid.SetTag("All Messier Objects");
    state->NoLoadYet = false;
    astro::FixedClock clock;
    int refreshes = 0;
    QObject::connect(panel.get(), &ctlSpreadFilter::RefreshRequested, [&] {
        ++refreshes;
        spread::RefreshFromPanel(*state, *panel, clock);
    });

    // The defaults pick NGC 2000 and Orion; add Caldwell and two types, and a magnitude limit.
    panel->tabFilter->setCurrentIndex(0);
    Click(*panel->lstCatalog, "Caldwell");
    Click(*panel->lstType, "Open star cluster");
    Click(*panel->lstType, "Galaxy");
    panel->tabFilter->setCurrentIndex(1);
    Type(*panel->txtMagUpper[0], "10");
    QTest::mouseClick(panel->sscommandRefresh, Qt::LeftButton);

    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(panel->lblCatDes->text(), "NGC 2000;Caldwell;");
    EXPECT_EQ(panel->lblConst->text(), "Ori-Orion;");
    EXPECT_EQ(panel->lblType->text(), "Galaxy;Open star cluster;");
    for (const auto& shown : ui.shown)
        ADD_FAILURE() << "Unexpected message: " << shown.Text();

    std::multiset<std::string> expected;
    {
        data::Recordset rs = state->objectDb->OpenRecordset(
            "Select Catalog, ObjectID From SelvaneTable Where Catalog In ('2000', 'CALDWELL') "
            "And constellation = 'Ori' And ObjectType In ('OC', 'Gx') And Magnitude <= 10",
            data::Snapshot);
        for (; !rs.Eof(); rs.MoveNext())
            expected.insert(rs.Fields("Catalog").Value() + "|" + rs.Fields("ObjectID").Value());
    }
    std::multiset<std::string> loaded;
    for (int row = 1; row <= grid.MaxRows(); ++row)
        loaded.insert(std::string(grid.Text(row, 24)) + "|" + std::string(grid.Text(row, 4)));
    EXPECT_THAT(loaded, ::testing::Contains("CALDWELL|C 901"));
    EXPECT_THAT(loaded, ::testing::Contains("CALDWELL|C 902"));
    EXPECT_GT(expected.size(), 2u) << "the edition should hold open clusters in Orion";
    EXPECT_EQ(loaded, expected);

    EXPECT_EQ(grid.Tag(), "");
    EXPECT_EQ(panel->txtSQL->toPlainText().toStdString(), state->SQL);
    EXPECT_THAT(state->SQL, ::testing::HasSubstr("Magnitude <= 10 "));
    // The choices are in the settings file, for the next start.
    EXPECT_EQ(state->settings.Get("ObCat").value_or("<none>"), "NGC 2000;Caldwell;");
    EXPECT_EQ(state->settings.Get("gMagU").value_or("<none>"), "10");
}

TEST_F(FilterPanel, PickersWriteTheirLabelsInTheirOwnOrder)
{
    // Each row starts from the default choices: NGC 2000, Orion, all types.
    struct Row
    {
        const char* name;
        int picker; // 0 catalogues, 1 constellations, 2 types
        std::vector<std::string> clicks;
        const char* label;
    };
    const Row rows[] = {
        {"the default catalogue unpicked", 0, {"NGC 2000"}, "All Catalogs"},
        {"a second catalogue", 0, {"Caldwell"}, "NGC 2000;Caldwell;"},
        {"picked, unpicked, picked",
         0,
         {"Caldwell", "Caldwell", "Index Catalogue"},
         "NGC 2000;Index Catalogue;"},
        {"constellations in list order",
         1,
         {"UMa-Ursa Major", "And-Andromeda"},
         "And-Andromeda;Ori-Orion;UMa-Ursa Major;"},
        {"the last constellation unpicked", 1, {"Ori-Orion"}, "All Constellations"},
        {"types in list order", 2, {"Open star cluster", "Galaxy"}, "Galaxy;Open star cluster;"},
        {"a type picked and unpicked", 2, {"Galaxy", "Galaxy"}, "All Types"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        state->prefs = data::Preferences{};
        panel->RefreshPref();
        QListWidget* lists[] = {panel->lstCatalog, panel->lstConst, panel->lstType};
        QLabel* labels[] = {panel->lblCatDes, panel->lblConst, panel->lblType};
        const std::string* keys[] = {&state->prefs.ObCat, &state->prefs.Obcon, &state->prefs.Obtod};
        for (const std::string& text : row.clicks)
            Click(*lists[row.picker], QString::fromStdString(text));
        EXPECT_EQ(labels[row.picker]->text().toStdString(), row.label);
        EXPECT_EQ(*keys[row.picker], row.label);
    }
}

TEST_F(FilterPanel, ResetRestoresEveryRangeAndKeepsTheChoices)
{
    int refreshes = 0;
    QObject::connect(panel.get(), &ctlSpreadFilter::RefreshRequested, [&] { ++refreshes; });
    Click(*panel->lstType, "Galaxy");
    QLineEdit* boxes[] = {
        panel->txtMagLower[0], panel->txtMagUpper[0], panel->txtMagLower[1], panel->txtMagUpper[1],
        panel->txtSizeLower,   panel->txtSizeUpper,   panel->txtSepLow,      panel->txtSepHigh,
        panel->txtPAlow,       panel->txtPAHigh,      panel->txtFROMRAH,     panel->txtFROMRAM,
        panel->txtTORAH,       panel->txtTORAM,       panel->txtFROMDECD,    panel->txtFROMDECM,
        panel->txtTODECD,      panel->txtTODECM,      panel->txtObjectID,    panel->txtOtherID,
        panel->txtdblMag,      panel->txtdblMag2};
    for (QLineEdit* box : boxes)
        Type(*box, "7");
    panel->chkIB->click();
    panel->cbosort[0]->setCurrentText("Magnitude");
    panel->chkD[0]->click();
    const data::ObjectFilter before = panel->Filter();

    QTest::mouseClick(panel->cmdReset, Qt::LeftButton);

    EXPECT_EQ(refreshes, 1);
    data::ObjectFilter expected = before;
    data::ResetRanges(expected);
    // Choices are not ranges: they stay.
    EXPECT_EQ(Values(panel->Filter()), Values(expected));
    EXPECT_EQ((panel->txtMagUpper[0]->text() + "|" + panel->txtFROMDECD->text() + "|" +
               panel->lblType->text())
                  .toStdString(),
              "999|-90|Galaxy;");
    EXPECT_EQ(state->settings.Get("gSizeU").value_or("<none>"), "9999");
    EXPECT_EQ(state->settings.Get("Obtod").value_or("<none>"), "Galaxy;");
}

TEST_F(FilterPanel, ChoicesSurviveTheSettingsFile)
{
    Click(*panel->lstCatalog, "Caldwell");
    Click(*panel->lstConst, "Cyg-Cygnus");
    Click(*panel->lstType, "Planetary nebula");
    const std::pair<QLineEdit*, QString> typed[] = {
        {panel->txtMagLower[0], "2.5"}, {panel->txtMagUpper[0], "11"},
        {panel->txtMagLower[1], ""},    {panel->txtMagUpper[1], "abc"},
        {panel->txtSizeLower, "0.5"},   {panel->txtSizeUpper, "60"},
        {panel->txtSepLow, "1"},        {panel->txtSepHigh, "30"},
        {panel->txtPAlow, "10"},        {panel->txtPAHigh, "350"},
        {panel->txtFROMRAH, "19"},      {panel->txtFROMRAM, "30"},
        {panel->txtTORAH, "22"},        {panel->txtTORAM, "15"},
        {panel->txtFROMDECD, "30"},     {panel->txtFROMDECM, "5"},
        {panel->txtTODECD, "50"},       {panel->txtTODECM, "45"},
        {panel->txtObjectID, "NGC 7*"}, {panel->txtOtherID, "O'Brien*"},
        {panel->txtdblMag, "2"},        {panel->txtdblMag2, "0.5"},
    };
    for (const auto& [box, text] : typed)
        Type(*box, text);
    panel->chkIB->click();
    panel->chkIB2->click();
    panel->chkIB3->click();
    panel->cbosort[0]->setCurrentText("Constellation");
    panel->cbosort[2]->setCurrentText("Altitude");
    panel->chkD[2]->click();
    panel->tabFilter->setCurrentIndex(4);
    QTest::mouseClick(panel->sscommandRefresh, Qt::LeftButton);
    const data::ObjectFilter saved = panel->Filter();

    // The next start: settings read from the file into a fresh state and panel.
    std::unique_ptr<spread::AppState> next = MakeState();
    ctlSpreadFilter reopened(*next);
    reopened.ReloadLookups();
    reopened.SetCurrentPage(next->prefs.maintab);

    EXPECT_EQ(Values(reopened.Filter()), Values(saved));
    EXPECT_EQ(reopened.lblCatDes->text(), "NGC 2000;Caldwell;");
    EXPECT_EQ(Selected(*reopened.lstCatalog), (std::vector<std::string>{"Caldwell", "NGC 2000"}));
    EXPECT_EQ(Selected(*reopened.lstConst), (std::vector<std::string>{"Cyg-Cygnus", "Ori-Orion"}));
    EXPECT_EQ(Selected(*reopened.lstType), (std::vector<std::string>{"Planetary nebula"}));
    EXPECT_EQ(reopened.CurrentPage(), 4);
    EXPECT_EQ(reopened.BuildSQLSelectString(),
              data::BuildSQLSelectString(saved, panel->Lookups()).SQL);
}

// A saved selection may name a catalogue this database does not list: the label keeps it
// through later edits rather than silently dropping it, and the pickers show what they can.
TEST_F(FilterPanel, EntriesThePickerDoesNotOfferStayInTheLabel)
{
    state->prefs.ObCat = "Lost List;Caldwell;";
    state->prefs.Obtod = "";
    panel->RefreshPref();
    EXPECT_EQ(panel->lblCatDes->text(), "Lost List;Caldwell;");
    EXPECT_EQ(panel->lblType->text(), "All Types");
    EXPECT_EQ(Selected(*panel->lstCatalog), (std::vector<std::string>{"Caldwell"}));
    EXPECT_TRUE(panel->lstType->selectedItems().isEmpty());

    Type(*panel->txtMagUpper[0], "12");
    EXPECT_EQ(state->prefs.ObCat, "Lost List;Caldwell;");
    EXPECT_EQ(state->prefs.gMagU, "12");
}

} // namespace
