#pragma once
// The log view's sort: three boxes of keys, each with its direction.

#include "logbook/LogSpread.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QComboBox;

namespace logbook::ui {

class frmLogSort : public QDialog
{
public:
    explicit frmLogSort(QWidget* parent = nullptr);
    // The boxes as they stand; an empty box is no key.
    logbook::LogSortBoxes Boxes() const;
    void SetBoxes(const logbook::LogSortBoxes& boxes);

    std::array<QComboBox*, 3> cboSort{};
    std::array<QCheckBox*, 3> chkDescending{};
};

} // namespace logbook::ui
