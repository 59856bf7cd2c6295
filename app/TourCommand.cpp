#include "app/TourCommand.h"

#include "app/GridCommand.h"
#include "scope/AcpScript.h"
#include "scope/Tour.h"

#include <optional>

namespace app {

namespace {

struct TourArgs
{
    std::optional<std::string> sql, plan;
    bool build = false;
    std::optional<std::string> file;
    scope::TourOptions options;
    std::string error;
};

// Reads LOAD and, for tour, its own options.
TourArgs ParseArgs(const std::vector<std::string>& args, bool tour)
{
    TourArgs t;
    const std::string command = tour ? "tour" : "acpscript";
    int lists = 0;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--build") {
            t.build = true;
            ++lists;
            continue;
        }
        const bool known =
            a == "--sql" || a == "--plan" ||
            (tour && (a == "--file" || a == "--title" || a == "--intro" || a == "--mode"));
        if (!known) {
            t.error = "unknown argument \"" + a + "\" of " + command;
            return t;
        }
        if (i + 1 >= args.size()) {
            t.error = a + " needs a value";
            return t;
        }
        const std::string& value = args[++i];
        if (a == "--sql" || a == "--plan") {
            if (value.empty()) {
                t.error = a + " needs a value";
                return t;
            }
            (a == "--sql" ? t.sql : t.plan) = value;
            ++lists;
        } else if (a == "--file") {
            if (value.empty()) {
                t.error = "--file needs a file name";
                return t;
            }
            t.file = value;
        } else if (a == "--title") {
            t.options.title = value;
        } else if (a == "--intro") {
            t.options.intro = value;
        } else if (value == "0" || value == "1") {
            t.options.mode =
                value == "0" ? scope::TourMode::MaximizeMemory : scope::TourMode::IncludeDetails;
        } else {
            t.error = "--mode takes 0 or 1, not \"" + value + "\"";
            return t;
        }
    }
    if (lists > 1)
        t.error = "give one of --sql, --build and --plan";
    return t;
}

} // namespace

std::string CheckTourArgs(const std::vector<std::string>& args)
{
    return ParseArgs(args, true).error;
}

std::string CheckAcpScriptArgs(const std::vector<std::string>& args)
{
    return ParseArgs(args, false).error;
}

int RunTourCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                   const std::vector<std::string>& args, std::ostream& out,
                   const astro::Clock& computerClock)
{
    const TourArgs t = ParseArgs(args, true);
    if (!t.error.empty())
        return 2;
    if (LoadListRow(TMM, start, t.sql, t.build, t.plan, 0, computerClock) != 0)
        return 1;
    const std::filesystem::path file =
        t.file ? std::filesystem::path(*t.file) : TMM.dir.File(scope::kTourFileName);
    const scope::TourResult result = scope::BuildTour(TMM.ui, TMM.grids[0], file, t.options);
    if (!result.written)
        return 1;
    out << "File\tObjects\n" << file.string() << "\t" << result.objects << "\n";
    out.flush();
    return out ? 0 : 1;
}

int RunAcpScriptCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                        const std::vector<std::string>& args, std::ostream& out,
                        const astro::Clock& computerClock)
{
    const TourArgs t = ParseArgs(args, false);
    if (!t.error.empty())
        return 2;
    if (LoadListRow(TMM, start, t.sql, t.build, t.plan, 0, computerClock) != 0)
        return 1;
    const scope::AcpScriptResult result = scope::CreateAcpScript(TMM.ui, TMM.prefs.ACPPath, TMM.dir,
                                                                 &TMM.grids[0], TMM.objectDb.get());
    if (!result.written)
        return 1;
    out << "File\n" << result.sfl.string() << "\n" << result.vbs.string() << "\n";
    out.flush();
    return out ? 0 : 1;
}

} // namespace app
