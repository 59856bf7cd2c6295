#include "reports/ui/frmUserM.h"

#include "reports/Certificates.h"
#include "services/Fault.h"
#include "services/UiPort.h"
#include "spread/AppState.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPageSetupDialog>
#include <QPixmap>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>

namespace reports {

namespace {

constexpr double kScreenDpi = 96; // zoom 100
constexpr int kPageMargin = 12;   // pixels of grey around the page

QPushButton* Button(QWidget* parent, QLayout* layout, const char* name, const QString& caption)
{
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    layout->addWidget(button);
    return button;
}

} // namespace

frmUserM::frmUserM(ReportContext& context, QWidget* parent)
    : QDialog(parent), window_(context, surface_), printer_(std::make_unique<QPrinter>())
{
    setObjectName(QStringLiteral("frmUserM"));
    setWindowTitle(QString::fromLatin1(kReportCaption));
    auto* outer = new QVBoxLayout(this);

    auto* commands = new QHBoxLayout;
    Command9 = Button(this, commands, "Command9", tr("Preview"));
    Command4 = Button(this, commands, "Command4", tr("Print"));
    Command5 = Button(this, commands, "Command5", tr("Top"));
    Command3 = Button(this, commands, "Command3", tr("Previous"));
    Command2 = Button(this, commands, "Command2", tr("Next"));
    Command6 = Button(this, commands, "Command6", tr("Bottom"));
    cmdZoomIn = Button(this, commands, "cmdZoomIn", tr("Zoom In"));
    cmdZoomOut = Button(this, commands, "cmdZoomOut", tr("Zoom Out"));
    cmdFit = Button(this, commands, "cmdFit", tr("Zoom to Normal Size"));
    commands->addStretch();
    outer->addLayout(commands);

    auto* options = new QHBoxLayout;
    Command10 = Button(this, options, "Command10", tr("Setup"));
    ReportS = Button(this, options, "ReportS", tr("Report Setup"));
    cmdSavePdf = Button(this, options, "cmdSavePdf", tr("Save PDF"));
    chkLand = new QCheckBox(tr("Landscape"), this);
    chkLand->setObjectName(QStringLiteral("chkLand"));
    options->addWidget(chkLand);
    chkMissing = new QCheckBox(tr("Still to observe"), this);
    chkMissing->setObjectName(QStringLiteral("chkMissing"));
    options->addWidget(chkMissing);
    options->addWidget(new QLabel(tr("From"), this));
    txtFrom = new QLineEdit(this);
    txtFrom->setObjectName(QStringLiteral("txtFrom"));
    txtFrom->setMaximumWidth(60);
    options->addWidget(txtFrom);
    options->addWidget(new QLabel(tr("To"), this));
    txtTo = new QLineEdit(this);
    txtTo->setObjectName(QStringLiteral("txtTo"));
    txtTo->setMaximumWidth(60);
    options->addWidget(txtTo);
    options->addStretch();
    Command1 = Button(this, options, "Command1", tr("Close"));
    outer->addLayout(options);

    chartOptions = new QWidget(this);
    chartOptions->setObjectName(QStringLiteral("fraChart"));
    auto* chart = new QHBoxLayout(chartOptions);
    chart->setContentsMargins(0, 0, 0, 0);
    chart->addWidget(new QLabel(tr("FOV"), chartOptions));
    txtFov = new QLineEdit(chartOptions);
    txtFov->setObjectName(QStringLiteral("txtFov"));
    txtFov->setMaximumWidth(60);
    chart->addWidget(txtFov);
    optShow[0] = new QRadioButton(tr("Chart"), chartOptions);
    optShow[1] = new QRadioButton(tr("Image"), chartOptions);
    for (QRadioButton* option : optShow) {
        option->setObjectName(QStringLiteral("optShow"));
        chart->addWidget(option);
    }
    chkBW = new QCheckBox(tr("Black and White"), chartOptions);
    chkBW->setObjectName(QStringLiteral("chkBW"));
    chkTelrad = new QCheckBox(tr("Telrad"), chartOptions);
    chkTelrad->setObjectName(QStringLiteral("chkTelrad"));
    chkMW = new QCheckBox(tr("Milky Way"), chartOptions);
    chkMW->setObjectName(QStringLiteral("chkMW"));
    for (QCheckBox* box : {chkBW, chkTelrad, chkMW})
        chart->addWidget(box);
    chart->addWidget(new QLabel(tr("Circle"), chartOptions));
    txtCircle = new QLineEdit(chartOptions);
    txtCircle->setObjectName(QStringLiteral("txtCircle"));
    txtCircle->setMaximumWidth(60);
    chart->addWidget(txtCircle);
    chart->addStretch();
    chartOptions->hide();
    outer->addWidget(chartOptions);

    preview = new QScrollArea(this);
    preview->setObjectName(QStringLiteral("VSPrinter1"));
    preview->setAlignment(Qt::AlignCenter);
    preview->setStyleSheet(QStringLiteral("QScrollArea, QScrollArea > QWidget > QWidget "
                                          "{ background-color: #c0c0c0; }"));
    page = new QLabel;
    page->setAlignment(Qt::AlignCenter);
    page->setContentsMargins(kPageMargin, kPageMargin, kPageMargin, kPageMargin);
    page->setStyleSheet(QStringLiteral("background-color: #c0c0c0;"));
    preview->setWidget(page);
    preview->setWidgetResizable(false);
    outer->addWidget(preview, 1);

    Sbar = new QStatusBar(this);
    Sbar->setObjectName(QStringLiteral("Sbar"));
    Sbar->setSizeGripEnabled(false);
    outer->addWidget(Sbar);
    resize(900, 700);

    ShowControls();

    const auto pageCommand = [this](void (ReportWindow::*command)()) {
        return [this, command] {
            (window_.*command)();
            Refresh();
        };
    };
    connect(Command9, &QPushButton::clicked, this, [this] { Preview(); });
    connect(Command4, &QPushButton::clicked, this, [this] { Print(); });
    connect(Command2, &QPushButton::clicked, this, pageCommand(&ReportWindow::Next));
    connect(Command3, &QPushButton::clicked, this, pageCommand(&ReportWindow::Previous));
    connect(Command5, &QPushButton::clicked, this, pageCommand(&ReportWindow::First));
    connect(Command6, &QPushButton::clicked, this, pageCommand(&ReportWindow::Last));
    connect(cmdZoomIn, &QPushButton::clicked, this, pageCommand(&ReportWindow::ZoomIn));
    connect(cmdZoomOut, &QPushButton::clicked, this, pageCommand(&ReportWindow::ZoomOut));
    connect(cmdFit, &QPushButton::clicked, this, pageCommand(&ReportWindow::ZoomNormal));
    connect(Command10, &QPushButton::clicked, this, [this] { PageSetup(); });
    connect(cmdSavePdf, &QPushButton::clicked, this, [this] { SavePdf(); });
    connect(Command1, &QPushButton::clicked, this, &QDialog::close);
    connect(ReportS, &QPushButton::clicked, this, [this] {
        if (onReportSetup)
            onReportSetup(window_.ReportNumber);
    });
    connect(chkLand, &QCheckBox::clicked, this, [this] {
        ReadControls();
        window_.chkLand_Click();
        ShowControls();
        Preview();
    });
    connect(chkMissing, &QCheckBox::clicked, this, [this](bool on) {
        spread::AppState& TMM = window_.Context().TMM;
        TMM.prefs.CertMissing = on;
        TMM.settings.Save("CertMissing", on ? "True" : "False");
        TMM.settings.Sync();
        Preview();
    });
}

frmUserM::~frmUserM() = default;

void frmUserM::Form_Load()
{
    ReadControls();
    services::Trap(window_.Context().TMM.ui, "frmUserM.Form_Load", [this] { window_.Form_Load(); });
    ShowControls();
    window_.First();
    Refresh();
}

void frmUserM::ReadControls()
{
    window_.chkLand = chkLand->isChecked();
    window_.chkMissing = chkMissing->isChecked();
    window_.txtFrom = txtFrom->text().toStdString();
    window_.txtTo = txtTo->text().toStdString();
    window_.txtFov = txtFov->text().toStdString();
    window_.optShow = optShow[1]->isChecked() ? "I" : "C";
    window_.chkBW = chkBW->isChecked();
    window_.chkTelrad = chkTelrad->isChecked();
    window_.chkMW = chkMW->isChecked();
    window_.txtCircle = txtCircle->text().toStdString();
}

void frmUserM::ShowControls()
{
    chkLand->setChecked(window_.chkLand);
    chkLand->setEnabled(window_.chkLandEnabled);
    chkMissing->setVisible(ListsMissing(window_.ReportNumber));
    chkMissing->setChecked(window_.chkMissing);
    txtFrom->setText(QString::fromStdString(window_.txtFrom));
    txtTo->setText(QString::fromStdString(window_.txtTo));
    chartOptions->setVisible(window_.chartOptionsVisible);
    txtFov->setText(QString::fromStdString(window_.txtFov));
    optShow[window_.optShow == "I" ? 1 : 0]->setChecked(true);
    chkBW->setChecked(window_.chkBW);
    chkTelrad->setChecked(window_.chkTelrad);
    chkMW->setChecked(window_.chkMW);
    txtCircle->setText(QString::fromStdString(window_.txtCircle));
}

double frmUserM::PreviewDpi() const
{
    if (window_.Zoom() > 0)
        return window_.Zoom() * kScreenDpi / 100;
    const QSize view = preview->viewport()->size();
    const double across = std::max(1, view.width() - 2 * kPageMargin) * double(kTwipsPerInch) /
                          std::max(1, surface_.PageWidth());
    const double down = std::max(1, view.height() - 2 * kPageMargin) * double(kTwipsPerInch) /
                        std::max(1, surface_.PageHeight());
    return std::max(1.0, std::min(across, down));
}

void frmUserM::Refresh()
{
    if (surface_.PageCount() > 0)
        page->setPixmap(QPixmap::fromImage(surface_.PageImage(window_.Page(), PreviewDpi())));
    else
        page->clear();
    page->adjustSize();
    Sbar->showMessage(QString::fromStdString(window_.Sbar()));
}

void frmUserM::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    if (window_.Zoom() == 0)
        Refresh();
}

