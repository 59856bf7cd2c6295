#include "app/ReportCommand.h"

#include "app/CliOptions.h"
#include "app/GridCommand.h"
#include "app/LogCommand.h"
#include "charts/ChartCalls.h"
#include "charts/ChartSky.h"
#include "data/ProgramDir.h"
#include "logbook/LogEntryForm.h"
#include "logbook/LogSpread.h"
#include "reports/PainterSurface.h"
#include "reports/PlanReports.h"
#include "reports/ReportWindow.h"
#include "scope/Speech.h"
#include "services/ScriptedUiPort.h"
#include "spread/StarCharts.h"

#include <fstream>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>

namespace app {

namespace {

struct ReportArgs
{
    int number = 0;
    bool quick = false;
    std::optional<std::string> pdf, sql, plan, obsPlan, sort, notesSql, objectId, text;
    std::optional<std::string> logType, logSql; // reports 3 and 30
    reports::SortSelection sortSelection;       // report 88
    int sortKeys = 0;
    bool build = false;
    bool landscape = false;
    bool chartOpen = false;
    reports::Paper paper = reports::Paper::Letter;
    int row = 1;
    std::optional<long long> entry;
    std::vector<bool> answers;
    std::vector<std::string> inputs;
    std::string error;
};

ReportArgs ParseReportArgs(const std::vector<std::string>& args)
{
    static const std::set<std::string> valued{
        "--pdf",   "--sql",      "--plan",    "--row",       "--paper",     "--answer",
        "--input", "--obs-plan", "--sort",    "--notes-sql", "--object-id", "--text",
        "--entry", "--log-type", "--log-sql", "--sort-by",   "--like"};
    ReportArgs a;
    const auto fail = [&a](std::string error) {
        a.error = std::move(error);
        return a;
    };
    if (args.empty())
        return fail("report needs a NUMBER");
    if (args[0] == "quick") {
        a.quick = true;
    } else {
        const std::optional<int> number = WholeNumber(args[0]);
        if (!number || !reports::ReportWindow::Known(*number))
            return fail("unknown report \"" + args[0] + "\"");
        if (*number == 90 || (*number >= 900 && *number <= 903))
            return fail("report " + args[0] + " prints a chart window and needs the program");
        a.number = *number;
    }
    int lists = 0;
    for (std::size_t i = 1; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (word == "--build") {
            a.build = true;
            ++lists;
            continue;
        }
        if (word == "--landscape" || word == "--chart-open") {
            (word == "--landscape" ? a.landscape : a.chartOpen) = true;
            continue;
        }
        if (!valued.contains(word))
            return fail("unknown argument \"" + word + "\" of report");
        if (i + 1 >= args.size())
            return fail(word + " needs a value");
        const std::string& value = args[++i];
        if (word == "--row" || word == "--entry") {
            const std::optional<int> n = WholeNumber(value);
            if (!n || *n < 1)
                return fail(word + " takes a number from 1, not \"" + value + "\"");
            if (word == "--row")
                a.row = *n;
            else
                a.entry = *n;
        } else if (word == "--paper") {
            if (value != "letter" && value != "a4")
                return fail("--paper takes letter or a4, not \"" + value + "\"");
            a.paper = value == "a4" ? reports::Paper::A4 : reports::Paper::Letter;
        } else if (word == "--answer") {
            if (value != "yes" && value != "no")
                return fail("--answer takes yes or no, not \"" + value + "\"");
            a.answers.push_back(value == "yes");
        } else if (word == "--input") {
            a.inputs.push_back(value);
        } else if (word == "--sort-by") {
            if (a.sortKeys == 3)
                return fail("--sort-by takes up to three columns");
            const std::size_t colon = value.rfind(':');
            const bool descending = colon != std::string::npos && value.substr(colon + 1) == "desc";
            const std::string column = descending ? value.substr(0, colon) : value;
            if (column.empty())
                return fail("--sort-by takes COLUMN[:desc], not \"" + value + "\"");
            a.sortSelection.column[static_cast<std::size_t>(a.sortKeys)] = column;
            a.sortSelection.descending[static_cast<std::size_t>(a.sortKeys)] = descending;
            ++a.sortKeys;
        } else if (word == "--like") {
            a.sortSelection.like = value;
        } else if (word == "--log-type" || word == "--log-sql") {
            (word == "--log-type" ? a.logType : a.logSql) = value;
        } else {
            if (word == "--sql" || word == "--plan")
                ++lists;
            std::optional<std::string>& slot = word == "--pdf"         ? a.pdf
                                               : word == "--sql"       ? a.sql
                                               : word == "--plan"      ? a.plan
                                               : word == "--obs-plan"  ? a.obsPlan
                                               : word == "--sort"      ? a.sort
                                               : word == "--notes-sql" ? a.notesSql
                                               : word == "--object-id" ? a.objectId
                                                                       : a.text;
            slot = value;
        }
    }
    if (lists > 1)
        return fail("give one of --sql, --build and --plan");
    if (a.logType && a.logSql)
        return fail("give one of --log-type and --log-sql");
    if (!a.pdf)
        return fail("report needs --pdf FILE");
    return a;
}

// The star charts of reports 15 and 16: the own chart engine, drawn without a window; the
// planetarium is never asked.
struct ReportCharts
{
    explicit ReportCharts(spread::AppState& TMM, const astro::Clock& clock, int row)
        : own(TMM.dir.path, [this]() -> const charts::ChartSky& { return Sky(); }),
          cdc(
              []() -> std::unique_ptr<charts::Planetarium> {
                  throw charts::PlanetariumError("The reports draw their own charts");
              },
              [this]() -> const charts::ChartSky& { return Sky(); }),
          link(own, cdc), context{TMM,
                                  link,
                                  row,
                                  [] { return false; },
                                  [] { return false; },
                                  [] { return scope::EspeakVoiceExists(); },
                                  clock}
    {
    }

