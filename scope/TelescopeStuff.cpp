#include "scope/TelescopeStuff.h"

#include "astro/FaultSink.h"
#include "astro/Position.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <system_error>

#include <QSettings>
#include <QString>

namespace scope {

namespace vb = services::vb;

namespace {

constexpr const char* kDegreeMark = "\u00df";
constexpr const char* kNotConnectedMessage =
    "Your telescope does not appear to be connected.  Please check your connections and COM "
    "port settings.";
constexpr const char* kNoDriverLayerMessage =
    "You must have the ASCOM platform installed to enable scope control.  Please download the "
    "latest platform from";

// The driver of telescopetype, made into Scope.
Telescope& MakeScope(ScopeContext& s)
{
    const std::string& id = s.prefs.telescopetype;
    if (s.layer.MakeDriver)
        s.state.Scope = s.layer.MakeDriver(id);
    if (!s.state.Scope)
        throw TelescopeError(id.empty() ? "No telescope driver has been chosen"
                                        : "No telescope driver can be made from \"" + id + "\"");
    return *s.state.Scope;
}

// Step 1 of the rule.
Telescope& Connect(ScopeContext& s)
{
    if (s.state.Scope)
        return *s.state.Scope;
    MakeScope(s).SetConnected(true);
    return *s.state.Scope;
}

// The busy window of an operation, closed when the operation ends, also by a fault: so the
// fault's window is never hidden behind it.
class BusyMessage
{
public:
    BusyMessage(services::UiPort& ui, const std::string& kind, const std::string& text) : ui_(ui)
    {
        ui_.BusyMessage(kind, text);
    }
    ~BusyMessage() { Close(); }
    void Close()
    {
        if (open_)
            ui_.EndBusy();
        open_ = false;
    }

private:
    services::UiPort& ui_;
    bool open_ = true;
};

// Faults of the astronomy routines, shown and logged through the port.
class PortFaultSink : public astro::FaultSink
{
public:
    explicit PortFaultSink(services::UiPort& ui) : ui_(ui) {}
    void ReportFault(std::string_view message, std::string_view location) override
    {
        ui_.ReportFault(std::string(message), std::string(location));
    }
    void EndProcess(int exitCode) override { services::EndProcess(exitCode); }

private:
    services::UiPort& ui_;
};

// Faults of a step whose errors are ignored: the first one ends the step.
struct IgnoredFault
{
};
class EndStepFaultSink : public astro::FaultSink
{
public:
    void ReportFault(std::string_view, std::string_view) override { throw IgnoredFault{}; }
    void EndProcess(int) override { throw IgnoredFault{}; }
};

using services::vb::Mid;

// The last four characters of a cell, but never those before column first (1-based): a cell
// too short for its seconds gives none.
std::string LastFour(const std::string& text, std::size_t first)
{
    return Mid(text, std::max(text.size() < 3 ? std::size_t{0} : text.size() - 3, first), 4);
}

// A driver's profile value, kept in the settings file as entries of the array DriverProfiles
// (Driver, then the values by name): identifiers hold "/", which the file's keys cannot.
class DriverProfiles
{
public:
    explicit DriverProfiles(const std::filesystem::path& file)
        : ini_(QString::fromStdString(file.string()), QSettings::IniFormat)
    {
    }

    std::string GetValue(const std::string& driver, const std::string& name)
    {
        const int count = ini_.beginReadArray(kDriverProfilesGroup);
        std::string value;
        for (int i = 0; i < count; ++i) {
            ini_.setArrayIndex(i);
            if (ini_.value("Driver").toString().toStdString() == driver) {
                value = ini_.value(QString::fromStdString(name)).toString().toStdString();
                break;
            }
        }
        ini_.endArray();
        return value;
    }

