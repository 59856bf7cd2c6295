#include "app/GridCommand.h"

#include "data/ObjectFilter.h"
#include "services/Fault.h"
#include "spread/FormatSpreadsheet.h"
#include "spread/LoadTheGrid.h"
#include "spread/Plans.h"

#include <iostream>

namespace app {

int PrintGrid(spread::Grid& grid, std::ostream& out)
{
    // A list without rows is never formatted; its headers are still those of a format.
    if (grid.Header(1).empty())
        spread::FormatSpreadsheet(grid, 0, false, {});
    std::string line;
    for (int row = 0; row <= grid.MaxRows(); ++row) {
        line.clear();
        for (int col = 1; col <= spread::kGridCols; ++col) {
            if (col > 1)
                line += '\t';
            line += row == 0 ? std::string_view(grid.Header(col)) : grid.Text(row, col);
        }
        line += '\n';
        out << line;
    }
    out.flush();
    return out ? 0 : 1;
}

GridArgs ParseGridArgs(const std::vector<std::string>& args)
{
    GridArgs g;
    for (std::size_t i = 0; i < args.size() && g.error.empty(); ++i) {
        const std::string& a = args[i];
        if (a == "--sql") {
            if (i + 1 >= args.size())
                g.error = "--sql needs a query";
            else
                g.sql = args[++i];
            if (g.error.empty() && g.sql.empty())
                g.error = "--sql needs a query";
        } else if (a == "--build")
            g.build = true;
        else if (a == "--count")
            g.count = true;
        else
            g.error = "unknown argument \"" + a + "\" of grid";
    }
    if (g.error.empty() && g.build && !g.sql.empty())
        g.error = "--sql and --build exclude each other";
    return g;
}

int LoadTab0(spread::AppState& TMM, const spread::LoadFormResult& start, const GridArgs& args,
             const astro::Clock& computerClock)
{
    if (!start.objectDatabaseOpen)
        return 1;
    TMM.CurrTab = 0;
    if (!args.plan.empty()) {
        const spread::PlanIntoGrid opened =
            spread::OpenPlanIntoGrid(TMM, TMM.grids[0], TMM.plans[0], args.plan, computerClock);
        return opened.opened.opened && !opened.load.failed ? 0 : 1;
    }
    if (args.sql.empty() && !args.build)
        return start.startListLoaded ? 0 : 1;
    if (!args.sql.empty())
        TMM.SQL = args.sql;
    spread::GridLoad load;
    spread::LoadTheGrid(TMM, TMM.grids[0],
                        args.build ? spread::LoadMode::Build : spread::LoadMode::NoBuild, load,
                        computerClock);
    return load.failed ? 1 : 0;
}

int LoadListRow(spread::AppState& TMM, const spread::LoadFormResult& start,
                const std::optional<std::string>& sql, bool build,
                const std::optional<std::string>& plan, int row, const astro::Clock& computerClock)
{
    if (sql || build || plan) {
        GridArgs args;
        args.sql = sql.value_or("");
        args.build = build;
        args.plan = plan.value_or("");
        if (LoadTab0(TMM, start, args, computerClock) != 0)
            return 1;
    }
    TMM.CurrTab = 0;
    if (row > TMM.grids[0].MaxRows()) {
        std::cerr << "selvane-cli: no row " << row << " in the list\n";
        return 1;
    }
    return 0;
}

int RunGridCommand(spread::AppState& TMM, const spread::LoadFormResult& start, const GridArgs& args,
                   std::ostream& out, const astro::Clock& computerClock)
{
    if (!args.error.empty())
        return 2;
    if (LoadTab0(TMM, start, args, computerClock) != 0)
        return 1;
    spread::Grid& grid = TMM.grids[0];
    if (args.count) {
        out << grid.MaxRows() << "\n";
        return 0;
    }
    return PrintGrid(grid, out);
}

std::string CheckPlanArgs(const std::vector<std::string>& args)
{
    if (args.empty() || args[0].empty())
        return "plan needs a file";
    if (args.size() > 1)
        return "unknown argument \"" + args[1] + "\" of plan";
    return {};
}

std::string CheckSqlArgs(const std::vector<std::string>& args)
{
    return args.empty() ? std::string() : "unknown argument \"" + args[0] + "\" of sql";
}

int RunPlanCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                   const std::string& file, std::ostream& out, const astro::Clock& computerClock)
{
    if (!start.objectDatabaseOpen)
        return 1;
    TMM.CurrTab = 0;
    spread::Grid& grid = TMM.grids[0];
    const spread::PlanIntoGrid opened =
        spread::OpenPlanIntoGrid(TMM, grid, TMM.plans[0], file, computerClock);
    if (!opened.opened.opened || opened.load.failed)
        return 1;
    return PrintGrid(grid, out);
}

int RunSqlCommand(spread::AppState& TMM, const spread::LoadFormResult& start, std::ostream& out)
{
    if (!start.objectDatabaseOpen || !TMM.objectDb)
        return 1;
    std::string lines;
    if (!services::Trap(TMM.ui, "ctlSpread.BuildSQLSelectString", [&] {
            lines = data::SqlCommandLines(TMM.prefs, data::LoadFilterLookups(*TMM.objectDb));
        }))
        return 1;
    out << lines;
    out.flush();
    return out ? 0 : 1;
}

} // namespace app
