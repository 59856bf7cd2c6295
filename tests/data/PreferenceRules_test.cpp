#include "data/PreferenceRules.h"

#include <QTemporaryDir>

#include <fstream>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace {

// Each rule at its limits, valid and impossible values side by side, as a window's box, a
// stored value and --set see them.
TEST(CheckPreference, EachRuleAtItsLimits)
{
    struct Row
    {
        const char* key;
        std::vector<const char*> accepted, refused;
    };
    const Row rows[] = {
        {"PInterval", {"10", "1", "1440"}, {"0", "1441", "2.5", "", "ten", "-5"}},
        {"RefreshTime", {"0", "86400"}, {"-1"}},
        {"Plat", {"89.99", "-89.99", "0"}, {"90", "-90", "-91", "abc", "", "nan"}},
        {"PLon", {"-180", "180"}, {"180.5", "400"}},
        {"PTz", {"-5.5", "14", "-14"}, {"15", "30"}},
        {"Pminalt", {"", "0", "-90"}, {"x", "91"}},
        {"PAzm1", {"360"}, {}},
        {"PAzm4", {}, {"361"}},
        {"PAzm2", {}, {"-1"}},
        {"PDate",
         {"", "11/21/2026", "2026-02-28", "02/29/2024", "2/29/2000", "1/1/100", "12/31/9999"},
         {"2/30/2026", "02/29/2025", "2/29/1900", "1/1/10000", "11/31/2026", "13/45/2026",
          "tomorrow"}},
        {"PPre", {"", "1/1/2000"}, {"13/1/2000"}},
        {"Ptime", {"22:00", "00:00", "23:59"}, {"24:00", "25:99", "ten", ""}},
        {"speed1", {"True"}, {}},
        {"Palt", {"N"}, {}},
        {"ptz", {}, {"30"}}, // keys in any case
    };
    auto expect = [](const char* key, const char* text, bool accepted) {
        SCOPED_TRACE(std::string(key) + " = \"" + text + "\"");
        for (data::RuleSource source : {data::RuleSource::Typed, data::RuleSource::Stored}) {
            const data::RuleVerdict verdict =
                data::CheckPreference(key, text, services::vb::Regional{}, source);
            EXPECT_EQ(verdict.kept.has_value(), accepted);
            EXPECT_EQ(verdict.message.empty(), accepted);
        }
        data::Preferences prefs;
        const data::Preferences before = prefs;
        const auto problem = data::ApplyPreferenceEdits(prefs, {{key, text}});
        EXPECT_EQ(!problem.has_value(), accepted);
        if (problem) {
            EXPECT_EQ(problem->key, key);
            EXPECT_EQ(data::GetPreference(prefs, key), data::GetPreference(before, key));
        }
    };
    for (const Row& row : rows) {
        for (const char* text : row.accepted)
            expect(row.key, text, true);
        for (const char* text : row.refused)
            expect(row.key, text, false);
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
    EXPECT_EQ(std::tie(prefs.Plat, prefs.PInterval, prefs.PAzm3, prefs.PAzm4, prefs.zerosup,
                       prefs.Psupo, prefs.rowret, prefs.Pminalt),
              std::tuple(-33.87, 15, 0.0, 270.0, false, "Y", 250L, ""));
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
