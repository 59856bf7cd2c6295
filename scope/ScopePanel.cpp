#include "scope/ScopePanel.h"

#include "services/Fault.h"

#include <algorithm>

namespace scope {

namespace {

// One operation under the rule: connect, do, release whatever happened.
bool Operate(ScopeContext& s, const char* location, const std::function<void(Telescope&)>& body)
{
    const bool ok = services::Trap(s.ui, location, [&] { body(ConnectScope(s)); });
    ReleaseScope(s.state);
    return ok;
}

} // namespace

int PanelRefreshSeconds(const data::Preferences& prefs)
{
    return std::max(prefs.ScopeDelay1, 1);
}

std::optional<ScopePosLabels> PanelPosition(ScopeContext& s)
{
    const std::optional<ScopePosition> position = ReadScopePositionAt(s, kPanelRefreshLocation);
    if (!position)
        return std::nullopt;
    return ScopePosTexts(s.prefs.telescopetype, *position);
}

bool PanelMove(ScopeContext& s, Direction direction, bool moving)
{
    return Operate(s, kPanelMoveLocation,
                   [&](Telescope& scope) { scope.MoveAxis(direction, moving); });
}

bool PanelStop(ScopeContext& s)
{
    return Operate(s, kPanelStopLocation, [](Telescope& scope) { scope.AbortSlew(); });
}

std::optional<bool> PanelTracking(ScopeContext& s)
{
    std::optional<bool> tracking;
    Operate(s, kPanelTrackingLocation, [&](Telescope& scope) { tracking = scope.Tracking(); });
    return tracking;
}

bool PanelSetTracking(ScopeContext& s, bool on)
{
    return Operate(s, kPanelSetTrackingLocation, [on](Telescope& scope) { scope.SetTracking(on); });
}

bool PanelPark(ScopeContext& s)
{
    return Operate(s, kPanelParkLocation, [](Telescope& scope) { scope.Park(); });
}

bool PanelUnpark(ScopeContext& s)
{
    return Operate(s, kPanelUnparkLocation, [](Telescope& scope) { scope.Unpark(); });
}

} // namespace scope
