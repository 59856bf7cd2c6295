#include "logbook/Backup.h"

#include "data/DatabaseFiles.h"
#include "data/Preferences.h"
#include "services/Fault.h"
#include "services/UiPort.h"
#include "services/Vb.h"

#include <filesystem>

namespace logbook {

namespace fs = std::filesystem;
namespace vb = services::vb;

namespace {

// Keeps the busy window up for the length of a copy, whatever ends it.
class BusyWhile
{
public:
    BusyWhile(services::UiPort& ui, services::BusyKind kind) : ui_(ui) { ui_.Busy(kind); }
    ~BusyWhile() { ui_.EndBusy(); }
    BusyWhile(const BusyWhile&) = delete;
    BusyWhile& operator=(const BusyWhile&) = delete;

private:
    services::UiPort& ui_;
};

} // namespace

std::string BackupFileName(const QDate& today)
{
    return "B" + vb::Format(today.year(), "00") + vb::Format(today.month(), "00") +
           vb::Format(today.day(), "00") + ".mdb";
}

std::string BackupLog(services::UiPort& ui, data::Database& logbook, const QDate& today)
{
    const std::string file =
        ui.AskSaveFile(BackupDialogTitle, BackupFilter, "mdb", BackupFileName(today));
    if (file.empty() || file == BackupFilter)
        return {};
    {
        BusyWhile busy(ui, services::BusyKind::Working);
        data::BackupDatabase(logbook, file);
    }
    ui.ShowMessage("The logbook database has been backed up to " + file +
                       ".  If you need to restore it, please copy it into the Selvane 2003 "
                       "folder and rename it to " +
                       data::LogbookName,
                   BackedUpTitle, "I");
    return file;
}

bool AutoBackupDue(const data::Preferences& prefs)
{
    return !vb::Trim(prefs.AutoBackupPath).empty();
}

std::string AutoBackupLabel(const std::string& logbookName)
{
    return "Your backup will be named " + logbookName +
           " and will reside at the location you specified above.  You can restore your backup "
           "log at any time by copying it into the Selvane 2003 folder.";
}

bool SaveAutoBackupPath(services::UiPort& ui, data::Preferences& prefs, bool on,
                        const std::string& path)
{
    const std::string folder = vb::Trim(path);
    std::error_code ec;
    if (on && !folder.empty() && !fs::is_directory(folder, ec)) {
        ui.ShowMessage("The folder " + folder + " does not exist.  " + AutoBackupFolderPrompt + ".",
                       "Configure Auto Logbook Backup", "U");
        return false;
    }
    prefs.AutoBackupPath = on ? folder : "";
    return true;
}

std::string AutoBackupLog(services::UiPort& ui, data::Database& logbook,
                          const data::Preferences& prefs)
{
    if (!AutoBackupDue(prefs))
        return {};
    const fs::path folder = vb::Trim(prefs.AutoBackupPath);
    std::error_code ec;
    if (!fs::is_directory(folder, ec))
        throw services::Fault("The backup folder '" + folder.string() +
                                  "' does not exist; the logbook was not copied.",
                              "");
    const fs::path target = folder / logbook.Path().filename();
    BusyWhile busy(ui, services::BusyKind::Saving);
    data::BackupDatabase(logbook, target);
    return target.string();
}

bool RestoreLog(services::UiPort& ui, const data::ProgramDir& dir,
                std::unique_ptr<data::Database>& logbook, std::string& logbookPath,
                const std::string& source)
{
    // A file that cannot take the logbook's place is refused before the question.
    if (!logbook)
        throw services::Fault("The logbook is not open.", "");
    data::OpenRestoreSource(source, logbook->Path());
    const std::string keep = dir.Text(data::BeforeRestoreName);
    if (!ui.Ask("Your logbook will be replaced by the backup " + source +
                    ".  The logbook as it stands now will be kept as " + keep +
                    ".  Do you want to continue?",
                RestoreTitle, true))
        return false;
    {
        BusyWhile busy(ui, services::BusyKind::Working);
        data::RestoreDatabase(dir, logbook, logbookPath, source, keep);
    }
    ui.ShowMessage("Your logbook has been restored from " + source +
                       ".  The logbook it replaced was kept as " + keep + ".",
                   RestoredTitle, "I");
    return true;
}

} // namespace logbook
