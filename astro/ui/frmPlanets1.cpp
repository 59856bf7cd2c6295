#include "astro/ui/frmPlanets1.h"

#include "astro/Planets.h"
#include "astro/ui/OutputTable.h"
#include "services/UiPort.h"
#include "spread/PortFaults.h"
#include "spread/SolarSummary.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace astro::ui {

namespace {

constexpr const char* kCaptions[16] = {"Heliocentric longitude",
                                       "Heliocentric latitude",
                                       "Geocentric longitude",
                                       "Geocentric latitude",
                                       "Right ascension",
                                       "Declination",
                                       "Distance (AU)",
                                       "Elongation (°)",
                                       "Size (\")",
                                       "Phase angle (°)",
                                       "Illuminated (%)",
                                       "Magnitude",
                                       "Altitude (°)",
                                       "Rises",
                                       "Transits",
                                       "Sets"};

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

frmPlanets1::frmPlanets1(SolarContext context, QWidget* parent)
    : QDialog(parent), context_(std::move(context))
{
    setObjectName("frmPlanets1");
    auto* layout = new QVBoxLayout(this);
    lblClock = new QLabel(this);
    lblClock->setObjectName("lblClock");
    layout->addWidget(lblClock);
    auto* grid = new QGridLayout;
    for (int i = 0; i < 16; ++i) {
        auto* caption = new QLabel(kCaptions[i], this);
        lblValue[i] = new QLabel(this);
        lblValue[i]->setObjectName(QString("lblValue%1").arg(i + 1));
        lblValue[i]->setTextInteractionFlags(Qt::TextSelectableByMouse);
        lblValue[i]->setMinimumWidth(120);
        grid->addWidget(caption, i, 0);
        grid->addWidget(lblValue[i], i, 1);
    }
    layout->addLayout(grid);
    auto* buttons = new QHBoxLayout;
    cmdGoto = new QPushButton("Goto", this);
    cmdGoto->setObjectName("cmdGoto");
    cmdClose = new QPushButton("Close", this);
    cmdClose->setObjectName("cmdClose");
    buttons->addStretch();
    buttons->addWidget(cmdGoto);
    buttons->addWidget(cmdClose);
    layout->addLayout(buttons);
    connect(cmdGoto, &QPushButton::clicked, this, [this] { GotoShown(goto_, context_.ui, raHours_, decDeg_); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
}

void frmPlanets1::ShowPlanet(int planet, const std::string& planetName)
{
    setWindowTitle(Q(planetName));
    const astro::ObservingClock clock = context_.observingClock();
    lblClock->setText(QString("%1 %2   Lat %3  Lon %4")
                          .arg(Q(clock.UseRealTime == "Y" ? "Now" : clock.PDate), Q(clock.Ptime))
                          .arg(clock.Plat)
                          .arg(clock.Plon));
    spread::PortFaults faults(context_.ui);
    const astro::PlanetOutputs p =
        astro::CalcPlanets(planetName, static_cast<std::int16_t>(planet), clock,
                           context_.computerClock, context_.programDir, faults);
    raHours_ = p.place.raHours;
    decDeg_ = p.place.decDegrees;
    spread::BodyTimes times;
    if (p.valid)
        times = spread::TimesOf(clock, context_.computerClock, p.place.raHours, p.place.decDegrees,
                                faults);
    const std::string values[16] = {
        p.helioLongitude, p.helioLatitude, p.longitude,   p.latitude, p.ra,           p.dec,
        p.distance,       p.elongation,    p.size,        p.phase,    p.illumination, p.magnitude,
        times.altitude,   times.rise,      times.transit, times.set};
    for (int i = 0; i < 16; ++i)
        lblValue[i]->setText(Q(values[i]));
    show();
    raise();
}

} // namespace astro::ui
