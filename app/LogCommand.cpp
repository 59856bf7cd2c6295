#include "app/LogCommand.h"

#include "logbook/LogEntryForm.h"
#include "logbook/ObservedFlag.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "services/Vb.h"
#include "spread/LoadTheGrid.h"
#include "spread/Plans.h"

#include <iostream>
#include <optional>

namespace app {

namespace {

using logbook::LogField;

struct LogArgs
{
    std::string sub;
    long long number = 0; // update, delete, show
    int row = 0;          // click
    std::vector<std::pair<LogField, std::string>> fields;
    bool add = false, update = false;              // last
    std::optional<std::string> type, find, object; // list
    bool filterSeen = false;
    std::string sql; // click
    std::vector<bool> answers;
    std::string error;
};

std::optional<long long> PositiveNumber(const std::string& text)
{
    if (text.empty() || text.size() > 12 ||
        text.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    const long long n = std::stoll(text);
    return n > 0 ? std::optional<long long>(n) : std::nullopt;
}

// FIELD=VALUE; a check box or the seen choice takes True or False.
std::string ParseField(const std::string& arg, LogArgs& a)
{
    const auto eq = arg.find('=');
    if (eq == std::string::npos || eq == 0)
        return "\"" + arg + "\" is not FIELD=VALUE";
    const std::string name = arg.substr(0, eq);
    const auto field = logbook::FindLogField(name);
    if (!field)
        return "unknown field \"" + name + "\"";
    const std::string value = arg.substr(eq + 1);
    if (logbook::NameOf(*field).kind == logbook::FieldKind::Check &&
        !services::vb::SameText(value, "True") && !services::vb::SameText(value, "False"))
        return name + " takes True or False";
    a.fields.emplace_back(*field, value);
    return {};
}

LogArgs ParseLogArgs(const std::vector<std::string>& all)
{
    LogArgs a;
    std::vector<std::string> args;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i] != "--answer") {
            args.push_back(all[i]);
            continue;
        }
        if (i + 1 >= all.size() || (all[i + 1] != "yes" && all[i + 1] != "no")) {
            a.error = "--answer takes yes or no";
            return a;
        }
        a.answers.push_back(all[++i] == "yes");
    }
    if (args.empty()) {
        a.error = "log needs a command";
        return a;
    }
    a.sub = args[0];
    std::size_t next = 1;
    auto needNumber = [&](const char* what) {
        if (next >= args.size() || !PositiveNumber(args[next])) {
            a.error = "log " + a.sub + " needs " + what;
            return false;
        }
        a.number = *PositiveNumber(args[next++]);
        return true;
    };
    auto rest = [&](auto&& each) {
        for (; next < args.size() && a.error.empty(); ++next)
            a.error = each(args[next]);
    };
    auto fields = [&](const std::string& arg) { return ParseField(arg, a); };
    auto nothing = [&](const std::string& arg) {
        return "unknown argument \"" + arg + "\" of log " + a.sub;
    };

    if (a.sub == "add") {
        rest(fields);
    } else if (a.sub == "update") {
        if (needNumber("an observation number"))
            rest(fields);
    } else if (a.sub == "delete" || a.sub == "show") {
        if (needNumber("an observation number"))
            rest(nothing);
    } else if (a.sub == "last") {
        rest([&](const std::string& arg) -> std::string {
            if (arg == "--add")
                a.add = true;
            else if (arg == "--update")
                a.update = true;
            else
                return ParseField(arg, a);
            return {};
        });
        if (a.error.empty() && a.add && a.update)
            a.error = "--add and --update exclude each other";
    } else if (a.sub == "list") {
        for (; next < args.size() && a.error.empty(); ++next) {
            const std::string& arg = args[next];
            std::optional<std::string>* target = arg == "--type"     ? &a.type
                                                 : arg == "--find"   ? &a.find
                                                 : arg == "--object" ? &a.object
                                                                     : nullptr;
            if (arg == "--filter-seen")
                a.filterSeen = true;
            else if (!target)
                a.error = nothing(arg);
            else if (next + 1 >= args.size())
                a.error = arg + " needs a value";
            else
                *target = args[++next];
        }
    } else if (a.sub == "click") {
        if (next >= args.size() || !PositiveNumber(args[next])) {
            a.error = "log click needs a row";
            return a;
        }
        a.row = static_cast<int>(*PositiveNumber(args[next++]));
        for (; next < args.size() && a.error.empty(); ++next) {
            if (args[next] == "--sql" && next + 1 < args.size() && !args[next + 1].empty())
                a.sql = args[++next];
            else
                a.error = args[next] == "--sql" ? "--sql needs a query" : nothing(args[next]);
        }
    } else if (a.sub == "fix") {
        rest(nothing);
    } else {
        a.error = "unknown log command \"" + a.sub + "\"";
    }
    return a;
}

// Visits the fields in order: the focus arriving, the value, the focus leaving.
// Returned: false when a field refused its value on leaving.
bool VisitFields(logbook::LogEntryForm& form, const LogArgs& a)
{
    bool listCleared = false;
    for (const auto& [field, value] : a.fields) {
        form.GotFocus(field);
        switch (logbook::NameOf(field).kind) {
        case logbook::FieldKind::Check:
            form.SetCheck(field, services::vb::SameText(value, "True"));
            break;
        case logbook::FieldKind::Lines:
            // The command's List1 values are the list: the first one replaces what was there.
            if (!listCleared)
                form.f.List1.clear();
            listCleared = true;
            if (!value.empty())
                form.SetValue(field, value);
            break;
        default:
            form.SetValue(field, value);
        }
        if (!form.LostFocus(field))
            return false;
    }
    return true;
}

