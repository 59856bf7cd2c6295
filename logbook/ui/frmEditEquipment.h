#pragma once
// The equipment window: four tabs, telescopes (scope.dat), eyepieces (eyepiece.dat), CCD cameras
// (ccd.dat) and exposure modes (exp.dat), each a list with the boxes of a new row. Add and
// Delete act on the tab shown and rewrite its file at once; the logbook's Equipment table, when
// a logbook is given, follows every rewrite of the scope, eyepiece and CCD lists.

#include "data/ProgramDir.h"
#include "logbook/Equipment.h"
#include "services/Vb.h"

#include <QDialog>

#include <array>
#include <string>
#include <vector>

class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;

namespace data {
class Database;
}
namespace services {
class UiPort;
}

namespace logbook::ui {

class frmEditEquipment : public QDialog
{
public:
    frmEditEquipment(services::UiPort& ui, data::ProgramDir dir,
                     const services::vb::Regional& regional, data::Database* logbook = nullptr,
                     QWidget* parent = nullptr);

    // Empties the tab's list and reads its file again.
    void sstab1_Click(int tab);
    void cmdAdd_Click();
    void cmdDelete_Click();
    // Fills the scope boxes from the clicked row.
    void List1_Click();

    QTabWidget* sstab1 = nullptr;
    QListWidget* List1 = nullptr; // scopes
    QListWidget* List2 = nullptr; // eyepieces
    QListWidget* List3 = nullptr; // CCD cameras
    QListWidget* List4 = nullptr; // exposure modes
    std::array<QLineEdit*, 3> Text1{}; // scope name, aperture, F-ratio
    std::array<QLineEdit*, 3> Text2{}; // eyepiece name, size, apparent field
    std::array<QLineEdit*, 2> text3{}; // the CCD tab's text, the mode tab's text
    QPushButton* cmdAdd = nullptr;
    QPushButton* cmdDelete = nullptr;
    QPushButton* cmdClose = nullptr;

private:
    EquipmentKind CurrentKind() const;
    QListWidget* ListOf(EquipmentKind kind) const;
    void ShowRows(EquipmentKind kind);
    // After a rewrite: the Equipment table follows the scope, eyepiece and CCD lists.
    void SyncTable(EquipmentKind kind);

    services::UiPort& ui_;
    data::ProgramDir dir_;
    services::vb::Regional regional_;
    data::Database* logbook_;
    std::array<std::vector<std::string>, 4> rows_;
};

} // namespace logbook::ui
