#include "app/LogSpreadCommand.h"

#include "app/LogCommand.h"
#include "logbook/LogSearch.h"
#include "logbook/LogSpread.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"

#include <QDate>

#include <iostream>
#include <optional>

namespace app {

namespace {

enum class SpreadPage {
    Grid,
    Notes,
    Images,
};

struct SpreadArgs
{
    std::optional<std::string> type, sql;
    logbook::LogSortBoxes sorts;
    int sortCount = 0;
    SpreadPage page = SpreadPage::Grid;
};

struct SearchArgs
{
    logbook::LogSearchCriteria criteria;
    bool spread = false;
};

// Takes the --answer pairs out of the arguments.
std::string TakeAnswers(const std::vector<std::string>& all, std::vector<std::string>& args,
                        std::vector<bool>& answers)
{
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i] != "--answer") {
            args.push_back(all[i]);
            continue;
        }
        if (i + 1 >= all.size() || (all[i + 1] != "yes" && all[i + 1] != "no"))
            return "--answer takes yes or no";
        answers.push_back(all[++i] == "yes");
    }
    return {};
}

std::string ParseSpreadArgs(const std::vector<std::string>& all, SpreadArgs& a,
                            std::vector<bool>& answers)
{
    std::vector<std::string> args;
    if (std::string error = TakeAnswers(all, args, answers); !error.empty())
        return error;
    bool pageSet = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        const bool valued = arg == "--type" || arg == "--sql" || arg == "--sort";
        if (valued && i + 1 >= args.size())
            return arg + " needs a value";
        if (arg == "--type" || arg == "--sql") {
            if (a.type || a.sql)
                return "--type and --sql exclude each other";
            (arg == "--type" ? a.type : a.sql) = args[++i];
        } else if (arg == "--sort") {
            std::string key = args[++i];
            bool descending = false;
            if (const auto colon = key.rfind(':'); colon != std::string::npos) {
                if (key.substr(colon + 1) != "desc" && key.substr(colon + 1) != "asc")
                    return "--sort takes COL or COL:desc";
                descending = key.substr(colon + 1) == "desc";
                key.resize(colon);
            }
            const std::string text = logbook::SortKeyFor(key);
            if (text.empty())
                return "\"" + key + "\" is no sort key of the log view";
            if (a.sortCount == 3)
                return "the sort window has three boxes";
            a.sorts[static_cast<std::size_t>(a.sortCount++)] = {text, descending};
        } else if (arg == "--notes" || arg == "--images") {
            if (pageSet)
                return "--notes and --images exclude each other";
            pageSet = true;
            a.page = arg == "--notes" ? SpreadPage::Notes : SpreadPage::Images;
        } else {
            return "unknown argument \"" + arg + "\" of logspread";
        }
    }
    if (a.sql && a.sql->empty())
        return "--sql needs a query";
    return {};
}

std::optional<QDate> IsoDate(const std::string& text)
{
    const QDate date = QDate::fromString(QString::fromStdString(text), "yyyy-MM-dd");
    return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}

std::string ParseSearchArgs(const std::vector<std::string>& all, SearchArgs& a,
                            std::vector<bool>& answers)
{
    std::vector<std::string> args;
    if (std::string error = TakeAnswers(all, args, answers); !error.empty())
        return error;
    logbook::LogSearchCriteria& c = a.criteria;
    bool seenSet = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        std::pair<bool*, std::string*> box{nullptr, nullptr};
        if (arg == "--object")
            box = {&c.optObjectID, &c.txtObjectID};
        else if (arg == "--site")
            box = {&c.optSite, &c.cboSite};
        else if (arg == "--notes")
            box = {nullptr, &c.txtNotes};
        else if (arg == "--equipment")
            box = {&c.optEquipment, &c.cboEquip};
        else if (arg == "--type")
            box = {&c.optType, &c.cboType};
        else if (arg == "--const")
            box = {&c.optConst, &c.cboCon};
        if (box.second) {
            if (i + 1 >= args.size())
                return arg + " needs a value";
            if (box.first)
                *box.first = true;
            *box.second = args[++i];
        } else if (arg == "--date") {
            if (i + 2 >= args.size())
                return "--date needs FROM and TO";
            const auto from = IsoDate(args[i + 1]), to = IsoDate(args[i + 2]);
            if (!from || !to)
                return "--date takes dates as YYYY-MM-DD";
            c.optDate = true;
            c.DTPicker1 = *from;
            c.DTPicker2 = *to;
            i += 2;
        } else if (arg == "--seen" || arg == "--not-seen") {
            if (seenSet)
                return "--seen and --not-seen exclude each other";
            seenSet = true;
            c.optSeen = arg == "--seen" ? logbook::SeenChoice::Seen : logbook::SeenChoice::NotSeen;
        } else if (arg == "--spread") {
            a.spread = true;
        } else {
            return "unknown argument \"" + arg + "\" of logsearch";
        }
    }
    return {};
}

