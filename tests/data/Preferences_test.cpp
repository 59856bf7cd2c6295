#include "data/Preferences.h"

#include "TestDatabases.h"
#include "data/SettingsStore.h"

#include <QSettings>

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

using namespace testing_data;

namespace {

void WriteIni(const std::filesystem::path& path, const std::string& body)
{
    std::ofstream(path) << "[Preferences]\n" << body;
}

} // namespace

TEST(LoadPreferences, MissingSectionGivesDefaultsAndAFirstRun)
{
    TestFolder f;
    data::SettingsStore store(f.dir.File("Selvane2000.ini"));
    data::Preferences p;
    p.FIRST = false;
    p.Plat = 0;
    data::LoadPreferences(p, store, f.dir);
    EXPECT_EQ(std::tie(p.FIRST, p.Plat, p.Obcon, p.CFontName[4], p.rowret),
              std::tuple(true, 46.5, "Ori-Orion;", "Courier New", 0L));
    EXPECT_EQ(p.cdDrive + "|" + p.STychoPath,
              f.dir.Text("SelvPro708000.mdb") + "|" + f.dir.Text("SuperTycho"));
}

// One value that cannot be converted, or that the program cannot compute with, deletes the whole
// section: the load says which, and the next start is a first run with every default. Each
// rule's limits are checked with the rules themselves.
TEST(LoadPreferences, ValueThatCannotBeConvertedResetsEverything)
{
    struct Row
    {
        const char* name;
        const char* ini;
        const char* key; // the key reported
        const char* stored;
        bool ruled; // refused by a rule rather than by the conversion
    };
    const std::vector<Row> rows = {
        {"text in a latitude", "Plat=abc\nPTz=5\nFIRST=False\nObCat=IC;\nsort1=Magnitude\n", "Plat",
         "abc", true},
        {"empty number", "PInterval=\nFIRST=False\nPLon=71\n", "PInterval", "", true},
        {"text in a Yes/No key", "FIRST=False\nShowMilky=perhaps\n", "ShowMilky", "perhaps", false},
        {"integer overflow", "FIRST=False\nmaintab=40000\n", "maintab", "40000", false},
        {"latitude on a pole", "Plat=90\nFIRST=False\n", "Plat", "90", true},
        {"no such date", "PDate=02/29/2025\nFIRST=False\n", "PDate", "02/29/2025", true},
        {"no such time", "Ptime=25:99\nFIRST=False\n", "Ptime", "25:99", true},
        {"azimuth", "PAzm3=400\nFIRST=False\n", "PAzm3", "400", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TestFolder f;
        const auto ini = f.dir.File("Selvane2000.ini");
        WriteIni(ini, row.ini);
        {
            data::SettingsStore store(ini);
            data::Preferences p;
            const auto reset = data::LoadPreferences(p, store, f.dir);
            ASSERT_TRUE(reset);
            EXPECT_EQ(reset->key, row.key);
            EXPECT_EQ(reset->stored, row.stored);
            EXPECT_EQ(reset->why.empty(), !row.ruled);
        }
        // The store is empty now, so any later load gives all defaults.
        data::SettingsStore store(ini);
        EXPECT_FALSE(store.Get("FIRST").has_value());
        data::Preferences p;
        EXPECT_FALSE(data::LoadPreferences(p, store, f.dir));
        EXPECT_TRUE(p.FIRST);
        const data::Preferences defaults = [&] {
            data::Preferences d;
            d.cdDrive = f.dir.Text("SelvPro708000.mdb");
            d.STychoPath = f.dir.Text("SuperTycho");
            d.HGCPath = f.dir.Text("Hgc");
            d.SVImagePath = f.dir.Text("Images");
            return d;
        }();
        for (const char* key : {"Plat", "PLon", "PTz", "PInterval", "ObCat", "sort1", "ShowMilky",
                                "maintab", "cdDrive"})
            EXPECT_EQ(data::GetPreference(defaults, key), data::GetPreference(p, key)) << key;
    }
    // In the run that met the bad value, keys read before it keep their values in memory.
    TestFolder f;
    const auto ini = f.dir.File("Selvane2000.ini");
    WriteIni(ini, "PDate=2003-02-14\nPtime=23:15\nPlat=abc\nPTz=5\n");
    data::SettingsStore store(ini);
    data::Preferences p;
    data::LoadPreferences(p, store, f.dir);
    EXPECT_EQ("23:15", p.Ptime);
    EXPECT_DOUBLE_EQ(46.5, p.Plat);
    EXPECT_DOUBLE_EQ(6, p.PTz);
}

TEST(LoadPreferences, ValidExtremesLoadAsTheyStand)
{
    const char* files[] = {
        "PDate=02/29/2024\nPtime=00:00\nPlat=89.99\nPLon=-180\nPTz=-14\nPInterval=1\n"
        "PPre=1/1/100\nPminalt=-90\nPAzm1=0\nPAzm2=360\nRefreshTime=0\nFIRST=False\n",
        "PDate=12/31/9999\nPtime=23:59\nPlat=-89.99\nPLon=180\nPTz=14\nPInterval=1440\n"
        "PPre=\nPminalt=\nRefreshTime=86400\nFIRST=False\n",
    };
    for (const char* file : files) {
        SCOPED_TRACE(file);
        TestFolder f;
        const auto ini = f.dir.File("Selvane2000.ini");
        WriteIni(ini, file);
        data::SettingsStore store(ini);
        data::Preferences p;
        EXPECT_FALSE(data::LoadPreferences(p, store, f.dir));
        EXPECT_FALSE(p.FIRST);
        EXPECT_EQ(store.Get("FIRST"), "False");
    }
}

TEST(PreferencesResetText, NamesTheKeyItsValueAndTheRule)
{
    EXPECT_EQ(data::PreferencesResetText({"Plat", "90", "The latitude must be X."}),
              "The setting Plat held \"90\", which Selvane cannot use. The latitude must be X. "
              "Your preferences have been reset to their defaults.");
    EXPECT_EQ(data::PreferencesResetText({"maintab", "40000", ""}),
              "The setting maintab held \"40000\", which Selvane cannot use. Your preferences "
              "have been reset to their defaults.");
}

TEST(LoadPreferences, ConvertsStoredTexts)
{
    struct Row
    {
        const char* key;
        const char* stored;
        const char* loaded;
    };
    const std::vector<Row> rows = {
        {"FIRST", "False", "False"},  {"FIRST", "true", "True"},  {"FIRST", "0", "False"},
        {"FIRST", "-1", "True"},      {"Plat", " -33.9 ", "-33.9"}, {"PLon", "1e1", "10"},
        {"maintab", "2.5", "2"},      {"maintab", "3.5", "4"},    {"rowret", "100000", "100000"},
        {"gObjID", "M 3*, 'x'", "M 3*, 'x'"}, {"ObCat", "NGC 2000;IC;", "NGC 2000;IC;"},
        {"CFontSize3", "9.75", "9.75"}, {"Cfontbold5", "True", "True"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.key) + "=" + row.stored);
        TestFolder f;
        data::SettingsStore store(f.dir.File("s.ini"));
        store.Save(row.key, row.stored);
        store.Sync();
        data::Preferences p;
        data::LoadPreferences(p, store, f.dir);
        EXPECT_EQ(row.loaded, data::GetPreference(p, row.key).value_or("?"));
        EXPECT_TRUE(store.Get("FIRST").has_value() || std::string(row.key) != "FIRST");
    }
}

