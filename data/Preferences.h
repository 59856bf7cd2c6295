#pragma once
// The user's preferences as typed values, each member named by its key in the settings store
// (section "Preferences"), with the defaults taken when a key is missing. Per-tab keys hold
// tabs 1 to 5 at indices 0 to 4 (key "CFontName3" is CFontName[2]).
// Angles in degrees, longitude positive west, time zone in hours behind Greenwich.

#include "services/Vb.h"

#include <QLocale>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace data {

class SettingsStore;

struct ProgramDir;

struct Preferences
{
    std::string ProgramName = "Selvane 2003";

    // Observing place and time.
    std::string PDate;
    std::string Ptime = "22:00";
    double Plat = 46.5;
    double PLon = 90.2;
    double PTz = 6;
    std::string PStd = "S";
    std::string tLogTime = "Local";
    std::string UseRealTime = "N";
    std::string RefreshTime = "0";
    int PInterval = 10;

    // Spreadsheet computing and filters.
    std::string Palt = "Y";
    std::string Prise = "N";
    bool optimum = false;
    bool ShowCharts = false;
    bool ShowHer = false;
    bool Shers = false;
    std::string PPre;
    std::string Pminalt;
    std::string Psupo = "N";
    std::string PMaxMag = "8";
    std::string PMaxSize;
    double PAzm1 = 0;
    double PAzm2 = 0;
    double PAzm3 = 0;
    double PAzm4 = 0;
    bool DataLogType = false;
    bool speed1 = false;
    long rowret = 0;
    bool timesAMPM = true;
    bool zerosup = true;
    bool autosizespread = true;

    // Filter ranges, as typed.
    std::string gMagL = "-1", gMagU = "999", gMagL2 = "-1", gMagU2 = "999";
    std::string gSizeL = "0", gSizeU = "9999", gSepL = "0", gSepH = "9999";
    std::string gPAL = "0", gPAH = "360", gFRAH = "0", gTRAH = "24";
    std::string gFDECD = "-90", gTDECD = "90";
    std::string gFRAM, gTRAM, gFDECM, gTDECM, gmagdif, gmagdif2, gObjID, gOther;
    std::string PIB = "N", PIB2 = "Y", PIB3 = "Y";
    std::string ObCat = "NGC 2000;", Obcon = "Ori-Orion;", Obtod = "All Types";
    std::string sort1, sort2, sort3, Des1, Des2, Des3;

    // What's Up.
    std::string PmSort = "4", Pmsorto = "A", PsSort = "1", Pssorto = "A";
    bool wuw = false;        // the What's Up wizard has been opened
    bool wizapppref = false; // the wizard's values stay in force after Finish

    // Telescope.
    std::string DriverType = "ASCOM";
    std::string telescopetype;
    // Where the chooser looks for telescopes: an indiserver, and the address Alpaca discovery
    // is sent to.
    std::string indiserver = "127.0.0.1:7624";
    std::string alpacadiscovery = "255.255.255.255:32227";
    std::string Comport;
    int ScopeDelay1 = 3;
    int LX200Delay = 0;
    bool Synclx200 = false;
    double gDegScope = 1;
    std::string TargetID, TargetCatalog, TargetRA, TargetDec;
    bool TargetScope = false;
    std::string gIDMag = "10";
    bool gCAConst = false;

    // Paths; the empty defaults of cdDrive, STychoPath, HGCPath and SVImagePath are made from
    // the program folder by LoadPreferences.
    std::string cdDrive;
    bool UseCd = false;
    std::string fitspath, CartesPath, MoonRisePath, AutoBackupPath;
    std::string ACPPath; // the folder of the observatory program ACP; empty: not installed
    std::string STychoPath, HGCPath, SVImagePath;

    // Regional, overwritten by GetLocalization.
    std::string dateformat = "mm/dd/yy";
    std::string datesep = "/";
    std::string decimalchar = ".";
    bool LogDateHelp = false;

    // Look of the grids, per tab.
    std::array<std::string, 5> CFontName{"Courier New", "Courier New", "Courier New",
                                         "Courier New", "Courier New"};
    std::array<double, 5> CFontSize{8, 8, 8, 8, 8};
    std::array<bool, 5> Cfontbold{};
    std::array<std::string, 5> cfontcolor{"0", "0", "0", "0", "0"};
    std::array<std::string, 5> cgridcolor{"8454143", "8454143", "8454143", "8454143",
                                          "8454143"};
    std::array<std::string, 5> cgridobjcolor{"8453888", "8453888", "8453888", "8453888",
                                             "8453888"};
    std::string TargetColor = "8421631";
    std::string LogGridFont = "Courier New";
    std::string LogGridFontSize = "8";
    std::string Logcgridcolor1 = "8454143";
    std::string Logcgridobjcolor1 = "8453888";