std::string Line(const std::vector<std::string>& cells)
{
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i)
        line += (i ? "\t" : "") + logbook::EscapedForLine(cells[i]);
    return line + "\n";
}

void PrintSpread(const logbook::LogSpread& view, SpreadPage page, std::ostream& out)
{
    switch (page) {
    case SpreadPage::Grid:
        out << Line({logbook::LogSpreadCaptions.begin(), logbook::LogSpreadCaptions.end()});
        for (const logbook::LogSpreadRow& row : view.grdObjectLog)
            out << Line({row.cells.begin(), row.cells.end()});
        break;
    case SpreadPage::Notes:
        out << "Object\tOtherID\tDate\tCatalog\tObs #\n";
        for (const logbook::NotesItem& item : view.ListView2)
            out << Line(
                {item.object, item.otherId, item.date, item.catalog, std::to_string(item.number)});
        break;
    case SpreadPage::Images:
        out << Line({logbook::ImageListCaptions.begin(), logbook::ImageListCaptions.end()});
        for (const logbook::ImageItem& item : view.ListView1)
            out << Line({item.object, item.description, item.path});
        break;
    }
}

// The command's body on an open logbook, with the answers queued; the exit status.
int RunWithLogbook(spread::AppState& TMM, const std::vector<bool>& answers,
                   const std::function<int(logbook::LogContext&)>& body, const astro::Clock& clock)
{
    QueueAnswers(TMM, answers);
    if (!LogbookOpen(TMM))
        return 1;
    data::CurrentObject current;
    logbook::LogContext context{
        TMM.ui, TMM.logbookDb.get(), TMM.objectDb.get(), TMM.prefs, TMM.dir, current, clock};
    int status = 1;
    services::Trap(TMM.ui, "selvane-cli", [&] { status = body(context); });
    return status;
}

// The log view loaded (from its box, or from the override when one is given) and printed.
int ShowSpread(logbook::LogContext& context, const std::optional<std::string>& type,
               const std::string& override, const logbook::LogSortBoxes& sorts, SpreadPage page,
               std::ostream& out)
{
    logbook::LogSpread view(context);
    view.Init();
    if (type) {
        view.cboLogTypeFilter = *type;
        view.SQLFromEntry();
    }
    view.queryOverride = override;
    if (!view.LoadTheGrid())
        return 1;
    view.AdvancedSort(sorts);
    if (page == SpreadPage::Images)
        view.BuildListView1();
    std::cerr << "[status] " << view.lblNOM << "\n";
    PrintSpread(view, page, out);
    return 0;
}

} // namespace

std::string CheckLogSpreadArgs(const std::vector<std::string>& args)
{
    SpreadArgs a;
    std::vector<bool> answers;
    return ParseSpreadArgs(args, a, answers);
}

std::string CheckLogSearchArgs(const std::vector<std::string>& args)
{
    SearchArgs a;
    std::vector<bool> answers;
    return ParseSearchArgs(args, a, answers);
}

int RunLogSpreadCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                        std::ostream& out, const astro::Clock& clock)
{
    SpreadArgs a;
    std::vector<bool> answers;
    if (!ParseSpreadArgs(args, a, answers).empty())
        return 2;
    const int status = RunWithLogbook(
        TMM, answers,
        [&](logbook::LogContext& context) {
            return ShowSpread(context, a.type, a.sql.value_or(""), a.sorts, a.page, out);
        },
        clock);
    out.flush();
    return status;
}

int RunLogSearchCommand(spread::AppState& TMM, const std::vector<std::string>& args,
                        std::ostream& out, const astro::Clock& clock)
{
    SearchArgs a;
    std::vector<bool> answers;
    if (!ParseSearchArgs(args, a, answers).empty())
        return 2;
    const int status = RunWithLogbook(
        TMM, answers,
        [&](logbook::LogContext& context) {
            const logbook::LogSearchSql sql =
                logbook::BuildLogSearchSql(a.criteria, TMM.prefs.Ltype);
            out << "SQL1\t" << logbook::EscapedForLine(sql.first) << "\n"
                << "SQL2\t" << logbook::EscapedForLine(sql.second) << "\n";
            if (a.spread)
                return ShowSpread(context, std::nullopt, sql.first, {}, SpreadPage::Grid, out);
            logbook::LogEntryForm form(context);
            form.mode = "N";
            form.Form_Load();
            form.currentQuery = sql.first;
            form.mode = "N";
            if (!form.LoadObservations())
                return 1;
            PrintLogGrid(form, out);
            return 0;
        },
        clock);
    out.flush();
    return status;
}

} // namespace app
