#include "spread/PreferenceRules.h"

#include "data/Database.h"

#include <QTemporaryDir>

#include <fstream>

#include <gtest/gtest.h>

namespace {

TEST(ApplyPreferenceEdits, AcceptsAndRefusesByTheKeysRule)
{
    struct Row
    {
        const char* key;
        const char* text;
        bool accepted;
    };
    const Row rows[] = {
        {"PInterval", "10", true},     {"PInterval", "0", false},     {"PInterval", "1", true},
        {"PInterval", "1440", true},   {"PInterval", "1441", false},  {"PInterval", "2.5", false},
        {"PInterval", "", false},      {"PInterval", "ten", false},   {"PInterval", "-5", false},
        {"RefreshTime", "0", true},    {"RefreshTime", "-1", false},  {"Plat", "90", true},
        {"Plat", "-90", true},         {"Plat", "90.01", false},      {"Plat", "abc", false},
        {"PLon", "-180", true},        {"PLon", "180.5", false},      {"PTz", "-5.5", true},
        {"PTz", "15", false},          {"Pminalt", "", true},         {"Pminalt", "0", true},
        {"Pminalt", "x", false},       {"PAzm1", "", true},           {"PAzm1", "360", true},
        {"PAzm4", "361", false},       {"PAzm2", "-1", false},        {"PDate", "", true},
        {"PDate", "11/21/2026", true}, {"PDate", "2/30/2026", false}, {"PDate", "2026-02-28", true},
        {"PPre", "13/1/2000", false},  {"Ptime", "22:00", true},      {"Ptime", "25:00", false},
        {"Ptime", "", false},          {"speed1", "True", true},      {"Palt", "N", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.key) + " = \"" + row.text + "\"");
        data::Preferences prefs;
        const data::Preferences before = prefs;
        const auto problem = spread::ApplyPreferenceEdits(prefs, {{row.key, row.text}});
        EXPECT_EQ(!problem.has_value(), row.accepted);
        if (problem) {
            EXPECT_EQ(problem->key, row.key);
            EXPECT_FALSE(problem->text.empty());
            EXPECT_EQ(data::GetPreference(prefs, row.key), data::GetPreference(before, row.key));
        }
    }
}

TEST(ApplyPreferenceEdits, ARefusedEntryLosesNoneOfThePreferences)
{
    data::Preferences prefs;
    prefs.Plat = 51.5;
    const auto problem = spread::ApplyPreferenceEdits(
        prefs, {{"Plat", "40"}, {"PLon", "75"}, {"PInterval", "0"}, {"PTz", "5"}});
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->key, "PInterval");
    EXPECT_EQ(problem->text, "The interval of the best-time search must be a whole number of "
                             "minutes from 1 to 1440.");
    EXPECT_DOUBLE_EQ(prefs.Plat, 51.5); // all or nothing: the earlier good edits are not kept
    EXPECT_EQ(prefs.PInterval, 10);
}

TEST(ApplyPreferenceEdits, ConvertsIntoTheTypedPreferences)
{
    data::Preferences prefs;
    const auto problem = spread::ApplyPreferenceEdits(prefs, {{"Plat", " -33.87 "},
                                                              {"PInterval", "15"},
                                                              {"PAzm3", ""},
                                                              {"PAzm4", "270"},
                                                              {"zerosup", "False"},
                                                              {"Psupo", "Y"},
                                                              {"rowret", "250"},
                                                              {"Pminalt", ""}});
    ASSERT_FALSE(problem) << problem->text;
    EXPECT_DOUBLE_EQ(prefs.Plat, -33.87);
    EXPECT_EQ(prefs.PInterval, 15);
    EXPECT_DOUBLE_EQ(prefs.PAzm3, 0);
    EXPECT_DOUBLE_EQ(prefs.PAzm4, 270);
    EXPECT_FALSE(prefs.zerosup);
    EXPECT_EQ(prefs.Psupo, "Y");
    EXPECT_EQ(prefs.rowret, 250);
    EXPECT_EQ(prefs.Pminalt, "");
}

TEST(ApplyPreferenceEdits, DatabaseMustBeAnObjectDatabaseFileThatExists)
{
    QTemporaryDir dir;
    const std::string folder = dir.path().toStdString();
    for (const char* name : {"SelvPro708000.mdb", "SELVPRO13000.MDB", "Logbook2003-1.mdb"})
        std::ofstream(folder + "/" + name) << "x";
    struct Row
    {
        std::string path;
        bool accepted;
    };
    const Row rows[] = {
        {folder + "/SelvPro708000.mdb", true},
        {folder + "/SELVPRO13000.MDB", true},
        {folder + "/Logbook2003-1.mdb", false},
        {folder + "/selvpro708000.mdb", false}, // the right name, but no such file here
        {"", false},
        {folder, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        data::Preferences prefs;
        EXPECT_EQ(!spread::ApplyPreferenceEdits(prefs, {{"cdDrive", row.path}}), row.accepted);
        EXPECT_EQ(prefs.cdDrive, row.accepted ? row.path : "");
    }
}

TEST(LoadObservingSites, LongitudeFollowsEastWest)
{
    QTemporaryDir dir;
    data::OpenOptions options;
    options.create = true;
    auto db = data::Database::Open(dir.filePath("Logbook2003-1.mdb").toStdString(), options);
    db->Execute("Create Table ObservingSites (ProfileName TEXT, Location TEXT, Latitude REAL, "
                "Longitude REAL, EastWest TEXT, TimeZone REAL)");
    db->Execute("Insert Into ObservingSites Values ('Home', 'Back yard', 46.5, 90.2, 'W', 6)");
    db->Execute("Insert Into ObservingSites Values ('Alps', 'Hut', 46.0, 7.5, 'E', -1)");
    db->Execute("Insert Into ObservingSites Values ('Club''s field', '', 40, -3.5, 'E', -1)");
    db->Execute("Insert Into ObservingSites Values ('Old', '', 40, 75, Null, 5)");
    const auto sites = spread::LoadObservingSites(*db);
    ASSERT_EQ(sites.size(), 4u);
    EXPECT_DOUBLE_EQ(sites[0].Longitude, 90.2);
    EXPECT_DOUBLE_EQ(sites[1].Longitude, -7.5);
    EXPECT_DOUBLE_EQ(sites[2].Longitude, -3.5);
    EXPECT_EQ(sites[2].name, "Club's field");
    EXPECT_DOUBLE_EQ(sites[3].Longitude, 75);
}

} // namespace
