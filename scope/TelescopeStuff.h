#pragma once
// TelescopeStuff: the only routines that talk to a mount. A mount is reached through one
// driver object (scope::Telescope) made from the identifier in the setting telescopetype, held
// in the process-wide handle Scope for one operation only. Every operation that needs the
// mount follows the connect-per-operation rule:
//
//   1. if Scope is empty, make it from telescopetype and connect it;
//   2. perform its calls;
//   3. at its end, errors ignored: disconnect and empty Scope (also after a fault).
//
// So no link is held between operations, except that ConnectTelescope leaves one for a chart
// until the next operation's step 3.
//
// Units: right ascension in decimal hours, declination, altitude and azimuth in decimal
// degrees (driver values); sexagesimal triples as in astro/Time.h. Longitude Plon is WEST
// positive. The selection strings are the fixed-position grid texts "HH MM SS.S" (column 7)
// and "sDD MM SS.S" (column 8).
//
// The user is reached only through the port: messages, the busy window, faults. Faults of the
// driver are shown and logged at the routine's location (kSlewLocation, ...); ConnectTelescope
// only logs. Nothing is retried.

#include "astro/ObservingClock.h"
#include "astro/Time.h"
#include "data/Preferences.h"
#include "scope/Speech.h"
#include "scope/Telescope.h"
#include "services/UiPort.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace scope {

// Where the routines' faults are reported.
inline constexpr const char* kSlewLocation = "TelescopeStuff.SlewTelescope";
inline constexpr const char* kSyncLocation = "TelescopeStuff.SyncScope";
inline constexpr const char* kCanSyncLocation = "TelescopeStuff.CheckCanSync";
inline constexpr const char* kPositionLocation = "TelescopeStuff.GetScopePosition";
inline constexpr const char* kChooserLocation = "TelescopeStuff.ShowChooser";
inline constexpr const char* kComPortLocation = "TelescopeStuff.GetComPort";
inline constexpr const char* kConnectLocation = "TelescopeStuff_ConnectTelescope";
inline constexpr const char* kTestConnectionLocation = "TelescopeStuff.TestConnection";

// The caption of the tool lx200enable: the one place the toggle's state is kept.
inline constexpr const char* kEnableCaption = "Enable The Telescope";
inline constexpr const char* kDisconnectCaption = "Disconnect Telescope";

// The address given when the driver layer is missing.
inline constexpr const char* kDriverLayerAddress = "https://www.indilib.org";

// The group of the settings file that holds the driver profiles.
inline constexpr const char* kDriverProfilesGroup = "DriverProfiles";

// The process-wide telescope state.
struct TelescopeState
{
    // The driver of telescopetype; alive during one operation, or while a chart holds it.
    std::unique_ptr<Telescope> Scope;
    // The result of the most recent goto; nothing reads it for a decision.
    bool LastSlewResult = false;
};

// The driver layer as the routines reach it.
struct DriverLayer
{
    // Makes the driver of an identifier; nothing for one of no known kind. The program passes
    // MakeTelescope.
    std::function<std::unique_ptr<Telescope>(std::string_view identifier)> MakeDriver;
    // The chooser window: shows the drivers with current selected and returns the identifier
    // chosen, "" when cancelled. Unset: every choice is cancelled.
    std::function<std::string(const std::string& current)> Choose;
    // The settings file, whose group DriverProfiles keeps the drivers' ports.
    std::filesystem::path profileFile;
    // Whether the driver layer is installed: always in the program; tests take it away.
    bool installed = true;
};

// What the routines use besides their arguments.
struct ScopeContext
{
    services::UiPort& ui;
    // telescopetype, DriverType, Dsound, and the site Plat, PLon, PTz, PStd.
    data::Preferences& prefs;
    TelescopeState& state;
    DriverLayer& layer;
    Speech& speech;
    // The computer clock: the date a goto precesses to, the time a position is computed for.
    const astro::Clock& computerClock;
};

// ---------------------------------------------------------------------------------------
// Drivers and connection

// Connects Scope for a chart, if it is empty: step 1 of the rule, and the link is left open.
// Status: a failure is logged only, and Scope is left empty.
// Location: TelescopeStuff_ConnectTelescope
void ConnectTelescope(ScopeContext& s);

// Step 3 of the rule: disconnects and empties Scope, errors ignored.
void ReleaseScope(TelescopeState& state) noexcept;

// The chooser with telescopetype selected; its answer becomes telescopetype (a cancel empties
// it) and DriverType becomes "ASCOM".
// Location: TelescopeStuff.ShowChooser
void ShowChooser(ScopeContext& s);

// The command scopesetup: ShowChooser; a new driver is used from the next operation on.
void scopesetup(ScopeContext& s);

// The driver's port from its profile (value "COM Port"); when none is stored, "1" is stored
// and 1 returned.
// Status: a failure is reported and 0 returned.
// Location: TelescopeStuff.GetComPort
std::int16_t GetComPort(ScopeContext& s);

