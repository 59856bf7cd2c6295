#include "data/DatabaseFiles.h"

#include "data/Preferences.h"
#include "data/Schema.h"
#include "data/SettingsStore.h"
#include "services/Fault.h"
#include "services/UiPort.h"
#include "services/Vb.h"

#include <fcntl.h>
#include <unistd.h>

#include <QString>

#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

namespace data {

namespace fs = std::filesystem;

namespace {

// Undoes the octal escapes (\040 for a blank) of a mountinfo field.
std::string Unescape(const std::string& field)
{
    std::string out;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            const std::string digits = field.substr(i + 1, 3);
            if (digits.size() == 3 && digits.find_first_not_of("01234567") == std::string::npos) {
                out += static_cast<char>(std::stoi(digits, nullptr, 8));
                i += 3;
                continue;
            }
        }
        out += field[i];
    }
    return out;
}

bool HasOption(const std::string& options, const std::string& option)
{
    std::stringstream in(options);
    std::string item;
    while (std::getline(in, item, ','))
        if (item == option)
            return true;
    return false;
}

struct Mount
{
    std::string point;
    std::string type;
    bool readOnly = false;
};

// One entry per line of /proc/self/mountinfo: "id parent major:minor root point options
// [optional fields] - type source super-options".
std::vector<Mount> ParseMountInfo(const std::string& text)
{
    std::vector<Mount> mounts;
    std::stringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        std::stringstream in(line);
        std::vector<std::string> fields;
        for (std::string f; in >> f;)
            fields.push_back(f);
        size_t dash = 6;
        while (dash < fields.size() && fields[dash] != "-")
            ++dash;
        if (fields.size() < 6 || dash + 1 >= fields.size())
            continue;
        Mount m;
        m.point = Unescape(fields[4]);
        m.type = fields[dash + 1];
        const std::string super = dash + 3 < fields.size() ? fields[dash + 3] : "";
        m.readOnly = HasOption(fields[5], "ro") || HasOption(super, "ro");
        mounts.push_back(m);
    }
    return mounts;
}

bool StartsWith(const std::string& text, const std::string& prefix)
{
    return !prefix.empty() && text.compare(0, prefix.size(), prefix) == 0;
}

void SyncPath(const fs::path& path, bool directory)
{
    const int fd = ::open(path.c_str(), directory ? O_RDONLY | O_DIRECTORY : O_RDONLY);
    if (fd < 0)
        throw services::Fault("Cannot open '" + path.string() + "' to write it to the disk.",
                              "");
    const int rc = ::fsync(fd);
    ::close(fd);
    if (rc != 0)
        throw services::Fault("Cannot write '" + path.string() + "' to the disk.", "");
}

fs::path FolderOf(const fs::path& path)
{
    return path.parent_path().empty() ? fs::path(".") : path.parent_path();
}

bool SameFile(const fs::path& a, const fs::path& b)
{
    std::error_code ec;
    return fs::equivalent(a, b, ec) && !ec;
}

// The first column of the first row of a statement on a raw connection; empty for no row.
std::string FirstText(sqlite3* db, const std::string& sql)
{
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK)
        throw services::Fault(sqlite3_errmsg(db), "");
    const int rc = sqlite3_step(stmt);
    std::string text;
    if (rc == SQLITE_ROW && sqlite3_column_text(stmt, 0))
        text = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0));
    sqlite3_finalize(stmt);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE)
        throw services::Fault(sqlite3_errmsg(db), "");
    return text;
}

// Copies the main database of one connection into another in one step of SQLite's online
// backup, waiting while another connection holds a lock. Returns the failing code, or
// SQLITE_OK.
int CopyPages(sqlite3* to, sqlite3* from)
{
    sqlite3_backup* backup = sqlite3_backup_init(to, "main", from, "main");
    if (!backup)
        return sqlite3_errcode(to);
    int rc = SQLITE_OK;
    for (int tries = 0; tries < 100; ++tries) {
        rc = sqlite3_backup_step(backup, -1);
        if (rc != SQLITE_BUSY && rc != SQLITE_LOCKED)
            break;
        sqlite3_sleep(50);
    }
    const int finish = sqlite3_backup_finish(backup);
    return rc == SQLITE_DONE ? finish : rc;
}

