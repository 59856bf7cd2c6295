#pragma once
// What the chart tests share: a GUI application for the font database that text drawing needs
// (the offscreen platform in the tests), and the chart data the build makes.

#include "charts/ChartSky.h"

#include <QCoreApplication>
#include <QGuiApplication>

namespace chartfixtures {

// Makes the GUI application unless one already runs (another file's tests made it).
inline void EnsureGuiApplication()
{
    if (QCoreApplication::instance())
        return;
    static int argc = 1;
    static char name[] = "selvane_tests";
    static char* argv[] = {name, nullptr};
    static QGuiApplication app(argc, argv);
}

#ifdef SELVANE_RESOURCE_DIR
// The chart data the build makes from kstars-data, read once.
inline const charts::ChartSky& ShippedSky()
{
    static const charts::ChartSky sky = charts::LoadChartSky(SELVANE_RESOURCE_DIR);
    return sky;
}
#endif

} // namespace chartfixtures