// Whether the driver layer is installed. Scope is empty afterwards.
bool CheckASCOM(ScopeContext& s);

// Makes the driver of telescopetype, connects and disconnects it. Scope is empty afterwards.
// Status: false on any failure, which is logged without a window.
// Location: TelescopeStuff.TestConnection
bool TestConnection(ScopeContext& s);

// Speaks a text through the speech gates, when Dsound is on.
void Speak(ScopeContext& s, const std::string& text);

// ---------------------------------------------------------------------------------------
// The toggle lx200enable and the telescope tools

// The menus as the toggle sees them; the main window implements it.
class TelescopeMenu
{
public:
    virtual ~TelescopeMenu() = default;
    // The caption of the tool lx200enable in the band Telescopeb.
    virtual std::string Caption() const = 0;
    virtual void SetCaption(const std::string& caption) = 0;
    virtual void SetToolEnabled(std::string_view band, std::string_view key, bool enabled) = 0;
    // Redraws the menu bars after a change.
    virtual void Redraw() = 0;
};

struct TelescopeTool
{
    std::string_view band;
    std::string_view key;
};

// The tools the toggle opens, in the order it opens them. gridmenu sync only when the driver
// can sync, the two lx200cp only for LXP.Telescope; scopepanel is the control panel.
inline constexpr std::array<TelescopeTool, 12> kTelescopeTools{{
    {"Telescopeb", "createtour"},
    {"gridmenu", "sync"},
    {"Telescopeb", "lx200cp"},
    {"Toolbar", "lx200cp"},
    {"Telescopeb", "identifyobject"},
    {"Telescopeb", "cspos"},
    {"Telescopeb", "csc"},
    {"gridmenu", "gotoobject"},
    {"Telescopeb", "slideshow"},
    {"svcharts", "plotscope"},
    {"Telescopeb", "sslococ"},
    {"Telescopeb", "scopepanel"},
}};

// Enabled exactly when the caption of lx200enable reads "Disconnect Telescope".
bool IsTelescopeEnabled(const TelescopeMenu& menu);

// The state at the start of the main window: caption "Enable The Telescope", every telescope
// tool disabled, and a leftover NEXSTAR.TMP in the program folder deleted (errors ignored).
void ResetTelescopeMenu(TelescopeMenu& menu, const std::filesystem::path& programDir);

// The toggle. Disabled: checks the driver layer and the connection, then opens the tools,
// speaks and says "Your ... is connected". Enabled: closes the tools, drops the link, speaks
// and says "Your ... has been disconnected".
void lx200enable(ScopeContext& s, TelescopeMenu& menu);

// The command lx200cp: for any driver but "LX200" the message "The scope you currently have
// selected does not support this feature at this time"; true when the LX200 control panel
// program (kLx200ControlPanel in the program folder) is to be started.
inline constexpr const char* kLx200ControlPanel = "LX200 Control Panel.exe";
bool lx200cp(ScopeContext& s);

// ---------------------------------------------------------------------------------------
// Goto and sync

// The four strings a slew is given: hours, minutes with a tenth, signed degrees, minutes.
struct SlewStrings
{
    std::string raHours;
    std::string raMinutes;
    std::string decDegrees;
    std::string decMinutes;
};

// What SlewTelescope sends for its strings.
struct SlewTarget
{
    double raHours = 0;
    double decDeg = 0;
};
// Notes: right ascension is hours + minutes/60; declination is degrees + minutes/60 when the
// degrees are above 0, else degrees - minutes/60, so "+00" with any minutes goes south.
SlewTarget SlewTargetOf(const SlewStrings& strings);

// Slews to the strings' position while the message "Slewing " + telescopetype (kind 10) is
// shown; a click on it stops the slew. A driver that cannot slew gives "The selected scope is
// not capable of automatic slewing".
// Returned: true, also after a fault.
// Location: TelescopeStuff.SlewTelescope
bool SlewTelescope(ScopeContext& s, const SlewStrings& strings);

// The strings of a precessed position: hours "00", minutes plus seconds/60 "00.0", sign and
// absolute degrees "00", absolute minutes plus seconds/60 "00.0". The sign is "-" when the
// degrees or else the minutes are below 0: negative seconds alone do not carry it.
SlewStrings GotoStrings(const astro::Hms& ra, const astro::Dms& dec);

struct GotoResult
{
    astro::Hms ra; // the position precessed to the computer clock's date
    astro::Dms dec;
    SlewStrings strings; // what went to SlewTelescope
    bool result = false;
};

// Precesses a position of an epoch (a year) to the computer clock's date and slews there.
// Location: Module1.Precession (its faults, shown), then SlewTelescope's
GotoResult GotoSelectedObject(ScopeContext& s, const astro::Hms& ra, const astro::Dms& dec,
                              double epoch);

