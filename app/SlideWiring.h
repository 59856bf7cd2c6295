#pragma once
// The telescope slide show on the main window: the key slideshow opens frmSlide, whose Start
// The Slide Show opens frmslideinp on the current tab.

#include "astro/ObservingClock.h"

namespace scope {
class SpeechPlatform;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Given: window, whose dispatcher takes the key; state, the application state; clock, the
//   computer clock; speech, the machine's speech. All outlive the window.
// Notes: the show keeps its own telescope handle; like every telescope operation it holds no
//   link between operations, so it never meets the other telescope windows' handle.
void WireSlideShow(spread::frmMainScreen& window, spread::AppState& state,
                   const astro::Clock& clock, scope::SpeechPlatform& speech);

} // namespace app
