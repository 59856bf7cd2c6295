#include "app/TargetCommand.h"

#include "app/CliOptions.h"
#include "app/CliScope.h"
#include "app/GridCommand.h"
#include "astro/Text.h"
#include "scope/NearbySearch.h"
#include "scope/TelescopeStuff.h"

#include <iostream>
#include <optional>

namespace app {

namespace {

enum class Command {
    Ntos,
    Identify,
    Target,
};

struct TargetArgs
{
    std::optional<std::string> sql, plan, thenSql;
    bool build = false;
    int row = 1;
    bool noHome = false;
    std::optional<double> degrees;
    std::optional<bool> near;
    bool scope = false;
    bool enable = false;
};

std::string Parse(Command command, const std::vector<std::string>& words, TargetArgs& args)
{
    const char* name = command == Command::Ntos       ? "ntos"
                       : command == Command::Identify ? "identify"
                                                      : "target";
    int lists = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const auto value = [&]() -> std::optional<std::string> {
            if (i + 1 >= words.size())
                return std::nullopt;
            return words[++i];
        };
        const bool search = command != Command::Target;
        std::optional<std::string> given;
        if (word == "--sql" || word == "--plan" || word == "--row" || word == "--degrees" ||
            word == "--then-sql") {
            given = value();
            if (!given)
                return word + " needs a value";
        }
        if (word == "--sql") {
            args.sql = given;
            ++lists;
        } else if (word == "--plan") {
            args.plan = given;
            ++lists;
        } else if (word == "--build") {
            args.build = true;
            ++lists;
        } else if (word == "--row" && command != Command::Identify) {
            const std::optional<int> row = WholeNumber(*given);
            if (!row || *row < 1)
                return "--row takes a row number from 1, not \"" + *given + "\"";
            args.row = *row;
        } else if (word == "--degrees" && search) {
            args.degrees = astro::ParseNumber(*given);
            if (!args.degrees)
                return "--degrees takes a number, not \"" + *given + "\"";
        } else if ((word == "--near" || word == "--no-near") && search) {
            args.near = word == "--near";
        } else if (word == "--no-home" && command == Command::Ntos) {
            args.noHome = true;
        } else if (word == "--scope" && command == Command::Target) {
            args.scope = true;
        } else if (word == "--enable" && command == Command::Target) {
            args.enable = true;
        } else if (word == "--then-sql" && command == Command::Target) {
            args.thenSql = given;
        } else {
            return "unknown argument \"" + word + "\" of " + name;
        }
    }
    if (lists > 1)
        return "give one of --sql, --build and --plan";
    if (args.enable && !args.scope)
        return "--enable goes with --scope";
    return {};
}

// The telescope toggle of the command line: its caption only, the tools have no window here.
class CaptionMenu : public scope::TelescopeMenu
{
public:
    std::string Caption() const override { return caption_; }
    void SetCaption(const std::string& caption) override { caption_ = caption; }
    void SetToolEnabled(std::string_view, std::string_view, bool) override {}
    void Redraw() override {}

private:
    std::string caption_ = scope::kEnableCaption;
};

void PrintSearch(const scope::NearbySearch& search, std::ostream& out)
{
    out << search.status.RAtext << "\t" << search.status.DECtext << "\t" << search.status.Consttext
        << "\t" << FixedDecimals(scope::CentreRaHours(search.centre), 9) << "\t"
        << FixedDecimals(scope::CentreDecDeg(search.centre), 9) << "\n";
    out << "pln\tObject ID\tOther ID\tAng Sep\tCatalog\tMag\tConst\tType\tID\n";
    for (const scope::NearbyRow& row : search.rows)
        out << row.pln << "\t" << row.ObjectID << "\t" << row.OtherID << "\t" << row.AngSep << "\t"
            << row.Catalog << "\t" << row.Mag << "\t" << row.Const << "\t" << row.Type << "\t"
            << row.ID << "\n";
}

scope::SearchRequest Request(const spread::AppState& TMM, scope::SearchWindow window,
                             const TargetArgs& args)
{
    scope::SearchRequest request;
    request.window = window;
    request.degrees = args.degrees.value_or(TMM.prefs.gDegScope);
    request.checkAdjacent = args.near.value_or(TMM.prefs.gCAConst);
    return request;
}

int Status(const spread::AppState& TMM, std::size_t errorsBefore, bool done)
{
    return done && ErrorsShown(TMM.ui) == errorsBefore ? 0 : 1;
}

// Tab 0 loaded again after the switch: the query given, or what LOAD loaded.
int Reload(spread::AppState& TMM, const spread::LoadFormResult& start, const TargetArgs& args,
           const astro::Clock& computerClock)
{
    GridArgs grid;
    if (args.thenSql) {
        grid.sql = *args.thenSql;
    } else if (args.plan) {
        grid.plan = *args.plan;
    } else if (args.build) {
        grid.build = true;
    } else {
        grid.sql = args.sql.value_or(TMM.lastLoadSql);
        if (grid.sql.empty())
            return 1;
    }
    return LoadTab0(TMM, start, grid, computerClock);
}

} // namespace

