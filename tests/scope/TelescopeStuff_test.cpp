#include "scope/TelescopeStuff.h"

#include "services/ScriptedUiPort.h"
#include "tests/TestFiles.h"
#include "tests/scope/RecordingTelescope.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>

#include <cmath>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace scope;
using scope_test::RecordingDrivers;
using scope_test::TelescopeScript;

namespace {

constexpr const char* kSimulator = "indi://127.0.0.1:7624/Telescope Simulator";

// Speech whose classes the test registers; the voices write what they hear into a list.
class RecordingSpeech : public SpeechPlatform
{
public:
    std::set<std::string, std::less<>> registered;
    std::set<std::string, std::less<>> unavailable; // classes whose objects cannot be made
    std::vector<std::string> created;
    std::vector<std::string> heard;

    bool IsRegistered(std::string_view className) override
    {
        return registered.count(className) > 0;
    }
    std::unique_ptr<Voice> CreateObject(std::string_view className) override
    {
        if (unavailable.count(className))
            return nullptr;
        created.emplace_back(className);
        struct Heard : Voice
        {
            std::vector<std::string>& heard;
            explicit Heard(std::vector<std::string>& h) : heard(h) {}
            void speak(const std::string& text) override { heard.push_back(text); }
        };
        return std::make_unique<Heard>(heard);
    }
};

// The main window's menus as the toggle leaves them.
class RecordingMenu : public TelescopeMenu
{
public:
    std::string caption = kEnableCaption;
    std::map<std::string, bool> enabled; // "band.key"
    std::vector<std::string> opened;     // in the order they were enabled
    int redraws = 0;

    std::string Caption() const override { return caption; }
    void SetCaption(const std::string& c) override { caption = c; }
    void SetToolEnabled(std::string_view band, std::string_view key, bool on) override
    {
        const std::string name = std::string(band) + "." + std::string(key);
        enabled[name] = on;
        if (on)
            opened.push_back(name);
    }
    void Redraw() override { ++redraws; }
};

class TelescopeStuffTest : public ::testing::Test
{
protected:
    TelescopeStuffTest()
    {
        ui.echo = false;
        ui.SetErrorLog(ErrorLog());
        prefs.telescopetype = kSimulator;
        prefs.Dsound = true;
        layer.MakeDriver = RecordingDrivers(script);
        layer.profileFile = temp.filePath("Selvane2000.ini").toStdString();
        voices.registered = {std::string(kScopeClass)};
    }

    std::filesystem::path ErrorLog() const { return temp.filePath("errorlog.txt").toStdString(); }

    // Every message shown, as "kind|heading|text".
    std::vector<std::string> Shown() const
    {
        std::vector<std::string> texts;
        for (const auto& s : ui.shown)
            texts.push_back(s.message.kind + "|" + s.message.ShortMessage + "|" +
                            s.message.LongMessage);
        return texts;
    }

