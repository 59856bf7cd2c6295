#include "spread/LoadForm.h"

#include "data/DatabaseFiles.h"
#include "services/ScriptedUiPort.h"
#include "tests/data/TestDatabases.h"
#include "tests/TestFiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

using namespace spread;
using testing_data::CountRows;
using testing_data::MakeLogbook;
using testing_data::MakeObjectDatabase;
using testing_data::TestFolder;

namespace {

// A program folder, the state over it, and hooks that record what the start asks of the
// windows.
class StartFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        hooks.Trace = [this](std::string_view step) { steps.emplace_back(step); };
        hooks.SetToolVisible = [this](std::string_view key, bool visible) {
            tools.push_back(std::string(key) + (visible ? " shown" : " hidden"));
        };
        hooks.SetToolEnabled = [this](std::string_view key, bool enabled) {
            tools.push_back(std::string(key) + (enabled ? " enabled" : " disabled"));
        };
        hooks.ShowSetupWizard = [this] {
            ++wizards;
            if (wizardAction)
                return wizardAction();
            return true;
        };
    }

    std::vector<std::string> Ids(int tab = 0) const
    {
        std::vector<std::string> ids;
        const Grid& grid = TMM.grids[static_cast<std::size_t>(tab)];
        for (int row = 1; row <= grid.MaxRows(); ++row)
            ids.emplace_back(grid.Text(row, 4));
        return ids;
    }

    std::vector<std::string> Titles() const
    {
        std::vector<std::string> titles;
        for (const auto& s : ui.shown)
            titles.push_back(s.message.ShortMessage);
        return titles;
    }

    TestFolder f;
    std::filesystem::path resources = f.dir.File("no resources");
    services::ScriptedUiPort ui;
    AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    LoadFormHooks hooks;
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
    std::vector<std::string> steps;
    std::vector<std::string> tools;
    int wizards = 0;
    std::function<bool()> wizardAction;
};

