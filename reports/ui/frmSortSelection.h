#pragma once
// The order and object filter of the logbook report (report 88): three boxes of the logbook's
// column names, each with its "Descending" box, and the filter for the object ids.

#include "reports/ReportWindow.h"

#include <QDialog>

#include <array>
#include <optional>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace reports::ui {

class frmSortSelection : public QDialog
{
public:
    explicit frmSortSelection(QWidget* parent = nullptr);

    // The boxes as they stand.
    SortSelection Selection() const;
    // Shows the window and waits: the selection after OK, none on cancel.
    std::optional<SortSelection> Ask();

    std::array<QComboBox*, 3> cboSort{};
    std::array<QCheckBox*, 3> chkDesc{};
    QLineEdit* txtObject = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;
};

} // namespace reports::ui
