#include "scope/SlideShow.h"

#include "services/ScriptedUiPort.h"
#include "spread/Plans.h"
#include "tests/data/TestDatabases.h"
#include "tests/scope/IndiSimulator.h"
#include "tests/scope/RecordingTelescope.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <set>
#include <string>
#include <vector>

using namespace scope;

namespace {

// Speech as the routines hear it: ACP.Scope registered, every text kept in order.
class HeardSpeech : public SpeechPlatform
{
public:
    std::vector<std::string> heard;

    bool IsRegistered(std::string_view className) override { return className == kScopeClass; }
    std::unique_ptr<Voice> CreateObject(std::string_view) override
    {
        struct Heard : Voice
        {
            std::vector<std::string>& heard;
            explicit Heard(std::vector<std::string>& h) : heard(h) {}
            void speak(const std::string& text) override { heard.push_back(text); }
        };
        return std::make_unique<Heard>(heard);
    }
};

// A program folder with the test object database (NGC 224 = M 31, NGC 1976 = M 42 observed,
// NGC 7000 without magnitude) and logbook, tab 0 holding those three rows as the grid load
// writes them, and speech on.
class SlideShowTest : public ::testing::Test
{
protected:
    SlideShowTest()
    {
        ui.echo = false;
        testing_data::MakeObjectDatabase(folder.objectPath);
        testing_data::MakeLogbook(folder.dir.File("Logbook2003-1.mdb"));
        TMM.objectDb = data::Database::Open(folder.objectPath);
        TMM.logbookDb = data::Database::Open(folder.dir.File("Logbook2003-1.mdb"));
        TMM.logbookDb->Execute("Insert Into ObservingSites (ProfileName) Values ('Backyard')");
        TMM.prefs.Dsound = true;
        TMM.prefs.telescopetype = "indi://127.0.0.1:1/Telescope Simulator";
        layer.MakeDriver = scope_test::RecordingDrivers(script);
        layer.profileFile = folder.dir.File("s.ini");
        AddRow(1, "NGC 224", "M 31", "00 42 42.0", "+41 16 00.0", 1);
        AddRow(2, "NGC 1976", "M 42", "05 35 24.0", "-05 27 00.0", 2);
        AddRow(3, "NGC 7000", "", "20 58 48.0", "+44 20 00.0", 3);
    }

    void AddRow(int row, const std::string& id, const std::string& other, const std::string& ra,
                const std::string& dec, int key)
    {
        spread::Grid& grid = TMM.grids[0];
        grid.SetMaxRows(row);
        grid.SetText(row, spread::kObjectIdCol, id);
        grid.SetText(row, 5, other);
        grid.SetText(row, 7, ra);
        grid.SetText(row, 8, dec);
        grid.SetText(row, 9, "2000.0");
        grid.SetText(row, spread::kCatalogCol, "2000");
        grid.SetText(row, spread::kRecordIdCol, std::to_string(key));
    }

    // Every message shown, as "kind|heading|text".
    std::vector<std::string> Shown() const
    {
        std::vector<std::string> texts;
        for (const auto& s : ui.shown)
            texts.push_back(s.message.kind + "|" + s.message.ShortMessage + "|" +
                            s.message.LongMessage);
        return texts;
    }

