#pragma once
// The plot window: positions typed by hand into a list, saved to and opened from plot files,
// and sent to a chart. The widgets mirror charts::frmStPlot, which does the work.

#include "charts/PlotFile.h"

#include <QDialog>

#include <array>
#include <functional>

class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace charts::ui {

class frmStPlot : public QDialog
{
public:
    // Given: ui, the port the model's messages and dialogs go through; chart, the chart calls
    // of the window's ChartTarget. Both outlive the window.
    // chart: the Chart button, which charts the model's entries.
    frmStPlot(services::UiPort& ui, std::function<void(charts::frmStPlot&)> chart,
              QWidget* parent = nullptr);

    charts::frmStPlot model;

    QLineEdit* txtFov = nullptr;
    QLineEdit* txtObjName = nullptr;
    QLineEdit* txtName = nullptr;
    QComboBox* cboType = nullptr;
    QListWidget* List1 = nullptr;
    // Row 1 (txtRah .. txtdecs) then row 2 (txtrah2 .. txtdecm2), in PlotField order.
    std::array<QLineEdit*, 10> fields{};
    QPushButton* Command1 = nullptr;
    QPushButton* SSCommand2 = nullptr;
    QPushButton* SSCommand3 = nullptr;
    QPushButton* SSCommand4 = nullptr;

private:
    void ToModel();
    void FromModel();

    std::function<void(charts::frmStPlot&)> chart_;
};

} // namespace charts::ui