    QTemporaryDir temp;
    services::ScriptedUiPort ui;
    data::Preferences prefs;
    TelescopeState state;
    DriverLayer layer;
    TelescopeScript script;
    RecordingSpeech voices;
    Speech speech{voices};
    astro::FixedClock clock{{2000, 1, 1, 0, 0, 0}};
    ScopeContext s{ui, prefs, state, layer, speech, clock};
};

// ---------------------------------------------------------------------------------------
// The toggle

TEST_F(TelescopeStuffTest, EnablingOpensTheToolsInTheirOrder)
{
    const std::vector<std::string> common = {
        "Telescopeb.identifyobject", "Telescopeb.cspos",     "Telescopeb.csc",
        "gridmenu.gotoobject",       "Telescopeb.slideshow", "svcharts.plotscope",
        "Telescopeb.sslococ",        "Telescopeb.scopepanel"};
    struct Row
    {
        std::string telescopetype;
        bool canSync;
        std::vector<std::string> first; // the tools before the common ones
    };
    const Row rows[] = {
        {kSimulator, true, {"Telescopeb.createtour", "gridmenu.sync"}},
        // A driver that cannot sync leaves sync closed and opens all the others.
        {kSimulator, false, {"Telescopeb.createtour"}},
        {"LXP.Telescope",
         true,
         {"Telescopeb.createtour", "gridmenu.sync", "Telescopeb.lx200cp", "Toolbar.lx200cp"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.telescopetype + (row.canSync ? " can sync" : " cannot sync"));
        ui.shown.clear();
        voices.heard.clear();
        script = {};
        script.canSync = row.canSync;
        prefs.telescopetype = row.telescopetype;
        RecordingMenu menu;

        lx200enable(s, menu);

        std::vector<std::string> expected = row.first;
        expected.insert(expected.end(), common.begin(), common.end());
        EXPECT_EQ(menu.opened, expected);
        EXPECT_EQ(menu.caption, "Disconnect Telescope");
        EXPECT_TRUE(IsTelescopeEnabled(menu));
        EXPECT_EQ(menu.redraws, 1);
        EXPECT_EQ(Shown(), std::vector<std::string>{"I|Connection Established|Your " +
                                                    row.telescopetype + " is connected"});
        EXPECT_EQ(voices.heard, std::vector<std::string>{"Telescope Control is Active."});
        // The connection test and the sync test each made, connected and dropped a driver.
        EXPECT_EQ(script.calls, (std::vector<std::string>{
                                    "SetConnected(true)", "SetConnected(false)",
                                    "SetConnected(true)", "CanSync", "SetConnected(false)"}));
        EXPECT_EQ(script.alive, 0);
        EXPECT_FALSE(state.Scope);
    }
}

TEST_F(TelescopeStuffTest, DisablingClosesEveryToolAndDropsAChartsLink)
{
    RecordingMenu menu;
    lx200enable(s, menu);
    ConnectTelescope(s); // a chart keeps the link open
    ASSERT_EQ(script.alive, 1);
    ui.shown.clear();
    voices.heard.clear();

    lx200enable(s, menu);

    EXPECT_EQ(menu.caption, "Enable The Telescope");
    EXPECT_EQ(menu.enabled.size(), kTelescopeTools.size());
    for (const auto& [tool, on] : menu.enabled)
        EXPECT_FALSE(on) << tool;
    EXPECT_EQ(script.calls.back(), "SetConnected(false)");
    EXPECT_EQ(script.alive, 0);
    EXPECT_EQ(voices.heard, std::vector<std::string>{"Telescope Control is Inactive."});
    EXPECT_EQ(Shown(),
              std::vector<std::string>{"I|Connection Disconnected|Your " + std::string(kSimulator) +
                                       " has been disconnected"});
}

TEST_F(TelescopeStuffTest, RefusedEnablingLeavesTheTelescopeDisabled)
{
    const std::string notConnected =
        "I|Attention!|Your telescope does not appear to be connected.  Please check your "
        "connections and COM port settings.";
    struct Row
    {
        const char* name;
        std::string telescopetype;
        bool installed;
        std::set<std::string> failOn;
        std::string message;
        std::string logged; // a location the error log must hold, or ""
    };
    const Row rows[] = {
        // Creating a driver from an empty name fails before the chooser could be offered.
        {"empty telescopetype", "", true, {}, notConnected, kTestConnectionLocation},
        {"driver layer absent",
         kSimulator,
         false,
         {},
         "I|Attention!|You must have the ASCOM platform installed to enable scope control.  "
         "Please download the latest platform from https://www.indilib.org",
         ""},
        {"silent host",
         kSimulator,
         true,
         {"SetConnected(true)"},
         notConnected,
         kTestConnectionLocation},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ui.shown.clear();
        script = {};
        script.failOn = row.failOn;
        std::filesystem::remove(ErrorLog());
        prefs.telescopetype = row.telescopetype;
        layer.installed = row.installed;
        int chooserCalls = 0;
        layer.Choose = [&](const std::string&) {
            ++chooserCalls;
            return std::string(kSimulator);
        };
        RecordingMenu menu;

        lx200enable(s, menu);

        EXPECT_EQ(Shown(), std::vector<std::string>{row.message});
        EXPECT_EQ(prefs.telescopetype, row.telescopetype);
        EXPECT_EQ(chooserCalls, 0);
        EXPECT_EQ(menu.caption, "Enable The Telescope");
        EXPECT_TRUE(menu.opened.empty());
        EXPECT_TRUE(voices.heard.empty());
        EXPECT_EQ(script.alive, 0);
        if (!row.installed) {
            EXPECT_TRUE(script.made.empty());
        }
        const std::string log = test_files::ReadText(ErrorLog());
        if (row.logged.empty()) {
            EXPECT_EQ(log, "");
        } else {
            EXPECT_NE(log.find(row.logged), std::string::npos) << log;
        }
    }
}

TEST_F(TelescopeStuffTest, ChooserAndControlPanel)
{
    std::string offered;
    layer.Choose = [&](const std::string& current) {
        offered = current;
        return std::string("alpaca://127.0.0.1:11111/telescope/0");
    };
    prefs.DriverType = "";
    scopesetup(s);
    EXPECT_EQ(offered, kSimulator);
    EXPECT_EQ(prefs.telescopetype, "alpaca://127.0.0.1:11111/telescope/0");
    EXPECT_EQ(prefs.DriverType, "ASCOM");

    // A cancel empties the choice.
    layer.Choose = [](const std::string&) { return std::string(); };
    ShowChooser(s);
    EXPECT_EQ(prefs.telescopetype, "");

    layer.Choose = [](const std::string&) -> std::string { throw std::runtime_error("No bus"); };
    ShowChooser(s);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), "No bus\nOccurred in : TelescopeStuff.ShowChooser");

