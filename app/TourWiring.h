#pragma once
// The files made from the current tab on the main window: createtour (frmBuildTour, the hand
// controller's tour) and csc (the slide-show script for ACP).

namespace services {
class UiPort;
}
namespace spread {
class frmMainScreen;
struct AppState;
} // namespace spread

namespace app {

// Gives the main window the two commands.
// Given: window, whose dispatcher takes the keys and whose current tab gives the rows; state,
//   whose program folder, ACPPath and object database the commands use at each click; ui, the
//   program's port. All outlive the window.
void WireTours(spread::frmMainScreen& window, spread::AppState& state, services::UiPort& ui);

} // namespace app
