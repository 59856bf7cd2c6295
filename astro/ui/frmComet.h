#pragma once
// The comet window (mode "C", table Comet of AstComet.mdb) and the asteroid window (mode "A",
// table Asteroids): a list of the names narrowed by a filter, the chosen body's elements, and
// its ephemeris from a start in Universal Time at even steps, which can be copied and saved as
// tab-separated text.

#include "astro/ui/frmPlanets1.h"
#include "spread/EphemerisTable.h"

#include <QDialog>

#include <string>
#include <vector>

class QComboBox;
class QDateTimeEdit;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QSortFilterProxyModel;
class QSpinBox;
class QStringListModel;
class QTableView;

namespace astro::ui {

class EphemerisModel;

class frmComet : public QDialog
{
public:
    // Given: context, whose program folder holds AstComet.mdb and whose observing clock gives
    //   the start and the site; mode "A" for asteroids, anything else comets.
    // Notes: the start is the observing clock's date and time in Universal Time
    //   (ConvertToGMT) when the window is made.
    frmComet(SolarContext context, const std::string& mode, QWidget* parent = nullptr);

    // Reads the names again (after an import of elements); the filter stays, and so does the
    // chosen body while its name is still there.
    void RefreshList();

    // Shows the elements of the list's current name.
    void ShowElements();
    void cmdCompute_Click();
    void cmdCopy_Click();
    void cmdSave_Click();

    // The table as Copy and Save write it: a header line, then a line a step.
    std::string EphemerisText() const;

    QLineEdit* txtFilter = nullptr;
    QListView* lstNames = nullptr;
    // Perihelion date or epoch, q or a, e, i, node, argument of perihelion, M (asteroids),
    // H, K or G, equinox.
    std::vector<QLabel*> lblElement;
    QDateTimeEdit* dtpStart = nullptr;
    QSpinBox* txtSteps = nullptr;
    QDoubleSpinBox* txtStep = nullptr;
    QComboBox* cboUnit = nullptr; // "days", "hours"
    QPushButton* cmdCompute = nullptr;
    QPushButton* cmdCopy = nullptr;
    QPushButton* cmdSave = nullptr;
    QPushButton* cmdClose = nullptr;
    QTableView* grdEphemeris = nullptr;

private:
    std::filesystem::path AstComet() const;
    std::string CurrentName() const;

    SolarContext context_;
    bool comet_ = true;
    QStringListModel* names_ = nullptr;
    QSortFilterProxyModel* filtered_ = nullptr;
    EphemerisModel* ephemeris_ = nullptr;
    std::string computedName_; // the body of the table, for the saved file's name
};

} // namespace astro::ui
