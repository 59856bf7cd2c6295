#pragma once
// selvane-cli backup, restore and compact: the logbook's copies and the compaction of the two
// databases, as the main window's commands run them.
//
//   backup [FILE|DIR]          BackupLog with the save dialogue answered FILE (a DIR: the
//                              offered name inside it; no argument: the offered name in the
//                              working folder; "": cancelled); prints the path written. An
//                              existing file is replaced only after the dialogue's question.
//   backup --auto              the shut-down copy into AutoBackupPath; prints the path written,
//                              nothing when AutoBackupPath is empty
//   restore FILE               asks, keeps the logbook as LogbookBeforeRestore.mdb in the
//                              program folder and copies FILE into it
//   compact logbook|database   CompactSelvaneLogbook or CompactSelvaneDatabase
//   --answer yes|no (anywhere, repeated)   the answers to the questions, in order; none left: No
//
// Exit status: 0 when the routine reached its success message (for backup also a cancelled
// dialogue and a copy that was not due), 1 when it stopped (a No, a refusal, an error), 2 on a
// usage error.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"

#include <ostream>
#include <string>
#include <vector>

namespace app {

inline constexpr const char* BackupUsage =
    "usage: selvane-cli ... backup [FILE|DIR] | backup --auto   [--answer yes|no]...";
inline constexpr const char* RestoreUsage =
    "usage: selvane-cli ... restore FILE   [--answer yes|no]...";
inline constexpr const char* CompactUsage =
    "usage: selvane-cli ... compact logbook|database   [--answer yes|no]...";

// The usage error of each command's arguments, or empty.
std::string CheckBackupArgs(const std::vector<std::string>& args);
std::string CheckRestoreArgs(const std::vector<std::string>& args);
std::string CheckCompactArgs(const std::vector<std::string>& args);

int RunBackupCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out,
                     const astro::Clock& clock);
int RunRestoreCommand(spread::AppState& TMM, const std::vector<std::string>& args);
int RunCompactCommand(spread::AppState& TMM, const std::vector<std::string>& args);

// The commands of the window and of selvane-cli, each trapped under its routine's location.
// A logbook opened again takes the link to the object database again, and so does the
// logbook after the object database was replaced by its compact copy.
// Returned: true when the routine reached its success message.
bool CompactLogbookCommand(spread::AppState& TMM);
bool CompactDatabaseCommand(spread::AppState& TMM);
bool RestoreLogbookCommand(spread::AppState& TMM, const std::string& source);

} // namespace app