    void WriteValue(const std::string& driver, const std::string& name, const std::string& value)
    {
        const int count = ini_.beginReadArray(kDriverProfilesGroup);
        int index = count;
        for (int i = 0; i < count && index == count; ++i) {
            ini_.setArrayIndex(i);
            if (ini_.value("Driver").toString().toStdString() == driver)
                index = i;
        }
        ini_.endArray();
        ini_.beginWriteArray(kDriverProfilesGroup, std::max(count, index + 1));
        ini_.setArrayIndex(index);
        ini_.setValue("Driver", QString::fromStdString(driver));
        ini_.setValue(QString::fromStdString(name), QString::fromStdString(value));
        ini_.endArray();
        ini_.sync();
        if (ini_.status() != QSettings::NoError)
            throw services::Fault("The settings file " + ini_.fileName().toStdString() +
                                      " cannot be written",
                                  kComPortLocation);
    }

private:
    QSettings ini_;
};

} // namespace

// ---------------------------------------------------------------------------------------
// Drivers and connection

void ReleaseScope(TelescopeState& state) noexcept
{
    if (!state.Scope)
        return;
    try {
        state.Scope->SetConnected(false);
    } catch (...) {
        // Deliberate: a link already lost cannot be dropped; the driver goes all the same.
    }
    state.Scope.reset();
}

void ConnectTelescope(ScopeContext& s)
{
    if (!services::TrapSilently(s.ui, kConnectLocation, [&] { Connect(s); }))
        ReleaseScope(s.state); // a half-made link would only fail the next operation
}

void ShowChooser(ScopeContext& s)
{
    services::Trap(s.ui, kChooserLocation, [&] {
        // Deliberate: a cancelled choice empties telescopetype, as the chooser answers "".
        s.prefs.telescopetype = s.layer.Choose ? s.layer.Choose(s.prefs.telescopetype) : "";
        s.prefs.DriverType = "ASCOM";
    });
}

void scopesetup(ScopeContext& s)
{
    ShowChooser(s);
}

std::int16_t GetComPort(ScopeContext& s)
{
    std::int16_t port = 0;
    services::Trap(s.ui, kComPortLocation, [&] {
        DriverProfiles profiles(s.layer.profileFile);
        std::string value = profiles.GetValue(s.prefs.telescopetype, "COM Port");
        if (value.empty()) {
            value = "1";
            profiles.WriteValue(s.prefs.telescopetype, "COM Port", value);
        }
        port = static_cast<std::int16_t>(vb::Val(value));
    });
    return port;
}

bool CheckASCOM(ScopeContext& s)
{
    ReleaseScope(s.state);
    return s.layer.installed;
}

bool TestConnection(ScopeContext& s)
{
    const bool ok = services::TrapSilently(s.ui, kTestConnectionLocation, [&] {
        Telescope& scope = MakeScope(s);
        scope.SetConnected(true);
        scope.SetConnected(false);
    });
    if (ok)
        s.state.Scope.reset();
    else
        ReleaseScope(s.state);
    return ok;
}

void Speak(ScopeContext& s, const std::string& text)
{
    s.speech.Speak(text, s.prefs.Dsound);
}

// ---------------------------------------------------------------------------------------
// The toggle

bool IsTelescopeEnabled(const TelescopeMenu& menu)
{
    return menu.Caption() == kDisconnectCaption;
}

void ResetTelescopeMenu(TelescopeMenu& menu, const std::filesystem::path& programDir)
{
    menu.SetCaption(kEnableCaption);
    for (const TelescopeTool& tool : kTelescopeTools)
        menu.SetToolEnabled(tool.band, tool.key, false);
    menu.Redraw();
    std::error_code ignored;
    std::filesystem::remove(programDir / "NEXSTAR.TMP", ignored);
}

void lx200enable(ScopeContext& s, TelescopeMenu& menu)
{
    if (IsTelescopeEnabled(menu)) {
        menu.SetCaption(kEnableCaption);
        for (const TelescopeTool& tool : kTelescopeTools)
            menu.SetToolEnabled(tool.band, tool.key, false);
        menu.Redraw();
        ReleaseScope(s.state);
        Speak(s, "Telescope Control is Inactive.");
        s.ui.ShowMessage("Your " + s.prefs.telescopetype + " has been disconnected",
                         "Connection Disconnected", "I");
        return;
    }

    if (!CheckASCOM(s)) {
        s.ui.ShowMessage(std::string(kNoDriverLayerMessage) + " " + kDriverLayerAddress,
                         "Attention!", "I");
        return;
    }
    if (!TestConnection(s)) {
        s.ui.ShowMessage(kNotConnectedMessage, "Attention!", "I");
        return;
    }
    // Only reached by a driver made from an empty identifier; kept as a guard.
    if (s.prefs.telescopetype.empty()) {
        ShowChooser(s);
        if (s.prefs.telescopetype.empty())
            return;
    }

    menu.SetCaption(kDisconnectCaption);
    const bool lxp = s.prefs.telescopetype == "LXP.Telescope";
    for (const TelescopeTool& tool : kTelescopeTools) {
        if (tool.key == "sync" && !CheckCanSync(s))
            continue;
        if (tool.key == "lx200cp" && !lxp)
            continue;
        menu.SetToolEnabled(tool.band, tool.key, true);
    }
    menu.Redraw();
    Speak(s, "Telescope Control is Active.");
    s.ui.ShowMessage("Your " + s.prefs.telescopetype + " is connected", "Connection Established",
                     "I");
}

bool lx200cp(ScopeContext& s)
{
    // Deliberate: the tool opens for LXP.Telescope but only "LX200" has the program.
    if (s.prefs.telescopetype != "LX200") {
        s.ui.ShowMessage("The scope you currently have selected does not support this feature at "
                         "this time",
                         "Invalid Usage!", "I");
        return false;
    }
    return true;
}

// ---------------------------------------------------------------------------------------
// Goto and sync

SlewTarget SlewTargetOf(const SlewStrings& strings)
{
    SlewTarget target;
    target.raHours = vb::Val(strings.raHours) + vb::Val(strings.raMinutes) / 60.0;
    const double degrees = vb::Val(strings.decDegrees);
    const double minutes = vb::Val(strings.decMinutes);
    // Deliberate: zero degrees count as south, so "+00 30" goes out as -0.5.
    target.decDeg = degrees > 0 ? degrees + minutes / 60.0 : degrees - minutes / 60.0;
    return target;
}

bool SlewTelescope(ScopeContext& s, const SlewStrings& strings)
{
    services::Trap(s.ui, kSlewLocation, [&] {
        BusyMessage busy(s.ui, "10", "Slewing " + s.prefs.telescopetype);
        s.ui.Pump();
        Telescope& scope = Connect(s);
        const SlewTarget target = SlewTargetOf(strings);
        if (scope.CanSlew()) {
            scope.SetTargetDeclination(target.decDeg);
            scope.SetTargetRightAscension(target.raHours);
            // A click on the slewing message stops the mount.
            scope.SlewToTarget([&] { return !s.ui.Pump(); });
        } else {
            busy.Close();
            s.ui.ShowMessage("The selected scope is not capable of automatic slewing", "ERROR",
                             "E");
        }
    });
    ReleaseScope(s.state);
    // Deliberate: the result says the routine ran, not that the mount arrived.
    return true;
}

SlewStrings GotoStrings(const astro::Hms& ra, const astro::Dms& dec)
{
    const char* sign = (dec.degrees < 0 || dec.minutes < 0) ? "-" : "+";
    SlewStrings strings;
    strings.raHours = vb::Format(ra.hours, "00");
    strings.raMinutes = vb::Format(ra.minutes + ra.seconds / 60.0, "00.0");
    strings.decDegrees = sign + vb::Format(std::fabs(dec.degrees), "00");
    strings.decMinutes = vb::Format(std::fabs(dec.minutes) + dec.seconds / 60.0, "00.0");
    return strings;
}

GotoResult GotoSelectedObject(ScopeContext& s, const astro::Hms& ra, const astro::Dms& dec,
                              double epoch)
{
    const astro::LocalDateTime today = s.computerClock.Now();
    PortFaultSink faults(s.ui);
    const astro::PrecessedPosition p =
        astro::Precession(vb::Format(today.year, "0"), vb::Format(today.month, "0"),
                          vb::Format(today.day, "0"), ra, dec, epoch, faults);
    GotoResult goto_;
    goto_.ra = p.ra;
    goto_.dec = p.dec;
    goto_.strings = GotoStrings(p.ra, p.dec);
    goto_.result = SlewTelescope(s, goto_.strings);
    return goto_;
}

SelectedPosition ReadSelection(const Selection& selection)
{
    SelectedPosition p;
    p.epoch = vb::Val(selection.SelectedEpoch.substr(0, 4));
    const std::string& ra = selection.SelectedRA;
    const std::string& dec = selection.SelectedDec;
    p.ra = {vb::Val(Mid(ra, 1, 2)), vb::Val(Mid(ra, 4, 2)), vb::Val(LastFour(ra, 7))};
    p.dec = {vb::Val(Mid(dec, 1, 3)), vb::Val(Mid(dec, 5, 2)), vb::Val(LastFour(dec, 8))};
    // Deliberate: the seconds keep their sign, so -00 00 30.0 reads as north.
    if (dec.starts_with('-') && p.dec.degrees == 0 && p.dec.minutes > 0)
        p.dec.minutes = -p.dec.minutes;
    return p;
}

GotoResult gotoobject(ScopeContext& s, const Selection& selection)
{
    const SelectedPosition p = ReadSelection(selection);
    Speak(s, "Slewing Scope to Object " + selection.SelectedObjectID);
    GotoResult result = GotoSelectedObject(s, p.ra, p.dec, p.epoch);
    s.state.LastSlewResult = result.result;
    // Deliberate: spoken as soon as the driver returns, whatever the result.
    Speak(s, "Target is Locked.");
    return result;
}

SlewStrings SolarSystemSlewStrings(const astro::Hms& ra, const astro::Dms& dec)
{
    const auto tenths = static_cast<std::int16_t>(vb::Fix(ra.seconds / 60.0 * 10.0));
    double degrees = dec.degrees;
    double minutes = dec.minutes;
    if (dec.seconds > 30)
        minutes += 1;
    // Deliberate: the carry raises the degrees also south of the equator.
    if (minutes >= 60) {
        minutes = 0;
        degrees += 1;
    }
    SlewStrings strings;
    strings.raHours = vb::Format(ra.hours, "00");
    strings.raMinutes = vb::Format(ra.minutes, "00") + "." + vb::Format(tenths, "0");
    strings.decDegrees = (degrees > 0 ? "+" : "") + vb::Format(degrees, "00");
    strings.decMinutes = vb::Format(minutes, "00");
    return strings;
}

bool SolarSystemGoto(ScopeContext& s, const astro::Hms& ra, const astro::Dms& dec)
{
    return SlewTelescope(s, SolarSystemSlewStrings(ra, dec));
}

SlewTarget SyncTargetOf(const std::string& raCell, const std::string& decCell)
{
    SlewTarget target;
    target.raHours = astro::ConvertToDecimal(vb::Val(Mid(raCell, 7, 2)), vb::Val(Mid(raCell, 4, 2)),
                                             vb::Val(Mid(raCell, 1, 2)));
    target.decDeg = astro::ConvertToDecimal(
        vb::Val(Mid(decCell, 8, 2)), vb::Val(Mid(decCell, 5, 2)), vb::Val(Mid(decCell, 1, 3)));
    if (decCell.starts_with('-') && target.decDeg >= 0)
        target.decDeg = -target.decDeg;
    return target;
}

bool SyncScope(ScopeContext& s, const std::string& raCell, const std::string& decCell)
{
    bool aligned = false;
    const SlewTarget target = SyncTargetOf(raCell, decCell);
    services::Trap(s.ui, kSyncLocation, [&] {
        Telescope& scope = Connect(s);
        if (scope.CanSync()) {
            scope.SetTargetDeclination(target.decDeg);
            scope.SetTargetRightAscension(target.raHours);
            scope.SyncToTarget();
            aligned = true;
            s.ui.ShowMessage("Your telescope has been aligned.", "Scope Aligned", "I");
        } else {
            s.ui.ShowMessage("Your telescope has NOT been aligned.", "Scope Sync Error", "E");
        }
    });
    ReleaseScope(s.state);
    return aligned;
}

bool CheckCanSync(ScopeContext& s)
{
    bool canSync = false;
    services::Trap(s.ui, kCanSyncLocation, [&] { canSync = Connect(s).CanSync(); });
    ReleaseScope(s.state);
    return canSync;
}

// ---------------------------------------------------------------------------------------
// Position

std::string DegreesToDMS(double degrees)
{
    const auto total = static_cast<long long>(std::llround(std::fabs(degrees) * 3600.0));
    const char* sign = (degrees < 0 && total > 0) ? "-" : "";
    return sign + vb::Format(static_cast<double>(total / 3600), "00") + kDegreeMark +
           vb::Format(static_cast<double>(total / 60 % 60), "00") + "' " +
           vb::Format(static_cast<double>(total % 60), "00") + "\"";
}

namespace {

// GetScopePosition with its faults at location; busy, when given, is closed before a fault is
// shown; read, when given, says whether the position was read without a fault.
ScopePosition ReadScopePosition(ScopeContext& s, BusyMessage* busy,
                                const char* location = kPositionLocation, bool* read = nullptr)
{
    ScopePosition p;
    p.result = true;
    s.ui.Pump();
    const bool ok = services::Trap(s.ui, location, [&] {
        struct CloseOnFault
        {
            BusyMessage* busy;
            ~CloseOnFault()
            {
                if (busy && std::uncaught_exceptions() > 0)
                    busy->Close();
            }
        } closeOnFault{busy};
        Telescope& scope = Connect(s);
        p.ra = scope.RightAscension();
        p.dec = scope.Declination();
        // Errors from here on are ignored; the first one leaves both texts empty.
        p.altitudeText.clear();
        p.azimuthText.clear();
        try {
            std::optional<double> azimuth = scope.Azimuth();
            std::optional<double> altitude = scope.Altitude();
            if (!azimuth || !altitude) {
                astro::ObservingClock now;
                now.UseRealTime = "Y";
                now.Plat = s.prefs.Plat;
                now.Plon = s.prefs.PLon;
                now.PTz = s.prefs.PTz;
                now.PStd = s.prefs.PStd;
                EndStepFaultSink faults;
                const astro::Hms hourAngle = astro::CalcHourAngle(
                    now, s.computerClock, astro::Hms{p.ra, 0, 0}, false, faults);
                const astro::AltAzm computed =
                    astro::CalcAltAzm(now, hourAngle, astro::Dms{p.dec, 0, 0}, faults);
                azimuth = azimuth.value_or(computed.azimuth);
                altitude = altitude.value_or(computed.altitude);
            }
            p.azimuthText = DegreesToDMS(*azimuth);
            p.altitudeText = DegreesToDMS(*altitude);
        } catch (...) {
            p.azimuthText.clear();
            p.altitudeText.clear();
        }
    });
    ReleaseScope(s.state);
    if (read)
        *read = ok;
    return p;
}

} // namespace

ScopePosition GetScopePosition(ScopeContext& s)
{
    return ReadScopePosition(s, nullptr);
}

std::string ScopePosTitle(const std::string& telescopetype)
{
    return telescopetype + " Current Position";
}

std::string ScopePosBusyText(const std::string& telescopetype)
{
    return "Getting " + telescopetype + " Position";
}

namespace {

// The window's form of a DegreesToDMS text: the closing mark dropped, the degree mark a blank.
std::string WindowAngleText(std::string text)
{
    if (text.empty())
        return text;
    text.pop_back();
    if (const auto mark = text.find(kDegreeMark); mark != std::string::npos)
        text.replace(mark, std::char_traits<char>::length(kDegreeMark), " ");
    return text;
}

} // namespace

ScopePosLabels ScopePosTexts(const std::string& telescopetype, const ScopePosition& position)
{
    ScopePosLabels labels;
    labels.lblAlt = position.altitudeText;
    labels.lblAzm = position.azimuthText;
    if (telescopetype != "ULTIMA" && telescopetype != "NEXSTAR") {
        labels.lblAlt = WindowAngleText(labels.lblAlt);
        labels.lblAzm = WindowAngleText(labels.lblAzm);
    }
    const astro::Sexagesimal ra = astro::ConvertFromDecimal(position.ra);
    labels.lblRa =
        vb::CStr(ra.degrees) + "h " + vb::CStr(ra.minutes) + "m " + vb::CStr(ra.seconds) + "s";
    const astro::Sexagesimal dec = astro::ConvertFromDecimal(position.dec);
    // Deliberate: "h" and "m" also mark the declination's degrees and minutes.
    labels.lblDec = std::string(1, dec.sign) + vb::CStr(dec.degrees) + "h " +
                    vb::CStr(dec.minutes) + "m " + vb::CStr(dec.seconds) + "s";
    return labels;
}

ScopePosShown GetPos(ScopeContext& s)
{
    ScopePosShown shown;
    BusyMessage busy(s.ui, "8", ScopePosBusyText(s.prefs.telescopetype));
    shown.position = ReadScopePosition(s, &busy);
    if (shown.position.result)
        shown.labels = ScopePosTexts(s.prefs.telescopetype, shown.position);
    return shown;
}

// ---------------------------------------------------------------------------------------
// For the routines of other files

Telescope& ConnectScope(ScopeContext& s)
{
    return Connect(s);
}

std::optional<ScopePosition> ReadScopePositionAt(ScopeContext& s, const char* location)
{
    bool read = false;
    ScopePosition p = ReadScopePosition(s, nullptr, location, &read);
    if (!read)
        return std::nullopt;
    return p;
}

} // namespace scope
