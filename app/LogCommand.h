#pragma once
// selvane-cli log: the log entry window's routines without the window. Each command opens the
// form as the window opens for a new entry, visits the given fields in order (the focus
// arriving, the value typed, the focus leaving) and runs one command of the window.
//
//   log add FIELD=VALUE...                   cmdAdd_Click; prints the new number
//   log update N FIELD=VALUE...              the grid click on N, cmdUpdate_Click; prints N
//   log delete N                             the grid click on N, DeleteObservation; prints N
//   log show N                               the grid click on N; prints the form
//   log last [--add|--update] [FIELD=VALUE]...
//   log list [--type T] [--find PATTERN] [--object ID] [--filter-seen]
//   log click ROW [--sql SQL]                the spreadsheet's one-click log of tab 0's row
//   log fix                                  the rebuild of the observed flags
//   --answer yes|no (anywhere, repeated)     the answers to the questions, in order; none
//                                            left: No
//
// Exit status: 0 when the routine reached its success message (or ran, where it has none), 1
// when it stopped (a check, a No, an error), 2 on a usage error.

#include "astro/ObservingClock.h"
#include "logbook/LogEntryForm.h"
#include "spread/AppState.h"
#include "spread/LoadForm.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* LogUsage =
    "usage: selvane-cli ... log add FIELD=VALUE... | update N FIELD=VALUE... | delete N | "
    "show N | last [--add|--update] [FIELD=VALUE]... | list [--type T] [--find PATTERN] "
    "[--object ID] [--filter-seen] | click ROW [--sql SQL] | fix   [--answer yes|no]...";

// The entry window's grid as log list prints it: the captions, then one line per row, each
// cell escaped for one line.
void PrintLogGrid(const logbook::LogEntryForm& form, std::ostream& out);

// The start of every command on the logbook: the --answer replies queued for the port's
// questions (a question left without one is answered No).
void QueueAnswers(spread::AppState& TMM, const std::vector<bool>& answers);
// Returned: true when the logbook is open; else false, after "selvane-cli: the logbook is not
// open" on stderr.
bool LogbookOpen(const spread::AppState& TMM);

// The usage error of log's arguments, or empty.
std::string CheckLogArgs(const std::vector<std::string>& args);

int RunLogCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                  const std::vector<std::string>& args, std::ostream& out,
                  const astro::Clock& clock);

} // namespace app