    const charts::ChartSky& Sky()
    {
        if (!sky)
            sky = charts::LoadChartSky(data::ResourcesBesideExecutable().string());
        return *sky;
    }

    std::optional<charts::ChartSky> sky;
    charts::OwnChart own;
    charts::CdcBridge cdc;
    charts::ChartLink link;
    spread::ChartContext context;
};

std::optional<std::string> ReadText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace

std::string CheckReportArgs(const std::vector<std::string>& args)
{
    return ParseReportArgs(args).error;
}

int RunReportCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                     const std::vector<std::string>& args, std::ostream& out,
                     const astro::Clock& computerClock)
{
    const ReportArgs a = ParseReportArgs(args);
    if (!a.error.empty())
        return 2;
    QueueAnswers(TMM, a.answers);
    if (auto* scripted = dynamic_cast<services::ScriptedUiPort*>(&TMM.ui))
        scripted->inputAnswers.assign(a.inputs.begin(), a.inputs.end());

    const int row = reports::ReportWindow::ReadsCurrentRow(a.number) ? a.row : 0;
    if (LoadListRow(TMM, start, a.sql, a.build, a.plan, row, computerClock) != 0)
        return 1;
    if (a.chartOpen) {
        std::ofstream open(TMM.dir.File(charts::kChartWorkFile), std::ios::binary);
        open << "open\r\n";
    }

    ReportCharts charts(TMM, computerClock, a.row);
    reports::ReportContext context{TMM, computerClock, a.row, &charts.context};
    if (a.text) {
        const std::optional<std::string> text = ReadText(*a.text);
        if (!text) {
            TMM.ui.ShowMessage("Cannot read " + *a.text, reports::kReportCaption, "E");
            return 1;
        }
        context.windowText = *text;
    }

    // The entry window on observation N.
    data::CurrentObject current;
    logbook::LogContext logContext{
        TMM.ui,  TMM.logbookDb.get(), TMM.objectDb.get(), TMM.prefs, TMM.dir,
        current, computerClock};
    std::optional<logbook::LogEntryForm> entry;
    if (a.entry) {
        if (!LogbookOpen(TMM))
            return 1;
        entry.emplace(logContext);
        entry->Form_Load();
        const int row = entry->RowOf(*a.entry);
        if (row == 0) {
            std::cerr << "selvane-cli: no observation " << *a.entry << "\n";
            return 1;
        }
        entry->GridClick(row);
        context.entry = &*entry;
    }

    // The log spreadsheet of reports 3 and 30, loaded from the log type box or the query
    // override; 30 loads it again itself, as its refresh does.
    std::optional<logbook::LogSpread> logView;
    if (a.number == 3 || a.number == 30) {
        if (!LogbookOpen(TMM))
            return 1;
        logView.emplace(logContext);
        logView->Init();
        if (a.logType) {
            logView->cboLogTypeFilter = *a.logType;
            logView->SQLFromEntry();
        }
        logView->queryOverride = a.logSql.value_or("");
        if (a.number == 3 && !logView->LoadTheGrid())
            return 1;
        context.logSpread = &*logView;
    }

    reports::PainterSurface surface;
    surface.SetPaper(a.paper);
    if (a.quick) {
        reports::QuickPrintout(TMM.grids[0], surface, context);
    } else {
        reports::ReportWindow window(context, surface);
        window.ReportNumber = a.number;
        window.ObsPlan(a.obsPlan.value_or(""));
        window.ObsPlanSort(a.sort.value_or(""));
        window.ObjectIDToPrint(a.objectId.value_or(""));
        window.RichTextToPrint(context.windowText);
        window.NotesSQL(a.notesSql.value_or(logbook::LogSpreadSql(logbook::ShowAllTypes)));
        window.sortSelection = a.sortSelection;
        window.chkLand = a.landscape;
        window.Form_Load();
    }
    if (!surface.Finished() || ErrorsShown(TMM.ui) > 0)
        return 1;

    std::string error;
    if (!surface.WritePdf(*a.pdf, error)) {
        TMM.ui.ShowMessage(error, reports::kReportCaption, "E");
        return 1;
    }
    out << "Report\tPages\tFile\n"
        << (a.quick ? std::string("quick") : std::to_string(a.number)) << '\t'
        << surface.PageCount() << '\t' << *a.pdf << '\n';
    out.flush();
    return out ? 0 : 1;
}

} // namespace app
