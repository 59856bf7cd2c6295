#include "charts/ui/ChartWindow.h"

#include "charts/ChartPage.h"
#include "charts/ChartView.h"
#include "charts/Projection.h"
#include "services/Fault.h"
#include "services/UiPort.h"

#include <QAction>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSplitter>
#include <QTextBrowser>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace charts::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

// How often the window looks whether the engine added objects to its document.
constexpr int kDocumentCheckMs = 250;
// A press and release closer than this, in pixels, is a click rather than a drag.
constexpr int kClickTolerancePx = 3;
constexpr int kCrosshairArmPx = 14;
// The picture of a printed or saved page, at most this many pixels across and down: the
// engine draws its marks in pixels, so a larger picture would print them too small to read.
constexpr int kPageWidthPx = 1200;
constexpr int kPageHeightPx = 900;

} // namespace

// The picture of the chart: paints the cached image, shifted while it is dragged.
class ChartCanvas : public QWidget
{
public:
    explicit ChartCanvas(ChartWindow& window) : QWidget(&window), window_(window)
    {
        setMinimumSize(200, 150);
        setFocusPolicy(Qt::StrongFocus);
        setCursor(Qt::OpenHandCursor);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), window_.night_ ? Qt::black : Qt::white);
        if (!window_.image_.image.isNull())
            painter.drawImage(window_.dragOffset_, window_.image_.image);
        if (!window_.crosshair_ || !window_.dragOffset_.isNull())
            return;
        const QPointF at = window_.PixelOf(window_.crosshair_->first, window_.crosshair_->second);
        if (!std::isfinite(at.x()) || !std::isfinite(at.y()))
            return;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(window_.night_ ? QColor(255, 60, 60) : QColor(220, 0, 0), 1.5));
        painter.drawEllipse(at, kCrosshairArmPx / 2.0, kCrosshairArmPx / 2.0);
        painter.drawLine(at + QPointF(-kCrosshairArmPx, 0), at + QPointF(kCrosshairArmPx, 0));
        painter.drawLine(at + QPointF(0, -kCrosshairArmPx), at + QPointF(0, kCrosshairArmPx));
    }
    void resizeEvent(QResizeEvent*) override { window_.ViewChanged(); }
    void mousePressEvent(QMouseEvent* event) override
    {
        if (event->button() == Qt::LeftButton)
            pressed_ = event->position().toPoint();
    }
    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (pressed_ && (event->buttons() & Qt::LeftButton))
            window_.Drag(event->position().toPoint() - *pressed_);
    }
    void mouseReleaseEvent(QMouseEvent* event) override
    {
        if (event->button() != Qt::LeftButton || !pressed_)
            return;
        const QPoint offset = event->position().toPoint() - *pressed_;
        pressed_.reset();
        window_.Drag({});
        if (offset.manhattanLength() <= kClickTolerancePx) {
            window_.ClickAt(event->position().toPoint());
            return;
        }
        const SkyPosition centre =
            PanCentre(window_.imageRa_, window_.imageDec_, window_.imageField_, width(), height(),
                      offset.x(), offset.y());
        window_.SetCentre(centre.raHours, centre.decDeg);
    }
    void wheelEvent(QWheelEvent* event) override
    {
        if (event->angleDelta().y() > 0)
            window_.ZoomIn();
        else if (event->angleDelta().y() < 0)
            window_.ZoomOut();
    }
    void contextMenuEvent(QContextMenuEvent* event) override
    {
        window_.ContextMenuAt(event->pos(), event->globalPos());
    }

private:
    ChartWindow& window_;
    std::optional<QPoint> pressed_;
};

