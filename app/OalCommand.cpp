#include "app/OalCommand.h"

#include "app/LogCommand.h"
#include "astro/ObservingClock.h"
#include "logbook/OalExchange.h"
#include "services/Fault.h"

#include <iostream>
#include <optional>

namespace app {

namespace {

struct OalArgs
{
    std::string sub, file;
    std::optional<std::string> sql, type;
    std::string error;
};

OalArgs ParseOalArgs(const std::vector<std::string>& args)
{
    OalArgs a;
    if (args.empty() || (args[0] != "export" && args[0] != "import")) {
        a.error =
            args.empty() ? "oal needs export or import" : "unknown oal command \"" + args[0] + "\"";
        return a;
    }
    a.sub = args[0];
    if (args.size() < 2 || args[1].empty()) {
        a.error = "oal " + a.sub + " needs a file";
        return a;
    }
    a.file = args[1];
    const std::string option = a.sub == "export" ? "--sql" : "--type";
    std::optional<std::string>& value = a.sub == "export" ? a.sql : a.type;
    for (std::size_t i = 2; i < args.size() && a.error.empty(); ++i) {
        if (args[i] != option)
            a.error = "unknown argument \"" + args[i] + "\" of oal " + a.sub;
        else if (i + 1 >= args.size() || args[i + 1].empty())
            a.error = option + " needs a value";
        else
            value = args[++i];
    }
    return a;
}

} // namespace

std::string CheckOalArgs(const std::vector<std::string>& args)
{
    return ParseOalArgs(args).error;
}

int RunOalCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out)
{
    const OalArgs a = ParseOalArgs(args);
    if (!a.error.empty())
        return 2;
    if (!LogbookOpen(TMM))
        return 1;
    const astro::SystemClock clock;
    data::CurrentObject current;
    logbook::LogContext context{
        TMM.ui, TMM.logbookDb.get(), TMM.objectDb.get(), TMM.prefs, TMM.dir, current, clock};
    int status = 1;
    const bool ran = services::Trap(TMM.ui, "selvane-cli.oal", [&] {
        if (a.sub == "export") {
            out << logbook::ExportOal(context, a.file, a.sql.value_or("")) << "\n";
            status = 0;
            return;
        }
        const auto result = logbook::ImportOal(context, a.file, a.type.value_or(TMM.prefs.Ltype));
        if (!result)
            return;
        for (long long n : result->numbers)
            out << n << "\n";
        status = 0;
    });
    out.flush();
    return ran ? status : 1;
}

} // namespace app