// The selected row of the spreadsheet, as copied at each click.
struct Selection
{
    std::string SelectedRA;       // column 7, "HH MM SS.S"
    std::string SelectedDec;      // column 8, "sDD MM SS.S"
    std::string SelectedEpoch;    // column 9, the year in its first four characters
    std::string SelectedObjectID; // column 4
};

// The position gotoobject reads from the selection. A cell shorter than expected gives zeros.
// Notes: "-00 MM" puts the sign on the minutes; the seconds never carry it, so -00 00 30.0
// reads as north of the equator.
struct SelectedPosition
{
    astro::Hms ra;
    astro::Dms dec;
    double epoch = 0;
};
SelectedPosition ReadSelection(const Selection& selection);

// The command gotoobject: speaks, slews to the selection precessed to today, speaks
// "Target is Locked." whatever the result, and keeps the result in LastSlewResult.
GotoResult gotoobject(ScopeContext& s, const Selection& selection);

// The strings of the solar-system goto (the Sun, Moon and planet windows' Goto), without
// precession: the minutes of right ascension get the tenth of seconds/60 cut, not rounded;
// declination seconds above 30 raise the minutes (exactly 30 keeps them) and 60 minutes raise
// the degrees; the sign "+" only for degrees above 0.
SlewStrings SolarSystemSlewStrings(const astro::Hms& ra, const astro::Dms& dec);
bool SolarSystemGoto(ScopeContext& s, const astro::Hms& ra, const astro::Dms& dec);

// The position SyncScope reads from the RA and Dec cells of the current tab's active row:
// hours, minutes, seconds at characters 1-2, 4-5, 7-8; degrees, minutes, seconds at 1-3, 5-6,
// 8-9 (tenths of seconds dropped). A leading "-" makes the declination negative.
SlewTarget SyncTargetOf(const std::string& raCell, const std::string& decCell);

// Aligns the mount on the cells' position, in their own epoch (no precession): "Your telescope
// has been aligned." or, for a driver that cannot sync, "Your telescope has NOT been aligned."
// Returned: true when the mount was aligned.
// Location: TelescopeStuff.SyncScope
bool SyncScope(ScopeContext& s, const std::string& raCell, const std::string& decCell);

// Whether the driver can sync.
// Status: a fault is reported and false returned.
// Location: TelescopeStuff.CheckCanSync
bool CheckCanSync(ScopeContext& s);

// ---------------------------------------------------------------------------------------
// Position

struct ScopePosition
{
    double ra = 0;            // hours
    double dec = 0;           // degrees
    std::string altitudeText; // DegreesToDMS, or empty
    std::string azimuthText;
    bool result = false;
};

// Reads where the mount points. Altitude and azimuth are the driver's when it gives them,
// else computed from right ascension and declination for Plat and Plon at the computer clock;
// any failure there leaves both texts empty and is not reported.
// Returned: result true, also after a fault, which leaves the outputs as they stood.
// Location: TelescopeStuff.GetScopePosition
ScopePosition GetScopePosition(ScopeContext& s);

// An angle as "[-]DD" + U+00DF + "MM' SS\"", degrees of at least two digits, seconds rounded
// to whole ones (carrying into minutes and degrees). 45.50389 gives "45ß30' 14\"".
std::string DegreesToDMS(double degrees);

// The window frmScopePos: its title, the busy text while reading, and its four labels.
std::string ScopePosTitle(const std::string& telescopetype);
std::string ScopePosBusyText(const std::string& telescopetype);

struct ScopePosLabels
{
    std::string lblRa;  // "5h 30m 12.3s"
    std::string lblDec; // "-20h 15m 0s": the letters h and m stand for the declination too
    std::string lblAlt; // "45 30' 14"
    std::string lblAzm;
};

// The labels of a position read. For any driver but "ULTIMA" and "NEXSTAR" the altitude and
// azimuth texts lose their last character and their degree mark becomes a blank.
ScopePosLabels ScopePosTexts(const std::string& telescopetype, const ScopePosition& position);

// GetPos of frmScopePos: the busy message "Getting ... Position" (kind 8), the position, and
// the labels when the position was read.
struct ScopePosShown
{
    ScopePosition position;
    std::optional<ScopePosLabels> labels;
};
ScopePosShown GetPos(ScopeContext& s);

// The callers' message for a position that could not be read.
inline constexpr const char* kNoTelescopeMessage =
    "Could not find telescope attached.  Please check to make sure the cable between the scope "
    "and the computer are connected and that you have selected the proper scope driver in "
    "preferences";

// ---------------------------------------------------------------------------------------
// For the routines of other files (the control panel)

// Step 1 of the rule: Scope, made from telescopetype and connected when it is empty. Throws
// TelescopeError; the caller traps it and ends with ReleaseScope.
Telescope& ConnectScope(ScopeContext& s);

// GetScopePosition with its faults shown and logged at location, under the rule.
// Returned: nothing after a fault.
std::optional<ScopePosition> ReadScopePositionAt(ScopeContext& s, const char* location);

} // namespace scope