    // The tool is open for LXP.Telescope, but only "LX200" has the control panel program.
    ui.shown.clear();
    prefs.telescopetype = "LXP.Telescope";
    EXPECT_FALSE(lx200cp(s));
    EXPECT_EQ(Shown(), std::vector<std::string>{"I|Invalid Usage!|The scope you currently have "
                                                "selected does not support this feature at "
                                                "this time"});
    prefs.telescopetype = "LX200";
    EXPECT_TRUE(lx200cp(s));
    EXPECT_EQ(ui.shown.size(), 1u);
}

TEST_F(TelescopeStuffTest, GetComPortStoresPortOneForADriverWithoutOne)
{
    EXPECT_EQ(GetComPort(s), 1);
    {
        QSettings ini(QString::fromStdString(layer.profileFile.string()), QSettings::IniFormat);
        ASSERT_EQ(ini.beginReadArray("DriverProfiles"), 1);
        ini.setArrayIndex(0);
        EXPECT_EQ(ini.value("Driver").toString().toStdString(), kSimulator);
        EXPECT_EQ(ini.value("COM Port").toString(), "1");
        ini.endArray();
    }
    // Another driver's stored port is its own; the first one's stays.
    prefs.telescopetype = "alpaca://127.0.0.1:11111/telescope/0";
    {
        QSettings ini(QString::fromStdString(layer.profileFile.string()), QSettings::IniFormat);
        ini.beginWriteArray("DriverProfiles", 2);
        ini.setArrayIndex(1);
        ini.setValue("Driver", QString::fromStdString(prefs.telescopetype));
        ini.setValue("COM Port", "4");
        ini.endArray();
    }
    EXPECT_EQ(GetComPort(s), 4);
    prefs.telescopetype = kSimulator;
    EXPECT_EQ(GetComPort(s), 1);
    EXPECT_TRUE(ui.shown.empty());
}

// ---------------------------------------------------------------------------------------
// Goto and sync

