#include "app/StartUp.h"

#include "TestDatabases.h"
#include "app/CliOptions.h"
#include "data/DatabaseFiles.h"
#include "services/ScriptedUiPort.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace testing_data;

TEST(StartUp, FreshFolderWithoutObjectDatabaseStillStarts)
{
    TestFolder f;
    QTemporaryDir resources;
    const std::filesystem::path res = resources.path().toStdString();
    std::ofstream(res / "Href.txt") << "H1   NGC 224\r\n";
    std::filesystem::create_directories(res / "plans");
    std::ofstream(res / "plans" / "Messier.PLN") << "\"NEW\"\r\n";
    std::ofstream(f.dir.File("errorlog.txt")) << "old session\n";
    std::ofstream(f.dir.File("dso.dat")) << "chart open\n";

    services::ScriptedUiPort ui;
    ui.echo = false;
    spread::AppState state(ui, f.dir, data::SettingsStore(f.dir.File("s.ini")));
    const app::StartUpResult result = app::StartUp(state, res);

    EXPECT_FALSE(result.objectDatabaseOpen);
    EXPECT_FALSE(state.objectDb);
    ASSERT_FALSE(ui.shown.empty());
    EXPECT_EQ("The object database could not be opened.", ui.shown[0].message.ShortMessage);
    EXPECT_NE(std::string::npos, ui.shown[0].Text().find("SelvPro708000.mdb"));
    ASSERT_TRUE(state.logbookDb);
    EXPECT_EQ(0, CountRows(*state.logbookDb, "Logbook"));
    EXPECT_TRUE(std::filesystem::exists(f.dir.File("Href.txt")));
    EXPECT_TRUE(std::filesystem::exists(f.dir.File("plans/Messier.PLN")));
    EXPECT_FALSE(std::filesystem::exists(f.dir.File("dso.dat")));
    // The old session's log is gone; the missing conversion list is this session's one entry.
    std::ifstream log(f.dir.File("errorlog.txt"));
    const std::string text((std::istreambuf_iterator<char>(log)), {});
    EXPECT_EQ(std::string::npos, text.find("old session"));
    EXPECT_NE(std::string::npos, text.find("TMM.CheckConvertLog"));
    EXPECT_TRUE(state.prefs.FIRST);
}

TEST(StartUp, OpensBothDatabasesAndLinksThem)
{
    TestFolder f;
    MakeObjectDatabase(f.objectPath);
    MakeLogbook(f.dir.File(data::LogbookName));
    std::ofstream(f.dir.File("convertlog.txt")) << "\"Logbook2003-1.mdb\"\r\n";
    services::ScriptedUiPort ui;
    ui.echo = false;
    spread::AppState state(ui, f.dir, data::SettingsStore(f.dir.File("s.ini")));
    const app::StartUpResult result = app::StartUp(state, f.dir.File("no resources"));
    EXPECT_TRUE(result.objectDatabaseOpen);
    EXPECT_TRUE(ui.shown.empty());
    EXPECT_EQ("", result.convertLogbook);
    EXPECT_EQ(2, CountRows(*state.logbookDb,
                           "Logbook Inner Join SelvaneTable On Logbook.ObjectID = "
                           "SelvaneTable.ObjectID"));
    // The open saved the settings, with UseCd.
    EXPECT_EQ("False", state.settings.Get("UseCd", ""));
}

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
        {{"--set", "Plat=abc", "grid"}, "the value \"abc\" of Plat is not of its type", ""},
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
}
