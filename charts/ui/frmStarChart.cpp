#include "charts/ui/frmStarChart.h"

#include "charts/ChartView.h"
#include "charts/Projection.h"
#include "services/Fault.h"
#include "services/UiPort.h"

#include <QAction>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QToolBar>
#include <QVBoxLayout>

#include <cmath>
#include <numbers>

namespace charts::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

const QColor kActiveLabel(255, 255, 255);
const QColor kIdleLabel(192, 192, 192); // 12632256

constexpr double kFieldButtons[] = {1, 5, 10, 25, 50, 75};

} // namespace

// One panel: its chart, cached until its field, size or options change.
class FinderPanel : public QWidget
{
public:
    FinderPanel(frmStarChart& finder, int index) : QWidget(&finder), finder_(finder), index_(index)
    {
        setMinimumSize(180, 180);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

    const ChartImage& Rendered()
    {
        const spread::frmStarChart& m = finder_.model;
        ChartRequest request;
        request.raHours = m.ObjectRA;
        request.decDeg = m.ObjectDec;
        request.fieldDeg = m.panels[index_].fieldDeg;
        request.width = width();
        request.height = height();
        request.layers.names = m.mi;
        const bool same = !image_.image.isNull() && request.width == image_.image.width() &&
                          request.height == image_.image.height() && request.fieldDeg == field_ &&
                          names_ == m.mi;
        if (!same) {
            field_ = request.fieldDeg;
            names_ = m.mi;
            services::Trap(finder_.ui_, spread::kShowChartLocation,
                           [&] { image_ = RenderChart(finder_.sky_(), request, m.objects); });
        }
        return image_;
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const ChartImage& image = Rendered();
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        painter.drawImage(0, 0, image.image);
        const spread::frmStarChart& m = finder_.model;
        if (m.fv && index_ + 1 < 3) {
            // The next panel's field as a circle: where the narrower chart lies in this one.
            const Projection projection(m.ObjectRA, m.ObjectDec, m.panels[index_].fieldDeg, width(),
                                        height());
            const double half = m.panels[index_ + 1].fieldDeg / 2 * std::numbers::pi / 180;
            const double radius = projection.Scale() * 2 * std::tan(half / 2);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(QColor(200, 0, 0), 1.5, Qt::DashLine));
            painter.drawEllipse(QPointF(width() / 2.0, height() / 2.0), radius, radius);
        }
        if (m.panels[index_].active) {
            painter.setPen(QPen(QColor(0, 0, 160), 2));
            painter.drawRect(rect().adjusted(1, 1, -1, -1));
        }
    }
    void mousePressEvent(QMouseEvent*) override { finder_.PanelClick(index_); }

private:
    frmStarChart& finder_;
    int index_;
    ChartImage image_;
    double field_ = 0;
    bool names_ = false;
    bool failed_ = false;
};