ChartWindow::ChartWindow(services::UiPort& ui, std::function<const ChartSky&()> sky,
                         std::shared_ptr<ChartDocument> document, ChartWindowHooks hooks,
                         QWidget* parent)
    : QWidget(parent, Qt::Window), ui_(ui), sky_(std::move(sky)), document_(std::move(document)),
      hooks_(std::move(hooks)), raHours_(document_->raHours), decDeg_(document_->decDeg),
      fieldDeg_(ClampField(document_->fieldDeg))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName("ChartWindow");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    toolbar = new QToolBar(this);
    cmdZoomIn = toolbar->addAction(tr("Zoom In"), this, [this] { ZoomIn(); });
    cmdZoomOut = toolbar->addAction(tr("Zoom Out"), this, [this] { ZoomOut(); });
    cmdNight = toolbar->addAction(tr("Night"));
    cmdNight->setCheckable(true);
    connect(cmdNight, &QAction::toggled, this, [this](bool on) { SetNight(on); });
    toolbar->addSeparator();
    cmdSavePng = toolbar->addAction(tr("Save PNG"), this, [this] { SavePng(); });
    cmdSavePdf = toolbar->addAction(tr("Save PDF"), this, [this] { SavePdf(); });
    cmdPrint = toolbar->addAction(tr("Print"), this, [this] { PrintChart(); });
    layout->addWidget(toolbar);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    canvas_ = new ChartCanvas(*this);
    txtInfo = new QTextBrowser(this);
    txtInfo->setObjectName("txtInfo");
    txtInfo->setMinimumWidth(160);
    splitter->addWidget(canvas_);
    splitter->addWidget(txtInfo);
    splitter->setStretchFactor(0, 1);
    splitter->setSizes({640, 200});
    layout->addWidget(splitter, 1);
    resize(860, 560);

    render_ = new QTimer(this);
    render_->setSingleShot(true);
    connect(render_, &QTimer::timeout, this, [this] { RenderNow(); });
    watch_ = new QTimer(this);
    connect(watch_, &QTimer::timeout, this, [this] { DocumentCheck(); });
    watch_->start(kDocumentCheckMs);
    if (document_->crosshairDelay > 0 && hooks_.ReadTelescope) {
        scope_ = new QTimer(this);
        connect(scope_, &QTimer::timeout, this, [this] { ReadTelescope(); });
        scope_->start(document_->crosshairDelay * 1000);
    }
    if (hooks_.NightVision && hooks_.NightVision())
        cmdNight->setChecked(true);
    seenHeading_ = document_->heading;
    setWindowTitle(Q(seenHeading_.empty() ? std::string(kProgramTitle) : seenHeading_));
    ViewChanged();
}

ChartWindow::~ChartWindow() = default;

QWidget* ChartWindow::Canvas() const
{
    return canvas_;
}

void ChartWindow::SetField(double fieldDeg)
{
    fieldDeg_ = ClampField(fieldDeg);
    ViewChanged();
}

void ChartWindow::ZoomIn()
{
    SetField(charts::ZoomIn(fieldDeg_));
}

void ChartWindow::ZoomOut()
{
    SetField(charts::ZoomOut(fieldDeg_));
}

void ChartWindow::SetCentre(double raHours, double decDeg)
{
    raHours_ = raHours;
    decDeg_ = decDeg;
    ViewChanged();
}

void ChartWindow::SetNight(bool night)
{
    if (cmdNight->isChecked() != night) {
        cmdNight->setChecked(night); // comes back here through toggled
        return;
    }
    if (night_ == night)
        return;
    night_ = night;
    ViewChanged();
}

void ChartWindow::ViewChanged()
{
    stale_ = true;
    // Several changes in one pass of the event loop give one rendering. After a failure (chart
    // data missing) the window stays blank rather than report it at every resize.
    if (!failed_)
        render_->start(0);
}

ChartRequest ChartWindow::Request(int width, int height) const
{
    ChartRequest request;
    request.raHours = raHours_;
    request.decDeg = decDeg_;
    request.fieldDeg = fieldDeg_;
    request.width = width;
    request.height = height;
    request.nightMode = night_;
    return request;
}

void ChartWindow::RenderNow()
{
    render_->stop();
    const ChartRequest request = Request(canvas_->width(), canvas_->height());
    services::Trap(ui_, "ChartWindow.Render",
                   [&] { image_ = RenderChart(sky_(), request, document_->objects); });
    imageRa_ = request.raHours;
    imageDec_ = request.decDeg;
    imageField_ = image_.fieldDeg > 0 ? image_.fieldDeg : request.fieldDeg;
    stale_ = false;
    canvas_->update();
}

const ChartImage& ChartWindow::Rendered()
{
    if ((stale_ || render_->isActive()) && !failed_)
        RenderNow();
    return image_;
}

void ChartWindow::DocumentCheck()
{
    if (document_->objects.size() != seenObjects_) {
        seenObjects_ = document_->objects.size();
        ViewChanged();
    }
    if (document_->heading != seenHeading_) {
        seenHeading_ = document_->heading;
        setWindowTitle(Q(seenHeading_.empty() ? std::string(kProgramTitle) : seenHeading_));
    }
}

void ChartWindow::ReadTelescope()
{
    crosshair_ = hooks_.ReadTelescope();
    // Deliberate: a mount that failed once is not asked again for this chart.
    if (!crosshair_)
        scope_->stop();
    canvas_->update();
}

QPointF ChartWindow::PixelOf(double raHours, double decDeg) const
{
    const Projection projection(imageRa_, imageDec_, imageField_, canvas_->width(),
                                canvas_->height());
    const ChartPoint p = projection.Project(raHours, decDeg);
    if (!p.drawn)
        return {NAN, NAN};
    return {p.x, p.y};
}