// The grid click on observation n; false (and the message) when it is not in the logbook.
bool ClickObservation(logbook::LogEntryForm& form, long long n)
{
    const int row = form.RowOf(n);
    if (row == 0) {
        std::cerr << "selvane-cli: no observation " << n << "\n";
        return false;
    }
    form.GridClick(row);
    return true;
}

long long HighestNumber(data::Database& logbook)
{
    auto rs = logbook.OpenRecordset("Select max(ObservationNumber) From Logbook", data::Snapshot);
    return rs.Eof() ? 0 : rs.Fields(0).Long();
}

int RunClick(spread::AppState& TMM, const spread::LoadFormResult& start, const LogArgs& a,
             std::ostream& out, const astro::Clock& clock)
{
    if (!start.objectDatabaseOpen || !TMM.objectDb)
        return 1;
    spread::Grid& grid = TMM.grids[0];
    TMM.CurrTab = 0;
    if (!a.sql.empty()) {
        TMM.SQL = a.sql;
        spread::GridLoad load;
        spread::LoadTheGrid(TMM, grid, spread::LoadMode::NoBuild, load, clock);
        if (load.failed)
            return 1;
    } else if (!start.startListLoaded) {
        return 1;
    }
    if (a.row > grid.MaxRows()) {
        std::cerr << "selvane-cli: no row " << a.row << " in the list\n";
        return 1;
    }
    const long long before = HighestNumber(*TMM.logbookDb);
    const bool added = logbook::AddToLogbook(
        TMM.ui, *TMM.logbookDb, *TMM.objectDb, TMM.prefs, clock,
        std::string(grid.Text(a.row, spread::kObjectIdCol)),
        std::string(grid.Text(a.row, spread::kCatalogCol)),
        static_cast<long long>(services::vb::Val(grid.Text(a.row, spread::kRecordIdCol))));
    if (added)
        grid.SetText(a.row, 3, "X");
    const long long after = HighestNumber(*TMM.logbookDb);
    if (after != before)
        out << after << "\n";
    return added ? 0 : 1;
}

} // namespace

void PrintLogGrid(const logbook::LogEntryForm& form, std::ostream& out)
{
    std::string line;
    for (std::size_t i = 0; i < logbook::LogGridCaptions.size(); ++i)
        line += (i ? "\t" : "") + std::string(logbook::LogGridCaptions[i]);
    out << line << "\n";
    for (const auto& row : form.grdLog) {
        line.clear();
        for (std::size_t i = 0; i < row.size(); ++i)
            line += (i ? "\t" : "") + logbook::EscapedForLine(row[i]);
        out << line << "\n";
    }
}

std::string CheckLogArgs(const std::vector<std::string>& args)
{
    return ParseLogArgs(args).error;
}

void QueueAnswers(spread::AppState& TMM, const std::vector<bool>& answers)
{
    if (auto* scripted = dynamic_cast<services::ScriptedUiPort*>(&TMM.ui)) {
        scripted->answers.assign(answers.begin(), answers.end());
        scripted->unansweredYes = false;
    }
}

bool LogbookOpen(const spread::AppState& TMM)
{
    if (TMM.logbookDb)
        return true;
    std::cerr << "selvane-cli: the logbook is not open\n";
    return false;
}

int RunLogCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                  const std::vector<std::string>& args, std::ostream& out,
                  const astro::Clock& clock)
{
    const LogArgs a = ParseLogArgs(args);
    if (!a.error.empty())
        return 2;
    QueueAnswers(TMM, a.answers);
    if (!LogbookOpen(TMM))
        return 1;
    int status = 1;
    const bool ran = services::Trap(TMM.ui, "selvane-cli.log", [&] {
        if (a.sub == "click") {
            status = RunClick(TMM, start, a, out, clock);
            return;
        }
        if (a.sub == "fix") {
            status = TMM.objectDb &&
                             logbook::fixObs_Click(TMM.ui, *TMM.logbookDb, *TMM.objectDb, TMM.prefs)
                         ? 0
                         : 1;
            return;
        }

        data::CurrentObject current;
        logbook::LogContext context{
            TMM.ui, TMM.logbookDb.get(), TMM.objectDb.get(), TMM.prefs, TMM.dir, current, clock};
        logbook::LogEntryForm form(context);
        form.mode = "N";
        form.Form_Load();

        if (a.sub == "list") {
            if (a.type)
                form.cboSlog = *a.type;
            form.chkFilterSeen = a.filterSeen;
            if (a.object) {
                current.id = *a.object;
                form.mode = "R";
            }
            if (a.find) {
                form.txtSearch = *a.find;
                form.cmdFind();
            } else {
                form.LoadObservations();
            }
            PrintLogGrid(form, out);
            status = 0;
            return;
        }
        if (a.sub != "add" && a.sub != "last" && !ClickObservation(form, a.number))
            return;
        if (a.sub == "last")
            form.cmdLastEntry_Click();
        if (!VisitFields(form, a))
            return;

        bool done = true;
        if (a.sub == "add" || (a.sub == "last" && a.add))
            done = form.cmdAdd_Click();
        else if (a.sub == "update" || (a.sub == "last" && a.update))
            done = form.cmdUpdate_Click();
        else if (a.sub == "delete")
            done = form.DeleteObservation();

        if (a.sub == "show" || (a.sub == "last" && !a.add && !a.update))
            out << logbook::FormText(form);
        else if (done)
            out << (a.sub == "delete" || a.sub == "update" ? std::to_string(a.number)
                                                           : form.lblObNo)
                << "\n";
        status = done ? 0 : 1;
    });
    out.flush();
    return ran ? status : 1;
}

} // namespace app
