#pragma once
// The three-panel finder: three charts of one object side by side, widest to narrowest, over
// spread::frmStarChart, which keeps the fields, the labels and which panel is active. The
// toolbar acts on the active panel. fv outlines, in each panel, the field of the panel to its
// right; mi writes the star names.

#include "charts/ChartEngine.h"
#include "spread/StarCharts.h"

#include <QWidget>

#include <array>
#include <functional>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QToolBar;

namespace services {
class UiPort;
}

namespace charts::ui {

class FinderPanel;

class frmStarChart : public QWidget
{
public:
    // Given: ui, for messages; sky, the chart data; model, the finder as ShowChart set it up.
    frmStarChart(services::UiPort& ui, std::function<const ChartSky&()> sky,
                 spread::frmStarChart model, QWidget* parent = nullptr);

    spread::frmStarChart model;

    // Activates panel i, as a click in it does.
    void PanelClick(int i);
    // The active panel's field, as the toolbar sets it.
    void SetActiveField(double fieldDeg);
    // The picture of panel i, rendered now when its view changed.
    const ChartImage& Rendered(int i);

    std::array<QLabel*, 3> txtLab{};
    std::array<QWidget*, 3> picChart{};
    QToolBar* toolbar = nullptr;
    QAction* cmdZoomIn = nullptr;
    QAction* cmdZoomOut = nullptr;
    QComboBox* cboZoom = nullptr;
    QLineEdit* txtZoom = nullptr;
    QAction* cmdFv = nullptr;
    QAction* cmdMi = nullptr;
    QAction* cmdPrint = nullptr;

private:
    friend class FinderPanel;

    void Refresh();
    void ZoomBy(double factor);
    void PrintFinder();

    services::UiPort& ui_;
    std::function<const ChartSky&()> sky_;
    // The fields the panels opened with, which the zoom factors divide.
    std::array<double, 3> firstFields_{};
    std::array<FinderPanel*, 3> panels_{};
};

} // namespace charts::ui
