#pragma once
// The filter panel above the spreadsheet's grids: the catalogue, constellation and type pickers
// with their labels, the range boxes, the include-blank boxes, the three sort levels, the query
// page that shows the current SQL, and the buttons Refresh, Apply and Reset.
//
// The panel keeps no filter of its own: every edit is written at once into the preferences
// (the g... keys, ObCat, Obcon, Obtod, PIB.., sort.., Des..), which BuildSQLSelectString reads,
// and RefreshPref writes the controls back from them. The loads themselves belong to the main
// window: Refresh, Apply and Reset only ask for them through the signals below.

#include "data/ObjectFilter.h"
#include "spread/LoadTheGrid.h"

#include <QWidget>

#include <array>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;

namespace spread {

struct AppState;
class Grid;

// The 88 constellations as the constellation picker offers them: abbreviation, "-", name
// ("Ori-Orion"), in the order of their names. The filter matches on the first three characters.
const std::vector<std::string>& ConstellationList();

class ctlSpreadFilter : public QWidget
{
    Q_OBJECT

public:
    // Given: state, whose prefs the panel reads and writes and whose SQL and OrderBy the build
    // leaves behind. The pickers stay empty until SetLookups or ReloadLookups.
    explicit ctlSpreadFilter(AppState& state, QWidget* parent = nullptr);

    // The catalogue and type pickers from CatalogLookup and ValidObjectTypes; the current
    // selection texts are kept and shown again as selections.
    void SetLookups(data::FilterLookups lookups);
    // The same from the open object database; a failure is reported under
    // "ctlSpread.LoadLookups" and leaves the pickers as they stood.
    void ReloadLookups();
    const data::FilterLookups& Lookups() const { return lookups_; }

    // RefreshPref: every control from the settings, through the spreadsheet's RefreshPref
    // (TMM.controls); the query page shows the current SQL.
    void RefreshPref();
    // The panel's values as they stand in the controls.
    data::ObjectFilter Filter() const;

    // BuildSQLSelectString: the SQL of the panel's values, left in state.SQL and state.OrderBy
    // and shown on the query page. Returned: the SQL.
    // Location: ctlSpread.BuildSQLSelectString (the core's faults carry it).
    std::string BuildSQLSelectString();

    // The filter page last shown (maintab) is kept in the settings.
    int CurrentPage() const;
    void SetCurrentPage(int page);

    // Writes the controls into the settings and saves them (the panel is closing).
    void SavePreferences();
    // The Ranges 2 separation caption for the targeting switch: the distance to the home
    // target in degrees while it is on, the double star's separation otherwise.
    void ShowTargeting(bool targetingOn);

    // The controls, under their names, for the window and the tests.
    QTabWidget* tabFilter = nullptr;
    QListWidget* lstCatalog = nullptr;
    QListWidget* lstConst = nullptr;
    QListWidget* lstType = nullptr;
    QLabel* lblCatDes = nullptr;
    QLabel* lblConst = nullptr;
    QLabel* lblType = nullptr;
    std::array<QLineEdit*, 2> txtMagLower{};
    std::array<QLineEdit*, 2> txtMagUpper{};
    QLineEdit* txtSizeLower = nullptr;
    QLineEdit* txtSizeUpper = nullptr;
    QLineEdit* txtSepLow = nullptr;
    QLineEdit* txtSepHigh = nullptr;
    // The separation caption, which says what the limits measure, and the TARGET button.
    QLabel* lblSep = nullptr;
    QPushButton* cmdTarget = nullptr;
    QLineEdit* txtPAlow = nullptr;
    QLineEdit* txtPAHigh = nullptr;
    QLineEdit* txtFROMRAH = nullptr;
    QLineEdit* txtFROMRAM = nullptr;
    QLineEdit* txtTORAH = nullptr;
    QLineEdit* txtTORAM = nullptr;
    QLineEdit* txtFROMDECD = nullptr;
    QLineEdit* txtFROMDECM = nullptr;
    QLineEdit* txtTODECD = nullptr;
    QLineEdit* txtTODECM = nullptr;
    QLineEdit* txtObjectID = nullptr;
    QLineEdit* txtOtherID = nullptr;
    QLineEdit* txtdblMag = nullptr;
    QLineEdit* txtdblMag2 = nullptr;
    QCheckBox* chkIB = nullptr;
    QCheckBox* chkIB2 = nullptr;
    QCheckBox* chkIB3 = nullptr;
    std::array<QComboBox*, 3> cbosort{};
    std::array<QCheckBox*, 3> chkD{};
    QPlainTextEdit* txtSQL = nullptr;
    QPushButton* sscommandRefresh = nullptr;
    QPushButton* cmdApply = nullptr;
    QPushButton* cmdReset = nullptr;

signals:
    // sscommandRefresh_Click: the settings are saved; the window clears the tab's tag, updates
    // the status band and, once the first load has been made, loads the tab with "BUILD".
    void RefreshRequested();
    // ApplyIt: once the first load has been made, the window loads the tab with "BUILD".
    void ApplyRequested();
    // The TARGET button of the Ranges 2 tab: the window opens frmTarget.
    void TargetRequested();

private:
    QWidget* BuildFiltersPage();
    QWidget* BuildSelectPage();
    QWidget* BuildRanges1Page();
    QWidget* BuildRanges2Page();
    QWidget* BuildSortPage();
    QWidget* BuildQueryPage();
    QLineEdit* RangeBox(const char* name);
    void FillPickers();
    // A picker's selection written to its label and to the settings.
    void PickerChanged(QListWidget* list);
    // The controls into the settings, after any edit.
    void StoreInPreferences();
    void Reset();

    AppState& state_;
    data::FilterLookups lookups_;
    // While the controls are written from the settings, their change handlers stay quiet.
    bool writing_ = false;
};

// sscommandRefresh_Click and ApplyIt with the panel's SQL builder, and the panel written again
// from the settings afterwards. The window repaints the current tab and its status band from
// TMM.status after either.
// Given: TMM, the application state (CurrTab, grids, NoLoadYet); panel, the filter panel;
//   computerClock, for real-time mode.
// Returned: the load's results (cancelled, failed, allGcvs).
GridLoad RefreshFromPanel(AppState& TMM, ctlSpreadFilter& panel, const astro::Clock& computerClock);
GridLoad ApplyFromPanel(AppState& TMM, ctlSpreadFilter& panel, const astro::Clock& computerClock);

} // namespace spread
