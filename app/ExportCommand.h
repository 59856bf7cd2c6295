#pragma once
// selvane-cli export: the export keys of the main window on tab 0.
//
//   export KIND FILE [--sql SQL | --build]
//
// Tab 0 is loaded as grid loads it (the start list, the given query, or the filter's), then the
// key's routine runs with FILE as the save dialog's answer ("" is a cancel). KIND: text (exso),
// excel (exportexcel), html (exporthtml), xml (exportsoxml), logxml (exportlogxml), logtext
// (mnuepld), skylist, obslist. Messages go to stderr as "[kind] title: text".
// Exit status: 0 when the export reached its end without a writer's fault (a cancel included),
// 1 on a fault or when the list could not be loaded, 2 on a usage error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <string>
#include <vector>

namespace app {

inline constexpr const char* ExportUsage =
    "usage: selvane-cli ... export text|excel|html|xml|logxml|logtext|skylist|obslist FILE "
    "[--sql SQL | --build]";

// The usage error of export's arguments, or empty.
std::string CheckExportArgs(const std::vector<std::string>& args);

int RunExportCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                     const std::vector<std::string>& args, const astro::Clock& computerClock);

} // namespace app