// Writes a checked copy of the main database of source to path, on the disk but not yet under
// its final name. A failure removes what was written.
void WriteCopy(sqlite3* source, const fs::path& path)
{
    std::error_code ec;
    fs::remove(path, ec);
    fs::remove(path.string() + "-journal", ec);
    sqlite3* copy = nullptr;
    try {
        if (sqlite3_open_v2(path.c_str(), &copy, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                            nullptr) != SQLITE_OK)
            throw services::Fault("Cannot write '" + path.string() +
                                      "': " + (copy ? sqlite3_errmsg(copy) : "out of memory"),
                                  "");
        if (CopyPages(copy, source) != SQLITE_OK)
            throw services::Fault("Cannot write '" + path.string() + "': " + sqlite3_errmsg(copy),
                                  "");
        // The pages carry the source's journal mode; a copy is one file on its own.
        FirstText(copy, "PRAGMA journal_mode=DELETE");
        if (const std::string check = FirstText(copy, "PRAGMA quick_check"); check != "ok")
            throw services::Fault("The copy '" + path.string() + "' is damaged: " + check, "");
        if (sqlite3_close(copy) != SQLITE_OK)
            throw services::Fault("Cannot write '" + path.string() + "': " + sqlite3_errmsg(copy),
                                  "");
        copy = nullptr;
        SyncPath(path, false);
    } catch (...) {
        if (copy)
            sqlite3_close_v2(copy);
        fs::remove(path, ec);
        fs::remove(path.string() + "-journal", ec);
        throw;
    }
}

// Puts the finished file from in place of to by one rename, and writes the folder to the disk.
// A write-ahead log beside to belongs to the old file and would be applied to the new one: it
// means another program has it open.
void ReplaceByRename(const fs::path& from, const fs::path& to)
{
    std::error_code ec;
    const fs::path wal = to.string() + "-wal";
    if (fs::exists(wal, ec) && fs::file_size(wal, ec) > 0)
        throw services::Fault(
            "'" + to.string() + "' is in use by another program; it was left as it was.", "");
    fs::remove(wal, ec);
    fs::remove(to.string() + "-shm", ec);
    fs::rename(from, to, ec);
    if (ec)
        throw services::Fault("Cannot replace '" + to.string() + "': " + ec.message(), "");
    SyncPath(FolderOf(to), true);
}

// Takes a database file out of write-ahead mode, which folds its log into it and removes the
// log; false when another connection holds the file open.
bool LeaveWriteAheadMode(const fs::path& path)
{
    sqlite3* db = nullptr;
    bool alone = false;
    if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
        try {
            alone = FirstText(db, "PRAGMA journal_mode=DELETE") == "delete";
        } catch (const services::Fault&) {
            // A lock held elsewhere refuses the change.
        }
    }
    sqlite3_close_v2(db);
    return alone;
}