TEST_F(StartFixture, StepsInOrderEndWithTheMessierListWhateverTheFilters)
{
    MakeObjectDatabase(f.objectPath);
    std::ofstream(f.dir.File("NEXSTAR.TMP")) << "x";
    std::ofstream(f.dir.File("DSO.DAT")) << "chart open\n";
    std::ofstream(f.dir.File("Href.txt")) << "  40   H IV-58\r\n 129   H VIII-79\r\n";
    // A filter that would hold none of the Messier objects, and a saved session.
    TMM.settings.Save("Obcon", "Cyg-Cygnus;");
    TMM.settings.Save("PAzm1", "90");
    TMM.settings.Save("fitspath", "/usr/bin/fv");
    TMM.settings.Save("maintab", "2");
    TMM.settings.Sync();
    int page = -1;
    hooks.SelectFilterPage = [&](int p) { page = p; };

    const LoadFormResult result = LoadForm(TMM, resources, hooks, clock);

    const std::vector<std::string> expected{
        "SeedProgramDir",        "LoadPreferences",    "GetLocalization",  "DeleteNexstarTmp",
        "SetFilterLabels",       "SetSortOptions",     "DeleteDsoDat",     "ShowOutsideTools",
        "DisableTelescopeTools", "LoadCurrentProfile", "OpenTheDatabase",  "LoadTPlan",
        "FillFilterBoxes",       "frmSetupWizard",     "CreateScopeVoice", "LoadCurrentProfile",
        "RebuildLink",           "OpenObjectDatabase", "HideGrids",        "LoadSQL",
        "LoadTheGrid",           "LoadLogType",        "LoadHer",          "CalcMoonPhase",
        "mnuRfsh_Click",         "RefreshPref",        "UnloadPopup",      "CheckConvertLog",
        "UnloadStartupImage",    "LoadImageCombos",    "GetTabCaptions",   "FirstRunSpeech",
        "SelectFilterPage",
    };
    EXPECT_EQ(steps, expected);
    EXPECT_TRUE(result.objectDatabaseOpen && result.startListLoaded);
    EXPECT_EQ(Ids(), (std::vector<std::string>{"NGC 224", "NGC 1976"}));
    EXPECT_EQ(TMM.grids[0].Tag() + "|" + TMM.status.lblNOM + "|" + TMM.grids[0].Header(4),
              "All Messier Objects|2 Objects|ObjectID");
    EXPECT_EQ(TMM.SQL, "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' "
                       "order by MessierNumber");
    EXPECT_EQ(TMM.lastLoadSql, TMM.SQL);
    EXPECT_TRUE(!TMM.NoLoadYet && TMM.RealTimeRearm);

    // First run: the wizard once, FIRST cleared, once1 kept; nothing spoken with speech off.
    EXPECT_EQ(wizards, 1);
    EXPECT_FALSE(TMM.prefs.FIRST);
    EXPECT_EQ(TMM.settings.Get("once1", ""), "True");
    EXPECT_TRUE(ui.spoken.empty());
    EXPECT_EQ(page, 2);

    EXPECT_FALSE(std::filesystem::exists(f.dir.File("NEXSTAR.TMP")) ||
                 std::filesystem::exists(f.dir.File("DSO.DAT")));
    ASSERT_EQ(TMM.herschel.size(), 2u);
    EXPECT_EQ(TMM.herschel[1].id + "|" + TMM.herschel[1].name, " 129|H VIII-79");

    EXPECT_EQ(TMM.controls.catalogs, (std::vector<std::string>{"NGC 2000"}));
    EXPECT_EQ(TMM.controls.constellations, (std::vector<std::string>{"Cyg-Cygnus"}));
    EXPECT_EQ(TMM.controls.txtazm, (std::array<std::string, 4>{"90", "", "", ""}));
    EXPECT_EQ(TMM.status.lblLat, "Lat: 46\u00B030'00\"");

    const std::vector<std::string> expectedTools{
        "mnuFitsview shown",   "mnumoonrise hidden",    "Cartes du Ciel hidden",
        "ChartsMain hidden",   "cdc_chartsob hidden",   "cdc_charts hidden",
        "cdc_mnuplote hidden", "cdc_mnugotocon hidden", "cdc_mnuppppdef hidden",
        "vso hidden",          "vsoall hidden",         "identifyobject disabled",
        "createtour disabled", "lx200cp disabled",      "csc disabled",
        "cspos disabled",      "slideshow disabled",    "sslococ disabled",
        "gotoobject disabled", "sync disabled",
    };
    EXPECT_EQ(tools, expectedTools);
    EXPECT_TRUE(ui.shown.empty()) << Titles().front();
}

TEST_F(StartFixture, LogbookLinkedAndFirstRunSpeechOnlyOnce)
{
    MakeObjectDatabase(f.objectPath);
    MakeLogbook(f.dir.File(data::LogbookName));
    std::ofstream(f.dir.File("convertlog.txt")) << "\"Logbook2003-1.mdb\"\r\n";
    TMM.settings.Save("Dsound", "True");
    TMM.settings.Save("FIRST", "False");
    TMM.settings.Sync();

    const LoadFormResult first = LoadForm(TMM, resources, hooks, clock);
    EXPECT_EQ(first.convertLogbook, "");
    EXPECT_EQ(wizards, 0);
    EXPECT_EQ(CountRows(*TMM.logbookDb, "Logbook Inner Join SelvaneTable On Logbook.ObjectID = "
                                        "SelvaneTable.ObjectID"),
              2);
    EXPECT_EQ(ui.spoken, std::vector<std::string>{FirstRunSpeech});
    // The open saved the settings, with UseCd.
    EXPECT_EQ(TMM.settings.Get("UseCd", ""), "False");

    ui.spoken.clear();
    LoadForm(TMM, resources, hooks, clock);
    EXPECT_TRUE(ui.spoken.empty());
    EXPECT_EQ(Ids(), (std::vector<std::string>{"NGC 224", "NGC 1976"}));
}

