#include "spread/Export.h"

#include "data/Places.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/GridExport.h"
#include "spread/RecordExport.h"

#include <QDate>

#include <cmath>
#include <functional>

namespace spread {

namespace vb = services::vb;

namespace {

inline constexpr const char* ExportLocation = "ctlSpread.Export";
inline constexpr const char* NoDatabaseMessage = "Object invalid or no longer set.";

// What a kind of export asks for and writes.
struct ExportTarget
{
    std::string filter, ext, title;
};

ExportTarget TargetOf(const std::string& kind)
{
    if (kind == "EXCEL")
        // The workbook format of today: the old binary ".xls" name makes spreadsheet
        // programs refuse the file or warn about it.
        return {"*.xlsx", ".xlsx", "Save To Excel File"};
    if (kind == "HTML")
        return {"*.htm", ".htm", "Save To HTML File"};
    if (kind == "XMLLOG" || kind == "XMLOBJECTS")
        return {"*.XML", ".XML", "Save To XML File"};
    return {"*.txt", ".txt", "Save File"};
}

Grid* CurrentGrid(AppState& TMM)
{
    if (TMM.CurrTab < 0 || TMM.CurrTab >= kSpreadTabs)
        return nullptr;
    return &TMM.grids[static_cast<std::size_t>(TMM.CurrTab)];
}

// A record writer on a database that may not be open: the writer's fault, as its trap says it.
bool RunRecordWriter(AppState& TMM, data::Database* db, const char* location,
                     const std::function<std::int16_t(data::Database&)>& writer)
{
    if (!db) {
        TMM.ui.ReportFault(NoDatabaseMessage, location);
        return false;
    }
    return writer(*db) == 0;
}

// A grid writer on the current tab's grid, its fault at ctlSpread.Export.
bool RunGridWriter(AppState& TMM, const char* location,
                   const std::function<void(const Grid&)>& writer)
{
    Grid* grid = CurrentGrid(TMM);
    return services::Trap(TMM.ui, location, [&] {
        if (!grid)
            throw services::Fault(NoDatabaseMessage, "");
        writer(*grid);
    });
}

// The export of a text kind ("aa"), or of the logbook as text.
bool Export(AppState& TMM, const std::string& kind, const std::string& sql, data::Database* textDb)
{
    services::UiPort& ui = TMM.ui;
    if (kind.empty()) {
        ui.ShowMessage(ExportBeforeYouContinue, "Before You Continue", "I");
        return true;
    }
    Grid* grid = CurrentGrid(TMM);
    if (kind == "XMLOBJECTS" && grid && grid->MaxRows() > kLongExportRows)
        ui.ShowMessage(ExportMayTakeAWhile, "Informational Message", "I");

    const ExportTarget target = TargetOf(kind);
    const std::string answer = ui.AskSaveFile(target.title, target.filter, target.ext, "");
    const std::string file = ExportFileName(answer, target.ext, target.filter);
    bool ok = true;
    if (!file.empty()) {
        ui.Busy(services::BusyKind::Working);
        const auto program = [&](const char* name) { return TMM.dir.File(name); };
        if (kind == "EXCEL")
            ok = RunGridWriter(TMM, ExportLocation, [&](const Grid& g) {
                WriteGridExcel(g, file, program("SVexcel.log"));
            });
        else if (kind == "HTML")
            ok = RunGridWriter(TMM, ExportLocation, [&](const Grid& g) {
                WriteGridHtml(g, file, program("HTMLLog.txt"));
            });
        else if (kind == "XMLLOG")
            ok = RunRecordWriter(
                TMM, TMM.logbookDb.get(), "TMM.XMLExportLog",
                [&](data::Database& db) { return XMLExportLog(ui, sql, file, db); });
        else if (kind == "XMLOBJECTS")
            ok = RunRecordWriter(
                TMM, TMM.objectDb.get(), "TMM.XMLExportObjects",
                [&](data::Database& db) { return XMLExportObjects(ui, sql, file, db); });
        else
            ok = RunRecordWriter(TMM, textDb, "TMM.CSVExport",
                                 [&](data::Database& db) { return CSVExport(ui, sql, file, db); });
        ui.EndBusy();
    }
    // Deliberate: after a writer's fault the export does not also say it finished; the fault
    // window has told the observer what happened to the file.
    if (ok)
        ui.ShowMessage(FinishedExportingText + file, ExportCompleteTitle, "I");
    return ok;
}

// The save dialog of the observing-list exports: the extension added when missing.
std::string AskListFile(AppState& TMM, const std::string& title, const std::string& ext)
{
    std::string file = TMM.ui.AskSaveFile(title, "*" + ext, ext, "");
    if (vb::Trim(file).empty())
        return {};
    if (!vb::SameText(file.size() >= ext.size() ? file.substr(file.size() - ext.size()) : "", ext))
        file += ext;
    return file;
}

bool ExportList(AppState& TMM, const char* title, const char* ext, const char* location,
                const std::function<void(const Grid&, const std::string&)>& writer)
{
    const std::string file = AskListFile(TMM, title, ext);
    if (file.empty())
        return true;
    if (!RunGridWriter(TMM, location, [&](const Grid& grid) { writer(grid, file); }))
        return false;
    TMM.ui.ShowMessage(FinishedExportingText + file, ExportCompleteTitle, "I");
    return true;
}

// The observing date: the computer's with real time on or a blank date, else the setting's.
QDate ObservingDate(const data::Preferences& p, const astro::Clock& computerClock)
{
    if (p.UseRealTime != "Y" && !vb::Trim(p.PDate).empty())
        if (const auto date = vb::ParseDate(p.PDate, data::RegionalOf(p)))
            return *date;
    const astro::LocalDateTime now = computerClock.Now();
    return QDate(now.year, now.month, now.day);
}

// The name of the observer's site or shipped place at the observing latitude and longitude;
// empty when none stands there.
std::string SiteName(AppState& TMM)
{
    if (!TMM.logbookDb)
        return {};
    std::string name;
    services::TrapSilently(TMM.ui, "ctlSpread.ExportObservingList", [&] {
        for (const auto& places :
             {data::LoadObservingSites(*TMM.logbookDb), data::LoadLocationList(*TMM.logbookDb)})
            for (const data::Place& place : places)
                if (name.empty() && std::fabs(place.Latitude - TMM.prefs.Plat) < 0.01 &&
                    std::fabs(place.Longitude - TMM.prefs.PLon) < 0.01)
                    name = place.name;
    });
    return name;
}

} // namespace

std::string ExportFileName(const std::string& answer, const std::string& ext,
                           const std::string& filter)
{
    if (vb::Trim(answer).empty() || vb::UCase(answer) == vb::UCase(filter))
        return {};
    const std::string letters = ext.substr(1);
    const std::string tail =
        answer.size() >= letters.size() ? answer.substr(answer.size() - letters.size()) : answer;
    return vb::UCase(tail) == vb::UCase(letters) ? answer : answer + vb::LCase(ext);
}

bool Export(AppState& TMM, const std::string& kind, const std::string& sql)
{
    return Export(TMM, kind, sql, TMM.objectDb.get());
}

bool IDN2(AppState& TMM)
{
    return Export(TMM, "aa", TMM.SQL);
}

bool IDN3(AppState& TMM)
{
    return Export(TMM, "XMLOBJECTS", TMM.SQL);
}

bool mnuEpld_Click(AppState& TMM)
{
    return Export(TMM, "aa", LogExportSql, TMM.logbookDb.get());
}

bool ExportSkyList(AppState& TMM)
{
    return ExportList(TMM, "Save To SkySafari Observing List", ".skylist",
                      "ctlSpread.ExportSkyList",
                      [](const Grid& grid, const std::string& file) { WriteSkyList(grid, file); });
}

bool ExportObservingList(AppState& TMM, const astro::Clock& computerClock)
{
    const ObservingListSite site{
        SiteName(TMM), ObservingDate(TMM.prefs, computerClock).toString("ddMMyyyy").toStdString()};
    return ExportList(
        TMM, "Save To KStars Observing List", ".xml", "ctlSpread.ExportObservingList",
        [&](const Grid& grid, const std::string& file) { WriteObservingList(grid, site, file); });
}

} // namespace spread
