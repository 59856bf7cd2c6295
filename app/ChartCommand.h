#pragma once
// selvane-cli chart: the chart commands without windows.
//
//   chart MODE [--sql SQL | --build | --plan FILE] [--row N] [--target D|C] [--png FILE]
//         [--pdf FILE] [--size WxH] [--mag M] [--objects FILE] [--calls FILE] [--chart-open]
//
// MODE: all (every row, centred on row 1), allsel (every row, centred on row N), sob (row N
// alone, with its selected-row info text), sc (a chart on row N, stars only), radec H D (a
// chart on a position in decimal hours and degrees), const ENTRY (the constellation of a list
// entry's first three characters), plot FILE [--type NN] (a plot file charted), print (the
// chart a report prints of row N: repChartFOV, ShowTelrad, ShowCircle, ShowMilky, ShowBW),
// finder ID CATALOGUE (the three-panel finder of a database object: 75, 15 and 3 degrees).
//
// Tab 0 is loaded as grid loads it (none of --sql, --build, --plan: the start list) and row N
// (default 1) is selected. --target: ChartTarget, "D" (default) the own chart, "C" the
// planetarium of the setting planetarium. --chart-open: a chart is open before the command.
// Own charts are drawn --size pixels (default 1200x900; a finder's panels side by side, each of
// that size) with the layers of chartlayers (chartstarsonly: stars,dso) and stars to --mag
// (else chartmag, else by the field); every chart closes before the command ends.
//
// Output: "Target\tRA\tDec\tField\tMag\tStars\tPlotted", then a line per chart: the target, the
// centre ("%.6f" hours, "%.5f" degrees, J2000), the field, the faintest star magnitude drawn
// ("%.2f"), the stars drawn and the PlotDSO calls (empty magnitude and stars for "C").
// --png: the sky alone; --pdf: a finder page with heading and legend. --objects: the things
// drawn, "Kind\tId\tName\tCode\tRA\tDec\tMag\tX\tY\tR". --calls: a line per chart call.
// Messages on stderr as "[kind] title: text".
//
// Exit status: 0 when the chart was made; 1 when the command stopped (a message, no such row,
// object or constellation, an output that cannot be written: no file is left); 2 on a usage
// error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* ChartUsage =
    "usage: selvane-cli ... chart MODE [--sql SQL | --build | --plan FILE] [--row N] "
    "[--target D|C] [--png FILE] [--pdf FILE] [--size WxH] [--mag M] [--objects FILE] "
    "[--calls FILE] [--chart-open]\n"
    "  MODE: all | allsel | sob | sc | radec H D | const ENTRY | plot FILE [--type NN] | print | "
    "finder ID CATALOGUE";

// The usage error of chart's arguments, or empty.
std::string CheckChartArgs(const std::vector<std::string>& args);

int RunChartCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                    const std::vector<std::string>& args, std::ostream& out,
                    const astro::Clock& computerClock);

} // namespace app
