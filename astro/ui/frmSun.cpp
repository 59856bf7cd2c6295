#include "astro/ui/frmSun.h"

#include "astro/Sun.h"
#include "astro/Text.h"
#include "astro/ui/OutputTable.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>

namespace astro::ui {

namespace {

QString WhenText(const ObservingClock& clock)
{
    if (clock.UseRealTime == "Y")
        return "Now, at latitude " + QString::number(clock.Plat) + ", longitude " +
               QString::number(clock.Plon) + " W";
    return QString::fromStdString(clock.PDate + " " + clock.Ptime) + ", latitude " +
           QString::number(clock.Plat) + ", longitude " + QString::number(clock.Plon) + " W";
}

} // namespace

frmSun::frmSun(services::UiPort& ui, FaultSink& faults, const Clock& computerClock, QWidget* parent)
    : QDialog(parent), ui_(ui), faults_(faults), computerClock_(computerClock)
{
    setObjectName("athesun");
    setWindowTitle("Sun");
    auto* layout = new QVBoxLayout(this);
    lblWhen_ = new QLabel(this);
    lblWhen_->setObjectName("lblWhen");
    layout->addWidget(lblWhen_);

    auto* place = new OutputGroup("Position", this);
    outputs_[0] = place->AddRow("True longitude", "lblTrueLongitude");
    outputs_[4] = place->AddRow("Apparent longitude", "lblApparentLongitude");
    outputs_[2] = place->AddRow("Right ascension", "lblRA");
    outputs_[3] = place->AddRow("Declination", "lblDec");
    outputs_[5] = place->AddRow("Right ascension (rounded)", "lblRA2");
    outputs_[6] = place->AddRow("Declination (rounded)", "lblDec2");
    outputs_[1] = place->AddRow("Distance (AU)", "lblDistance");
    outputs_[7] = place->AddRow("Apparent diameter", "lblDiameter");
    outputs_[11] = place->AddRow("Semi-diameter", "lblSemiDiameter");
    outputs_[10] = place->AddRow("Altitude (degrees)", "lblAltitude");
    layout->addWidget(place);

    auto* day = new OutputGroup("Day and night (local time)", this);
    outputs_[12] = day->AddRow("Astronomical twilight begins", "lblTwilightBegins");
    outputs_[8] = day->AddRow("Sunrise", "lblSunrise");
    lblTransit_ = day->AddRow("Transit", "lblTransit");
    outputs_[9] = day->AddRow("Sunset", "lblSunset");
    outputs_[13] = day->AddRow("Astronomical twilight ends", "lblTwilightEnds");
    lblDark_ = day->AddRow("Darkness", "lblDark");
    layout->addWidget(day);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    cmdGoto = buttons->addButton("Goto", QDialogButtonBox::ActionRole);
    cmdGoto->setObjectName("cmdGoto");
    connect(cmdGoto, &QPushButton::clicked, this, [this] { GotoShown(goto_, ui_, raHours_, decDeg_); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    layout->addWidget(buttons);
}

void frmSun::Open(const ObservingClock& clock)
{
    const SunOutputs sun = CalcSun(clock, computerClock_, faults_);
    raHours_ = sun.raHours;
    decDeg_ = sun.decDeg;
    lblWhen_->setText(WhenText(clock));
    const std::string texts[14] = {sun.trueLongitude,
                                   sun.ra.empty() ? std::string() : FixedText(sun.distance, 1, 5),
                                   sun.ra,
                                   sun.dec,
                                   sun.apparentLongitude,
                                   sun.ra2,
                                   sun.dec2,
                                   sun.diameter,
                                   sun.sunrise,
                                   sun.sunset,
                                   sun.altitude,
                                   sun.semiDiameter,
                                   sun.twilightBegins,
                                   sun.twilightEnds};
    for (int i = 0; i < 14; ++i)
        SetText(outputs_[i], texts[i]);
    // Twilight in hours and minutes beside the decimal hours the routine gives.
    if (!std::isnan(sun.twilightBeginsHours)) {
        SetText(outputs_[12], sun.twilightBegins + "  (" +
                                  SunTimeText(sun.twilightBeginsHours, clock.timesAMPM) + ")");
        SetText(outputs_[13], sun.twilightEnds + "  (" +
                                  SunTimeText(sun.twilightEndsHours, clock.timesAMPM) + ")");
    }
    const double transit =
        sun.ra.empty() ? std::nan("") : SunTransit(clock, computerClock_, faults_);
    SetText(lblTransit_,
            std::isnan(transit) ? std::string() : SunTimeText(transit, clock.timesAMPM));
    SetText(lblDark_, DarknessText(sun, clock.timesAMPM));
    show();
    raise();
}

} // namespace astro::ui
