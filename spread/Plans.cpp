#include "spread/Plans.h"

#include <algorithm>
#include <system_error>

#include "data/Database.h"
#include "services/Fault.h"
#include "services/UiPort.h"
#include "services/Vb.h"
#include "spread/AppState.h"
#include "spread/CommandTable.h"
#include "spread/Grid.h"

namespace spread {

namespace {

namespace vb = services::vb;

void Run(const std::function<void()>& step)
{
    if (step)
        step();
}

bool Blank(std::string_view text)
{
    return text.find_first_not_of(" \t") == std::string_view::npos;
}

// Action 5 of the grid: the row is deleted and the rows below move up; the grid keeps at least
// one (blank) row.
void DeleteRow(Grid& grid, int row)
{
    const int maxRows = grid.MaxRows();
    for (int r = row; r < maxRows; ++r) {
        const std::string below(grid.RowText(r + 1));
        grid.Clip(r, below);
        grid.SetRowHidden(r, grid.RowHidden(r + 1));
    }
    if (maxRows > 1) {
        grid.SetMaxRows(maxRows - 1);
    } else {
        grid.Clip(maxRows, "");
        grid.SetRowHidden(maxRows, false);
    }
}

PlanEntry EntryOfRow(const Grid& grid, int row)
{
    PlanEntry entry;
    entry.PlanObjectID = std::string(grid.Text(row, kObjectIdCol));
    entry.PlanCatalog = std::string(grid.Text(row, kCatalogCol));
    entry.PlanRecordID = vb::Val(grid.Text(row, kRecordIdCol));
    return entry;
}

} // namespace

bool IsSolarCatalog(std::string_view catalog)
{
    return catalog == "PLANETS" || catalog == "COMET" || catalog == "ASTEROID";
}

std::string_view PlanMark(const TabPlan& plan, double recordId)
{
    for (const PlanEntry& e : plan.entries)
        if (e.PlanRecordID == recordId)
            return e.PlanNote.empty() ? "X" : "X*";
    return " ";
}

bool StartPlan(TabPlan& plan, services::UiPort& ui, const PlanHooks& hooks)
{
    if (plan.PlanActive) {
        ui.ShowMessage(AlreadyStartedText, InvalidUsageTitle, "I");
        return false;
    }
    plan.PlanActive = true;
    plan.entries.clear();
    Run(hooks.UpdateStatusBar);
    return true;
}

void CompactPlan(TabPlan& plan)
{
    std::erase_if(plan.entries, [](const PlanEntry& e) { return e.PlanRecordID == 0; });
    if (plan.entries.empty())
        plan.PlanActive = false;
}

TagResult mnuaddtoplan_Click(TabPlan& plan, Grid& grid, int row, services::UiPort& ui,
                             const PlanHooks& hooks)
{
    if (!plan.PlanActive)
        StartPlan(plan, ui, hooks);
    if (row < 1 || row > grid.MaxRows())
        return TagResult::NoRecordId;

    const std::string recordText(grid.Text(row, kRecordIdCol));
    const double recordId = vb::Val(recordText);
    const auto found = std::find_if(plan.entries.begin(), plan.entries.end(),
                                     [&](const PlanEntry& e) { return e.PlanRecordID == recordId; });
    if (found != plan.entries.end()) {
        *found = PlanEntry{};
        grid.SetText(row, kPlnCol, " ");
        CompactPlan(plan);
        if (IsSolarCatalog(grid.Text(row, kCatalogCol))) {
            DeleteRow(grid, row);
            Run(hooks.FormatSpreadsheet);
        }
        return TagResult::Removed;
    }
    if (plan.PlanCount() >= kMaxPlanEntries) {
        ui.ShowMessage(MaxObjectsText, MaxObjectsTitle, "I");
        return TagResult::Full;
    }
    if (Blank(recordText))
        return TagResult::NoRecordId;
    plan.entries.push_back(EntryOfRow(grid, row));
    grid.SetText(row, kPlnCol, "X");
    return TagResult::Added;
}

int cmdATP_Click(TabPlan& plan, Grid& grid, services::UiPort& ui, const PlanHooks& hooks)
{
    if (!plan.PlanActive)
        StartPlan(plan, ui, hooks);
    int added = 0;
    for (int row = 1; row <= grid.MaxRows(); ++row) {
        if (Blank(grid.Text(row, kRecordIdCol)) || grid.Text(row, kPlnCol).starts_with('X'))
            continue;
        if (plan.PlanCount() >= kMaxPlanEntries) {
            ui.ShowMessage(MaxObjectsText, MaxObjectsTitle, "I");
            break;
        }
        plan.entries.push_back(EntryOfRow(grid, row));
        grid.SetText(row, kPlnCol, "X");
        ++added;
    }
    return added;
}

bool StopPlan(TabPlan& plan, services::UiPort& ui, const PlanHooks& hooks)
{
    if (!plan.PlanActive) {
        ui.ShowMessage(NotTaggedText, InvalidUsageTitle, "I");
        return false;
    }
    plan.PlanActive = false;
    plan.entries.clear();
    Run(hooks.mnuRfsh_Click);
    if (hooks.LoadTheGrid)
        hooks.LoadTheGrid("BUILD");
    if (hooks.SetMisc)
        hooks.SetMisc("");
    Run(hooks.CalcMoonPhase);
    return true;
}

bool ShowPlan(int currTab, const TabPlan& plan, services::UiPort& ui, const PlanHooks& hooks)
{
    if (currTab >= kPlanTabs || currTab < 0) {
        ui.ShowMessage(NeedsTabText, NeedsTabTitle, "I");
        return false;
    }
    if (plan.PlanCount() == 0) {
        ui.ShowMessage(NotTaggedText, NotTaggedTitle, "I");
        return false;
    }
    Run(hooks.LoadPlan);
    return true;
}

std::string PlanSaveName(const std::string& chosen)
{
    if (chosen.empty())
        return {};
    std::string name = chosen;
    if (vb::UCase(name.size() >= 4 ? name.substr(name.size() - 4) : name) != ".PLN")
        name += ".PLN";
    const std::string fileName = std::filesystem::path(name).filename().string();
    if (vb::UCase(fileName) == "*.PLN")
        return {};
    return name;
}

bool mnuSavePs_Click(int currTab, const TabPlan& plan, services::UiPort& ui)
{
    if (currTab >= kPlanTabs || currTab < 0) {
        ui.ShowMessage(NeedsTabText, NeedsTabTitle, "I");
        return false;
    }
    if (plan.PlanCount() == 0) {
        ui.ShowMessage(NotTaggedText, NotTaggedTitle, "I");
        return false;
    }
    const std::string name =
        PlanSaveName(ui.AskSaveFile(SaveDialogTitle, PlanFilter, PlanDefaultExt, ""));
    if (name.empty())
        return false;
    std::error_code ec;
    if (std::filesystem::exists(name, ec) && !ui.Ask(OverwriteQuestion, OverwriteTitle, true))
        return false;
    return services::Trap(ui, SavePlanLocation, [&] { WritePlanFile(name, plan.entries); });
}

PlanOpened OpenPlanFile(TabPlan& plan, const std::filesystem::path& path,
                        services::UiPort& ui, const PlanIdLookup& lookup,
                        const PlanHooks& hooks, const std::string& location)
{
    PlanOpened result;
    plan.PlanFile = path.string();
    const bool shipped = IsShippedPlan(plan.PlanFile);
    bool busy = false;
    bool read = services::Trap(ui, location, [&] {
        const std::string bytes = ReadPlanBytes(path);
        ui.Busy(services::BusyKind::Loading);
        busy = true;
        PlanRead planRead = ReadPlanText(bytes);
        plan.entries = std::move(planRead.entries);
        result.largestRecordId = planRead.largestRecordId;
        if (shipped && lookup)
            RepairShippedIds(plan.entries, lookup);
        ui.EndBusy();
        busy = false;
        if (!planRead.fault.empty())
            throw services::Fault(planRead.fault, location);
        if (planRead.truncated)
            ui.ShowMessage(MaxObjectsText, MaxObjectsTitle, "I");
    });
    if (busy)
        ui.EndBusy();
    if (!read)
        return result;
    plan.PlanActive = true;
    result.opened = true;
    Run(hooks.LoadPlan);
    return result;
}

PlanOpened mnuOpenPS_Click(TabPlan& plan, services::UiPort& ui, const PlanIdLookup& lookup,
                           const PlanHooks& hooks)
{
    const std::string name = ui.AskOpenFile(OpenDialogTitle, PlanFilter);
    if (name.empty())
        return {};
    return OpenPlanFile(plan, name, ui, lookup, hooks, OpenPlanLocation);
}

PlanOpened cboPlan_Click(TabPlan& plan, const std::filesystem::path& programDir,
                         const std::string& name, services::UiPort& ui,
                         const PlanIdLookup& lookup, const PlanHooks& hooks)
{
    if (name.empty() || vb::UCase(name) == "*.PLN")
        return {};
    return OpenPlanFile(plan, programDir / name, ui, lookup, hooks, ChosenPlanLocation);
}

std::string PlanSql(const TabPlan& plan)
{
    std::string ids;
    std::string order;
    int position = 0;
    for (const PlanEntry& e : plan.entries) {
        if (IsSolarCatalog(e.PlanCatalog))
            continue;
        const std::string id = vb::Format(e.PlanRecordID, "");
        ids += (ids.empty() ? "" : ", ") + id;
        order += " When " + id + " Then " + std::to_string(position++);
    }
    if (ids.empty())
        return "Select * From SelvaneTable Where 1 = 0";
    return "Select * From SelvaneTable Where ID In (" + ids + ") Order By Case ID" + order +
           " End";
}

GridLoad LoadPlan(AppState& TMM, Grid& grid, const TabPlan& plan,
                  const astro::Clock& computerClock)
{
    GridLoad load;
    load.planCount = plan.PlanCount();
    // Every row of a plan load is in the plan (its query asks for the plan's ids); the mark
    // tells whether its entry has a note.
    load.planMark = [&plan](double recordId) { return PlanMark(plan, recordId); };
    const std::string currentSql = TMM.SQL;
    const bool planLoad = TMM.PlanLoad;
    const bool useLog = TMM.UseLogDatabase;
    TMM.SQL = PlanSql(plan);
    TMM.PlanLoad = true;
    TMM.UseLogDatabase = false;
    LoadTheGrid(TMM, grid, LoadMode::NoBuild, load, computerClock);
    TMM.SQL = currentSql;
    TMM.PlanLoad = planLoad;
    TMM.UseLogDatabase = useLog;
    TMM.status.selected = "Selected " + std::to_string(plan.PlanCount()) + " objects";
    return load;
}

PlanIntoGrid OpenPlanIntoGrid(AppState& TMM, Grid& grid, TabPlan& plan,
                              const std::filesystem::path& path,
                              const astro::Clock& computerClock)
{
    PlanIntoGrid result;
    PlanHooks hooks;
    hooks.LoadPlan = [&] { result.load = LoadPlan(TMM, grid, plan, computerClock); };
    PlanIdLookup lookup;
    if (TMM.objectDb)
        lookup = ShippedIdLookup(*TMM.objectDb);
    result.opened = OpenPlanFile(plan, path, TMM.ui, lookup, hooks, ChosenPlanLocation);
    return result;
}

PlanIdLookup ShippedIdLookup(data::Database& db)
{
    return [&db](const std::string& objectId,
                 const std::string& catalog) -> std::optional<double> {
        data::Recordset rs = db.OpenRecordset(ShippedIdSql(objectId, catalog), data::Snapshot);
        if (rs.Eof())
            return std::nullopt;
        return rs.Fields("ID").Double();
    };
}

ShortCutTools LoadTPlan(const std::filesystem::path& programDir)
{
    ShortCutTools tools;
    std::error_code ec;
    const std::filesystem::path plansIcon = programDir / "plans.ico";
    const std::filesystem::path queryIcon = programDir / "query.ico";
    const bool hasPlansIcon = std::filesystem::is_regular_file(plansIcon, ec);
    const bool hasQueryIcon = std::filesystem::is_regular_file(queryIcon, ec);
    for (std::filesystem::directory_iterator it(programDir, ec), end; !ec && it != end;
         it.increment(ec)) {
        if (!it->is_regular_file(ec))
            continue;
        const std::string name = it->path().filename().string();
        const std::string ext = vb::LCase(it->path().extension().string());
        if (ext == ".pln")
            tools.plans.push_back({name, hasPlansIcon ? plansIcon : std::filesystem::path()});
        else if (ext == ".qry")
            tools.queries.push_back({name, hasQueryIcon ? queryIcon : std::filesystem::path()});
    }
    const auto byName = [](const ShortCutTool& a, const ShortCutTool& b) { return a.key < b.key; };
    std::sort(tools.plans.begin(), tools.plans.end(), byName);
    std::sort(tools.queries.begin(), tools.queries.end(), byName);
    return tools;
}

} // namespace spread