// The compaction shared by the object database and the logbook: a compact copy in db1.mdb,
// checked and written to the disk, then renamed over the original.
void CompactFile(const ProgramDir& dir, const fs::path& original,
                 const std::function<void()>& close, const std::function<void()>& reopen,
                 const CompactHook& hook)
{
    auto step = [&](CompactStep s) {
        if (hook)
            hook(s);
    };
    const fs::path target = dir.File(CompactTargetName);
    step(CompactStep::CloseHandle);
    close();
    bool reopened = false;
    try {
        step(CompactStep::DeleteTarget);
        std::error_code ec;
        fs::remove(target, ec);

        step(CompactStep::CopyCompact);
        {
            auto source = Database::Open(original, OpenOptions{.readOnly = true});
            sqlite3_stmt* stmt = nullptr;
            if (sqlite3_prepare_v2(source->Handle(), "VACUUM INTO ?", -1, &stmt, nullptr) !=
                SQLITE_OK)
                throw services::Fault(sqlite3_errmsg(source->Handle()), "");
            const std::string targetText = target.string();
            sqlite3_bind_text(stmt, 1, targetText.c_str(), -1, SQLITE_TRANSIENT);
            const int rc = sqlite3_step(stmt);
            sqlite3_finalize(stmt);
            if (rc != SQLITE_DONE)
                throw services::Fault(sqlite3_errmsg(source->Handle()), "");
        }

        step(CompactStep::SyncCopy);
        {
            auto copy = Database::Open(target, OpenOptions{.readOnly = true});
            Recordset check = copy->OpenRecordset("PRAGMA quick_check", Snapshot);
            if (check.Eof() || check.Fields(0).Text() != "ok")
                throw services::Fault("The compact copy '" + target.string() +
                                          "' is damaged; the original is left as it was.",
                                      "");
        }
        SyncPath(target, false);

        step(CompactStep::ReplaceOriginal);
        // A write-ahead log left beside the original belongs to it and would be applied to the
        // copy; its shared-memory file means another program may have the file open, and its
        // writes would go to the replaced file. Leaving write-ahead mode needs the file alone.
        const fs::path wal = original.string() + "-wal";
        if (fs::exists(original.string() + "-shm", ec) ||
            (fs::exists(wal, ec) && fs::file_size(wal, ec) > 0))
            if (!LeaveWriteAheadMode(original))
                throw services::Fault("'" + original.string() +
                                          "' is in use by another program; it was not compacted.",
                                      "");
        fs::remove(wal, ec);
        fs::remove(original.string() + "-shm", ec);
        fs::rename(target, original, ec);
        if (ec)
            throw services::Fault("Cannot replace '" + original.string() + "': " + ec.message(),
                                  "");
        SyncPath(FolderOf(original), true);

        step(CompactStep::Reopen);
        reopen();
        reopened = true;
    } catch (...) {
        if (!reopened) {
            try {
                reopen();
            } catch (...) {
                // The first failure is the one to report.
            }
        }
        throw;
    }
}

} // namespace

