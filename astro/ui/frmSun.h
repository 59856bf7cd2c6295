#pragma once
// The Sun window (key athesun): the Sun's place, size, rise and set, twilight and altitude for
// the observing clock and site, its transit and the hours of astronomical darkness, and Goto.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"
#include "astro/ui/OutputTable.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace services {
class UiPort;
}

namespace astro::ui {

class frmSun : public QDialog
{
public:
    // Given: ui, for cmdGoto's message; faults, where CalcSun's faults go; computerClock, the
    //   clock of real-time mode. All outlive the window.
    frmSun(services::UiPort& ui, FaultSink& faults, const Clock& computerClock,
           QWidget* parent = nullptr);

    // Computes the Sun for the clock and site and shows the window.
    void Open(const ObservingClock& clock);

    QPushButton* cmdGoto = nullptr;
    // What cmdGoto runs; unset: TelescopeNotConnected.
    void SetGoto(TelescopeGoto telescopeGoto) { goto_ = std::move(telescopeGoto); }

private:
    TelescopeGoto goto_;
    double raHours_ = 0; // the position shown, for cmdGoto
    double decDeg_ = 0;
    services::UiPort& ui_;
    FaultSink& faults_;
    const Clock& computerClock_;
    QLabel* lblWhen_ = nullptr;
    QLabel* outputs_[14] = {};
    QLabel* lblTransit_ = nullptr;
    QLabel* lblDark_ = nullptr;
};

} // namespace astro::ui
