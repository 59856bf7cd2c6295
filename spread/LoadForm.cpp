#include "spread/LoadForm.h"

#include "charts/ChartCalls.h"
#include "data/DatabaseFiles.h"
#include "services/ErrorLog.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/Spreadsheet.h"
#include "spread/StarCharts.h"

#include <QLocale>

#include <fstream>
#include <system_error>

namespace spread {
namespace {

// The steps that belong to subsystems of their own. Each is called where the start runs it, so
// that the subsystem has its place when it arrives; until then it does nothing.

// The column profiles: the first value of INIT.INI names the profile, which holds each
// column's visibility and width.
void LoadCurrentProfile(AppState&) {}
// The saved grids and queries of SQL.Dat.
void LoadSQL(AppState&) {}
// The observation types of the setup and preference dialogs.
void LoadLogType(AppState&) {}
// The moon icon of the status band.
void CalcMoonPhase(AppState&) {}
// frmPopup's catalogue list (object maintenance); it is loaded and unloaded at once.
void UnloadPopup(AppState&) {}
// The image tab's catalogue, type and third combos (the image gallery).
void LoadImageCombos(AppState&) {}
// Install folders of the outside chart and variable-star programs; empty: not installed.
std::string VarObsInstallDir()
{
    return {};
}

void Call(const std::function<void()>& hook)
{
    if (hook)
        hook();
}

// mnuRfsh_Click at the start: the status band refreshed. It loads nothing, so the start's
// Messier list stays on tab 0.
void mnuRfsh_Click(AppState& TMM, const astro::Clock& computerClock)
{
    UpdateStatusBar(TMM, computerClock);
}

bool CatalogueListHoldsGcvs(AppState& TMM)
{
    if (!TMM.objectDb)
        return false;
    bool found = false;
    services::TrapSilently(TMM.ui, LoadFormLocation, [&] {
        const data::FilterLookups lookups = data::LoadFilterLookups(*TMM.objectDb);
        for (const data::CatalogRow& row : lookups.catalogs)
            if (row.CatalogDescription == "General Catalog of Variable Stars")
                found = true;
    });
    return found;
}

} // namespace

std::vector<HerschelRef> LoadHer(const std::filesystem::path& file)
{
    std::vector<HerschelRef> refs;
    std::ifstream in(file, std::ios::binary);
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        HerschelRef ref;
        ref.id = line.substr(0, 4);
        if (line.size() > 7)
            ref.name = line.substr(7, 18);
        refs.push_back(std::move(ref));
    }
    return refs;
}

