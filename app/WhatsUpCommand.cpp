#include "app/WhatsUpCommand.h"

#include "app/GridCommand.h"
#include "astro/Text.h"
#include "data/ObjectFilter.h"
#include "data/Preferences.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/LoadTheGrid.h"
#include "spread/WhatsUpWizard.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <utility>

namespace app {

namespace {

enum class WhatsUpMode {
    Wizard,
    Messier,
    Herschel,
};

struct MagnitudeRange
{
    std::string low, high;
};

struct WhatsUpArgs
{
    std::string tab = "0";
    WhatsUpMode mode = WhatsUpMode::Wizard;
    std::vector<std::string> con, type, cat;
    std::vector<std::pair<std::string, bool>> sorts; // name, descending
    std::optional<std::string> site, date, time, minalt;
    std::optional<MagnitudeRange> mag, mag2;
    std::optional<bool> blank1, blank2, apply;
    int cancelAt = 0; // 0: never
    bool state = false;
    std::string pageOption; // the first page option given, for the list forms' usage error
    std::string error;
};

bool IsWholeNumber(const std::string& text)
{
    const std::string t = services::vb::Trim(text);
    const std::size_t digits = t.starts_with('-') || t.starts_with('+') ? 1 : 0;
    return t.size() > digits && std::all_of(t.begin() + static_cast<long>(digits), t.end(),
                                            [](char c) { return c >= '0' && c <= '9'; });
}

bool Listed(const std::vector<std::string>& list, const std::string& entry)
{
    return std::find(list.begin(), list.end(), entry) != list.end();
}

WhatsUpArgs ParseWhatsUpArgs(const std::vector<std::string>& args)
{
    WhatsUpArgs w;
    std::size_t i = 0;
    auto value = [&](const std::string& name) -> std::string {
        if (i + 1 >= args.size()) {
            w.error = name + " needs a value";
            return {};
        }
        return args[++i];
    };
    auto page = [&](const std::string& name) {
        if (w.pageOption.empty())
            w.pageOption = name;
    };
    auto flag = [&](const std::string& name, std::optional<bool>& target) {
        const std::string v = value(name);
        if (!w.error.empty())
            return;
        if (v == "Y" || v == "N")
            target = v == "Y";
        else
            w.error = name + " takes Y or N, not \"" + v + "\"";
    };
    auto range = [&](const std::string& name, std::optional<MagnitudeRange>& target) {
        const std::string v = value(name);
        if (!w.error.empty())
            return;
        const std::size_t colon = v.find(':');
        if (colon == std::string::npos)
            w.error = name + " needs LOW:HIGH, not \"" + v + "\"";
        else
            target = MagnitudeRange{v.substr(0, colon), v.substr(colon + 1)};
    };
    bool applyGiven = false;
    bool noApplyGiven = false;

    for (; i < args.size() && w.error.empty(); ++i) {
        const std::string& a = args[i];
        if (a == "--tab") {
            w.tab = value(a);
            if (w.error.empty() && !IsWholeNumber(w.tab))
                w.error = "--tab needs a tab number, not \"" + w.tab + "\"";
        } else if (a == "--messier" || a == "--herschel") {
            const WhatsUpMode mode =
                a == "--messier" ? WhatsUpMode::Messier : WhatsUpMode::Herschel;
            if (w.mode != WhatsUpMode::Wizard && w.mode != mode)
                w.error = "--messier and --herschel exclude each other";
            w.mode = mode;
        } else if (a == "--con") {
            page(a);
            const std::string entry = value(a);
            if (w.error.empty() && !Listed(spread::WizardConstellationList(), entry))
                w.error = "the constellations page does not list \"" + entry + "\"";
            w.con.push_back(entry);
        } else if (a == "--type") {
            page(a);
            w.type.push_back(value(a));
        } else if (a == "--cat") {
            page(a);
            w.cat.push_back(value(a));
        } else if (a == "--sort") {
            page(a);
            std::string name = value(a);
            if (!w.error.empty())
                break;
            bool descending = false;
            if (name.ends_with(":D")) {
                name.erase(name.size() - 2);
                descending = true;
            }
            if (w.sorts.size() == 3)
                w.error = "a fourth --sort \"" + name + "\": the wizard sorts by 3 levels";
            else if (!Listed(spread::WizardSortList(), name))
                w.error = "unknown sort name \"" + name + "\"";
            w.sorts.emplace_back(name, descending);
        } else if (a == "--site") {
            page(a);
            w.site = value(a);
        } else if (a == "--date") {
            page(a);
            w.date = value(a);
        } else if (a == "--time") {
            page(a);
            w.time = value(a);
        } else if (a == "--mag") {
            page(a);
            range(a, w.mag);
        } else if (a == "--mag2") {
            page(a);
            range(a, w.mag2);
        } else if (a == "--blank1") {
            page(a);
            flag(a, w.blank1);
        } else if (a == "--blank2") {
            page(a);
            flag(a, w.blank2);
        } else if (a == "--minalt") {
            page(a);
            w.minalt = value(a);
        } else if (a == "--apply" || a == "--no-apply") {
            page(a);
            (a == "--apply" ? applyGiven : noApplyGiven) = true;
            w.apply = a == "--apply";
        } else if (a == "--cancel-at") {
            page(a);
            const std::string p = value(a);
            if (!w.error.empty())
                break;
            const double n = services::vb::Val(p);
            if (!IsWholeNumber(p) || n < 1 || n > spread::kWizardPages)
                w.error = "--cancel-at needs a page from 1 to 6, not \"" + p + "\"";
            else
                w.cancelAt = static_cast<int>(n);
        } else if (a == "--state") {
            w.state = true;
        } else
            w.error = "unknown argument \"" + a + "\" of whatsup";
    }
    if (w.error.empty() && applyGiven && noApplyGiven)
        w.error = "--apply and --no-apply exclude each other";
    if (w.error.empty() && w.mode != WhatsUpMode::Wizard && !w.pageOption.empty())
        w.error = std::string(w.mode == WhatsUpMode::Messier ? "--messier" : "--herschel") +
                  " opens no wizard page: " + w.pageOption + " does not apply";
    return w;
}

int UsageError(const std::string& error)
{
    std::cerr << "selvane-cli: " << error << "\n" << WhatsUpUsage << "\n";
    return 2;
}

// The answers of pages 2 and 4 and the site, against the lists the wizard will offer.
std::string CheckAnswers(const WhatsUpArgs& w, const std::vector<std::string>& types,
                         const std::vector<std::string>& catalogs,
                         const std::vector<data::Place>& sites)
{
    for (const std::string& type : w.type)
        if (!Listed(types, type))
            return "the object types page does not list \"" + type + "\"";
    for (const std::string& catalog : w.cat)
        if (!Listed(catalogs, catalog))
            return "the catalogs page does not list \"" + catalog + "\"";
    if (w.site && std::none_of(sites.begin(), sites.end(), [&](const data::Place& s) {
            return services::vb::SameText(s.name, services::vb::Trim(*w.site));
        }))
        return "unknown site \"" + *w.site + "\"";
    return {};
}

// The wizard's pages clicked through: each page's options, then Next, or Cancel on the page
// asked for. Returned: false when Finish failed.
bool ClickThrough(spread::WhatsUpWizard& wizard, const WhatsUpArgs& w, services::UiPort& ui)
{
    for (int page = 1; page <= spread::kWizardPages; ++page) {
        switch (page) {
        case 1:
            for (const std::string& entry : w.con)
                wizard.lstCon.Select(entry);
            break;
        case 2:
            for (const std::string& entry : w.type)
                wizard.lstType.Select(entry);
            break;
        case 3:
            for (std::size_t level = 0; level < w.sorts.size(); ++level) {
                wizard.cbosort[level] = w.sorts[level].first;
                wizard.chkD[level] = w.sorts[level].second;
            }
            break;
        case 4:
            for (const std::string& entry : w.cat)
                wizard.lstCat.Select(entry);
            break;
        case 5:
            if (w.site)
                wizard.SelectSite(*w.site);
            if (w.date)
                wizard.txtDate = *w.date;
            if (w.time)
                wizard.txtTime = *w.time;
            break;
        default:
            if (w.mag) {
                wizard.txtMagL[0] = w.mag->low;
                wizard.txtMagU[0] = w.mag->high;
            }
            if (w.mag2) {
                wizard.txtMagL[1] = w.mag2->low;
                wizard.txtMagU[1] = w.mag2->high;
            }
            if (w.blank1)
                wizard.chkIB = *w.blank1;
            if (w.blank2)
                wizard.chkIB2 = *w.blank2;
            if (w.minalt)
                wizard.txtMinAlt = *w.minalt;
            if (w.apply && *w.apply != wizard.chkwizapply)
                wizard.chkwizapply_Click(*w.apply);
            break;
        }
        if (page == w.cancelAt) {
            wizard.Cancel();
            return true;
        }
        if (!services::Trap(ui, spread::WizardNextLocation, [&] { wizard.Next(); }))
            return false;
    }
    return true;
}

// A date the load cannot read: neither blank, nor the regional short form, nor month/day/year
// or YYYY-MM-DD.
bool UnreadableDate(const std::string& date, const data::Preferences& prefs)
{
    return !services::vb::Trim(date).empty() &&
           !services::vb::ParseDate(date, data::RegionalOf(prefs)) &&
           !astro::ParseObservingDate(date);
}

int PrintState(const spread::AppState& TMM, std::ostream& out)
{
    out << "Key\tValue\n";
    for (const char* key : WhatsUpStateKeys)
        out << key << '\t' << data::GetPreference(TMM.prefs, key).value_or("") << '\n';
    out << "SQL\t" << TMM.SQL << '\n';
    out.flush();
    return out ? 0 : 1;
}

} // namespace

std::string CheckWhatsUpArgs(const std::vector<std::string>& args)
{
    return ParseWhatsUpArgs(args).error;
}

int RunWhatsUpCommand(spread::AppState& TMM, const spread::LoadFormResult& start,
                      const std::vector<std::string>& args, std::ostream& out,
                      const astro::Clock& clock)
{
    const WhatsUpArgs w = ParseWhatsUpArgs(args);
    if (!w.error.empty())
        return UsageError(w.error);
    const double tab = services::vb::Val(w.tab);
    if (tab < 0 || tab >= spread::kSpreadTabs) {
        TMM.ui.ShowMessage(data::NotSpreadsheetTabText, data::NotSpreadsheetTabTitle, "I");
        return 1;
    }
    TMM.CurrTab = static_cast<int>(tab);
    if (!start.objectDatabaseOpen || !TMM.objectDb)
        return 1;
    spread::Grid& grid = TMM.grids[static_cast<std::size_t>(TMM.CurrTab)];
    spread::GridLoad load;
    const auto loadTheGrid = [&] {
        spread::LoadTheGrid(TMM, grid, spread::LoadMode::NoBuild, load, clock);
    };

    if (w.mode != WhatsUpMode::Wizard) {
        const bool herschel = w.mode == WhatsUpMode::Herschel;
        if (!services::Trap(TMM.ui, herschel ? "ctlSpread.Wiz3" : "ctlSpread.Wiz2",
                            [&] {
                                herschel ? spread::Wiz3(TMM, loadTheGrid)
                                         : spread::Wiz2(TMM, loadTheGrid);
                            }) ||
            load.failed)
            return 1;
        return w.state ? PrintState(TMM, out) : PrintGrid(grid, out);
    }

    std::string answers;
    if (!services::Trap(TMM.ui, spread::WizardLoadLocation, [&] {
            const std::vector<data::Place> sites = TMM.logbookDb
                                                       ? data::LoadObservingSites(*TMM.logbookDb)
                                                       : std::vector<data::Place>{};
            answers = CheckAnswers(w, spread::LoadWizardTypes(*TMM.objectDb),
                                   spread::LoadWizardCatalogs(*TMM.objectDb), sites);
        }))
        return 1;
    if (!answers.empty())
        return UsageError(answers);

    spread::WizardHooks hooks;
    hooks.LoadTheGrid = loadTheGrid;
    spread::WhatsUpWizard wizard(TMM, clock, hooks);
    if (!services::Trap(TMM.ui, spread::WizardLoadLocation, [&] { wizard.Load(); }))
        return 1;
    if (!ClickThrough(wizard, w, TMM.ui))
        return 1;
    const bool finished = w.cancelAt == 0;
    if (finished && (load.failed || UnreadableDate(wizard.txtDate, TMM.prefs)))
        return 1;
    return w.state ? PrintState(TMM, out) : PrintGrid(grid, out);
}

} // namespace app
