#pragma once
// The home target: a chosen object (or the telescope) from which the spreadsheet's column 23
// "Sep" and the separation limits of the filter's Ranges 2 tab measure while targeting is on.
// It lives for the run and is never saved; the settings keys Target... stay unused.
//
// Units: the target's position is kept as the grid's fixed-position texts, right ascension
// "HH MM SS.S" (column 7) and declination "sDD MM SS.S" (column 8); the mount is read in
// decimal hours and degrees; separations are in degrees.

#include "astro/FaultSink.h"
#include "astro/Time.h"
#include "data/ObjectFilter.h"
#include "services/UiPort.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace spread {

class Grid;

inline constexpr const char* SetHomeLocation = "ctlSpread.SetHome";
inline constexpr const char* HomeHintText =
    "You can now turn on targeting by going to the RANGES 2 tab on the spreadsheet screen and "
    "click the TARGET button or you can use the Nearby Target Object Search option on the "
    "PLANNER pull down menu.";
inline constexpr const char* HomeHintTitle = "Home Target Set";

// frmTarget's texts.
inline constexpr const char* ScopeNotEnabledText =
    "You have the scope checkbox selected, however you have not enabled scope control.";
inline constexpr const char* ScopeNotEnabledTitle = "Scope Not Enabled";
inline constexpr const char* TurnOffCaption = "Turn Off";
inline constexpr const char* TurnOnCaption = "Turn On";
inline constexpr const char* TargetingOnText = "Targeting is On";
inline constexpr const char* TargetingOffText = "Targeting is Off";
inline constexpr const char* NoTargetText = "none";
inline constexpr const char* TelescopeText = "Telescope";

// The process-wide home target, held in AppState.
struct Targeting
{
    std::string TargetObjectID; // "" when none
    std::string TargetCatalog;
    std::string TargetRA;            // the grid text of column 7
    std::string TargetDec;           // the grid text of column 8
    bool TargetingOn = false;        // column 23 shows the distance to the target
    bool TargetIsScope = false;      // the target is where the telescope points
    bool TargetPositionRead = false; // the mount has been read in this load
    bool HomeHintShown = false;      // the hint after SetHome has been shown this run
    bool CheckAdjacent = false;      // chkNear of Identify and NTOS; starts at gCAConst
    bool CheckAdjacentSet = false;   // CheckAdjacent has been taken from gCAConst

    // The mount as last read for TargetIsScope: hours, degrees.
    double scopeRaHours = 0;
    double scopeDecDeg = 0;

    // Set by the program, since the spreadsheet does not reach the telescope itself: whether
    // the telescope is enabled, and where the mount points (hours, degrees; nothing when it
    // could not be read). Unset: no telescope.
    std::function<bool()> ScopeEnabled;
    std::function<std::optional<std::pair<double, double>>()> ReadScope;
};

// SetHome: the row's ObjectID (column 4), Catalog (24), R.A. (7) and Dec. (8) become the home
// target. The first time in the run HomeHintText is shown under HomeHintTitle, kind I.
// Given: row, from 1; a row outside the grid changes nothing.
// Location: ctlSpread.SetHome
void SetHome(Targeting& target, const Grid& grid, int row, services::UiPort& ui);

// The centre separations are measured from.
struct TargetCentre
{
    astro::Hms ra;
    astro::Dms dec;
};

// A grid position text split at fixed places: right ascension hours at characters 1-2, minutes
// 4-5, seconds the last four; declination degrees 1-3 (with the sign), minutes 5-6, seconds the
// last four.
// Notes: the sign of "-00 30 00.0" goes with the minutes, so the text stays south.
astro::Hms SplitRaText(std::string_view ra);
astro::Dms SplitDecText(std::string_view dec);

// A decimal position as ConvertFromDecimal splits it, the sign carried by the first non-zero
// field of the declination.
TargetCentre CentreOfDecimal(double raHours, double decDeg);

// The target's centre for one load: while TargetIsScope and the telescope is enabled, the mount
// (read once: TargetPositionRead is set after the read); otherwise the texts TargetRA and
// TargetDec.
// Returned: nothing when the mount could not be read.
std::optional<TargetCentre> TargetCentreOf(Targeting& target);

// TMM.GetSeparation: the distance in degrees from the target to a position given as grid texts.
// Status: CalcAngSep's faults; diametrically opposite positions give 0. A mount that cannot be
//   read gives 0.
double GetSeparation(Targeting& target, std::string_view ra, std::string_view dec,
                     astro::FaultSink& faults);
double SeparationFrom(const TargetCentre& centre, const astro::Hms& ra, const astro::Dms& dec,
                      astro::FaultSink& faults);

// The filter's separation limits while targeting is on: they apply to the distance computed in
// the load, not to the field Separation, so the filter given to BuildSQLSelectString leaves its
// separation boxes empty.
data::ObjectFilter FilterForSql(const Targeting& target, data::ObjectFilter filter);

// The separation limits of the filter, degrees: empty boxes read 0 and 9999.
struct SeparationLimits
{
    double low = 0;
    double high = 9999;
    bool Holds(double separation) const { return separation >= low && separation <= high; }
};
SeparationLimits SeparationLimitsOf(const data::ObjectFilter& filter);

// frmTarget's labels for the state of chkScopeHome.
struct TargetLabels
{
    std::string captionHome, captionCatalog, captionRa, captionDec; // "ObjectID:", ...
    std::string lblHome, lblCatalog, lblra, lblDec;
};
TargetLabels TargetLabelsOf(const Targeting& target, bool chkScopeHome);

// cmdTurn_Click: the toggle. With chkScopeHome on while the telescope is not enabled, shows
// ScopeNotEnabledText (kind E) and changes nothing.
// Returned: true when targeting was turned on or off (TargetIsScope then follows chkScopeHome).
bool cmdTurn_Click(Targeting& target, bool chkScopeHome, services::UiPort& ui);

// The caption of cmdTurn and the text of lblOnOff for the state.
std::string TurnCaption(const Targeting& target);
std::string OnOffText(const Targeting& target);

} // namespace spread
