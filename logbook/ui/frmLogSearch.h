#pragma once
// The logbook search: the criteria with their options, and Find, which builds the two
// statements (logbook::BuildLogSearchSql) within the current log type and hands them to the
// window that opened the search.

#include "logbook/LogEntryForm.h"
#include "logbook/LogSearch.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLineEdit;
class QRadioButton;

namespace logbook::ui {

class frmLogSearch : public QDialog
{
public:
    frmLogSearch(logbook::LogContext& context, QWidget* parent = nullptr);

    // The criteria as the boxes hold them.
    logbook::LogSearchCriteria Criteria() const;
    // cmdFind_Click: the statements to found, then the window closes.
    void cmdFind_Click();

    std::function<void(const logbook::LogSearchSql& sql)> found;

    QCheckBox* optObjectID = nullptr;
    QLineEdit* txtObjectID = nullptr;
    QCheckBox* optSite = nullptr;
    QComboBox* cboSite = nullptr;
    QLineEdit* txtNotes = nullptr;
    QCheckBox* optEquipment = nullptr;
    QComboBox* cboEquip = nullptr;
    QCheckBox* optDate = nullptr;
    QDateEdit* DTPicker1 = nullptr;
    QDateEdit* DTPicker2 = nullptr;
    QCheckBox* optType = nullptr;
    QComboBox* cboType = nullptr; // shows code and description; the code is the box's value
    QCheckBox* optConst = nullptr;
    QComboBox* cboCon = nullptr;
    QRadioButton* optAny = nullptr;
    QRadioButton* optSeen0 = nullptr; // seen
    QRadioButton* optSeen1 = nullptr; // not seen

private:
    logbook::LogContext& ctx_;
};

} // namespace logbook::ui
