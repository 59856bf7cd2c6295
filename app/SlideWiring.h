#pragma once
// The telescope slide show on the main window: the key slideshow opens frmSlide, whose Start
// The Slide Show opens frmslideinp on the current tab.

#include <functional>

namespace scope {
struct ScopeContext;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Given: window, whose dispatcher takes the key; state, the application state; telescope, the
//   process's telescope context (ScopeWiring::Context), which the show's gotos and keypad use.
//   All outlive the window.
void WireSlideShow(spread::frmMainScreen& window, spread::AppState& state,
                   std::function<scope::ScopeContext*()> telescope);

} // namespace app
