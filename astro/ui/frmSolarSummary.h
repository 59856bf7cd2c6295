#pragma once
// The summary of the solar system for the observing clock and site: a table of the bodies
// with place, altitude, rise, transit, set, magnitude, size and illumination.

#include "astro/ui/frmPlanets1.h"

#include <QDialog>

class QLabel;
class QTableWidget;

namespace astro::ui {

class frmSolarSummary : public QDialog
{
public:
    frmSolarSummary(SolarContext context, QWidget* parent = nullptr);

    // Computes the table for the clock of this moment and shows the window.
    void Refresh();

    QLabel* lblClock;
    QTableWidget* grdSummary;
    QLabel* lblNight;
    QLabel* imgMoon;
    QLabel* lblMoon;

private:
    SolarContext context_;
};

} // namespace astro::ui
