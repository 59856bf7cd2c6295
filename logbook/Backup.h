#pragma once
// Copies of the logbook: the backup to a file the user names, the automatic copy made at
// shut-down, and the restore of a backup into the open logbook. Every copy is whole or absent
// (data::BackupDatabase); the logbook itself is never renamed or overwritten by a file copy.

#include "data/Database.h"
#include "data/ProgramDir.h"

#include <QDate>

#include <memory>
#include <string>

namespace services {
class UiPort;
}
namespace data {
struct Preferences;
}

namespace logbook {

inline constexpr const char* BackupDialogTitle = "Enter a Location to Backup your Logbook File";
inline constexpr const char* BackupFilter = "*.mdb";
inline constexpr const char* BackedUpTitle = "Logbook Backed Up!";
inline constexpr const char* BackupLocation = "ctlSpread.BackupLog";
inline constexpr const char* AutoBackupFolderPrompt =
    "Please select a path for the Logbook Backup to reside";
inline constexpr const char* RestoreTitle = "Restore Logbook";
inline constexpr const char* RestoredTitle = "Logbook Restored!";
inline constexpr const char* RestoreLocation = "ctlSpread.RestoreLog";

// The name a backup is offered under: "B", then today's year, month and day, each with the
// pattern "00", then ".mdb" (B20030214.mdb).
std::string BackupFileName(const QDate& today);

// BackupLog: the save dialogue offers BackupFileName(today); the logbook is copied to the
// chosen file and the notice "Logbook Backed Up!" says where it went.
// Returned: the path written; empty when the dialogue was cancelled (an empty answer or the
//   bare filter).
// Status: throws services::Fault when the copy fails; the chosen file is then as it was.
std::string BackupLog(services::UiPort& ui, data::Database& logbook, const QDate& today);

// The automatic copy is due at every shut-down while AutoBackupPath names a folder.
bool AutoBackupDue(const data::Preferences& prefs);

// The text under the folder of frmAutoBackup, for the logbook's file name.
std::string AutoBackupLabel(const std::string& logbookName);

// cmdOK of frmAutoBackup: with Check1 on, the folder of txtPath becomes AutoBackupPath; with
// it off (or a blank box) AutoBackupPath is emptied and the automatic copy stops.
// Returned: false, after a "Data Entry Error" message and with prefs unchanged, when the box
//   names no existing folder.
bool SaveAutoBackupPath(services::UiPort& ui, data::Preferences& prefs, bool on,
                        const std::string& path);

// The shut-down copy: when it is due, the logbook goes into the AutoBackupPath folder under
// its own file name, with the busy window's "Saving" texts up meanwhile.
// Returned: the path written; empty when the copy was not due.
// Status: throws services::Fault when the copy fails (a missing folder, a full disk).
std::string AutoBackupLog(services::UiPort& ui, data::Database& logbook,
                          const data::Preferences& prefs);

// Replaces the logbook by the backup source after the question of RestoreTitle: the logbook
// as it stood is kept as LogbookBeforeRestore.mdb in the program folder, the backup's content
// is copied into the open logbook in one transaction, and the handle is opened again.
// Returned: true when restored; false when the question was not answered Yes.
// Status: throws services::Fault, the logbook untouched, when source is no logbook (missing,
//   not an SQLite file, no Logbook table, damaged) or the logbook is in use elsewhere.
bool RestoreLog(services::UiPort& ui, const data::ProgramDir& dir,
                std::unique_ptr<data::Database>& logbook, std::string& logbookPath,
                const std::string& source);

} // namespace logbook
