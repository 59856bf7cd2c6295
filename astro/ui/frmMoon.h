#pragma once
// The Moon window (key athemoon): the Moon's place, distance, size, phase, rise and set and
// altitude for the observing clock and site, its age with the phase icon of the status band,
// the next new and full moon with their local times, and Goto.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"
#include "astro/ui/OutputTable.h"

#include <QDialog>

#include <filesystem>

class QLabel;
class QPushButton;

namespace services {
class UiPort;
}

namespace astro::ui {

class frmMoon : public QDialog
{
public:
    // Given: ui, for cmdGoto's message; faults, where the routines' faults go; computerClock,
    //   the clock of real-time mode; programDir, the folder of the phase icons. All outlive
    //   the window.
    frmMoon(services::UiPort& ui, FaultSink& faults, const Clock& computerClock,
            std::filesystem::path programDir, QWidget* parent = nullptr);

    // Computes the Moon for the clock and site and shows the window.
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
    std::filesystem::path programDir_;
    QLabel* lblWhen_ = nullptr;
    QLabel* imgPhase_ = nullptr;
    QLabel* outputs_[14] = {};
    QLabel* lblAge_ = nullptr;
    QLabel* lblNextNew_ = nullptr;
    QLabel* lblNextFull_ = nullptr;
};

} // namespace astro::ui