TEST_F(TelescopeStuffTest, GotoObjectSendsTheSelectionAsPrecessedText)
{
    // The clock stands at the epoch's own date, so precession moves nothing that shows in a
    // tenth of a minute.
    struct Row
    {
        std::string ra, dec;
        SlewStrings strings;
        double raHours, decDeg;
    };
    const Row rows[] = {
        // Zero degrees count as south: +00 30 goes out as -0.5, +01 30 as +1.5.
        {"05 30 00.0", "+00 30 00.0", {"05", "30.0", "+00", "30.0"}, 5.5, -0.5},
        {"05 30 00.0", "+01 30 00.0", {"05", "30.0", "+01", "30.0"}, 5.5, 1.5},
        {"05 30 00.0", "-00 30 00.0", {"05", "30.0", "-00", "30.0"}, 5.5, -0.5},
        {"05 30 00.0", "-12 30 00.0", {"05", "30.0", "-12", "30.0"}, 5.5, -12.5},
        // The seconds lose their sign when the selection is read.
        {"05 30 00.0", "-00 00 30.0", {"05", "30.0", "+00", "00.5"}, 5.5, -0.5 / 60},
        // The minutes' pattern rounds 59.96 to 60.0.
        {"23 59 57.6", "+10 00 00.0", {"23", "60.0", "+10", "00.0"}, 24.0, 10.0},
        // Fields beyond a short cell read as zeros.
        {"5", "", {"05", "00.0", "+00", "00.0"}, 5.0, 0.0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ra + " " + row.dec);
        script = {};
        voices.heard.clear();
        const GotoResult result = gotoobject(s, {row.ra, row.dec, "2000.0", "M 42"});
        EXPECT_EQ(result.strings.raHours, row.strings.raHours);
        EXPECT_EQ(result.strings.raMinutes, row.strings.raMinutes);
        EXPECT_EQ(result.strings.decDegrees, row.strings.decDegrees);
        EXPECT_EQ(result.strings.decMinutes, row.strings.decMinutes);
        ASSERT_TRUE(script.targetRa && script.targetDec);
        EXPECT_NEAR(*script.targetRa, row.raHours, 1e-12);
        EXPECT_NEAR(*script.targetDec, row.decDeg, 1e-12);
        EXPECT_TRUE(script.arrived);
        EXPECT_TRUE(result.result);
        EXPECT_TRUE(state.LastSlewResult);
        EXPECT_EQ(voices.heard,
                  (std::vector<std::string>{"Slewing Scope to Object M 42", "Target is Locked."}));
        EXPECT_EQ(script.calls.back(), "SetConnected(false)");
        EXPECT_EQ(script.alive, 0);
    }
    ASSERT_FALSE(ui.busyMessages.empty());
    EXPECT_EQ(ui.busyMessages[0].kind, "10");
    EXPECT_EQ(ui.busyMessages[0].ShortMessage, "Slewing " + std::string(kSimulator));
    EXPECT_FALSE(ui.busy);
    EXPECT_TRUE(ui.shown.empty());
}

TEST_F(TelescopeStuffTest, GotoPrecessesToTheComputerClocksDate)
{
    // M 42 from J2000 to 2026 Jan 1, by the annual rates m = 3.075 s, n = 1.336 s = 20.04":
    // right ascension +2.95 s/yr, 35m 17.3s + 76.7 s = 36.57 min; declination +2.16"/yr,
    // -5 23.47' + 0.94' = -5 22.53'. The texts keep a tenth of a minute.
    clock.Set({2026, 1, 1, 22, 0, 0});
    const GotoResult result = gotoobject(s, {"05 35 17.3", "-05 23 28.0", "2000.0", "M 42"});
    EXPECT_EQ(result.strings.raHours, "05");
    EXPECT_EQ(result.strings.raMinutes, "36.6");
    EXPECT_EQ(result.strings.decDegrees, "-05");
    EXPECT_EQ(result.strings.decMinutes, "22.5");
}

TEST_F(TelescopeStuffTest, SolarSystemGotoRoundsDeclinationToWholeMinutes)
{
    struct Row
    {
        astro::Hms ra;
        astro::Dms dec;
        SlewStrings strings;
        double decDeg;
    };
    const Row rows[] = {
        // Exactly 30 seconds keep their minutes; more raise them.
        {{5, 30, 45}, {10, 20, 30}, {"05", "30.7", "+10", "20"}, 10 + 20.0 / 60},
        {{5, 30, 45}, {10, 20, 30.5}, {"05", "30.7", "+10", "21"}, 10 + 21.0 / 60},
        {{5, 30, 45}, {10, 59, 31}, {"05", "30.7", "+11", "00"}, 11},
        // The tenth is cut, not rounded.
        {{23, 59, 59.9}, {-10, 20, 0}, {"23", "59.9", "-10", "20"}, -10 - 20.0 / 60},
        {{0, 0, 5.9}, {0, 30, 0}, {"00", "00.0", "00", "30"}, -0.5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.strings.raMinutes + " " + row.strings.decDegrees + " " +
                     row.strings.decMinutes);
        const SlewStrings strings = SolarSystemSlewStrings(row.ra, row.dec);
        EXPECT_EQ(strings.raHours, row.strings.raHours);
        EXPECT_EQ(strings.raMinutes, row.strings.raMinutes);
        EXPECT_EQ(strings.decDegrees, row.strings.decDegrees);
        EXPECT_EQ(strings.decMinutes, row.strings.decMinutes);
        script = {};
        EXPECT_TRUE(SolarSystemGoto(s, row.ra, row.dec));
        ASSERT_TRUE(script.targetDec);
        EXPECT_NEAR(*script.targetDec, row.decDeg, 1e-12);
    }
}