std::string ReadMountInfo()
{
    std::ifstream in("/proc/self/mountinfo");
    if (!in)
        throw services::Fault("Cannot read the mount table.", "");
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string FindCdDrive(services::UiPort& ui, const MountSource& mounts)
{
    try {
        for (const Mount& m : ParseMountInfo(mounts())) {
            if (!m.readOnly || (m.type != "iso9660" && m.type != "udf"))
                continue;
            std::string root = m.point;
            if (root.empty() || root.back() != '/')
                root += '/';
            std::error_code ec;
            if (fs::exists(fs::path(root) / ObjectDatabaseName, ec) ||
                fs::exists(fs::path(root) / "DSSImages" / ObjectDatabaseName, ec))
                return root;
        }
    } catch (...) {
        ui.ReportFault("BI_GetCDROMDrive failed: Unexpected error.", "TMM.FindCdDrive");
    }
    return {};
}

bool OpenObjectDatabase(services::UiPort& ui, Preferences& prefs, SettingsStore& store,
                        std::unique_ptr<Database>& objectDb, std::string* failure,
                        const MountSource& mounts)
{
    try {
        const std::string cd = FindCdDrive(ui, mounts);
        const bool onCd = StartsWith(prefs.cdDrive, cd);
        OpenOptions options;
        options.readOnly = onCd;
        options.exclusive = onCd;
        auto db = Database::Open(prefs.cdDrive, options);
        prefs.UseCd = onCd;
        objectDb = std::move(db);
        SavePreferences(prefs, store);
        return true;
    } catch (const std::exception& e) {
        if (failure)
            *failure = e.what();
        return false;
    }
}

void OpenTheDatabase(const ProgramDir& dir, std::unique_ptr<Database>& logbook,
                     std::string& logbookPath)
{
    const fs::path path = dir.File(LogbookName);
    const bool fresh = !fs::exists(path);
    OpenOptions options;
    options.wal = true;
    options.create = fresh;
    auto db = Database::Open(path, options);
    // Tables missing from a logbook of an earlier build are added; existing ones are kept.
    if (!db->ReadOnly())
        CreateSchema(db->Handle(), SchemaKind::Logbook);
    logbookPath = path.string();
    logbook = std::move(db);
}

void RebuildLink(Database& logbook, const std::string& cdDrive, bool useCd)
{
    if (logbook.IsAttached(LinkSchema)) {
        try {
            logbook.Detach(LinkSchema);
        } catch (const services::Fault&) {
            // A link that cannot be dropped stays as it was.
            return;
        }
    }
    std::error_code ec;
    if (cdDrive.empty() || !fs::is_regular_file(cdDrive, ec) || !CheckDatabaseFile(cdDrive).empty())
        return;
    try {
        logbook.Attach(cdDrive, LinkSchema, useCd);
    } catch (const services::Fault&) {
        // As the refresh of the earlier link did, a failure leaves the logbook without it.
    }
}

std::string CheckConvertLog(services::UiPort& ui, const ProgramDir& dir)
{
    const std::string current = LogbookName;
    std::ifstream in(dir.File(ConvertListName), std::ios::binary);
    if (!in) {
        ui.LogFault("File not found", "TMM.CheckConvertLog");
        return {};
    }
    std::stringstream text;
    text << in.rdbuf();
    std::error_code ec;
    for (const std::string& line : services::vb::SplitLines(text.str())) {
        for (const std::string& name : services::vb::ReadRecord(line)) {
            if (name.empty())
                continue;
            const QString wanted = QString::fromStdString(name);
            for (const auto& entry : fs::directory_iterator(dir.path, ec)) {
                const QString found = QString::fromStdString(entry.path().filename().string());
                if (found.compare(wanted, Qt::CaseInsensitive) == 0 &&
                    found.compare(QString::fromStdString(current), Qt::CaseInsensitive) != 0)
                    return entry.path().filename().string();
            }
        }
    }
    return {};
}

bool CompactSelvaneDatabase(services::UiPort& ui, const ProgramDir& dir, Preferences& prefs,
                            SettingsStore& store, std::unique_ptr<Database>& objectDb,
                            const MountSource& mounts, const CompactHook& hook)
{
    const std::string cd = FindCdDrive(ui, mounts);
    if (StartsWith(prefs.cdDrive, cd)) {
        ui.ShowMessage("You cannot compact the database since it resides on a CD-ROM drive.",
                       "INVALID OPERATION", "I");
        return false;
    }
    if (!ui.Ask("Have you made a backup of your Selvane database " + prefs.cdDrive +
                    "? You must answer YES to continue ",
                "Compact Database", true))
        return false;
    ui.ShowMessage("Selvane will now compact the currently selected database.  This operation "
                   "will only work if the database is located on your hard drive and will take "
                   "some time to complete.",
                   "Compact Database", "I");
    CompactFile(
        dir, prefs.cdDrive, [&] { objectDb.reset(); },
        [&] {
            std::string failure;
            if (!OpenObjectDatabase(ui, prefs, store, objectDb, &failure, mounts))
                throw services::Fault(failure, "");
        },
        hook);
    ui.ShowMessage("Your database has been compacted and repaired successfully.",
                   "Compact and Repair Database", "I");
    return true;
}

bool CompactSelvaneLogbook(services::UiPort& ui, const ProgramDir& dir,
                           std::unique_ptr<Database>& logbook, std::string& logbookPath,
                           const CompactHook& hook)
{
    const std::string path = logbookPath.empty() ? dir.Text(LogbookName) : logbookPath;
    if (!ui.Ask("Have you made a backup of your Selvane Logbook " + path +
                    "? You must answer YES to continue ",
                "Compact and Repair Logbook", true))
        return false;
    ui.ShowMessage("Selvane will now compact and repair your logbook.",
                   "Compact and Repair Logbook", "I");
    CompactFile(
        dir, path, [&] { logbook.reset(); },
        [&] { OpenTheDatabase(dir, logbook, logbookPath); }, hook);
    ui.ShowMessage("Your logbook has been compacted and repaired successfully.",
                   "Compact and Repair Logbook", "I");
    return true;
}

void BackupDatabase(Database& source, const fs::path& target)
{
    if (SameFile(source.Path(), target))
        throw services::Fault("'" + target.string() +
                                  "' is the database itself; a backup must go to another file.",
                              "");
    const fs::path partial = target.string() + ".partial";
    WriteCopy(source.Handle(), partial);
    try {
        ReplaceByRename(partial, target);
    } catch (...) {
        std::error_code ec;
        fs::remove(partial, ec);
        throw;
    }
}

std::unique_ptr<Database> OpenRestoreSource(const fs::path& source, const fs::path& logbookPath)
{
    if (SameFile(logbookPath, source))
        throw services::Fault(
            "'" + source.string() + "' is the logbook itself; there is nothing to restore.", "");
    std::error_code ec;
    if (fs::is_directory(source, ec))
        throw services::Fault("'" + source.string() + "' is a folder, not a logbook.", "");
    auto db = Database::Open(source, OpenOptions{.readOnly = true});
    if (FirstText(db->Handle(), "SELECT count(*) FROM sqlite_master WHERE type = 'table' AND "
                                "name = 'Logbook' COLLATE NOCASE") == "0")
        throw services::Fault(
            "'" + source.string() + "' is not a logbook: it holds no Logbook table.", "");
    try {
        FirstText(db->Handle(), "SELECT ObservationNumber, ObjectID, Catalog, DateObserved, "
                                "TimeObserved FROM Logbook LIMIT 0");
    } catch (const services::Fault& fault) {
        throw services::Fault("'" + source.string() +
                                  "' is not a logbook: its Logbook table lacks a field (" +
                                  fault.what() + ").",
                              "");
    }
    if (const std::string check = FirstText(db->Handle(), "PRAGMA quick_check"); check != "ok")
        throw services::Fault("'" + source.string() + "' is damaged: " + check, "");
    return db;
}

void RestoreDatabase(const ProgramDir& dir, std::unique_ptr<Database>& logbook,
                     std::string& logbookPath, const fs::path& source, const fs::path& keep)
{
    if (!logbook)
        throw services::Fault("The logbook is not open.", "");
    const fs::path path = logbook->Path();
    auto from = OpenRestoreSource(source, path);
    const fs::path keepWal = keep.string() + "-wal";
    std::error_code ec;
    if (fs::exists(keepWal, ec) && fs::file_size(keepWal, ec) > 0)
        throw services::Fault("'" + keep.string() +
                                  "' is in use by another program; the logbook was not restored.",
                              "");

    // The logbook as it stands is written beside keep and takes that name only after the
    // restore, so that a restore from the kept file itself reads it as it was.
    const fs::path keepPartial = keep.string() + ".partial";
    WriteCopy(logbook->Handle(), keepPartial);
    sqlite3* db = logbook->Handle();
    try {
        // Out of write-ahead mode the copy may change the page size; the rollback journal keeps
        // the one transaction whole. Another connection keeps the mode: the file is in use.
        std::string mode;
        try {
            mode = FirstText(db, "PRAGMA main.journal_mode=DELETE");
        } catch (const services::Fault&) {
            // A lock held elsewhere refuses the change; the mode left is judged below.
        }
        if (mode != "delete")
            throw services::Fault(
                "'" + path.string() + "' is in use by another program; it was not restored.", "");
        if (CopyPages(db, from->Handle()) != SQLITE_OK) {
            const std::string message = sqlite3_errmsg(db);
            throw services::Fault("Cannot restore '" + path.string() + "' from '" +
                                      source.string() + "': " + message,
                                  "");
        }
    } catch (...) {
        fs::remove(keepPartial, ec);
        try {
            FirstText(db, "PRAGMA main.journal_mode=WAL");
        } catch (const services::Fault&) {
            // Opening the logbook again sets the mode.
        }
        throw;
    }
    from.reset();
    logbook.reset();
    try {
        ReplaceByRename(keepPartial, keep);
    } catch (...) {
        fs::remove(keepPartial, ec);
        OpenTheDatabase(dir, logbook, logbookPath);
        throw;
    }
    OpenTheDatabase(dir, logbook, logbookPath);
}

} // namespace data
