#pragma once
// Finding, opening, linking and compacting the database files of the program folder.
// Paths are POSIX paths; "removable read-only media" is a read-only ISO 9660 or UDF mount.

#include "data/Database.h"
#include "data/ProgramDir.h"

#include <functional>
#include <memory>
#include <string>

namespace services {
class UiPort;
}

namespace data {

class SettingsStore;
struct Preferences;

inline constexpr const char* ObjectDatabaseName = "SelvPro708000.mdb";
inline constexpr const char* LogbookName = "Logbook2003-1.mdb";
inline constexpr const char* CompactTargetName = "db1.mdb";
inline constexpr const char* ConvertListName = "convertlog.txt";
// Where a restore keeps the logbook it replaces, in the program folder.
inline constexpr const char* BeforeRestoreName = "LogbookBeforeRestore.mdb";

// The operating system's mount table as the text of /proc/self/mountinfo. Tests inject their
// own; the default reads the file.
using MountSource = std::function<std::string()>;
std::string ReadMountInfo();

// The mount point, ending in "/", of the first read-only optical file system that holds
// SelvPro708000.mdb in its root or in DSSImages/; empty when there is none.
// Status: a failure to read the mount table is reported through ui as
// "BI_GetCDROMDrive failed: Unexpected error." and gives the empty text.
std::string FindCdDrive(services::UiPort& ui, const MountSource& mounts = ReadMountInfo);

// Opens the object database at prefs.cdDrive: read-only and immutable when it lies on the
// media FindCdDrive finds (UseCd True), else shared for reading and writing (UseCd False).
// On success the handle replaces objectDb and every preference is saved, so the new UseCd is
// kept at once. Returns false, leaving objectDb untouched, when the file cannot be opened; the
// reason goes to *failure when given.
bool OpenObjectDatabase(services::UiPort& ui, Preferences& prefs, SettingsStore& store,
                        std::unique_ptr<Database>& objectDb, std::string* failure = nullptr,
                        const MountSource& mounts = ReadMountInfo);

// Opens the logbook, the program folder's Logbook2003-1.mdb, for reading and writing, in WAL
// mode with full synchronous commits; a missing logbook is created empty. Keeps the path in
// logbookPath.
// Status: throws services::Fault when the file cannot be opened; logbook is then untouched.
void OpenTheDatabase(const ProgramDir& dir, std::unique_ptr<Database>& logbook,
                     std::string& logbookPath);

// Makes SelvaneTable (and the object database's other tables) reachable on the logbook
// connection by attaching the file named by cdDrive, read-only. A missing or unreadable file
// leaves the logbook without the link, silently; the earlier link is dropped first.
void RebuildLink(Database& logbook, const std::string& cdDrive, bool useCd);

// Reads convertlog.txt value by value; returns the first name that exists in the program folder
// (compared without regard to case) and is not the current logbook, else the empty text.
// Status: a missing list is written to the error log under "TMM.CheckConvertLog" only.
std::string CheckConvertLog(services::UiPort& ui, const ProgramDir& dir);

// The steps of a compaction, in order, for tests that make one of them fail.
enum class CompactStep
{
    CloseHandle,
    DeleteTarget,
    CopyCompact,
    SyncCopy,
    ReplaceOriginal,
    Reopen,
};
// Called before each step; a throw stops the compaction there.
using CompactHook = std::function<void(CompactStep)>;

// Compacts the object database at prefs.cdDrive through db1.mdb in the program folder, after the
// question and notices of the command. The compact copy replaces the original by an atomic
// rename, so a failure at any step leaves the original file, whole, under its name; the handle
// is opened again in every case.
// Returned: true when compacted; false when it stopped at the media test or the question.
// Status: throws services::Fault on a failure, after reopening.
bool CompactSelvaneDatabase(services::UiPort& ui, const ProgramDir& dir, Preferences& prefs,
                            SettingsStore& store, std::unique_ptr<Database>& objectDb,
                            const MountSource& mounts = ReadMountInfo,
                            const CompactHook& hook = {});

// The same for the logbook at logbookPath, without the media test.
bool CompactSelvaneLogbook(services::UiPort& ui, const ProgramDir& dir,
                           std::unique_ptr<Database>& logbook, std::string& logbookPath,
                           const CompactHook& hook = {});

// Writes a copy of the open database's main file to target, whole or not at all: the copy is
// made by SQLite's online backup into target's name with ".partial" added, checked, written
// to the disk with its folder, then renamed over target. The copy keeps no write-ahead log.
// Status: throws services::Fault naming target when it is the database itself, when the copy
// fails or cannot be written; target is then as it was and no partial file is left.
void BackupDatabase(Database& source, const std::filesystem::path& target);

// The checks a file passes before it may replace the logbook at logbookPath: another file than
// the logbook, SQLite 3, whole, with a Logbook table. Returns the open file, read-only.
// Status: throws services::Fault with a message naming the file.
std::unique_ptr<Database> OpenRestoreSource(const std::filesystem::path& source,
                                            const std::filesystem::path& logbookPath);

// Replaces the whole content of the open logbook by the file source, through SQLite's online
// backup in one transaction, so that a crash at any moment leaves exactly the old or exactly
// the new content. The logbook is copied to keep first (BackupDatabase), and the handle is
// opened again afterwards (OpenTheDatabase: schema brought up to date, write-ahead log).
// Status: throws services::Fault when source fails OpenRestoreSource, is the logbook itself,
// or the logbook is in use by another program; the logbook is then untouched and open.
void RestoreDatabase(const ProgramDir& dir, std::unique_ptr<Database>& logbook,
                     std::string& logbookPath, const std::filesystem::path& source,
                     const std::filesystem::path& keep);

} // namespace data