void ChartWindow::ClickAt(QPoint pixel)
{
    const ChartImage& image = Rendered();
    const std::optional<std::size_t> picked = PickDrawnObject(image.drawn, pixel.x(), pixel.y());
    if (!picked) {
        txtInfo->clear();
        return;
    }
    const DrawnObject& drawn = image.drawn[*picked];
    if (drawn.kind == DrawnKind::Star) {
        txtInfo->setPlainText(Q(StarCaption(drawn)));
        return;
    }
    const std::optional<std::size_t> index = DocumentObjectIndex(*document_, drawn);
    if (index && *index < document_->infos.size() && !document_->infos[*index].empty())
        txtInfo->setHtml(Q(InfoTextHtml(document_->infos[*index])));
    else
        txtInfo->setPlainText(Q(drawn.name.empty() ? drawn.id : drawn.name));
}

void ChartWindow::ContextMenuAt(QPoint pixel, QPoint global)
{
    const ChartImage& image = Rendered();
    const std::optional<std::size_t> picked = PickDrawnObject(image.drawn, pixel.x(), pixel.y());
    if (!picked)
        return;
    const DrawnObject drawn = image.drawn[*picked];
    const std::optional<std::size_t> index = DocumentObjectIndex(*document_, drawn);
    QMenu menu(this);
    QAction* slew = menu.addAction(tr("Slew here"));
    slew->setEnabled(static_cast<bool>(hooks_.Slew));
    QAction* centre = menu.addAction(tr("Centre"));
    QAction* plan = menu.addAction(tr("Add to plan"));
    plan->setEnabled(index && hooks_.AddToPlan);
    QAction* chosen = menu.exec(global);
    if (chosen == slew)
        hooks_.Slew(drawn.raHours, drawn.decDeg, DrawnTarget(drawn));
    else if (chosen == centre)
        SetCentre(drawn.raHours, drawn.decDeg);
    else if (chosen == plan)
        hooks_.AddToPlan(*index, drawn.id);
}

void ChartWindow::Drag(QPoint offset)
{
    dragOffset_ = offset;
    canvas_->update();
}

void ChartWindow::SavePng()
{
    const std::string file =
        ui_.AskSaveFile("Save Chart", "PNG images (*.png)", "png", document_->heading + ".png");
    if (file.empty())
        return;
    const ChartImage& image = Rendered();
    if (!image.image.save(Q(file), "PNG"))
        ui_.ShowMessage("The chart could not be saved to " + file, "Save Chart", "E");
}

ChartImage ChartWindow::PageChart(int width, int height) const
{
    // Paper takes day colours, whatever the screen shows; the picture keeps the canvas' shape.
    const double aspect = double(std::max(canvas_->width(), 1)) / std::max(canvas_->height(), 1);
    const int w = aspect >= double(width) / height ? width : int(std::lround(height * aspect));
    const int h = aspect >= double(width) / height ? int(std::lround(width / aspect)) : height;
    ChartRequest request = Request(std::clamp(w, 16, 8192), std::clamp(h, 16, 8192));
    request.nightMode = false;
    return RenderChart(sky_(), request, document_->objects);
}

ChartPageInfo ChartWindow::PageInfo(const ChartImage& chart) const
{
    ChartPageInfo info;
    info.heading = windowTitle().toStdString();
    info.raHours = raHours_;
    info.decDeg = decDeg_;
    info.fieldDeg = chart.fieldDeg;
    info.limitMag = chart.limitMag;
    // The page is dated when it is made: the computer clock's local time.
    info.date = ChartPageDate(astro::SystemClock().Now());
    info.landscape = canvas_->width() > canvas_->height();
    return info;
}

void ChartWindow::SavePdf()
{
    const std::string file =
        ui_.AskSaveFile("Save Chart", "PDF files (*.pdf)", "pdf", document_->heading + ".pdf");
    if (file.empty())
        return;
    services::Trap(ui_, "ChartWindow.SavePdf", [&] {
        const ChartImage chart = PageChart(kPageWidthPx, kPageHeightPx);
        WriteChartPdf(std::filesystem::path(file), chart, PageInfo(chart));
    });
}

void ChartWindow::PrintChart()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(windowTitle());
    printer.setPageOrientation(canvas_->width() > canvas_->height() ? QPageLayout::Landscape
                                                                    : QPageLayout::Portrait);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    services::Trap(ui_, "ChartWindow.PrintChart", [&] {
        const ChartImage chart = PageChart(kPageWidthPx, kPageHeightPx);
        QPainter painter(&printer);
        PaintChartPage(painter, QRectF(painter.viewport()), chart, PageInfo(chart));
    });
}

void ChartWindow::closeEvent(QCloseEvent* event)
{
    if (scope_)
        scope_->stop();
    watch_->stop();
    if (hooks_.Closed)
        hooks_.Closed(document_.get());
    event->accept();
}

void ChartWindow::changeEvent(QEvent* event)
{
    if ((event->type() == QEvent::ApplicationPaletteChange ||
         event->type() == QEvent::PaletteChange) &&
        hooks_.NightVision)
        SetNight(hooks_.NightVision());
    QWidget::changeEvent(event);
}

void ChartWindow::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        ZoomIn();
        break;
    case Qt::Key_Minus:
        ZoomOut();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace charts::ui
