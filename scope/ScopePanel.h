#pragma once
// The control panel's operations (frmScopePanel): each one follows the connect-per-operation
// rule of TelescopeStuff (connect, do, release, also after a fault) and reports its faults
// through the port at "frmScopePanel.<operation>". The window only calls them.
//
// Units: the position's labels are frmScopePos's texts (ScopePosTexts).

#include "scope/TelescopeStuff.h"

#include <optional>
#include <string>

namespace scope {

inline constexpr const char* kPanelRefreshLocation = "frmScopePanel.Refresh";
inline constexpr const char* kPanelMoveLocation = "frmScopePanel.MoveAxis";
inline constexpr const char* kPanelStopLocation = "frmScopePanel.AbortSlew";
inline constexpr const char* kPanelTrackingLocation = "frmScopePanel.Tracking";
inline constexpr const char* kPanelSetTrackingLocation = "frmScopePanel.SetTracking";
inline constexpr const char* kPanelParkLocation = "frmScopePanel.Park";
inline constexpr const char* kPanelUnparkLocation = "frmScopePanel.Unpark";

// The seconds between two position reads of the panel: ScopeDelay1, at least 1.
int PanelRefreshSeconds(const data::Preferences& prefs);

// The position as the panel shows it.
// Returned: nothing after a fault, which is reported.
// Location: frmScopePanel.Refresh
std::optional<ScopePosLabels> PanelPosition(ScopeContext& s);

// Starts (moving true) or stops the motion towards a direction. The mount keeps moving
// between the two calls, with no link held.
// Returned: false after a fault.
// Location: frmScopePanel.MoveAxis
bool PanelMove(ScopeContext& s, Direction direction, bool moving);

// Stops every motion, a slew included.
// Location: frmScopePanel.AbortSlew
bool PanelStop(ScopeContext& s);

// Whether the mount tracks; nothing when the driver does not say, or after a fault.
// Location: frmScopePanel.Tracking
std::optional<bool> PanelTracking(ScopeContext& s);

// Location: frmScopePanel.SetTracking
bool PanelSetTracking(ScopeContext& s, bool on);

// Location: frmScopePanel.Park
bool PanelPark(ScopeContext& s);

// Location: frmScopePanel.Unpark
bool PanelUnpark(ScopeContext& s);

} // namespace scope
