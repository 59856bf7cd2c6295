#pragma once
// The program's own start: settings, files, the filter panel, the databases, and tab 0 loaded
// with the Messier list, whatever the filters say. selvane runs it from the main window's Load
// event and selvane-cli before its command; windows are reached only through the hooks.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/Plans.h"

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace spread {

inline constexpr const char* LoadFormLocation = "ctlSpread.LoadForm";
inline constexpr const char* ObjectDatabaseFailedTitle = "The object database could not be opened.";
inline constexpr const char* ChooseDatabaseText = "Choose the object database in the preferences.";
// Deliberate: the double comma is a pause for the speech engine.
inline constexpr const char* FirstRunSpeech =
    "To begin,, change preferences and click the Refresh Button.  You can turn off Speech at "
    "any time using Miscellaneous Preferences.";
inline constexpr const char* EnableTelescopeCaption = "Enable The Telescope";

// The telescope tools, disabled until a link is made.
// Deliberate: the toggle lx200enable itself stays enabled, or no link could ever be made.
inline constexpr std::array<std::string_view, 9> TelescopeTools{
    "identifyobject", "createtour", "lx200cp",    "csc",  "cspos",
    "slideshow",      "sslococ",    "gotoobject", "sync",
};

// What the start asks of the windows. Each hook is optional: a missing one is skipped, so
// selvane-cli and the tests run the same start without windows.
struct LoadFormHooks
{
    // Called with each step's routine name as the step begins, in order.
    std::function<void(std::string_view step)> Trace;
    std::function<void(std::string_view key, bool visible)> SetToolVisible;
    std::function<void(std::string_view key, bool enabled)> SetToolEnabled;
    std::function<void(std::string_view key, std::string_view caption)> SetToolCaption;
    // The plan and query groups of the short-cut band.
    std::function<void(const ShortCutTools& tools)> ShowShortCuts;
    // frmSetupWizard, modal; true when the user finished it (false: cancelled).
    std::function<bool()> ShowSetupWizard;
    // Hides the grids of tabs 0 to 4 while the first tab loads (true), shows them (false).
    std::function<void(bool hidden)> HideGrids;
    std::function<void()> UnloadStartupImage;
    std::function<void()> GetTabCaptions;
    // The speech object of the telescope, made when a telescope is chosen and sound is on.
    std::function<void()> CreateScopeVoice;
    // The filter page of the last session (maintab).
    std::function<void(int page)> SelectFilterPage;
};

struct LoadFormResult
{
    bool objectDatabaseOpen = false;
    std::string convertLogbook; // an earlier logbook to convert, from CheckConvertLog
    bool startListLoaded = false; // tab 0's load ran to its end without a failure
};

// LoadForm: the start, in this order: the program folder seeded from resources (missing files
// only); settings and regional formats; NEXSTAR.TMP deleted; the filter labels and their
// selections; the sort options; dso.dat deleted; tools by outside programs; the telescope
// tools disabled; the logbook opened, the short-cut band filled; the filter boxes; the setup
// wizard on a first run; the logbook's link rebuilt; the object database opened; tab 0 loaded
// with the Messier list; the Herschel cross-reference; the filter controls and status band; the
// conversion check; tab captions; the first-run speech; the filter page.
// Given: TMM (its port, folder and settings store); resources, the shipped files; hooks;
//   computerClock, for the observing time when real time is on.
// Returned: whether the object database opened, and an earlier logbook to convert.
// Status: when the object database cannot be opened, the reason is shown and the setup
//   wizard offered again after each failure; without a wizard, or when it is cancelled, the
//   start goes on without the database and tab 0 stays empty. Failures of the file steps are
//   reported under "ctlSpread.LoadForm" and the start goes on.
// Location: ctlSpread.LoadForm
LoadFormResult LoadForm(AppState& TMM, const std::filesystem::path& resources,
                        const LoadFormHooks& hooks, const astro::Clock& computerClock);

// LoadHer: the Herschel cross-reference from the lines of Href.txt, characters 1 to 4 and 8 to
// 25 of each line (shorter lines give what they have). A missing file gives no entries.
std::vector<HerschelRef> LoadHer(const std::filesystem::path& file);

} // namespace spread
