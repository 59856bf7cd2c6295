#include "astro/ui/frmSolarSummary.h"

#include "spread/PortFaults.h"
#include "spread/SolarSummary.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace astro::ui {

namespace {

constexpr const char* kHeaders[] = {"Body",    "RA",  "Dec", "Alt",  "Rise",
                                    "Transit", "Set", "Mag", "Size", "Illum %"};
constexpr int kColumns = 10;

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

frmSolarSummary::frmSolarSummary(SolarContext context, QWidget* parent)
    : QDialog(parent), context_(std::move(context))
{
    setObjectName("frmSolarSummary");
    setWindowTitle("Solar System Summary");
    auto* layout = new QVBoxLayout(this);
    lblClock = new QLabel(this);
    lblClock->setObjectName("lblClock");
    layout->addWidget(lblClock);
    grdSummary = new QTableWidget(0, kColumns, this);
    grdSummary->setObjectName("grdSummary");
    for (int c = 0; c < kColumns; ++c)
        grdSummary->setHorizontalHeaderItem(c, new QTableWidgetItem(kHeaders[c]));
    grdSummary->verticalHeader()->hide();
    grdSummary->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdSummary->setSelectionBehavior(QAbstractItemView::SelectRows);
    layout->addWidget(grdSummary);
    lblNight = new QLabel(this);
    lblNight->setObjectName("lblNight");
    lblNight->setWordWrap(true);
    layout->addWidget(lblNight);
    auto* moonLine = new QHBoxLayout;
    imgMoon = new QLabel(this);
    imgMoon->setObjectName("imgMoon");
    lblMoon = new QLabel(this);
    lblMoon->setObjectName("lblMoon");
    moonLine->addWidget(imgMoon);
    moonLine->addWidget(lblMoon, 1);
    layout->addLayout(moonLine);
    auto* cmdClose = new QPushButton("Close", this);
    cmdClose->setObjectName("cmdClose");
    layout->addWidget(cmdClose, 0, Qt::AlignRight);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
    resize(760, 520);
}

void frmSolarSummary::Refresh()
{
    const astro::ObservingClock clock = context_.observingClock();
    lblClock->setText(QString("%1 %2   Lat %3  Lon %4")
                          .arg(Q(clock.UseRealTime == "Y" ? "Now" : clock.PDate), Q(clock.Ptime))
                          .arg(clock.Plat)
                          .arg(clock.Plon));
    spread::PortFaults faults(context_.ui);
    const spread::SolarSummaryResult summary =
        spread::SolarSummary(clock, context_.computerClock, context_.programDir, faults);
    const std::vector<spread::SummaryRow>& rows = summary.rows;
    grdSummary->setRowCount(static_cast<int>(rows.size()));
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const spread::SummaryRow& row = rows[static_cast<std::size_t>(r)];
        const std::string cells[kColumns] = {
            row.body,          row.ra,        row.dec,       row.times.altitude, row.times.rise,
            row.times.transit, row.times.set, row.magnitude, row.size,           row.illumination};
        for (int c = 0; c < kColumns; ++c) {
            auto* item = new QTableWidgetItem(Q(cells[c]));
            if (c > 0)
                item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            grdSummary->setItem(r, c, item);
        }
    }
    grdSummary->resizeColumnsToContents();
    QStringList night;
    if (!summary.darkness.empty())
        night << Q(summary.darkness);
    if (!summary.twilight.empty())
        night << Q(summary.twilight);
    lblNight->setText(night.join("      "));
    imgMoon->clear();
    if (!summary.moonIcon.empty())
        imgMoon->setPixmap(
            QIcon(QString::fromStdString((context_.programDir / summary.moonIcon).string()))
                .pixmap(32, 32));
    lblMoon->setText(
        summary.moonAge.empty()
            ? QString()
            : QString("Moon's age %1 days      Next new moon %2      Next full moon %3")
                  .arg(Q(summary.moonAge), Q(summary.nextNew), Q(summary.nextFull)));
    show();
    raise();
}

} // namespace astro::ui
