#include "data/Preferences.h"

#include "TestDatabases.h"
#include "data/SettingsStore.h"

#include <QSettings>

#include <gtest/gtest.h>

#include <fstream>

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
    EXPECT_TRUE(p.FIRST);
    EXPECT_DOUBLE_EQ(46.5, p.Plat);
    EXPECT_EQ(f.dir.Text("SelvPro708000.mdb"), p.cdDrive);
    EXPECT_EQ(f.dir.Text("SuperTycho"), p.STychoPath);
    EXPECT_EQ("Ori-Orion;", p.Obcon);
    EXPECT_EQ("Courier New", p.CFontName[4]);
    EXPECT_EQ(0, p.rowret);
}

// One value that cannot be converted deletes the whole section: the next start is a first run
// with every default.
TEST(LoadPreferences, ValueThatCannotBeConvertedResetsEverything)
{
    struct Row
    {
        const char* name;
        const char* ini;
    };
    const std::vector<Row> rows = {
        {"text in a latitude", "Plat=abc\nPTz=5\nFIRST=False\nObCat=IC;\nsort1=Magnitude\n"},
        {"empty number", "PInterval=\nFIRST=False\nPLon=71\n"},
        {"text in a Yes/No key", "FIRST=False\nShowMilky=perhaps\n"},
        {"integer overflow", "FIRST=False\nmaintab=40000\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TestFolder f;
        const auto ini = f.dir.File("Selvane2000.ini");
        WriteIni(ini, row.ini);
        {
            data::SettingsStore store(ini);
            data::Preferences p;
            data::LoadPreferences(p, store, f.dir);
        }
        // The store is empty now, so any later load gives all defaults.
        data::SettingsStore store(ini);
        EXPECT_FALSE(store.Get("FIRST").has_value());
        data::Preferences p;
        data::LoadPreferences(p, store, f.dir);
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
    EXPECT_EQ("mm/dd/yy", p.dateformat);
    EXPECT_EQ("/", p.datesep);
    EXPECT_EQ(".", p.decimalchar);
}