LoadFormResult LoadForm(AppState& TMM, const std::filesystem::path& resources,
                        const LoadFormHooks& hooks, const astro::Clock& computerClock)
{
    LoadFormResult result;
    services::UiPort& ui = TMM.ui;
    data::Preferences& p = TMM.prefs;
    auto step = [&](std::string_view name) {
        if (hooks.Trace)
            hooks.Trace(name);
    };
    auto removeQuietly = [&](const char* name) {
        std::error_code ignored;
        std::filesystem::remove(TMM.dir.File(name), ignored);
    };

    // The program folder holds the user's files; a fresh one gets the shipped files first.
    step("SeedProgramDir");
    services::Trap(ui, LoadFormLocation, [&] { data::SeedProgramDir(TMM.dir, resources); });
    ui.SetErrorLog(TMM.dir.File(services::ErrorLogFileName));

    // 1. Settings, then the machine's regional formats over them.
    step("LoadPreferences");
    const QLocale machine = QLocale::system();
    if (const auto reset = data::LoadPreferences(p, TMM.settings, TMM.dir,
                                                 services::vb::RegionalFromLocale(machine))) {
        TMM.settings.Sync();
        ui.ShowMessage(data::PreferencesResetText(*reset), "Preferences Reset", "I");
    }
    step("GetLocalization");
    data::GetLocalization(p, machine);

    // 2.
    step("DeleteNexstarTmp");
    removeQuietly("NEXSTAR.TMP");

    // 3. and 4. The sort-column table is kSortColumns and pi a constant of the astronomy core.
    step("SetFilterLabels");
    SetFilterLabels(TMM);
    step("SetSortOptions");
    SetSortOptions(TMM);

    // 5. The chart's temporary file, rewritten by each chart call.
    step("DeleteDsoDat");
    removeQuietly(charts::kChartWorkFile);

    // 6. Tools of outside programs.
    step("ShowOutsideTools");
    auto visible = [&](std::string_view key, bool shown) {
        if (hooks.SetToolVisible)
            hooks.SetToolVisible(key, shown);
    };
    visible("mnuFitsview", !services::vb::Trim(p.fitspath).empty());
    visible("mnumoonrise", !services::vb::Trim(p.MoonRisePath).empty());
    const bool planetarium = !PlanetariumProgram(p).empty();
    for (const char* key : {"Cartes du Ciel", "ChartsMain", "cdc_chartsob", "cdc_charts",
                            "cdc_mnuplote", "cdc_mnugotocon", "cdc_mnuppppdef"})
        visible(key, planetarium);
    const bool variableStars = CatalogueListHoldsGcvs(TMM) && !VarObsInstallDir().empty();
    visible("vso", variableStars);
    visible("vsoall", variableStars);

    // 7. The telescope tools wait for a link.
    step("DisableTelescopeTools");
    for (std::string_view key : TelescopeTools)
        if (hooks.SetToolEnabled)
            hooks.SetToolEnabled(key, false);
    if (hooks.SetToolCaption)
        hooks.SetToolCaption("lx200enable", EnableTelescopeCaption);

    // 8.
    TMM.RealTimeRearm = true;
    TMM.NoLoadYet = true;
    step("LoadCurrentProfile");
    LoadCurrentProfile(TMM);
    step("OpenTheDatabase");
    services::Trap(ui, LoadFormLocation,
                   [&] { data::OpenTheDatabase(TMM.dir, TMM.logbookDb, TMM.logbookPath); });
    step("LoadTPlan");
    if (hooks.ShowShortCuts)
        hooks.ShowShortCuts(LoadTPlan(TMM.dir.path));

    // 9.
    step("FillFilterBoxes");
    FillFilterBoxes(TMM);

    // 10.
    if (p.FIRST) {
        step("frmSetupWizard");
        if (hooks.ShowSetupWizard)
            hooks.ShowSetupWizard();
        p.FIRST = false;
    }

    // 11.
    step("CreateScopeVoice");
    if (!p.telescopetype.empty() && p.Dsound)
        Call(hooks.CreateScopeVoice);

    // 12. The window sets the rowret combo from rowret.
    step("LoadCurrentProfile");
    LoadCurrentProfile(TMM);

    // 13. The logbook again, with its link to the object database.
    step("RebuildLink");
    services::Trap(ui, LoadFormLocation, [&] {
        TMM.logbookDb.reset();
        data::OpenTheDatabase(TMM.dir, TMM.logbookDb, TMM.logbookPath);
    });
    if (TMM.logbookDb)
        services::TrapSilently(ui, "TMM.RebuildLink",
                               [&] { data::RebuildLink(*TMM.logbookDb, p.cdDrive, p.UseCd); });

    // 14. The object database, with the setup wizard after each failure. A cancelled wizard
    // ends the tries, so that the program can still be closed.
    step("OpenObjectDatabase");
    for (;;) {
        std::string failure;
        if (data::OpenObjectDatabase(ui, p, TMM.settings, TMM.objectDb, &failure)) {
            result.objectDatabaseOpen = true;
            break;
        }
        ui.ShowMessage(failure + "\n" + ChooseDatabaseText, ObjectDatabaseFailedTitle, "E");
        step("frmSetupWizard");
        if (!hooks.ShowSetupWizard || !hooks.ShowSetupWizard())
            break;
    }
    if (result.objectDatabaseOpen && TMM.logbookDb)
        // The media test of the open may have changed UseCd, and with it how the link reads.
        services::TrapSilently(ui, "TMM.RebuildLink",
                               [&] { data::RebuildLink(*TMM.logbookDb, p.cdDrive, p.UseCd); });

    // 15.
    TMM.NoLoadYet = false;
    step("HideGrids");
    ui.Pump();
    if (hooks.HideGrids)
        hooks.HideGrids(true);

    // 16. Whatever the filters say, the program starts with the Messier list on tab 0.
    step("LoadSQL");
    LoadSQL(TMM);
    const data::FixedList start = data::ShowMessierList();
    TMM.grids[0].SetTag(start.Tag);
    TMM.SQL = start.SQL;
    TMM.CurrTab = 0;
    TMM.UseLogDatabase = false;
    TMM.PlanLoad = false;
    if (TMM.objectDb) {
        step("LoadTheGrid");
        GridLoad load;
        LoadTheGrid(TMM, TMM.grids[0], LoadMode::NoBuild, load, computerClock);
        result.startListLoaded = !load.failed && !load.cancelled;
    }
    if (hooks.HideGrids)
        hooks.HideGrids(false);

    // 17.
    step("LoadLogType");
    LoadLogType(TMM);
    step("LoadHer");
    TMM.herschel = LoadHer(TMM.dir.File("Href.txt"));
    step("CalcMoonPhase");
    CalcMoonPhase(TMM);

    // 18.
    step("mnuRfsh_Click");
    mnuRfsh_Click(TMM, computerClock);
    step("RefreshPref");
    RefreshPref(TMM);

    // 19.
    step("UnloadPopup");
    UnloadPopup(TMM);

    // 20.
    step("CheckConvertLog");
    services::Trap(ui, LoadFormLocation,
                   [&] { result.convertLogbook = data::CheckConvertLog(ui, TMM.dir); });

    // 21.
    step("UnloadStartupImage");
    Call(hooks.UnloadStartupImage);

    // 22.
    step("LoadImageCombos");
    LoadImageCombos(TMM);

    // 23.
    step("GetTabCaptions");
    Call(hooks.GetTabCaptions);

    // 24. The first run only.
    if (!TMM.settings.Get("Once1")) {
        step("FirstRunSpeech");
        if (p.Dsound)
            ui.Speak(FirstRunSpeech);
        services::TrapSilently(ui, LoadFormLocation, [&] {
            TMM.settings.Save("once1", "True");
            TMM.settings.Sync();
        });
    }

    // 25.
    step("SelectFilterPage");
    if (hooks.SelectFilterPage)
        hooks.SelectFilterPage(p.maintab);
    return result;
}

} // namespace spread
