#include "astro/ui/frmMoon.h"

#include "astro/Moon.h"
#include "astro/Text.h"
#include "astro/ui/OutputTable.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QPushButton>
#include <QVBoxLayout>

#include <cmath>

namespace astro::ui {

frmMoon::frmMoon(services::UiPort& ui, FaultSink& faults, const Clock& computerClock,
                 std::filesystem::path programDir, QWidget* parent)
    : QDialog(parent), ui_(ui), faults_(faults), computerClock_(computerClock),
      programDir_(std::move(programDir))
{
    setObjectName("athemoon");
    setWindowTitle("Moon");
    auto* layout = new QVBoxLayout(this);
    lblWhen_ = new QLabel(this);
    lblWhen_->setObjectName("lblWhen");
    layout->addWidget(lblWhen_);

    auto* phaseRow = new QHBoxLayout;
    imgPhase_ = new QLabel(this);
    imgPhase_->setObjectName("imgPhase");
    imgPhase_->setFixedSize(64, 64);
    phaseRow->addWidget(imgPhase_);
    auto* phase = new OutputGroup("Phase", this);
    lblAge_ = phase->AddRow("Age (days)", "lblAge");
    outputs_[12] = phase->AddRow("Illuminated (%)", "lblIlluminated");
    outputs_[13] = phase->AddRow("Elongation (degrees)", "lblElongation");
    lblNextNew_ = phase->AddRow("Next new moon", "lblNextNew");
    lblNextFull_ = phase->AddRow("Next full moon", "lblNextFull");
    phaseRow->addWidget(phase, 1);
    layout->addLayout(phaseRow);

    auto* place = new OutputGroup("Position", this);
    outputs_[0] = place->AddRow("Apparent longitude", "lblLongitude");
    outputs_[4] = place->AddRow("Latitude", "lblLatitude");
    outputs_[2] = place->AddRow("Right ascension", "lblRA");
    outputs_[3] = place->AddRow("Declination", "lblDec");
    outputs_[5] = place->AddRow("Right ascension (rounded)", "lblRA2");
    outputs_[6] = place->AddRow("Declination (rounded)", "lblDec2");
    outputs_[1] = place->AddRow("Distance (km)", "lblDistance");
    outputs_[7] = place->AddRow("Apparent diameter", "lblDiameter");
    outputs_[11] = place->AddRow("Semi-diameter", "lblSemiDiameter");
    outputs_[10] = place->AddRow("Altitude (degrees)", "lblAltitude");
    layout->addWidget(place);

    auto* day = new OutputGroup("Rise and set (local time)", this);
    outputs_[8] = day->AddRow("Moonrise", "lblMoonrise");
    outputs_[9] = day->AddRow("Moonset", "lblMoonset");
    layout->addWidget(day);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    cmdGoto = buttons->addButton("Goto", QDialogButtonBox::ActionRole);
    cmdGoto->setObjectName("cmdGoto");
    connect(cmdGoto, &QPushButton::clicked, this, [this] { GotoShown(goto_, ui_, raHours_, decDeg_); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    layout->addWidget(buttons);
}

void frmMoon::Open(const ObservingClock& clock)
{
    const MoonOutputs moon = CalcMoon(clock, computerClock_, faults_);
    raHours_ = moon.raHours;
    decDeg_ = moon.decDeg;
    lblWhen_->setText(QString::fromStdString(
        clock.UseRealTime == "Y" ? std::string("Now") : clock.PDate + " " + clock.Ptime));
    const std::string* texts[14] = {
        &moon.longitude, &moon.distance,     &moon.ra,          &moon.dec,       &moon.latitude,
        &moon.ra2,       &moon.dec2,         &moon.diameter,    &moon.moonrise,  &moon.moonset,
        &moon.altitude,  &moon.semiDiameter, &moon.illuminated, &moon.elongation};
    for (int i = 0; i < 14; ++i)
        SetText(outputs_[i], *texts[i]);

    const MoonPhaseIcon phase = CalcMoonPhase(clock, computerClock_, faults_);
    SetText(lblAge_, phase.icon.empty() ? std::string() : FixedText(phase.age, 1, 2));
    imgPhase_->setPixmap(
        phase.icon.empty()
            ? QPixmap()
            : QIcon(QString::fromStdString((programDir_ / phase.icon).string())).pixmap(64, 64));

    // The phases' times in the local zone of the clock, daylight time included.
    const NextLunarPhases next = NextMoonPhases(clock, computerClock_, faults_);
    const double zone = clock.PTz - (clock.PStd != "S" ? 1 : 0);
    const auto when = [&](double jd) {
        return std::isnan(jd) ? std::string() : PhaseTimeText(jd, zone, false, faults_);
    };
    SetText(lblNextNew_, when(next.newMoon));
    SetText(lblNextFull_, when(next.fullMoon));
    show();
    raise();
}

} // namespace astro::ui