// A missing object database: the reason is shown and the wizard offered after each failure,
// until the database opens or the wizard is cancelled.
TEST_F(StartFixture, ObjectDatabaseTriedAgainAfterTheWizard)
{
    struct Case
    {
        const char* name;
        int createOnWizard; // the wizard call after which the database exists; 0 never
        int wizardsBeforeCancel;
        bool open;
        int messages;
        int wizards; // the first-run wizard included
    };
    const Case cases[] = {
        {"found after the second try", 3, 99, true, 2, 3},
        {"cancelled", 0, 2, false, 1, 2},
        {"no wizard (selvane-cli)", 0, 0, false, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TestFolder folder;
        services::ScriptedUiPort port;
        port.echo = false;
        AppState state{port, folder.dir, data::SettingsStore(folder.dir.File("s.ini"))};
        int calls = 0;
        LoadFormHooks h;
        if (c.wizardsBeforeCancel > 0)
            h.ShowSetupWizard = [&] {
                ++calls;
                if (calls == c.createOnWizard)
                    MakeObjectDatabase(folder.objectPath);
                return calls < c.wizardsBeforeCancel;
            };
        const LoadFormResult result = LoadForm(state, resources, h, clock);
        EXPECT_EQ(result.objectDatabaseOpen, c.open);
        EXPECT_EQ(static_cast<bool>(state.objectDb), c.open);
        EXPECT_EQ(calls, c.wizards);
        ASSERT_EQ(static_cast<int>(port.shown.size()), c.messages);
        EXPECT_EQ(port.shown[0].message.ShortMessage, ObjectDatabaseFailedTitle);
        EXPECT_NE(port.shown[0].Text().find("SelvPro708000.mdb"), std::string::npos);
        EXPECT_EQ(state.grids[0].MaxRows(), c.open ? 2 : 0);
        EXPECT_EQ(state.grids[0].Tag(), "All Messier Objects");
        // The logbook is there in every case, created empty.
        ASSERT_TRUE(state.logbookDb);
        EXPECT_EQ(CountRows(*state.logbookDb, "Logbook"), 0);
    }
}

TEST_F(StartFixture, FreshFolderSeededAndOldSessionFilesGone)
{
    QTemporaryDir shipped;
    const std::filesystem::path res = shipped.path().toStdString();
    std::ofstream(res / "Href.txt") << "  40   H IV-58\r\n";
    std::filesystem::create_directories(res / "plans");
    std::ofstream(res / "plans" / "Messier.PLN") << "\"NEW\"\r\n";
    std::ofstream(f.dir.File("errorlog.txt")) << "old session\n";
    hooks.ShowSetupWizard = [] { return false; };

    LoadForm(TMM, res, hooks, clock);
    EXPECT_TRUE(std::filesystem::exists(f.dir.File("plans/Messier.PLN")));
    ASSERT_EQ(TMM.herschel.size(), 1u);
    EXPECT_EQ(TMM.herschel[0].name, "H IV-58");
    // The session's error log is appended to, never replaced, by the start: the main window's
    // Load deletes it first. The missing conversion list is logged only.
    const std::string log = test_files::ReadText(f.dir.File("errorlog.txt"));
    EXPECT_NE(log.find("old session"), std::string::npos);
    EXPECT_NE(log.find("TMM.CheckConvertLog"), std::string::npos);
}

TEST(LoadHer, ColumnsOfEachLine)
{
    QTemporaryDir dir;
    const std::filesystem::path file = dir.filePath("Href.txt").toStdString();
    // Characters 1 to 4, then 8 to 25; a short line gives what it has, CR LF or LF.
    std::ofstream(file, std::ios::binary) << "  40   H IV-58\r\n"
                                             " 129   H VIII-79 and a long tail\n"
                                             "7662\r\n"
                                             "\r\n";
    std::string refs;
    for (const HerschelRef& ref : LoadHer(file))
        refs += "[" + ref.id + "|" + ref.name + "]";
    EXPECT_EQ(refs, "[  40|H IV-58][ 129|H VIII-79 and a lo][7662|][|]");
    EXPECT_TRUE(LoadHer(dir.filePath("missing.txt").toStdString()).empty());
}

} // namespace