TEST_F(TelescopeStuffTest, SyncAlignsOnTheRowsCellsWithoutPrecession)
{
    struct Row
    {
        std::string ra, dec;
        bool canSync;
        double raHours, decDeg;
        std::string message;
    };
    const std::string aligned = "I|Scope Aligned|Your telescope has been aligned.";
    const Row rows[] = {
        {"05 35 17.3", "-05 23 28.0", true, 5 + 35 / 60.0 + 17 / 3600.0,
         -(5 + 23 / 60.0 + 28 / 3600.0), aligned},
        // A leading "-" makes even a declination of seconds only negative.
        {"00 00 00.0", "-00 00 30.0", true, 0, -30 / 3600.0, aligned},
        {"05 35 17.3", "-05 23 28.0", false, 0, 0,
         "E|Scope Sync Error|Your telescope has NOT been aligned."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ra + " " + row.dec);
        script = {};
        script.canSync = row.canSync;
        ui.shown.clear();
        EXPECT_EQ(SyncScope(s, row.ra, row.dec), row.canSync);
        EXPECT_EQ(Shown(), std::vector<std::string>{row.message});
        EXPECT_EQ(script.Called("SyncToTarget"), row.canSync);
        if (row.canSync) {
            ASSERT_TRUE(script.targetRa && script.targetDec);
            EXPECT_NEAR(*script.targetRa, row.raHours, 1e-12);
            EXPECT_NEAR(*script.targetDec, row.decDeg, 1e-12);
        }
        EXPECT_EQ(script.alive, 0);
    }
}

// ---------------------------------------------------------------------------------------
// The connect rule after a fault

TEST_F(TelescopeStuffTest, AFaultIsReportedAtItsLocationAndTheDriverReleased)
{
    struct Row
    {
        std::string failing;
        std::string location;
        std::function<void()> operation;
    };
    const Row rows[] = {
        {"SetConnected(true)", kSlewLocation,
         [&] {
             SolarSystemGoto(s, {1, 0, 0}, {1, 0, 0});
         }},
        {"SlewToTarget", kSlewLocation,
         [&] {
             SolarSystemGoto(s, {1, 0, 0}, {1, 0, 0});
         }},
        {"SyncToTarget", kSyncLocation, [&] { SyncScope(s, "01 00 00.0", "+01 00 00.0"); }},
        {"CanSync", kCanSyncLocation, [&] { CheckCanSync(s); }},
        {"Declination", kPositionLocation, [&] { GetScopePosition(s); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.failing);
        script = {};
        script.failOn = {row.failing};
        ui.shown.clear();
        std::filesystem::remove(ErrorLog());

        row.operation();

        ASSERT_EQ(ui.shown.size(), 1u);
        EXPECT_EQ(ui.shown[0].message.kind, "E");
        EXPECT_EQ(ui.shown[0].Text(),
                  row.failing + " failed at 127.0.0.1:7624\nOccurred in : " + row.location);
        const std::string log = test_files::ReadText(ErrorLog());
        EXPECT_NE(log.find(" LOCATION OF ERROR: " + row.location), std::string::npos) << log;
        EXPECT_EQ(script.calls.back(), "SetConnected(false)");
        EXPECT_EQ(script.alive, 0);
        EXPECT_FALSE(ui.busy);

        // The next operation makes and connects a new driver.
        script.failOn.clear();
        ui.shown.clear();
        EXPECT_TRUE(CheckCanSync(s));
        EXPECT_EQ(script.made.size(), 2u);
        EXPECT_TRUE(ui.shown.empty());
    }
}

TEST_F(TelescopeStuffTest, ConnectTelescopeOnlyLogsAndKeepsTheLinkForTheNextOperation)
{
    script.failOn = {"SetConnected(true)"};
    ConnectTelescope(s);
    EXPECT_TRUE(ui.shown.empty());
    EXPECT_NE(test_files::ReadText(ErrorLog()).find("TelescopeStuff_ConnectTelescope"),
              std::string::npos);
    EXPECT_EQ(script.alive, 0);

    script = {};
    ConnectTelescope(s);
    ConnectTelescope(s);
    EXPECT_EQ(script.alive, 1);
    EXPECT_TRUE(state.Scope->Connected());
    // The operation uses the chart's link as it stands, and drops it at its end.
    script.calls.clear();
    EXPECT_TRUE(CheckCanSync(s));
    EXPECT_EQ(script.calls, (std::vector<std::string>{"CanSync", "SetConnected(false)"}));
    EXPECT_EQ(script.made.size(), 1u);
    EXPECT_EQ(script.alive, 0);
}

TEST_F(TelescopeStuffTest, AClickOnTheSlewingMessageStopsTheSlew)
{
    script.slewPolls = 100;
    ui.cancelAfterPumps = 3; // the first pump only gives way to the window
    EXPECT_TRUE(SolarSystemGoto(s, {5, 0, 0}, {20, 0, 0}));
    EXPECT_TRUE(script.Called("AbortSlew"));
    EXPECT_FALSE(script.arrived);
    EXPECT_EQ(ui.pumps, 3);
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(),
              "The slew was stopped\nOccurred in : TelescopeStuff.SlewTelescope");
    EXPECT_FALSE(ui.busy);
    EXPECT_EQ(script.alive, 0);

    // A driver that cannot slew is told nothing.
    script = {};
    script.canSlew = false;
    ui.shown.clear();
    ui.cancelAfterPumps = -1;
    EXPECT_TRUE(SolarSystemGoto(s, {5, 0, 0}, {20, 0, 0}));
    EXPECT_EQ(Shown(), std::vector<std::string>{
                           "E|ERROR|The selected scope is not capable of automatic slewing"});
    EXPECT_FALSE(script.targetRa || script.targetDec || script.Called("SlewToTarget"));
}

