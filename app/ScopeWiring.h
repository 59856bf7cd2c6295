#pragma once
// The telescope on the main window: the toggle lx200enable and the tools it opens (scopesetup,
// lx200cp, gotoobject, sync, cspos, scopepanel; plotscope and sslococ belong to the charts), the
// chooser over the INDI server and Alpaca discovery of the settings, the Goto of the solar-system
// windows, and the process's speech.

#include "astro/ObservingClock.h"
#include "astro/ui/OutputTable.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace scope {
class SpeechPlatform;
struct ScopeContext;
} // namespace scope
namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// What the rest of the start takes from the telescope's wiring.
struct ScopeWiring
{
    // The port's speaker: the text spoken when the setting Dsound is on.
    std::function<void(const std::string& text)> Speak;
    // LoadForm's CreateScopeVoice.
    std::function<void()> CreateScopeVoice;
    // After LoadForm: ResetTelescopeMenu, and the toggle itself enabled.
    std::function<void()> ResetMenu;
    // The solar-system windows' Goto: SolarSystemGoto while the telescope is enabled, else the
    // message that no telescope is attached.
    astro::ui::TelescopeGoto Goto;

    // What the charts take from the telescope. plotscope and sslococ: where the mount points
    // (right ascension hours, declination degrees), or nothing after the message that no
    // telescope is attached.
    std::function<std::optional<std::pair<double, double>>()> ReadScopeLocation;
    // The chart window's crosshair: the position, or nothing after a fault (shown and logged).
    std::function<std::optional<std::pair<double, double>>()> ReadCrosshair;
    // Whether the toggle lx200enable stands on "Disconnect Telescope".
    std::function<bool()> TelescopeEnabled;
    // ConnectTelescope for a chart: true when a driver is connected afterwards.
    std::function<bool()> ConnectTelescope;
    // Whether a speaking driver is registered.
    std::function<bool()> SpeechRegistered;
    // The chart window's "Slew here": a J2000 position precessed to today and slewed to, or
    // the message that no telescope is attached.
    std::function<void(double raHours, double decDeg)> SlewJ2000;
    // The process's one telescope context, for a window that runs the telescope routines itself
    // (the slide show); nothing once the main window is gone.
    std::function<scope::ScopeContext*()> Context;
};

// Gives the main window its telescope commands.
// Given: window, whose dispatcher takes the keys and whose tools the toggle opens; state, whose
//   preferences hold telescopetype and the places the chooser searches, and whose settings
//   file keeps them and the drivers' ports; ui, the program's port; clock, the computer clock;
//   speech, the machine's speech. All outlive the window.
// Notes: one telescope state, speech object and set of windows for the process, living as long
//   as the main window.
ScopeWiring WireScope(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui,
                      const astro::Clock& clock, scope::SpeechPlatform& speech);

} // namespace app
