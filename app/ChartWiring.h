#pragma once
// The star charts on the main window: the program's own chart engine and the outside
// planetarium behind one ChartLink, the chart commands of the spreadsheet on their keys, and a
// chart window for every chart the own engine opens.
//
// Keys: chartsob / cdc_chartsob (the selected object), charts / cdc_charts / chartstoolbar
// (the whole tab, after the choice of engine when a planetarium program is found), mnuppppdef /
// cdc_mnuppppdef (the whole tab centred on the selected row), mnusc (stars only), mnugotocon /
// cdc_mnugotocon (a constellation), mnuplote / cdc_mnuplote (the plot window), mnufinder (the
// three-panel finder of the selected row), plotscope and sslococ (the mount's position), plotos
// and cscb (the selected object on the own chart).

#include "app/ScopeWiring.h"
#include "astro/ObservingClock.h"

#include <filesystem>
#include <functional>

namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
struct ChartContext;
} // namespace spread

namespace app {

// Gives the main window its chart commands.
// Given: window, whose dispatcher takes the keys and which owns the chart windows; state, the
//   program folder (DSO.DAT, SelvaneObs.txt), the grids and the setting `planetarium`; ui, the
//   program's port; clock, the computer clock; scope, the telescope's wiring; resources, the
//   folder of the chart data, read on the first chart. All outlive the window.
// Returned: the chart context of the current tab and its selected row, for the reports that
//   draw charts; it lives as long as the window.
// Notes: a DSO.DAT left in the program folder by an earlier run is deleted (errors ignored), so
//   that the first chart is not refused as a second one.
using ChartContextSource = std::function<spread::ChartContext()>;
ChartContextSource WireCharts(spread::frmMainScreen& window, spread::AppState& state,
                              services::UiPort& ui, const astro::Clock& clock,
                              const ScopeWiring& scope, const std::filesystem::path& resources);

} // namespace app