frmStarChart::frmStarChart(services::UiPort& ui, std::function<const ChartSky&()> sky,
                           spread::frmStarChart finderModel, QWidget* parent)
    : QWidget(parent, Qt::Window), model(std::move(finderModel)), ui_(ui), sky_(std::move(sky))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName("frmStarChart");
    setWindowTitle(Q(model.ObjectID.empty() ? std::string("Finder Chart")
                                            : "Finder Chart: " + model.ObjectID));
    for (int i = 0; i < 3; ++i)
        firstFields_[static_cast<std::size_t>(i)] =
            model.panels[static_cast<std::size_t>(i)].fieldDeg;

    auto* layout = new QVBoxLayout(this);
    toolbar = new QToolBar(this);
    cmdZoomIn = toolbar->addAction(tr("Zoom In"), this, [this] {
        SetActiveField(ZoomIn(model.panels[model.ActivePanel()].fieldDeg));
    });
    cmdZoomOut = toolbar->addAction(tr("Zoom Out"), this, [this] {
        SetActiveField(ZoomOut(model.panels[model.ActivePanel()].fieldDeg));
    });
    toolbar->addSeparator();
    for (double field : kFieldButtons)
        toolbar->addAction(QString::number(field), this, [this, field] { SetActiveField(field); });
    toolbar->addSeparator();
    cboZoom = new QComboBox(this);
    cboZoom->setObjectName("cboZoom");
    for (const std::string& entry : model.zoomList)
        cboZoom->addItem(Q(entry));
    connect(cboZoom, &QComboBox::activated, this, [this](int row) {
        if (const auto factor = FinderZoomFactor(cboZoom->itemText(row).toStdString()))
            ZoomBy(*factor);
    });
    toolbar->addWidget(cboZoom);
    txtZoom = new QLineEdit(this);
    txtZoom->setObjectName("txtZoom");
    txtZoom->setPlaceholderText(tr("Zoom"));
    txtZoom->setMaximumWidth(60);
    connect(txtZoom, &QLineEdit::returnPressed, this, [this] {
        if (const auto factor = FinderZoomFactor(txtZoom->text().toStdString()))
            ZoomBy(*factor);
    });
    toolbar->addWidget(txtZoom);
    toolbar->addSeparator();
    cmdFv = toolbar->addAction(tr("fv"));
    cmdFv->setCheckable(true);
    cmdFv->setChecked(model.fv);
    cmdFv->setToolTip(tr("Outline the next panel's field"));
    connect(cmdFv, &QAction::toggled, this, [this](bool on) {
        model.fv = on;
        Refresh();
    });
    cmdMi = toolbar->addAction(tr("mi"));
    cmdMi->setCheckable(true);
    cmdMi->setChecked(model.mi);
    cmdMi->setToolTip(tr("Write the star names"));
    connect(cmdMi, &QAction::toggled, this, [this](bool on) {
        model.mi = on;
        Refresh();
    });
    toolbar->addSeparator();
    cmdPrint = toolbar->addAction(tr("Print"), this, [this] { PrintFinder(); });
    layout->addWidget(toolbar);

    auto* grid = new QGridLayout;
    for (int i = 0; i < 3; ++i) {
        const auto k = static_cast<std::size_t>(i);
        txtLab[k] = new QLabel(this);
        txtLab[k]->setObjectName(QString("txtLab%1").arg(i));
        txtLab[k]->setAutoFillBackground(true);
        panels_[k] = new FinderPanel(*this, i);
        picChart[k] = panels_[k];
        grid->addWidget(txtLab[k], 0, i);
        grid->addWidget(panels_[k], 1, i);
        grid->setColumnStretch(i, 1);
    }
    grid->setRowStretch(1, 1);
    layout->addLayout(grid, 1);
    resize(960, 400);
    Refresh();
}

void frmStarChart::PanelClick(int i)
{
    model.PanelClick(i);
    Refresh();
}

void frmStarChart::SetActiveField(double fieldDeg)
{
    model.SetActiveField(fieldDeg);
    Refresh();
}

void frmStarChart::ZoomBy(double factor)
{
    const int active = model.ActivePanel();
    SetActiveField(FinderZoomField(firstFields_[static_cast<std::size_t>(active)], factor));
}

const ChartImage& frmStarChart::Rendered(int i)
{
    return panels_[static_cast<std::size_t>(i)]->Rendered();
}

void frmStarChart::Refresh()
{
    for (std::size_t i = 0; i < 3; ++i) {
        const spread::StarChartPanel& panel = model.panels[i];
        txtLab[i]->setText(Q(panel.txtLab));
        QPalette palette = txtLab[i]->palette();
        palette.setColor(QPalette::Window, panel.active ? kActiveLabel : kIdleLabel);
        palette.setColor(QPalette::WindowText, Qt::black);
        txtLab[i]->setPalette(palette);
        panels_[i]->update();
    }
}

void frmStarChart::PrintFinder()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(windowTitle());
    printer.setPageOrientation(QPageLayout::Landscape);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    QWidget* area = panels_[0]->parentWidget();
    const QRect shown = txtLab[0]->geometry().united(panels_[2]->geometry());
    const QPixmap picture = area->grab(shown);
    QPainter painter(&printer);
    const QRect page = painter.viewport();
    const QSize fitted = picture.size().scaled(page.size(), Qt::KeepAspectRatio);
    painter.drawPixmap(QRect(page.topLeft(), fitted), picture);
}

} // namespace charts::ui
