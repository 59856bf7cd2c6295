#pragma once
// selvane-cli report: the report window's reports written to PDF files.
//
//   report NUMBER --pdf FILE [--sql SQL | --build | --plan FILE] [--row N] [--landscape]
//          [--paper letter|a4] [--answer yes|no]... [--input TEXT]... [--chart-open]
//          [--obs-plan FILE] [--sort CAPTION] [--notes-sql SQL] [--object-id ID] [--text FILE]
//          [--entry N]
//   report quick --pdf FILE [LIST] [--paper letter|a4]
//
// Tab 0 is loaded as grid loads it (none of --sql, --build, --plan: the start list) and row N
// (from 1, default 1) is current. The report window opens for NUMBER with the Landscape box
// set by --landscape and builds the report; the document goes to FILE on Letter paper unless
// --paper a4. Reports 15 and 16 take their chart options from the settings ShowCI, ShowBW,
// ShowTelrad, ShowMilky, ShowCircle and repChartFOV. --chart-open: a chart is open after the
// start. --obs-plan and --sort: the plan of report 151 (a name in the program folder or a path)
// and the caption of its sort box. --notes-sql: the log view's selection of reports 1111 and
// 1112 (default: the log view's query of all types). --object-id and --text (a file, plain or
// HTML): the title and text of reports 10, 11 and 1111's single note. --entry N: observation N
// open in the entry window (reports 17 to 20). "quick" is the quick printout of tab 0.
// Reports 90 and 900 to 903 print a chart window and are not made here.
//
// Questions are answered by --answer in order (none left: No), input boxes by --input (none
// left: empty). Output: "Report\tPages\tFile" and one line. Messages on stderr as
// "[kind] title: text", questions as "[?] title: question".
//
// Exit status: 0 when FILE was written; 1 when the report stopped (a message, no such row or
// observation, a database or file error: no FILE is left); 2 on a usage error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* ReportUsage =
    "usage: selvane-cli ... report NUMBER|quick --pdf FILE [--sql SQL | --build | --plan FILE] "
    "[--row N] [--landscape] [--paper letter|a4] [--answer yes|no]... [--input TEXT]... "
    "[--chart-open] [--obs-plan FILE] [--sort CAPTION] [--notes-sql SQL] [--object-id ID] "
    "[--text FILE] [--entry N]";

// The usage error of report's arguments, or empty.
std::string CheckReportArgs(const std::vector<std::string>& args);

int RunReportCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                     const std::vector<std::string>& args, std::ostream& out,
                     const astro::Clock& computerClock);

} // namespace app
