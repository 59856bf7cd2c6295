#include "app/CliOptions.h"
#include "app/GridCommand.h"

#include <gtest/gtest.h>

TEST(ParseCliOptions, UsageErrorsAndOverrides)
{
    struct Row
    {
        std::vector<std::string> args;
        std::string error;
        std::string command;
    };
    const std::vector<Row> rows = {
        {{"grid"}, "", "grid"},
        {{"--home", "/tmp/h", "--settings", "/tmp/s.ini", "grid", "--count"}, "", "grid"},
        {{"--set", "Plat=40.5", "--set", "ptz=5", "grid"}, "", "grid"},
        {{"--set", "gObjID=a=b", "grid"}, "", "grid"},
        {{}, "no command given", ""},
        {{"--home"}, "--home needs a value", ""},
        {{"--set", "Plat", "grid"}, "--set needs KEY=VALUE, not \"Plat\"", ""},
        {{"--set", "Plat=abc", "grid"},
         "--set Plat=abc: The latitude must be a number of degrees between -90 and 90, positive "
         "north; a site on a pole cannot be computed.",
         ""},
        {{"--set", "PDate=02/29/2025", "grid"},
         "--set PDate=02/29/2025: The observing date must be blank, for today, or a date of the "
         "calendar such as 11/21/2026.",
         ""},
        {{"--set", "Ptime=25:99", "grid"},
         "--set Ptime=25:99: The observing time must be a time of day in hours and minutes, "
         "such as 22:00.",
         ""},
        {{"--set", "PTz=30", "grid"},
         "--set PTz=30: The time zone must be a number of hours from -14 to 14, positive west "
         "of Greenwich.",
         ""},
        {{"--set", "CFontSize1=big", "grid"}, "the value \"big\" of CFontSize1 is not of its type",
         ""},
        {{"--set", "NoSuchKey=1", "grid"}, "unknown setting NoSuchKey", ""},
        {{"--verbose", "grid"}, "unknown option --verbose", ""},
    };
    for (const Row& row : rows) {
        const app::CliOptions o = app::ParseCliOptions(row.args);
        SCOPED_TRACE(row.error);
        EXPECT_EQ(row.error, o.error);
        if (row.error.empty()) {
            EXPECT_EQ(row.command, o.command);
        }
    }
    const app::CliOptions o =
        app::ParseCliOptions({"--set", "gObjID=a=b", "grid", "--sql", "Select 1"});
    ASSERT_EQ(1u, o.sets.size());
    EXPECT_EQ("gObjID", o.sets[0].first);
    EXPECT_EQ("a=b", o.sets[0].second);
    EXPECT_EQ((std::vector<std::string>{"--sql", "Select 1"}), o.commandArgs);
    // A value is kept as its rule keeps it: the time in the form the sky routines read.
    EXPECT_EQ("09:30", app::ParseCliOptions({"--set", "Ptime=9:30 ", "grid"}).sets.at(0).second);
}

TEST(ParseGridArgs, EveryFormAndItsUsageErrors)
{
    struct Row
    {
        std::vector<std::string> args;
        std::string error;
        std::string sql;
        bool build;
        bool count;
    };
    const std::vector<Row> rows = {
        {{}, "", "", false, false},
        {{"--count"}, "", "", false, true},
        // The query is one argument, blanks and quotes included; it may look like an option.
        {{"--sql", "Select * From SelvaneTable Where ObjectID = 'M 1'", "--count"},
         "",
         "Select * From SelvaneTable Where ObjectID = 'M 1'",
         false,
         true},
        {{"--sql", "--count"}, "", "--count", false, false},
        {{"--build", "--count"}, "", "", true, true},
        {{"--sql"}, "--sql needs a query", "", false, false},
        {{"--sql", ""}, "--sql needs a query", "", false, false},
        {{"--build", "--sql", "Select 1"}, "--sql and --build exclude each other", "", false,
         false},
        {{"count"}, "unknown argument \"count\" of grid", "", false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.args.empty() ? "(none)" : row.args[0] + " " + row.error);
        const app::GridArgs g = app::ParseGridArgs(row.args);
        EXPECT_EQ(g.error, row.error);
        if (row.error.empty()) {
            EXPECT_EQ(g.sql, row.sql);
            EXPECT_EQ(g.build, row.build);
            EXPECT_EQ(g.count, row.count);
        }
    }
}
