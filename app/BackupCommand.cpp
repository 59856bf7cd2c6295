#include "app/BackupCommand.h"

#include "app/LogCommand.h"
#include "data/DatabaseFiles.h"
#include "logbook/Backup.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"

#include <filesystem>
#include <iostream>
#include <optional>

namespace app {

namespace fs = std::filesystem;

namespace {

struct Args
{
    std::vector<std::string> words; // the arguments but the answers
    std::vector<bool> answers;
    std::string error;
};

Args SplitAnswers(const std::vector<std::string>& all)
{
    Args a;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i] != "--answer") {
            a.words.push_back(all[i]);
            continue;
        }
        if (i + 1 >= all.size() || (all[i + 1] != "yes" && all[i + 1] != "no")) {
            a.error = "--answer takes yes or no";
            return a;
        }
        a.answers.push_back(all[++i] == "yes");
    }
    return a;
}

// The answers queued for the questions; a question left without one is answered No.
Args Prepare(spread::AppState& TMM, const std::vector<std::string>& all)
{
    Args a = SplitAnswers(all);
    QueueAnswers(TMM, a.answers);
    return a;
}

void Relink(spread::AppState& TMM)
{
    if (TMM.logbookDb)
        data::RebuildLink(*TMM.logbookDb, TMM.prefs.cdDrive, TMM.prefs.UseCd);
}

// The save dialogue's answer for a command-line argument, as the dialogue would return it: a
// folder takes the offered name, a name without an extension the default one. Empty when the
// dialogue is left with No to its question about replacing a file.
std::optional<std::string> DialogueAnswer(services::UiPort& ui, const std::string& arg,
                                          const std::string& offered)
{
    if (arg.empty())
        return arg;
    fs::path answer = arg;
    std::error_code ec;
    if (fs::is_directory(answer, ec))
        answer /= offered;
    else if (!answer.has_extension())
        answer += ".mdb";
    if (fs::exists(answer, ec) &&
        !ui.Ask(answer.filename().string() + " already exists.  Do you want to replace it?",
                logbook::BackupDialogTitle, true))
        return std::nullopt;
    return answer.string();
}

} // namespace

std::string CheckBackupArgs(const std::vector<std::string>& args)
{
    const Args a = SplitAnswers(args);
    if (!a.error.empty())
        return a.error;
    bool automatic = false;
    int files = 0;
    for (const std::string& word : a.words) {
        if (word == "--auto")
            automatic = true;
        else if (word.starts_with("--"))
            return "unknown option \"" + word + "\" of backup";
        else
            ++files;
    }
    if (files > 1)
        return "backup takes one FILE or DIR";
    if (automatic && files > 0)
        return "backup --auto takes no FILE";
    return {};
}

std::string CheckRestoreArgs(const std::vector<std::string>& args)
{
    const Args a = SplitAnswers(args);
    if (!a.error.empty())
        return a.error;
    if (a.words.size() != 1 || a.words[0].empty())
        return "restore needs one FILE";
    return {};
}

std::string CheckCompactArgs(const std::vector<std::string>& args)
{
    const Args a = SplitAnswers(args);
    if (!a.error.empty())
        return a.error;
    if (a.words.size() != 1 || (a.words[0] != "logbook" && a.words[0] != "database"))
        return "compact takes logbook or database";
    return {};
}

bool CompactLogbookCommand(spread::AppState& TMM)
{
    bool done = false;
    services::Trap(TMM.ui, "TMM.CompactSelvaneLogbook", [&] {
        try {
            done = data::CompactSelvaneLogbook(TMM.ui, TMM.dir, TMM.logbookDb, TMM.logbookPath);
        } catch (...) {
            Relink(TMM);
            throw;
        }
        Relink(TMM);
    });
    return done;
}

bool CompactDatabaseCommand(spread::AppState& TMM)
{
    bool done = false;
    services::Trap(TMM.ui, "TMM.CompactSelvaneDatabase", [&] {
        try {
            done = data::CompactSelvaneDatabase(TMM.ui, TMM.dir, TMM.prefs, TMM.settings,
                                                TMM.objectDb);
        } catch (...) {
            Relink(TMM);
            throw;
        }
        Relink(TMM);
    });
    return done;
}

bool RestoreLogbookCommand(spread::AppState& TMM, const std::string& source)
{
    bool done = false;
    services::Trap(TMM.ui, logbook::RestoreLocation, [&] {
        try {
            done = logbook::RestoreLog(TMM.ui, TMM.dir, TMM.logbookDb, TMM.logbookPath, source);
        } catch (...) {
            Relink(TMM);
            throw;
        }
        Relink(TMM);
    });
    return done;
}

int RunBackupCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out,
                     const astro::Clock& clock)
{
    const Args a = Prepare(TMM, args);
    if (!LogbookOpen(TMM))
        return 1;
    std::string written;
    bool ran = false;
    if (!a.words.empty() && a.words[0] == "--auto") {
        ran = services::Trap(TMM.ui, "frmMainScreen.CloseApplication", [&] {
            written = logbook::AutoBackupLog(TMM.ui, *TMM.logbookDb, TMM.prefs);
        });
    } else {
        const astro::LocalDateTime now = clock.Now();
        const QDate today(now.year, now.month, now.day);
        const std::string offered = logbook::BackupFileName(today);
        const auto answer = DialogueAnswer(TMM.ui, a.words.empty() ? offered : a.words[0], offered);
        if (!answer)
            return 1;
        if (auto* scripted = dynamic_cast<services::ScriptedUiPort*>(&TMM.ui))
            scripted->fileAnswers.assign(1, *answer);
        ran = services::Trap(TMM.ui, logbook::BackupLocation,
                             [&] { written = logbook::BackupLog(TMM.ui, *TMM.logbookDb, today); });
    }
    if (!written.empty())
        out << written << "\n";
    out.flush();
    return ran ? 0 : 1;
}

int RunRestoreCommand(spread::AppState& TMM, const std::vector<std::string>& args)
{
    const Args a = Prepare(TMM, args);
    if (!LogbookOpen(TMM))
        return 1;
    return RestoreLogbookCommand(TMM, a.words.at(0)) ? 0 : 1;
}

int RunCompactCommand(spread::AppState& TMM, const std::vector<std::string>& args)
{
    const Args a = Prepare(TMM, args);
    if (a.words.at(0) == "logbook")
        return LogbookOpen(TMM) && CompactLogbookCommand(TMM) ? 0 : 1;
    return CompactDatabaseCommand(TMM) ? 0 : 1;
}

} // namespace app
