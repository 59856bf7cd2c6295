#include "data/Preferences.h"

#include "data/PreferenceRules.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/Vb.h"

#include <QString>

#include <cmath>
#include <limits>
#include <type_traits>

namespace data {

namespace {

// Conversions of a stored text to a member's type, failing where the earlier edition's
// conversion raised a type mismatch or an overflow.
bool Convert(const std::string& text, std::string& out)
{
    out = text;
    return true;
}

bool Convert(const std::string& text, double& out)
{
    bool ok = false;
    const double value = QString::fromStdString(text).trimmed().toDouble(&ok);
    if (ok)
        out = value;
    return ok;
}

// Whole numbers round half to even, as the earlier edition's conversion did.
template <typename Int>
bool ConvertWhole(const std::string& text, Int& out)
{
    double value = 0;
    if (!Convert(text, value))
        return false;
    value = std::nearbyint(value);
    if (value < static_cast<double>(std::numeric_limits<Int>::min()) ||
        value > static_cast<double>(std::numeric_limits<Int>::max()))
        return false;
    out = static_cast<Int>(value);
    return true;
}

bool Convert(const std::string& text, int& out)
{
    std::int16_t value = 0; // the earlier edition's integers were 16 bits wide
    if (!ConvertWhole(text, value))
        return false;
    out = value;
    return true;
}

bool Convert(const std::string& text, long& out)
{
    std::int32_t value = 0;
    if (!ConvertWhole(text, value))
        return false;
    out = value;
    return true;
}

bool Convert(const std::string& text, bool& out)
{
    const QString t = QString::fromStdString(text).trimmed();
    if (t.compare("True", Qt::CaseInsensitive) == 0)
        return out = true, true;
    if (t.compare("False", Qt::CaseInsensitive) == 0)
        return out = false, true;
    double value = 0;
    if (!Convert(text, value))
        return false;
    out = value != 0;
    return true;
}

std::string ToText(const std::string& value)
{
    return value;
}
std::string ToText(double value)
{
    // The shortest text that reads back as the same number, with "." as settings always use.
    return QString::number(value, 'g', 15).toStdString();
}
std::string ToText(int value)
{
    return std::to_string(value);
}
std::string ToText(long value)
{
    return std::to_string(value);
}
std::string ToText(bool value)
{
    return value ? "True" : "False";
}

// Calls visit(loadKey, saveKey, member, defaultValue) for every key in the fixed order of the
// load and the save.
template <typename Prefs, typename Visit>
void VisitKeys(Prefs& p, const ProgramDir& dir, Visit&& visit)
{
    using S = std::string;
    visit("PDate", "PDate", p.PDate, S());
    visit("Ptime", "Ptime", p.Ptime, S("22:00"));
    visit("Plat", "Plat", p.Plat, 46.5);
    visit("PLon", "Plon", p.PLon, 90.2);
    visit("PTz", "PTz", p.PTz, 6.0);
    visit("PStd", "PStd", p.PStd, S("S"));
    visit("tLogTime", "tLogTime", p.tLogTime, S("Local"));
    visit("UseRealTime", "UseRealTime", p.UseRealTime, S("N"));
    visit("RefreshTime", "RefreshTime", p.RefreshTime, S("0"));
    visit("PInterval", "PInterval", p.PInterval, 10);

    visit("Palt", "Palt", p.Palt, S("Y"));
    visit("Prise", "Prise", p.Prise, S("N"));
    visit("optimum", "optimum", p.optimum, false);
    visit("ShowCharts", "ShowCharts", p.ShowCharts, false);
    visit("ShowHer", "ShowHer", p.ShowHer, false);
    visit("Shers", "Shers", p.Shers, false);
    visit("PPre", "PPre", p.PPre, S());
    visit("Pminalt", "Pminalt", p.Pminalt, S());
    visit("Psupo", "Psupo", p.Psupo, S("N"));
    visit("PMaxMag", "PMaxMag", p.PMaxMag, S("8"));
    visit("PMaxSize", "PMaxSize", p.PMaxSize, S());
    visit("PAzm1", "PAzm1", p.PAzm1, 0.0);
    visit("PAzm2", "PAzm2", p.PAzm2, 0.0);
    visit("PAzm3", "PAzm3", p.PAzm3, 0.0);
    visit("PAzm4", "PAzm4", p.PAzm4, 0.0);
    visit("DataLogType", "DataLogType", p.DataLogType, false);
    visit("speed1", "speed1", p.speed1, false);
    visit("rowret", "rowret", p.rowret, 0L);
    visit("timesAMPM", "timesAMPM", p.timesAMPM, true);
    visit("zerosup", "zerosup", p.zerosup, true);
    visit("autosizespread", "autosizespread", p.autosizespread, true);

    visit("gMagL", "gMagL", p.gMagL, S("-1"));
    visit("gMagU", "gMagU", p.gMagU, S("999"));
    visit("gMagL2", "gMagL2", p.gMagL2, S("-1"));
    visit("gMagU2", "gMagU2", p.gMagU2, S("999"));
    visit("gSizeL", "gSizeL", p.gSizeL, S("0"));
    visit("gSizeU", "gSizeU", p.gSizeU, S("9999"));
    visit("gSepL", "gSepL", p.gSepL, S("0"));
    visit("gSepH", "gSepH", p.gSepH, S("9999"));
    visit("gPAL", "gPAL", p.gPAL, S("0"));
    visit("gPAH", "gPAH", p.gPAH, S("360"));
    visit("gFRAH", "gFRAH", p.gFRAH, S("0"));
    visit("gTRAH", "gTRAH", p.gTRAH, S("24"));
    visit("gFDECD", "gFDECD", p.gFDECD, S("-90"));
    visit("gTDECD", "gTDECD", p.gTDECD, S("90"));
    visit("gFRAM", "gFRAM", p.gFRAM, S());
    visit("gTRAM", "gTRAM", p.gTRAM, S());
    visit("gFDECM", "gFDECM", p.gFDECM, S());
    visit("gTDECM", "gTDECM", p.gTDECM, S());
    visit("gmagdif", "gmagdif", p.gmagdif, S());
    visit("gmagdif2", "gmagdif2", p.gmagdif2, S());
    visit("gObjID", "gObjID", p.gObjID, S());
    visit("gOther", "gOther", p.gOther, S());
    visit("PIB", "PIB", p.PIB, S("N"));
    visit("PIB2", "PIB2", p.PIB2, S("Y"));
    visit("PIB3", "PIB3", p.PIB3, S("Y"));
    visit("ObCat", "ObCat", p.ObCat, S("NGC 2000;"));
    visit("Obcon", "Obcon", p.Obcon, S("Ori-Orion;"));
    visit("Obtod", "Obtod", p.Obtod, S("All Types"));
    visit("sort1", "sort1", p.sort1, S());
    visit("sort2", "sort2", p.sort2, S());
    visit("sort3", "sort3", p.sort3, S());
    visit("Des1", "des1", p.Des1, S());
    visit("Des2", "des2", p.Des2, S());
    visit("Des3", "des3", p.Des3, S());

    visit("PmSort", "PmSort", p.PmSort, S("4"));
    visit("Pmsorto", "Pmsorto", p.Pmsorto, S("A"));
    visit("PsSort", "PsSort", p.PsSort, S("1"));
    visit("Pssorto", "Pssorto", p.Pssorto, S("A"));
    visit("wuw", "wuw", p.wuw, false);
    visit("wizapppref", "wizapppref", p.wizapppref, false);

    visit("DriverType", "DriverType", p.DriverType, S("ASCOM"));
    visit("telescopetype", "telescopetype", p.telescopetype, S());
    visit("indiserver", "indiserver", p.indiserver, S("127.0.0.1:7624"));
    visit("alpacadiscovery", "alpacadiscovery", p.alpacadiscovery, S("255.255.255.255:32227"));
    visit("Comport", "Comport", p.Comport, S());
    visit("ScopeDelay1", "ScopeDelay1", p.ScopeDelay1, 3);
    visit("LX200Delay", "LX200Delay", p.LX200Delay, 0);
    visit("Synclx200", "Synclx200", p.Synclx200, false);
    visit("gDegScope", "gDegScope", p.gDegScope, 1.0);
    visit("TargetID", "TargetID", p.TargetID, S());
    visit("TargetCatalog", "TargetCatalog", p.TargetCatalog, S());
    visit("TargetRA", "TargetRA", p.TargetRA, S());
    visit("TargetDec", "TargetDec", p.TargetDec, S());
    visit("TargetScope", "TargetScope", p.TargetScope, false);
    visit("gIDMag", "gIDMag", p.gIDMag, S("10"));
    visit("gCAConst", "gCAConst", p.gCAConst, false);

    visit("cdDrive", "cdDrive", p.cdDrive, dir.Text("SelvPro708000.mdb"));
    visit("UseCd", "UseCd", p.UseCd, false);
    visit("fitspath", "fitspath", p.fitspath, S());
    visit("CartesPath", "CartesPath", p.CartesPath, S());
    visit("MoonRisePath", "MoonRisePath", p.MoonRisePath, S());
    visit("AutoBackupPath", "AutoBackupPath", p.AutoBackupPath, S());
    visit("ACPPath", "ACPPath", p.ACPPath, S());
    visit("STychoPath", "STychoPath", p.STychoPath, dir.Text("SuperTycho"));
    visit("HGCPath", "HGCPath", p.HGCPath, dir.Text("Hgc"));
    visit("SVImagePath", "SVImagePath", p.SVImagePath, dir.Text("Images"));

    visit("dateformat", "dateformat", p.dateformat, S("mm/dd/yy"));
    visit("datesep", "datesep", p.datesep, S("/"));
    visit("decimalchar", "decimalchar", p.decimalchar, S("."));
    visit("LogDateHelp", "LogDateHelp", p.LogDateHelp, false);

    for (int tab = 0; tab < 5; ++tab) {
        const S n = std::to_string(tab + 1);
        visit("CFontName" + n, "CFontName" + n, p.CFontName[tab], S("Courier New"));
        visit("CFontSize" + n, "CFontSize" + n, p.CFontSize[tab], 8.0);
        visit("Cfontbold" + n, "Cfontbold" + n, p.Cfontbold[tab], false);
        visit("cfontcolor" + n, "cfontcolor" + n, p.cfontcolor[tab], S("0"));
        visit("cgridcolor" + n, "cgridcolor" + n, p.cgridcolor[tab], S("8454143"));
        visit("cgridobjcolor" + n, "cgridobjcolor" + n, p.cgridobjcolor[tab], S("8453888"));
    }
    visit("TargetColor", "TargetColor", p.TargetColor, S("8421631"));
    visit("LogGridFont", "LogGridFont", p.LogGridFont, S("Courier New"));
    visit("LogGridFontSize", "LogGridFontSize", p.LogGridFontSize, S("8"));
    visit("Logcgridcolor1", "Logcgridcolor1", p.Logcgridcolor1, S("8454143"));
    visit("Logcgridobjcolor1", "Logcgridobjcolor1", p.Logcgridobjcolor1, S("8453888"));

    visit("ShowCI", "ShowCI", p.ShowCI, S("C"));
    visit("ShowBW", "ShowBW", p.ShowBW, false);
    visit("ShowTelrad", "ShowTelrad", p.ShowTelrad, false);
    visit("ShowMilky", "ShowMilky", p.ShowMilky, true);
    visit("ShowCircle", "ShowCircle", p.ShowCircle, 0);
    visit("repChartFOV", "repChartFOV", p.repChartFOV, 15.0);
    visit("repEyepieces", "repEyepieces", p.repEyepieces, false);
    visit("chartnotes", "chartnotes", p.chartnotes, true);
    visit("chartsmp", "chartsmp", p.chartsmp, false);
    visit("chartstarsonly", "chartstarsonly", p.chartstarsonly, false);
    visit("chartcentercso", "chartcentercso", p.chartcentercso, false);
    visit("chartcentercon", "chartcentercon", p.chartcentercon, true);
    visit("chartfield", "chartfield", p.chartfield, 35.0);
    visit("RealSkyFOV", "RealSkyFOV", p.RealSkyFOV, 0.75);
    visit("TCaption", "TCaption", p.TCaption, S("Selvane"));
    visit("dssEpoch", "dssEpoch", p.dssEpoch, S("J2000"));
    visit("dssHeight", "dssHeight", p.dssHeight, S("15"));
    visit("dssWidth", "dssWidth", p.dssWidth, S("15"));
    visit("dssSurvey", "dssSurvey", p.dssSurvey, S("3"));
    visit("chartlayers", "chartlayers", p.chartlayers,
          S("stars,names,dso,lines,bounds,conames,milkyway,grid"));
    visit("chartmag", "chartmag", p.chartmag, S());
    visit("planetarium", "planetarium", p.planetarium, S("cdc://127.0.0.1:3292"));

    visit("FIRST", "FIRST", p.FIRST, true);
    visit("maintab", "maintab", p.maintab, 0);
    visit("intTabs", "intTabs", p.intTabs, 9);
    visit("LargeFonts", "LargeFonts", p.LargeFonts, false);
    visit("Ltype", "Ltype", p.Ltype, S("Default"));
    visit("Dsound", "Dsound", p.Dsound, false);
    visit("keypad", "keypad", p.keypad, false);
    visit("printpref", "printpref", p.printpref, S("C"));
    visit("defReport", "defReport", p.defReport, S());
    visit("defReportL", "defReportL", p.defReportL, S());
    visit("CertMissing", "CertMissing", p.CertMissing, false);
    visit("CIMess", "CIMess", p.CIMess, false);
    visit("CIHers", "CIHers", p.CIHers, false);
    visit("FindOnTop", "FindOnTop", p.FindOnTop, 1);
    visit("FindDefault", "FindDefault", p.FindDefault, 1);
    visit("FindID", "FindID", p.FindID, 0);
    visit("FindDisplay", "FindDisplay", p.FindDisplay, 0);
    visit("PaintEffect", "PaintEffect", p.PaintEffect, 0);
    visit("PaintDelay", "PaintDelay", p.PaintDelay, 30);
    visit("PaintGrain", "PaintGrain", p.PaintGrain, 10);
    visit("staticpainteffect", "Staticpainteffect", p.staticpainteffect, 52);
    visit("gTimeServer", "gTimeServer", p.gTimeServer, S("pool.ntp.org"));
    visit("ObserverName", "ObserverName", p.ObserverName, S());
}

bool SameKey(const std::string& a, const std::string& b)
{
    return QString::fromStdString(a).compare(QString::fromStdString(b), Qt::CaseInsensitive) ==
           0;
}

} // namespace

std::optional<PreferencesReset> LoadPreferences(Preferences& prefs, SettingsStore& store,
                                                const ProgramDir& programDir,
                                                const services::vb::Regional& regional)
{
    prefs.ProgramName = "Selvane 2003";
    std::optional<PreferencesReset> reset;
    VisitKeys(prefs, programDir, [&](const std::string& key, const std::string&, auto& member,
                                     const auto& defaultValue) {
        using T = std::remove_reference_t<decltype(member)>;
        const std::string text = store.Get(key, ToText(static_cast<T>(defaultValue)));
        const RuleVerdict verdict = CheckPreference(key, text, regional, RuleSource::Stored);
        if (verdict.kept && Convert(*verdict.kept, member))
            return;
        // Deliberate: a value the program cannot compute with is treated as one that cannot be
        // converted, so a hand-edited file never stops the program; the observer is told once.
        if (!reset)
            reset = PreferencesReset{key, text, verdict.message};
        // Deliberate: one value that cannot be converted resets every preference; the keys
        // already read keep their values in memory until the next save.
        store.DeleteSection();
        Convert(store.Get(key, ToText(static_cast<T>(defaultValue))), member);
    });
    return reset;
}

std::string PreferencesResetText(const PreferencesReset& reset)
{
    std::string text = "The setting " + reset.key + " held \"" + reset.stored +
                       "\", which Selvane cannot use. ";
    if (!reset.why.empty())
        text += reset.why + " ";
    return text + "Your preferences have been reset to their defaults.";
}

void SavePreferences(const Preferences& prefs, SettingsStore& store)
{
    VisitKeys(prefs, ProgramDir{}, [&](const std::string&, const std::string& saveKey,
                                       const auto& member, const auto&) {
        store.Save(saveKey, ToText(member));
    });
    store.Save("major", std::to_string(VersionMajor));
    store.Save("minor", std::to_string(VersionMinor));
    store.Save("revision", std::to_string(VersionRevision));
    store.Sync();
}

void GetLocalization(Preferences& prefs, const QLocale& locale)
{
    const services::vb::Regional regional = services::vb::RegionalFromLocale(locale);
    prefs.dateformat = regional.dateformat;
    prefs.datesep = regional.datesep;
    prefs.decimalchar = regional.decimalchar;
}

services::vb::Regional RegionalOf(const Preferences& prefs)
{
    return {prefs.dateformat, prefs.datesep, prefs.decimalchar};
}

std::string SetPreference(Preferences& prefs, const std::string& key, const std::string& text)
{
    std::string result = "unknown setting " + key;
    VisitKeys(prefs, ProgramDir{}, [&](const std::string& loadKey, const std::string&,
                                       auto& member, const auto&) {
        if (!SameKey(loadKey, key))
            return;
        auto value = member;
        if (Convert(text, value)) {
            member = value;
            result.clear();
        } else
            result = "the value \"" + text + "\" of " + loadKey + " is not of its type";
    });
    return result;
}

std::vector<std::string> PreferenceKeys()
{
    std::vector<std::string> keys;
    Preferences prefs;
    VisitKeys(prefs, ProgramDir{}, [&](const std::string& loadKey, const std::string&,
                                       const auto&, const auto&) { keys.push_back(loadKey); });
    return keys;
}

std::optional<std::string> GetPreference(const Preferences& prefs, const std::string& key)
{
    std::optional<std::string> result;
    VisitKeys(prefs, ProgramDir{}, [&](const std::string& loadKey, const std::string&,
                                       const auto& member, const auto&) {
        if (SameKey(loadKey, key))
            result = ToText(member);
    });
    return result;
}

} // namespace data