void frmUserM::Preview()
{
    ReadControls();
    services::Trap(window_.Context().TMM.ui, "frmUserM.Command9_Click",
                   [this] { window_.Command9_Click(); });
    window_.First();
    Refresh();
}

void frmUserM::Print()
{
    ReadControls();
    const auto [from, to] = window_.PrintRange();
    printer_->setPageSize(
        QPageSize(surface_.PaperSize() == Paper::A4 ? QPageSize::A4 : QPageSize::Letter));
    printer_->setPageOrientation(surface_.PageOrientation() == Orientation::Landscape
                                     ? QPageLayout::Landscape
                                     : QPageLayout::Portrait);
    printer_->setFullPage(true);
    printer_->setFromTo(from, to);
    QPrintDialog dialog(printer_.get(), this);
    dialog.setMinMax(1, std::max(1, surface_.PageCount()));
    if (dialog.exec() != QDialog::Accepted)
        return;
    const bool range = printer_->printRange() == QPrinter::PageRange;
    if (!surface_.PaintTo(*printer_, range ? printer_->fromPage() : from,
                          range ? printer_->toPage() : to))
        window_.Context().TMM.ui.ShowMessage("The printer could not be used.", kReportCaption, "E");
}

void frmUserM::PageSetup()
{
    QPageSetupDialog dialog(printer_.get(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QPageLayout layout = printer_->pageLayout();
    surface_.SetPaper(layout.pageSize().id() == QPageSize::A4 ? Paper::A4 : Paper::Letter);
    if (window_.chkLandEnabled)
        chkLand->setChecked(layout.orientation() == QPageLayout::Landscape);
    ReadControls();
    window_.chkLand_Click();
    ShowControls();
    Preview();
}

void frmUserM::SavePdf()
{
    services::UiPort& ui = window_.Context().TMM.ui;
    std::string name = ui.AskSaveFile("Save PDF", "PDF Files (*.pdf)", "pdf", "");
    if (name.empty())
        return;
    if (std::filesystem::path(name).extension().empty())
        name += ".pdf";
    std::string error;
    if (!surface_.WritePdf(name, error))
        ui.ShowMessage(error, kReportCaption, "E");
}

} // namespace reports
