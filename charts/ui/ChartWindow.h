#pragma once
// The chart window: one ChartDocument of the own chart engine drawn with RenderChart, with pan,
// zoom, night colours, saving, printing, the info text of a clicked object and the telescope's
// crosshair. The picture is rendered outside the paint event and kept until the view changes,
// so that painting only copies it.

#include "charts/ChartCalls.h"
#include "charts/ChartEngine.h"
#include "charts/ChartPage.h"

#include <QImage>
#include <QPoint>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

class QAction;
class QTextBrowser;
class QTimer;
class QToolBar;

namespace services {
class UiPort;
}

namespace charts::ui {

// What the chart window asks of the program.
struct ChartWindowHooks
{
    // "Slew here": right ascension hours, declination degrees (J2000), the ObjectID or star.
    std::function<void(double raHours, double decDeg, const std::string& objectId)> Slew;
    // "Add to plan": the object's index in the document and its ObjectID.
    std::function<void(std::size_t index, const std::string& objectId)> AddToPlan;
    // The telescope's position, right ascension hours and declination degrees J2000; nothing
    // when it cannot be read.
    std::function<std::optional<std::pair<double, double>>()> ReadTelescope;
    // The window closed (the wiring ends the chart with OwnChart::Closed).
    std::function<void(const ChartDocument*)> Closed;
    // The program's night vision state, followed whenever the application's palette changes.
    std::function<bool()> NightVision;
};

class ChartCanvas;

class ChartWindow : public QWidget
{
public:
    // Given: ui, for the file dialogs and messages; sky, the chart data (loaded on first use);
    //   document, the chart, which may still grow; hooks. ui and sky outlive the window.
    ChartWindow(services::UiPort& ui, std::function<const ChartSky&()> sky,
                std::shared_ptr<ChartDocument> document, ChartWindowHooks hooks,
                QWidget* parent = nullptr);
    ~ChartWindow() override;

    const ChartDocument& Document() const { return *document_; }
    double FieldDeg() const { return fieldDeg_; }
    double CentreRaHours() const { return raHours_; }
    double CentreDecDeg() const { return decDeg_; }
    bool Night() const { return night_; }
    std::optional<std::pair<double, double>> Crosshair() const { return crosshair_; }

    void SetField(double fieldDeg);
    void ZoomIn();
    void ZoomOut();
    void SetCentre(double raHours, double decDeg);
    void SetNight(bool night);
    // The picture as it stands, rendered now when the view changed since.
    const ChartImage& Rendered();

    // A left click at a pixel of the chart: the info text of what lies there.
    void ClickAt(QPoint pixel);
    // The pixel of the chart canvas where a sky position is drawn, in canvas coordinates.
    QPointF PixelOf(double raHours, double decDeg) const;

    QWidget* Canvas() const;
    QTextBrowser* txtInfo = nullptr;
    QToolBar* toolbar = nullptr;
    QAction* cmdZoomIn = nullptr;
    QAction* cmdZoomOut = nullptr;
    QAction* cmdNight = nullptr;
    QAction* cmdSavePng = nullptr;
    QAction* cmdSavePdf = nullptr;
    QAction* cmdPrint = nullptr;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    friend class ChartCanvas;

    void ViewChanged();
    void RenderNow();
    void DocumentCheck();
    void ReadTelescope();
    void ContextMenuAt(QPoint pixel, QPoint global);
    void Drag(QPoint offset);
    void SavePng();
    void SavePdf();
    void PrintChart();
    ChartRequest Request(int width, int height) const;
    // The chart of a saved or printed page, in day colours, within width x height pixels.
    ChartImage PageChart(int width, int height) const;
    ChartPageInfo PageInfo(const ChartImage& chart) const;

    services::UiPort& ui_;
    std::function<const ChartSky&()> sky_;
    std::shared_ptr<ChartDocument> document_;
    ChartWindowHooks hooks_;

    double raHours_ = 0;
    double decDeg_ = 0;
    double fieldDeg_ = 35;
    bool night_ = false;
    std::optional<std::pair<double, double>> crosshair_;

    ChartCanvas* canvas_ = nullptr;
    QTimer* render_ = nullptr;
    QTimer* watch_ = nullptr;
    QTimer* scope_ = nullptr;
    // The cached picture and the view it was drawn for.
    ChartImage image_;
    double imageRa_ = 0, imageDec_ = 0, imageField_ = 0;
    bool stale_ = true;
    bool failed_ = false;
    std::size_t seenObjects_ = 0;
    std::string seenHeading_;
    QPoint dragOffset_;
};

} // namespace charts::ui
