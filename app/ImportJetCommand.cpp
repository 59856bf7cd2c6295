#include "app/ImportJetCommand.h"

#include "app/LogCommand.h"
#include "astro/ObservingClock.h"
#include "logbook/JetImport.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"

#include <iostream>
#include <optional>

namespace app {

namespace {

struct ImportJetArgs
{
    std::string file;
    std::optional<std::string> type;
    std::vector<bool> answers;
    std::string error;
};

ImportJetArgs ParseImportJetArgs(const std::vector<std::string>& args)
{
    ImportJetArgs a;
    for (std::size_t i = 0; i < args.size() && a.error.empty(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--answer") {
            if (i + 1 >= args.size() || (args[i + 1] != "yes" && args[i + 1] != "no"))
                a.error = "--answer takes yes or no";
            else
                a.answers.push_back(args[++i] == "yes");
        } else if (arg == "--type") {
            if (i + 1 >= args.size() || args[i + 1].empty())
                a.error = "--type needs a log type";
            else
                a.type = args[++i];
        } else if (arg.size() > 2 && arg.rfind("--", 0) == 0) {
            a.error = "unknown argument \"" + arg + "\" of import-jet";
        } else if (!a.file.empty()) {
            a.error = "import-jet takes one file";
        } else {
            a.file = arg;
        }
    }
    if (a.error.empty() && a.file.empty())
        a.error = "import-jet needs a file";
    return a;
}

} // namespace

std::string CheckImportJetArgs(const std::vector<std::string>& args)
{
    return ParseImportJetArgs(args).error;
}

int RunImportJetCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                        std::ostream& out)
{
    const ImportJetArgs a = ParseImportJetArgs(args);
    if (!a.error.empty())
        return 2;
    QueueAnswers(TMM, a.answers);
    if (!LogbookOpen(TMM))
        return 1;
    const astro::SystemClock clock;
    data::CurrentObject current;
    logbook::LogContext context{
        TMM.ui, TMM.logbookDb.get(), TMM.objectDb.get(), TMM.prefs, TMM.dir, current, clock};
    logbook::ImportResult result;
    // The whole file is read before the logbook is touched, and the import is one transaction:
    // a failure anywhere leaves the logbook as it was.
    const bool ran = services::Trap(TMM.ui, logbook::ImportJetLocation, [&] {
        const logbook::ImportBatch batch = logbook::JetBatch(logbook::ReadJetFile(a.file), a.file);
        result = logbook::ImportEntries(context, batch, a.type.value_or(TMM.prefs.Ltype));
    });
    if (!ran)
        return 1;
    for (const long long n : result.numbers)
        out << n << "\n";
    out.flush();
    std::string text =
        std::to_string(result.numbers.size()) + " observations imported from " + a.file;
    if (result.skipped > 0)
        text += "; " + std::to_string(result.skipped) +
                " already in the logbook (same object, catalogue, date and time) skipped";
    TMM.ui.ShowMessage(text + ".", "Import Logbook", "I");
    return 0;
}

} // namespace app
