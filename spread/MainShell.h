#pragma once
// The main window's order of things that needs no window: the tab captions and their setting
// keys, the "Rows Returned" choices, and the shut-down sequence that runs once.

#include "astro/ObservingClock.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace services {
class UiPort;
}

namespace spread {

class Grid;

inline constexpr int kGridTabs = 5;  // tabs 0 to 4 hold object grids
inline constexpr int kImageTabs = 2; // tabs 5 and 6 the image gallery and the log images
inline constexpr const char* TabCaptionPrompt = "Enter a Caption for this Tab";
inline constexpr const char* TabCaptionTitle = "Selvane 2003";
inline constexpr const char* ImageTabCaptions[kImageTabs] = {"Image Gallery", "Log Images"};
inline constexpr const char* SwitchNeedsTabText = "Please specify a spreadsheet tab first";

// "tab1caption" to "tab5caption" for the grid tabs 0 to 4.
std::string TabCaptionKey(int tab);
// "Selv 1" to "Selv 5": the caption of a grid tab whose setting is missing.
std::string DefaultTabCaption(int tab);
// The input box's proposal when a tab is renamed: the word "Selvane" and the tab's number.
std::string TabCaptionProposal(int tab);

// The entries of the "Rows Returned" combo, in order.
const std::vector<std::string>& RowsReturnedChoices();
// rowret for a chosen entry: 0 when the text begins with "All", else its numeric value.
long RowretFromChoice(const std::string& text);
// The combo's text for a rowret value: "All Objects" for 0.
std::string RowretText(long rowret);

// ResetFilter: every row of the grid shown again.
void ResetFilter(Grid& grid);
// FilterGrid: every row shown, then each row whose cell in column col (1 to 31, the column
// clicked last) does not contain text, compared without regard to case, hidden. An empty text
// hides nothing.
void FilterGrid(Grid& grid, int col, const std::string& text);

// The real-time mode: Timer2 (every second) arms Timer1 with the refresh time; Timer1, idle
// until armed, moves the observing date and time to the computer clock and has the grid
// reloaded; Timer3 (every second) rewrites the status band's date and time.
struct RealTimeTimers
{
    bool RealTimeRearm = true;
    int timer1IntervalMs = 0; // 0: Timer1 idle
};

// Timer2: returns true when it (re)armed Timer1 with RefreshTime seconds.
bool Timer2Tick(RealTimeTimers& timers, const std::string& RefreshTime);

// The observing date ("mm/dd/yy", "/" at characters 3 and 6) and time ("hh:mm") Timer1 sets.
struct RealTimeMoment
{
    std::string PDate;
    std::string Ptime;
};
// Timer1: with UseRealTime "Y" and RefreshTime above 0, the clock's moment to set before the
// grid is reloaded with "NO BUILD", and RealTimeRearm set; otherwise nothing.
std::optional<RealTimeMoment> Timer1Tick(RealTimeTimers& timers, const std::string& UseRealTime,
                                         const std::string& RefreshTime,
                                         const astro::LocalDateTime& now);

// The steps of CloseApplication, in the order they run. A step left empty is skipped.
struct ShutDownSteps
{
    std::function<void()> SaveTheColumns;
    std::function<void()> SavePreferences;
    std::function<void()> AutoBackup;          // copies the logbook when the backup is due
    std::function<void()> DisconnectTelescope; // clears the driver's connected property
    std::function<void()> RestoreColours;      // night vision off, when it is on
    std::function<void()> SaveLayout;          // the command-bar layout, unless a reset is asked
    std::function<void()> UnloadWindows;       // every open window, last to first; ends the run
};

// The shut-down of the main window, reached from the exit command and from the window's own
// close; it runs its steps once only.
class ShutDown
{
public:
    ShutDown(services::UiPort& ui, ShutDownSteps steps) : ui_(ui), steps_(std::move(steps)) {}

    bool ClosingDown() const { return closingDown_; }

    // Runs every step once, in order; a second call does nothing.
    // Status: a failing step is reported and logged under "frmMainScreen.CloseApplication" and
    //   the next step still runs, so that a failed save never keeps the program from ending.
    void CloseApplication();

private:
    services::UiPort& ui_;
    ShutDownSteps steps_;
    bool closingDown_ = false;
};

} // namespace spread
