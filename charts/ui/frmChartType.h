#pragma once
// The choice of chart engine before the spreadsheet is charted: the outside planetarium or the
// program's own charts.

#include <QDialog>

#include <string>

class QRadioButton;
class QPushButton;

namespace charts::ui {

class frmChartType : public QDialog
{
public:
    explicit frmChartType(QWidget* parent = nullptr);

    // "C" for the planetarium, "D" for the own charts, as the radio buttons stand.
    std::string Choice() const;
    // Shows the window and waits. Returned: Choice() after Create Chart; empty on cancel.
    std::string Ask();

    QRadioButton* optCdc = nullptr;
    QRadioButton* optSelvane = nullptr;
    QPushButton* cmdCreate = nullptr;
};

} // namespace charts::ui
