#pragma once
// The window of one planet: all of CalcPlanets' outputs for the observing clock and site, the
// planet's altitude, rise, transit and set, and cmdGoto for the telescope.

#include "astro/ObservingClock.h"
#include "astro/ui/OutputTable.h"

#include <QDialog>

#include <filesystem>
#include <functional>
#include <string>

class QLabel;
class QPushButton;

namespace services {
class UiPort;
}

namespace astro::ui {

// What the planet and summary windows read when they are shown: the port, the program folder,
// the observing clock and site of the settings at that moment, and the computer clock.
struct SolarContext
{
    services::UiPort& ui;
    std::filesystem::path programDir;
    std::function<astro::ObservingClock()> observingClock;
    const astro::Clock& computerClock;
};

class frmPlanets1 : public QDialog
{
public:
    frmPlanets1(SolarContext context, QWidget* parent = nullptr);

    // Computes planet (1 Mercury to 8 Pluto, captioned planetName, "MERCURY") for the clock of
    // this moment and shows the window. A fault of the computation is reported through the
    // port and leaves the values empty.
    void ShowPlanet(int planet, const std::string& planetName);

    QLabel* lblClock;
    QLabel* lblValue[16];
    QPushButton* cmdGoto;
    QPushButton* cmdClose;
    // What cmdGoto runs; unset: TelescopeNotConnected.
    void SetGoto(TelescopeGoto telescopeGoto) { goto_ = std::move(telescopeGoto); }

private:
    SolarContext context_;
    TelescopeGoto goto_;
    double raHours_ = 0; // the planet shown, for cmdGoto
    double decDeg_ = 0;
};

} // namespace astro::ui