// ---------------------------------------------------------------------------------------
// Position

// A DegreesToDMS text read back, in degrees.
double FromDMS(const std::string& text)
{
    double d = 0, m = 0, sec = 0;
    std::string t = text;
    const auto mark = t.find("\u00df");
    t.replace(mark, 2, " ");
    std::istringstream in(t);
    char c = 0;
    in >> d >> m >> c >> sec;
    const double value = std::fabs(d) + m / 60 + sec / 3600;
    return text[0] == '-' ? -value : value;
}

TEST_F(TelescopeStuffTest, PositionTextsComeFromTheDriverOrAreComputed)
{
    script.ra = 18.697374558;
    script.dec = 20;
    struct Row
    {
        const char* name;
        std::optional<double> altitude, azimuth;
        std::set<std::string> failOn;
        std::string altitudeText, azimuthText;
    };
    const Row rows[] = {
        {"driver values", 45.50389, 200.25, {}, "45\u00df30' 14\"", "200\u00df15' 00\""},
        // Failures end the step: both texts stay empty, RA and Dec are kept.
        {"azimuth fails", 45.0, 200.0, {"Azimuth"}, "", ""},
        {"altitude fails", 45.0, 200.0, {"Altitude"}, "", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        script.altitude = row.altitude;
        script.azimuth = row.azimuth;
        script.failOn = row.failOn;
        const ScopePosition p = GetScopePosition(s);
        EXPECT_TRUE(p.result);
        EXPECT_EQ(p.ra, 18.697374558);
        EXPECT_EQ(p.dec, 20);
        EXPECT_EQ(p.altitudeText, row.altitudeText);
        EXPECT_EQ(p.azimuthText, row.azimuthText);
        EXPECT_TRUE(ui.shown.empty());
        EXPECT_EQ(script.alive, 0);
    }

    // A driver without them: computed for the site at the computer clock. At 2000 Jan 1 12h UT
    // the sidereal time at Greenwich is 18h 41m 50.5s (Astronomical Almanac), so this position
    // is on the meridian: altitude 90 - (50 - 20) = 60, azimuth 180. Tolerance: the routine's
    // sidereal time and the one-second texts, 0.01 degrees in altitude, 0.05 in azimuth.
    script.failOn.clear();
    script.altitude.reset();
    script.azimuth.reset();
    prefs.Plat = 50;
    prefs.PLon = 0;
    prefs.PTz = 0;
    prefs.PStd = "S";
    clock.Set({2000, 1, 1, 12, 0, 0});
    const ScopePosition p = GetScopePosition(s);
    ASSERT_FALSE(p.altitudeText.empty());
    EXPECT_NEAR(FromDMS(p.altitudeText), 60, 0.01) << p.altitudeText;
    EXPECT_NEAR(FromDMS(p.azimuthText), 180, 0.05) << p.azimuthText;
}

TEST(DegreesToDMS, RoundsSecondsAndCarries)
{
    const std::pair<double, const char*> rows[] = {
        {45.50389, "45\u00df30' 14\""},   {5.25, "05\u00df15' 00\""},
        {-0.5, "-00\u00df30' 00\""},      {-12.999999, "-13\u00df00' 00\""},
        {359.99999, "360\u00df00' 00\""}, {-0.0001, "00\u00df00' 00\""},
        {0.0, "00\u00df00' 00\""},
    };
    for (const auto& [degrees, text] : rows)
        EXPECT_EQ(DegreesToDMS(degrees), text) << degrees;
}

TEST_F(TelescopeStuffTest, ThePositionWindowsLabels)
{
    ScopePosition p;
    p.ra = 5.5034166667;
    p.dec = -20.25;
    p.altitudeText = "45\u00df30' 14\"";
    p.azimuthText = "-05\u00df00' 00\"";
    const ScopePosLabels labels = ScopePosTexts(kSimulator, p);
    EXPECT_EQ(labels.lblRa, "5h 30m 12.3s");
    EXPECT_EQ(labels.lblDec, "-20h 15m 0s");
    EXPECT_EQ(labels.lblAlt, "45 30' 14");
    EXPECT_EQ(labels.lblAzm, "-05 00' 00");
    const ScopePosLabels kept = ScopePosTexts("NEXSTAR", p);
    EXPECT_EQ(kept.lblAlt, p.altitudeText);
    EXPECT_EQ(kept.lblAzm, p.azimuthText);
    EXPECT_EQ(ScopePosTexts("ULTIMA", {}).lblDec, "+0h 0m 0s");

    // GetPos reads under its own busy message and gives empty labels for a driver that fails
    // after right ascension and declination.
    script.ra = 5.5034166667;
    script.dec = 20.25;
    script.failOn = {"Azimuth"};
    const ScopePosShown shown = GetPos(s);
    ASSERT_TRUE(shown.labels);
    EXPECT_EQ(shown.labels->lblDec, "+20h 15m 0s");
    EXPECT_EQ(shown.labels->lblAlt, "");
    EXPECT_EQ(shown.labels->lblAzm, "");
    ASSERT_EQ(ui.busyMessages.size(), 1u);
    EXPECT_EQ(ui.busyMessages[0].kind, "8");
    EXPECT_EQ(ui.busyMessages[0].ShortMessage, "Getting " + std::string(kSimulator) + " Position");
    EXPECT_FALSE(ui.busy);
    EXPECT_EQ(ScopePosTitle(kSimulator), std::string(kSimulator) + " Current Position");
}

// ---------------------------------------------------------------------------------------
// Speech

TEST_F(TelescopeStuffTest, SpeechGates)
{
    struct Row
    {
        const char* name;
        std::set<std::string, std::less<>> registered, unavailable;
        bool sound;
        std::vector<std::string> created;
        int heard;
    };
    const std::string scope(kScopeClass), telescope(kTelescopeClass);
    const Row rows[] = {
        {"both classes", {scope, telescope}, {}, true, {"ACP.Voice"}, 2},
        {"scope only", {scope}, {}, true, {"ACP.Voice"}, 1},
        {"telescope only", {telescope}, {}, true, {"ACP.Voice"}, 1},
        {"neither", {}, {}, true, {}, 0},
        {"sound off", {scope, telescope}, {}, false, {}, 0},
        {"fallback voice", {scope}, {"ACP.Voice"}, true, {"LX200.Voice"}, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        RecordingSpeech platform;
        platform.registered = row.registered;
        platform.unavailable = row.unavailable;
        Speech speech(platform);
        speech.CreateScopeVoice(row.sound);
        speech.Speak("Target is Locked.", row.sound);
        EXPECT_EQ(platform.created, row.created);
        EXPECT_EQ(platform.heard, std::vector<std::string>(static_cast<std::size_t>(row.heard),
                                                           "Target is Locked."));
    }

    // The command line's voice writes a line per spoken text; without a voice, nothing.
    for (const bool voiceExists : {true, false}) {
        std::ostringstream out;
        StreamSpeech platform(out, voiceExists);
        Speech speech(platform);
        speech.Speak("Telescope Control is Active.", true);
        EXPECT_EQ(out.str(), voiceExists ? "[speak] Telescope Control is Active.\n" : "");
    }
}

} // namespace
