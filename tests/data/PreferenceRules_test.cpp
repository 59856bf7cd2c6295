#include "data/PreferenceRules.h"

#include <QTemporaryDir>

#include <fstream>

#include <gtest/gtest.h>

namespace {

// Each rule at its limits, valid and impossible values side by side, as a window's box, a
// stored value and --set see them.
TEST(CheckPreference, EachRuleAtItsLimits)
{
    struct Row
    {
        const char* key;
        const char* text;
        bool accepted;
    };
    const Row rows[] = {
        {"PInterval", "10", true},     {"PInterval", "0", false},      {"PInterval", "1", true},
        {"PInterval", "1440", true},   {"PInterval", "1441", false},   {"PInterval", "2.5", false},
        {"PInterval", "", false},      {"PInterval", "ten", false},    {"PInterval", "-5", false},
        {"RefreshTime", "0", true},    {"RefreshTime", "-1", false},   {"RefreshTime", "86400", true},
        {"Plat", "89.99", true},       {"Plat", "-89.99", true},       {"Plat", "0", true},
        {"Plat", "90", false},         {"Plat", "-90", false},         {"Plat", "-91", false},
        {"Plat", "abc", false},        {"Plat", "", false},            {"Plat", "nan", false},
        {"PLon", "-180", true},        {"PLon", "180", true},          {"PLon", "180.5", false},
        {"PLon", "400", false},        {"PTz", "-5.5", true},          {"PTz", "14", true},
        {"PTz", "-14", true},          {"PTz", "15", false},           {"PTz", "30", false},
        {"Pminalt", "", true},         {"Pminalt", "0", true},         {"Pminalt", "x", false},
        {"Pminalt", "-90", true},      {"Pminalt", "91", false},       {"PAzm1", "360", true},
        {"PAzm4", "361", false},       {"PAzm2", "-1", false},         {"PDate", "", true},
        {"PDate", "11/21/2026", true}, {"PDate", "2/30/2026", false},  {"PDate", "2026-02-28", true},
        {"PDate", "02/29/2024", true}, {"PDate", "02/29/2025", false}, {"PDate", "2/29/1900", false},
        {"PDate", "2/29/2000", true},  {"PDate", "1/1/100", true},     {"PDate", "12/31/9999", true},
        {"PDate", "1/1/10000", false}, {"PDate", "11/31/2026", false}, {"PDate", "13/45/2026", false},
        {"PDate", "tomorrow", false},  {"PPre", "13/1/2000", false},   {"PPre", "", true},
        {"PPre", "1/1/2000", true},    {"Ptime", "22:00", true},       {"Ptime", "00:00", true},
        {"Ptime", "23:59", true},      {"Ptime", "24:00", false},      {"Ptime", "25:99", false},
        {"Ptime", "ten", false},       {"Ptime", "", false},           {"speed1", "True", true},
        {"Palt", "N", true},           {"ptz", "30", false}, // keys in any case
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.key) + " = \"" + row.text + "\"");
        for (data::RuleSource source : {data::RuleSource::Typed, data::RuleSource::Stored}) {
            const data::RuleVerdict verdict =
                data::CheckPreference(row.key, row.text, services::vb::Regional{}, source);
            EXPECT_EQ(verdict.kept.has_value(), row.accepted);
            EXPECT_EQ(verdict.message.empty(), row.accepted);
        }
        data::Preferences prefs;
        const data::Preferences before = prefs;
        const auto problem = data::ApplyPreferenceEdits(prefs, {{row.key, row.text}});
        EXPECT_EQ(!problem.has_value(), row.accepted);
        if (problem) {
            EXPECT_EQ(problem->key, row.key);
            EXPECT_EQ(data::GetPreference(prefs, row.key), data::GetPreference(before, row.key));
        }
    }
}

// What a rule keeps: a trimmed text, a time in the form the sky routines read by position, a
// blank azimuth box as 0 (but a blank stored azimuth is no number); and dates in the regional
// form, with the example of the message in it.
TEST(CheckPreference, KeptTextsAndRegionalDates)
{
    using data::RuleSource;
    const services::vb::Regional us;
    EXPECT_EQ(data::CheckPreference("Ptime", " 9:30 ", us).kept, "09:30");
    EXPECT_EQ(data::CheckPreference("Ptime", "10:05 PM", us).kept, "22:05");
    EXPECT_EQ(data::CheckPreference("Plat", " 46.5 ", us).kept, "46.5");
    EXPECT_EQ(data::CheckPreference("PAzm1", "", us).kept, "0");
    EXPECT_FALSE(data::CheckPreference("PAzm1", "", us, RuleSource::Stored).kept);
    EXPECT_EQ(data::CheckPreference("gObjID", " M 31 ", us).kept, " M 31 ");

    const services::vb::Regional german{"dd.mm.yyyy", ".", ","};
    EXPECT_TRUE(data::CheckPreference("PDate", "29.02.2024", german).kept);
    EXPECT_FALSE(data::CheckPreference("PDate", "29.02.2025", german).kept);
    EXPECT_EQ(data::CheckPreference("PDate", "31.11.2026", german).message,
              "The observing date must be blank, for today, or a date of the calendar such as "
              "21.11.2026.");
    EXPECT_EQ(data::CheckPreference("PPre", "x", us).message,
              "The precession date must be blank, for none, or a date of the calendar such as "
              "01/01/2000.");
    // A stored database path is tried when the database opens; a typed one must exist.
    EXPECT_TRUE(data::CheckPreference("cdDrive", "/nowhere/SelvPro13000.mdb", us,
                                      RuleSource::Stored)
                    .kept);
    EXPECT_FALSE(data::CheckPreference("cdDrive", "/nowhere/SelvPro13000.mdb", us).kept);
}

TEST(ApplyPreferenceEdits, ARefusedEntryLosesNoneOfThePreferences)
{
    data::Preferences prefs;
    prefs.Plat = 51.5;
    const auto problem = data::ApplyPreferenceEdits(
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
    const auto problem = data::ApplyPreferenceEdits(prefs, {{"Plat", " -33.87 "},
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
        EXPECT_EQ(!data::ApplyPreferenceEdits(prefs, {{"cdDrive", row.path}}), row.accepted);
        EXPECT_EQ(prefs.cdDrive, row.accepted ? row.path : "");
    }
}

} // namespace