std::string CheckNtosArgs(const std::vector<std::string>& args)
{
    TargetArgs parsed;
    return Parse(Command::Ntos, args, parsed);
}

std::string CheckIdentifyArgs(const std::vector<std::string>& args)
{
    TargetArgs parsed;
    return Parse(Command::Identify, args, parsed);
}

std::string CheckTargetArgs(const std::vector<std::string>& args)
{
    TargetArgs parsed;
    return Parse(Command::Target, args, parsed);
}

int RunNtosCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                   const std::vector<std::string>& words, std::ostream& out,
                   const astro::Clock& computerClock)
{
    TargetArgs args;
    if (!Parse(Command::Ntos, words, args).empty())
        return 2;
    if (LoadListRow(TMM, start, args.sql, args.build, args.plan, 0, computerClock) != 0)
        return 1;
    const std::size_t errorsBefore = ErrorsShown(TMM.ui);
    // An empty list has no row to set as home: the search then refuses.
    if (!args.noHome && TMM.grids[0].MaxRows() > 0) {
        if (LoadListRow(TMM, start, {}, false, {}, args.row, computerClock) != 0)
            return 1;
        spread::SetHome(TMM.target, TMM.grids[0], args.row, TMM.ui);
    }
    const scope::NearbySearch search =
        scope::IdentifyObjects(TMM, Request(TMM, scope::SearchWindow::NTOS, args));
    if (!search.ran)
        return 1;
    PrintSearch(search, out);
    out.flush();
    return Status(TMM, errorsBefore, true);
}

int RunIdentifyCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                       const std::vector<std::string>& words, std::ostream& out,
                       const astro::Clock& computerClock)
{
    TargetArgs args;
    if (!Parse(Command::Identify, words, args).empty())
        return 2;
    CliScope cli(TMM, computerClock);
    if (LoadListRow(TMM, start, args.sql, args.build, args.plan, 0, computerClock) != 0)
        return 1;
    const std::size_t errorsBefore = ErrorsShown(TMM.ui);
    scope::SearchRequest request = Request(TMM, scope::SearchWindow::Identify, args);
    request.ReadScope = [&]() -> std::optional<std::pair<double, double>> {
        const std::optional<scope::ScopePosition> p =
            scope::ReadScopePositionAt(cli.context, scope::kPositionLocation);
        if (!p || !p->result)
            return std::nullopt;
        return std::pair{p->ra, p->dec};
    };
    const scope::NearbySearch search = scope::IdentifyObjects(TMM, request);
    if (!search.ran)
        return 1;
    PrintSearch(search, out);
    out.flush();
    return Status(TMM, errorsBefore, true);
}

int RunTargetCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                     const std::vector<std::string>& words, std::ostream& out,
                     const astro::Clock& computerClock)
{
    TargetArgs args;
    if (!Parse(Command::Target, words, args).empty())
        return 2;
    CliScope cli(TMM, computerClock);
    CaptionMenu menu;
    // The hooks reach this run's telescope and go with it.
    struct Unhook
    {
        spread::Targeting& target;
        ~Unhook()
        {
            target.ScopeEnabled = nullptr;
            target.ReadScope = nullptr;
        }
    } unhook{TMM.target};
    TMM.target.ScopeEnabled = [&menu] { return scope::IsTelescopeEnabled(menu); };
    TMM.target.ReadScope = [&]() -> std::optional<std::pair<double, double>> {
        const std::optional<scope::ScopePosition> p =
            scope::ReadScopePositionAt(cli.context, scope::kPositionLocation);
        if (!p || !p->result)
            return std::nullopt;
        return std::pair{p->ra, p->dec};
    };
    const int row = args.scope ? 0 : args.row;
    if (LoadListRow(TMM, start, args.sql, args.build, args.plan, row, computerClock) != 0)
        return 1;
    const std::size_t errorsBefore = ErrorsShown(TMM.ui);
    if (args.scope) {
        if (args.enable)
            scope::lx200enable(cli.context, menu);
    } else {
        spread::SetHome(TMM.target, TMM.grids[0], args.row, TMM.ui);
    }
    if (!spread::cmdTurn_Click(TMM.target, args.scope, TMM.ui))
        return 1;
    if (Reload(TMM, start, args, computerClock) != 0)
        return 1;
    const int printed = PrintGrid(TMM.grids[0], out);
    return printed != 0 ? 1 : Status(TMM, errorsBefore, true);
}

} // namespace app