    // Charts.
    std::string ShowCI = "C";
    bool ShowBW = false;
    bool ShowTelrad = false;
    bool ShowMilky = true;
    int ShowCircle = 0;
    double repChartFOV = 15;
    // The finder report's eyepiece panel shows the true field of each eyepiece of eyepiece.dat
    // with the first telescope of scope.dat.
    bool repEyepieces = false;
    bool chartnotes = true;
    bool chartsmp = false;
    bool chartstarsonly = false;
    bool chartcentercso = false;
    bool chartcentercon = true;
    double chartfield = 35;
    double RealSkyFOV = 0.75;
    std::string TCaption = "Selvane";
    std::string dssEpoch = "J2000";
    std::string dssHeight = "15";
    std::string dssWidth = "15";
    std::string dssSurvey = "3";
    // The layers of the own charts, comma-separated; the faintest star magnitude drawn (blank:
    // by the field); the outside planetarium, "cdc://HOST:PORT" or "stellarium://HOST:PORT".
    std::string chartlayers = "stars,names,dso,lines,bounds,conames,milkyway,grid";
    std::string chartmag;
    std::string planetarium = "cdc://127.0.0.1:3292";

    // Other.
    bool FIRST = true;
    int maintab = 0;
    int intTabs = 9;
    bool LargeFonts = false;
    std::string Ltype = "Default";
    bool Dsound = false;
    // An indi:// driver stands for the keypad mount LXP.Telescope in the slide show.
    bool keypad = false;
    std::string printpref = "C";
    // The settings files the database and log reports last applied; empty: the program
    // folder's Default.Rpt and default2.Rpl.
    std::string defReport;
    std::string defReportL;
    // The certificates list what is still to observe after what has been observed.
    bool CertMissing = false;
    bool CIMess = false;
    bool CIHers = false;
    int FindOnTop = 1;
    int FindDefault = 1;
    int FindID = 0;
    int FindDisplay = 0;
    int PaintEffect = 0;
    int PaintDelay = 30;
    int PaintGrain = 10;
    int staticpainteffect = 52;
    std::string gTimeServer = "pool.ntp.org";
    std::string ObserverName; // the observer named in exported logs
};

// The program's version numbers, written by SavePreferences as major, minor and revision.
inline constexpr int VersionMajor = 1;
inline constexpr int VersionMinor = 0;
inline constexpr int VersionRevision = 0;

// What LoadPreferences found that it could not use: the key and its stored text, and the
// rule's message when a rule refused it (empty when the text is not of the key's type).
struct PreferencesReset
{
    std::string key;
    std::string stored;
    std::string why;
};

// Reads every key in a fixed order into prefs, each missing key taking its default.
// Given: store, the settings file; programDir, the folder that the path defaults are made from;
//   regional, the machine's date form for the dates' rules (data/PreferenceRules.h).
// Returns: the value that reset the preferences, if one did.
// Notes: a stored value that cannot be converted to its member's type (empty text for a number,
// "abc" for a latitude), or that its key's rule refuses (a latitude of 90, the date 02/29/2025),
// deletes the whole section: that key and every later one take their defaults, the keys read
// before it keep their values in memory until the next save, and the next start is a first run
// (FIRST True).
std::optional<PreferencesReset> LoadPreferences(Preferences& prefs, SettingsStore& store,
                                                const ProgramDir& programDir,
                                                const services::vb::Regional& regional = {});

// The message telling the observer which value reset the preferences (kind "I").
std::string PreferencesResetText(const PreferencesReset& reset);

// Writes every key in the same order, numbers and Yes/No values as text ("True", "False"),
// the keys Plon, Staticpainteffect and des1 to des3 in that case, then major, minor, revision.
void SavePreferences(const Preferences& prefs, SettingsStore& store);

// Overwrites dateformat, datesep and decimalchar with the machine's regional values.
void GetLocalization(Preferences& prefs, const QLocale& locale);
// The regional formats the preferences hold.
services::vb::Regional RegionalOf(const Preferences& prefs);

// Sets one preference by its key (any case) from its stored text.
// Returns: empty on success, else the reason ("unknown setting ...", "... is not a number").
std::string SetPreference(Preferences& prefs, const std::string& key, const std::string& text);

// Every key LoadPreferences reads, in its order.
std::vector<std::string> PreferenceKeys();

// The stored text of one preference by its key; nothing for an unknown key.
std::optional<std::string> GetPreference(const Preferences& prefs, const std::string& key);

} // namespace data