    testing_data::TestFolder folder;
    services::ScriptedUiPort ui;
    spread::AppState TMM{ui, folder.dir, data::SettingsStore(folder.dir.File("s.ini"))};
    TelescopeState state;
    DriverLayer layer;
    scope_test::TelescopeScript script;
    HeardSpeech voices;
    Speech speech{voices};
    astro::FixedClock clock{{2026, 11, 25, 22, 15, 0}};
    ScopeContext s{ui, TMM.prefs, state, layer, speech, clock};
};

TEST(KeypadCode, OffsetAndCodeBothWays)
{
    struct Row
    {
        const char* offset;
        const char* code;
        const char* writtenBack;
    };
    const Row rows[] = {
        {"-1", "+01#", "-1"}, {"-1.00", "+01#", "-1"}, {"0.00", "+00#", "0"},
        {"5", "-05#", "5"},   {"-2", "+02#", "-2"},    {"-6.0", "+06#", "-6"},
        {"10", "-10#", "10"}, {"-0.00", "+00#", "0"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.offset);
        EXPECT_EQ(KeypadCodeOfOffset(row.offset), row.code);
        EXPECT_EQ(OffsetOfKeypadCode(row.code), row.writtenBack);
    }
    // The alternative keys move to 4, 5, 6, and the plain ones then mean nothing.
    EXPECT_EQ(KeyOfCode("+01#", false), KeypadKey::Next);
    EXPECT_EQ(KeyOfCode("+02#", false), KeypadKey::Previous);
    EXPECT_EQ(KeyOfCode("+03#", false), KeypadKey::Log);
    EXPECT_EQ(KeyOfCode("+01#", true), KeypadKey::None);
    EXPECT_EQ(KeyOfCode("+05#", true), KeypadKey::Previous);
    EXPECT_EQ(KeyOfCode("+04#", false), KeypadKey::None);
    EXPECT_EQ(KeyOfCode("-01#", false), KeypadKey::None);
}

TEST(IsKeypadDriver, OnlyTheKeypadMountOrIndiWithTheSetting)
{
    data::Preferences prefs;
    prefs.telescopetype = "LXP.Telescope";
    EXPECT_TRUE(IsKeypadDriver(prefs));
    prefs.telescopetype = "indi://127.0.0.1:7624/Telescope Simulator";
    EXPECT_FALSE(IsKeypadDriver(prefs));
    prefs.keypad = true;
    EXPECT_TRUE(IsKeypadDriver(prefs));
    prefs.telescopetype = "alpaca://127.0.0.1:11111/telescope/0";
    EXPECT_FALSE(IsKeypadDriver(prefs));
}

TEST_F(SlideShowTest, StartChecksTheTabAndItsRows)
{
    TMM.CurrTab = 5;
    EXPECT_FALSE(StartSlideShow(TMM));
    TMM.CurrTab = 1;
    EXPECT_FALSE(StartSlideShow(TMM));
    TMM.CurrTab = 0;
    EXPECT_TRUE(StartSlideShow(TMM));
    EXPECT_EQ(Shown(), (std::vector<std::string>{
                           "I|No Spreadsheet Selected|In order for the slide show to function, a "
                           "list of objects must be shown on the main spreadsheet tab you have "
                           "selected.",
                           "I|No Objects Selected|In order for the slide show to function, a list "
                           "of objects must be shown on the main spreadsheet tab you have "
                           "selected.  If none are shown, you need to press the REFRESH button on "
                           "the main spreadsheet screen."}));
}

TEST_F(SlideShowTest, WalkingTheRowsSpeaksSlewsAndStopsAtBothEnds)
{
    SlideShow show(TMM, s);
    show.Load();
    EXPECT_EQ(show.CurrentRow, 1);
    EXPECT_EQ(show.gotoList, (std::vector<std::string>{"NGC 224", "NGC 1976", "NGC 7000"}));
    EXPECT_EQ(show.locations, std::vector<std::string>{"Backyard"});
    // A driver that is not the keypad mount leaves both controller buttons disabled.
    EXPECT_FALSE(show.cmdOnEnabled);
    EXPECT_FALSE(show.cmdOffEnabled);
    EXPECT_EQ(show.shown.txtObjectID, "NGC 224 (M 31)");
    EXPECT_EQ(show.MoreInfoId(), "NGC 224");
    EXPECT_EQ(show.statusBar, "Shown 1 out of 3    Please Wait until scope stops until you go to "
                              "another object");
    EXPECT_EQ(voices.heard,
              (std::vector<std::string>{"Slewing scope to the next object, NGC 224 (M 31).",
                                        "Target is Locked.",
                                        "An image for this object has been found in the "
                                        "database.  It is now shown on the screen.",
                                        "This object has a magnitude of 3.4.",
                                        "The object is in the constellation of Andromeda."}));

    voices.heard.clear();
    show.cmdNext();
    show.cmdNext();
    // No magnitude, no image, an IAU name of two words.
    EXPECT_EQ(voices.heard.back(), "The object is in the constellation of Cygnus.");
    const std::size_t slews = script.made.size();
    show.cmdNext();
    EXPECT_EQ(show.CurrentRow, 3);
    EXPECT_EQ(script.made.size(), slews) << "the mount must stay at the last object";
    EXPECT_EQ(Shown().back(), "I|Completed!|The Slide Show is complete.");

    // Previous says "next object" too, and speaks of the logbook for the observed M 42.
    voices.heard.clear();
    show.cmdPrevious();
    EXPECT_EQ(show.CurrentRow, 2);
    EXPECT_EQ(voices.heard.front(), "Slewing scope to the next object, NGC 1976 (M 42).");
    EXPECT_EQ(voices.heard.back(), "This object exists in your personal logbook.");

    show.cbogoto(1);
    EXPECT_EQ(show.CurrentRow, 1);
    show.cbogoto(0);
    EXPECT_EQ(show.CurrentRow, 1);
    show.cmdPrevious();
    EXPECT_EQ(show.CurrentRow, 1);
    EXPECT_EQ(Shown().back(), "I|Slide Show|The Slide Show is on the first object.");
}

TEST_F(SlideShowTest, AFailingGotoDoesNotStopTheShow)
{
    script.failOn = {"SlewToTarget"};
    SlideShow show(TMM, s);
    show.Load();
    show.cmdNext();
    EXPECT_EQ(show.CurrentRow, 2);
    EXPECT_EQ(show.shown.txtObjectID, "NGC 1976 (M 42)");
    EXPECT_EQ(voices.heard.back(), "This object exists in your personal logbook.");
}

TEST_F(SlideShowTest, AddLogWritesOneEntryAndTheObservedFlags)
{
    SlideShow show(TMM, s);
    show.Load();
    show.log.cboSee = "Unstable";
    show.log.cboTransparency = "Clear";
    show.log.cboLogtype = "Default";
    show.log.txtLocation = "Backyard";
    show.log.txtDescription = "Dust lane seen";
    show.cmdAddLog();
    show.cmdAddLog();
    data::Database& log = *TMM.logbookDb;
    // The test logbook holds numbers 1 and 2: the new ones follow, each given once.
    EXPECT_EQ(testing_data::Rows(log, "Select ObservationNumber, ObjectID, Catalog, DateObserved, "
                                      "TimeObserved, LocationObserved, EquipmentUsed, "
                                      "OtherEquipment, Seeing, Transparency, Rating, "
                                      "ShortDescription, ObservationText, SeenFlag, DataRec, "
                                      "LogType From Logbook Where ObservationNumber > 2"),
              (std::vector<std::string>{
                  "3|NGC 224|2000|2026-11-25|22:15:00|Backyard| |Default|Unstable|Clear| |Dust "
                  "lane seen| |-1|1|Default",
                  "4|NGC 224|2000|2026-11-25|22:15:00|Backyard| |Default|Unstable|Clear| |Dust "
                  "lane seen| |-1|1|Default"}));
    EXPECT_EQ(testing_data::One(*TMM.objectDb, "Select Observed From SelvaneTable Where ID = 1"),
              "-1");
    EXPECT_EQ(Shown().back(),
              "I|Added|A logbook record has been recorded for the object you have selected.");
    EXPECT_EQ(voices.heard.back(), "A Logbook entry has been made in your personal logbook.");

    // Deliberate: a deleted last number is not given again.
    log.Execute("Delete From Logbook Where ObservationNumber = 4");
    show.cmdAddLog();
    EXPECT_EQ(testing_data::One(log, "Select max(ObservationNumber) From Logbook"), "5");
}

TEST_F(SlideShowTest, ControllerRefusedForADriverWithoutKeypad)
{
    SlideShow show(TMM, s);
    show.Load();
    show.cmdOn();
    EXPECT_TRUE(show.ControllerOn);
    EXPECT_FALSE(show.Timer1Enabled);
    EXPECT_EQ(Shown().back(),
              "I|Not Supported|This feature is not supported with the scope you have selected.");
    show.SetBack();
    EXPECT_EQ(Shown().back(),
              "I|Not Supported|This feature is not supported with the scope you have selected.");
    show.cmdOff();
    EXPECT_FALSE(show.ControllerOn);
    EXPECT_TRUE(show.cmdOnEnabled);
}

// The keypad against the real simulator mount: its TIME_UTC OFFSET plays the keypad.
class SlideKeypadTest : public SlideShowTest
{
protected:
    void SetUp() override
    {
        if (!inditest::ServerInstalled())
            GTEST_SKIP() << "indiserver is not installed";
        ASSERT_TRUE(sim.Start());
        TMM.prefs.telescopetype = sim.Identifier();
        TMM.prefs.keypad = true;
        layer.MakeDriver = [](std::string_view identifier) { return MakeTelescope(identifier); };
        // The device is switched on once, so that its time is not reset by later links.
        ASSERT_EQ(ReadSite(s), "+00#");
    }

