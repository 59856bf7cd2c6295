#include "app/ExportCommand.h"

#include "app/GridCommand.h"
#include "services/ScriptedUiPort.h"
#include "spread/Export.h"

#include <functional>
#include <map>

namespace app {

namespace {

using ExportRoutine = std::function<bool(spread::AppState&, const astro::Clock&)>;

const std::map<std::string, ExportRoutine>& Routines()
{
    static const std::map<std::string, ExportRoutine> routines{
        {"text", [](spread::AppState& TMM, const astro::Clock&) { return spread::IDN2(TMM); }},
        {"excel", [](spread::AppState& TMM,
                     const astro::Clock&) { return spread::Export(TMM, "EXCEL", ""); }},
        {"html", [](spread::AppState& TMM,
                    const astro::Clock&) { return spread::Export(TMM, "HTML", ""); }},
        {"xml", [](spread::AppState& TMM, const astro::Clock&) { return spread::IDN3(TMM); }},
        {"logxml",
         [](spread::AppState& TMM, const astro::Clock&) {
             return spread::Export(TMM, "XMLLOG", spread::LogExportSql);
         }},
        {"logtext",
         [](spread::AppState& TMM, const astro::Clock&) { return spread::mnuEpld_Click(TMM); }},
        {"skylist",
         [](spread::AppState& TMM, const astro::Clock&) { return spread::ExportSkyList(TMM); }},
        {"obslist",
         [](spread::AppState& TMM, const astro::Clock& clock) {
             return spread::ExportObservingList(TMM, clock);
         }},
    };
    return routines;
}

} // namespace

std::string CheckExportArgs(const std::vector<std::string>& args)
{
    if (args.empty())
        return "export needs a kind and a file";
    if (!Routines().count(args[0]))
        return "unknown export kind \"" + args[0] + "\"";
    if (args.size() < 2)
        return "export needs a file";
    const std::vector<std::string> rest(args.begin() + 2, args.end());
    for (const std::string& a : rest)
        if (a == "--count")
            return "unknown argument \"--count\" of export";
    return ParseGridArgs(rest).error;
}

int RunExportCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                     const std::vector<std::string>& args, const astro::Clock& computerClock)
{
    if (!CheckExportArgs(args).empty())
        return 2;
    const GridArgs grid = ParseGridArgs({args.begin() + 2, args.end()});
    if (LoadTab0(TMM, start, grid, computerClock) != 0)
        return 1;
    if (auto* scripted = dynamic_cast<services::ScriptedUiPort*>(&TMM.ui))
        scripted->fileAnswers.assign(1, args[1]);
    return Routines().at(args[0])(TMM, computerClock) ? 0 : 1;
}

} // namespace app