TEST(SavePreferences, RoundTripKeepsEveryKey)
{
    TestFolder f;
    const auto ini = f.dir.File("Selvane2000.ini");
    data::Preferences p;
    // A value other than the default in keys of every type and group.
    p.PDate = "2/14/2003";
    p.Plat = -33.865;
    p.PLon = -151.2094;
    p.PTz = -10;
    p.PInterval = 5;
    p.optimum = true;
    p.rowret = 250;
    p.timesAMPM = false;
    p.gObjID = "NGC 1*, \"quoted\"; semi";
    p.ObCat = "NGC 2000;IC;";
    p.Des2 = "D";
    p.ScopeDelay1 = 7;
    p.gDegScope = 0.25;
    p.cdDrive = "/media/cdrom/SelvPro708000.mdb";
    p.UseCd = true;
    p.CFontName[2] = "DejaVu Sans Mono";
    p.CFontSize[4] = 10.5;
    p.Cfontbold[0] = true;
    p.RealSkyFOV = 1.5;
    p.FIRST = false;
    p.staticpainteffect = 12;
    p.gTimeServer = "time.example.org";
    {
        data::SettingsStore store(ini);
        data::SavePreferences(p, store);
    }
    data::SettingsStore store(ini);
    data::Preferences q;
    data::LoadPreferences(q, store, f.dir);
    for (const char* key :
         {"PDate", "Plat", "PLon", "PTz", "PInterval", "optimum", "rowret", "timesAMPM", "gObjID",
          "ObCat", "Des2", "ScopeDelay1", "gDegScope", "cdDrive", "UseCd", "CFontName3",
          "CFontSize5", "Cfontbold1", "RealSkyFOV", "FIRST", "staticpainteffect", "gTimeServer"})
        EXPECT_EQ(data::GetPreference(p, key), data::GetPreference(q, key)) << key;

    // The keys in the case the save writes, and the version numbers.
    QSettings raw(QString::fromStdString(ini.string()), QSettings::IniFormat);
    raw.beginGroup("Preferences");
    const QStringList keys = raw.childKeys();
    for (const char* key : {"Plon", "Staticpainteffect", "des1", "des2", "des3", "major", "minor",
                            "revision", "UseCd", "FIRST"})
        EXPECT_TRUE(keys.contains(key)) << key;
    EXPECT_FALSE(keys.contains("PLon"));
    EXPECT_EQ("True", raw.value("UseCd").toString());
    EXPECT_EQ("False", raw.value("FIRST").toString());
    EXPECT_EQ("-33.865", raw.value("Plat").toString());
}

TEST(SettingsStore, KeysWithoutRegardToCaseAndOverrides)
{
    TestFolder f;
    const auto ini = f.dir.File("s.ini");
    WriteIni(ini, "PLon=71.5\n");
    data::SettingsStore store(ini);
    EXPECT_EQ("71.5", store.Get("plon", ""));
    store.Save("Plon", "72");
    store.Sync();
    QSettings raw(QString::fromStdString(ini.string()), QSettings::IniFormat);
    EXPECT_EQ(QStringList{"PLon"}, raw.childKeys().isEmpty() ? [&] {
        raw.beginGroup("Preferences");
        return raw.childKeys();
    }() : raw.childKeys());

    // An override is read in place of the file and never written to it.
    store.Override("Plat", "10");
    store.Save("Plat", "11");
    store.Sync();
    EXPECT_EQ("11", store.Get("PLAT", ""));
    data::SettingsStore fresh(ini);
    EXPECT_FALSE(fresh.Get("Plat").has_value());
}

TEST(GetLocalization, ProgramDefaultsUnderTheCLocale)
{
    data::Preferences p;
    p.dateformat = "dd.MM.yyyy";
    p.datesep = ".";
    p.decimalchar = ",";
    data::GetLocalization(p, QLocale::c());
    EXPECT_EQ("mm/dd/yy / .", p.dateformat + " " + p.datesep + " " + p.decimalchar);
}