    void SetOffset(const std::string& hours)
    {
        sim.Set("TIME_UTC.UTC;OFFSET=" + sim.Get("TIME_UTC.UTC")["UTC"] + ";" + hours);
    }

    inditest::IndiSimulator sim;
};

TEST_F(SlideKeypadTest, AMountLeftOnAKeyCodeMovesTheKeysToFourFiveSix)
{
    SetOffset("-2");
    SlideShow show(TMM, s);
    show.Load();
    EXPECT_TRUE(show.chkaltmap);
    EXPECT_TRUE(show.cmdOnEnabled);
    EXPECT_EQ(state.Scope, nullptr) << "the keypad keeps no link";

    // With the alternative keys on, "+01#" is no key: nothing moves, nothing is put back.
    show.cmdOn();
    EXPECT_EQ(show.SavedOffset, "+02#");
    SetOffset("-1");
    EXPECT_EQ(show.Timer1(), KeypadKey::None);
    EXPECT_EQ(show.CurrentRow, 1);
    EXPECT_EQ(sim.Get("TIME_UTC.OFFSET")["OFFSET"], "-1");
    EXPECT_TRUE(show.Timer1Enabled);
}

TEST_F(SlideKeypadTest, AKeyIsActedOnAfterTheOffsetIsPutBack)
{
    SlideShow show(TMM, s);
    show.Load();
    EXPECT_FALSE(show.chkaltmap);
    show.cmdOn();
    EXPECT_FALSE(show.cmdOnEnabled);
    EXPECT_TRUE(show.cmdOffEnabled);
    EXPECT_EQ(show.SavedOffset, "+00#");
    EXPECT_TRUE(show.Timer1Enabled);

    SetOffset("-1");
    EXPECT_EQ(show.Timer1(), KeypadKey::Next);
    EXPECT_EQ(show.CurrentRow, 2);
    SetOffset("-2");
    voices.heard.clear();
    EXPECT_EQ(show.Timer1(), KeypadKey::Previous);
    EXPECT_EQ(show.CurrentRow, 1);
    EXPECT_EQ(voices.heard.front(), "Slewing scope to the next object, NGC 224 (M 31).");
    EXPECT_EQ(sim.Get("TIME_UTC.OFFSET")["OFFSET"], "0") << "the saved offset, written back";
    // The goto went to the simulator itself.
    EXPECT_NE(sim.Get("TARGET_EOD_COORD.RA")["RA"], "");

    SetOffset("-3");
    EXPECT_EQ(show.Timer1(), KeypadKey::Log);
    EXPECT_EQ(testing_data::One(*TMM.logbookDb, "Select count(*) From Logbook"), "3");
    EXPECT_EQ(show.Timer1(), KeypadKey::None);
    EXPECT_TRUE(Shown().size() == 1) << "only the logbook's Added message";

    show.cmdOff();
    EXPECT_FALSE(show.Timer1Enabled);
}

} // namespace
