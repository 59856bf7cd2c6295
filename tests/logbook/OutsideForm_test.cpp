// Outside mode over a real SQLite logbook and object database: the entries it stores, its
// keys per tab, the grid of the nights around today, the popups and the catalogue names.

#include "logbook/OutsideForm.h"

#include "LogTestSession.h"

#include <gtest/gtest.h>

namespace {

using logbook::OutsideForm;
using logbook::OutsideKey;

struct Outside : logtest::LogSession
{
    std::unique_ptr<OutsideForm> Open(long long obsn = -1)
    {
        auto form = std::make_unique<OutsideForm>(context, store);
        form->OBSN = obsn;
        form->Form_Load();
        return form;
    }

    // Types into a control as the keyboard does: its tab, the text, the focus leaving.
    static bool Type(OutsideForm& form, const char* control, const std::string& text)
    {
        const logbook::OutsideControl* c = logbook::FindOutsideControl(control);
        EXPECT_NE(c, nullptr) << control;
        form.tab = c->tab;
        form.SetText(*c, text);
        return form.LostFocus(*c);
    }

    static std::string Text(const OutsideForm& form, const char* control)
    {
        return form.Text(*logbook::FindOutsideControl(control));
    }

    // An entry of an object on a date, stored with Ctrl+A; its number.
    long long Add(OutsideForm& form, const std::string& id, const std::string& date,
                  const std::string& time = "21:00")
    {
        form.KeyDown('C');
        Type(form, "txtObjectID", id);
        Type(form, "txtCatalog", "2000");
        Type(form, "txtdate", date);
        Type(form, "txttime", time);
        EXPECT_EQ(form.KeyDown('A'), OutsideKey::Add);
        form.tab = 0;
        return form.entry.Number();
    }
};

TEST(Outside, FirstOpeningExplainsOnceAndRemembersIt)
{
    Outside s;
    s.current.id = "NGC 7000";
    auto first = s.Open();
    ASSERT_EQ(s.TakeShown(), (std::vector<std::string>{std::string(logbook::FirstOutsideTitle) +
                                                       "|" + logbook::FirstOutsideText + "|I"}));
    EXPECT_EQ(s.store.Get("firstoutside", ""), "Y");
    EXPECT_EQ(Outside::Text(*first, "txtObjectID"), "NGC 7000");
    EXPECT_EQ(Outside::Text(*first, "txtdate"), "11/24/26");
    EXPECT_EQ(first->entry.lblObNo, "");

    s.Open();
    EXPECT_TRUE(s.TakeShown().empty());
}

TEST(Outside, AddStoresASeenEntryWithEveryDependentRow)
{
    Outside s;
    auto form = s.Open();
    s.TakeShown();
    Outside::Type(*form, "txtObjectID", "ngc 224");
    EXPECT_EQ(Outside::Text(*form, "txtObjectID"), "NGC 224"); // upper-cased on leaving
    Outside::Type(*form, "txtCatalog", "2000");
    Outside::Type(*form, "txttime", "21");
    EXPECT_EQ(Outside::Text(*form, "txttime"), "21:00:00");
    Outside::Type(*form, "txtshortnotes", "bright core");
    Outside::Type(*form, "txtimgname", "m31-001");
    Outside::Type(*form, "chkdframe", "True");
    Outside::Type(*form, "RichTextBox3", "clear and still");

    std::vector<std::pair<std::string, long long>> stored;
    form->stored = [&](const char* what, long long n) { stored.emplace_back(what, n); };
    form->tab = 1; // adding works from any tab
    EXPECT_EQ(form->KeyDown('A'), OutsideKey::Add);
    ASSERT_EQ(stored, (std::vector<std::pair<std::string, long long>>{{"added", 1}}));
    EXPECT_EQ(form->entry.lblObNo, "1");
    EXPECT_EQ(s.TakeShown(), (std::vector<std::string>{"Observation Added|Observation Added|I"}));

    const std::string where = " From Logbook Where ObservationNumber = 1";
    EXPECT_EQ(s.Log("Select SeenFlag || '|' || DataRec || '|' || Catalog || '|' || OtherEquipment "
                    "|| '|' || LocationObserved || '|' || LogType || '|' || DateObserved" +
                    where),
              "-1|1|2000| | |Default|2026-11-24");
    EXPECT_EQ(s.Log("Select ImageName || '|' || darkframe From CCDLog Where ObservationNumber = 1"),
              "m31-001|-1");
    EXPECT_EQ(s.Count("SessionLog"), 1);
    EXPECT_EQ(s.Obj("Select Observed From SelvaneTable Where ID = 1"), "-1");
    ASSERT_EQ(form->vaSpread1.size(), 1u);
    EXPECT_EQ(form->vaSpread1[0],
              (std::array<std::string, 5>{"NGC 224", "1", "NGC 2000", "11/24/26", "21:00:00"}));

    // An update changes the same row; Ctrl+U without a number adds.
    Outside::Type(*form, "txtshortnotes", "dust lane seen");
    EXPECT_EQ(form->KeyDown('U'), OutsideKey::Update);
    EXPECT_EQ(s.Log("Select shortdescription" + where), "dust lane seen");
    form->KeyDown('C');
    Outside::Type(*form, "txtObjectID", "NGC 1976");
    form->KeyDown('U');
    EXPECT_EQ(stored.back(), (std::pair<std::string, long long>{"added", 2}));
    EXPECT_EQ(s.Count("Logbook"), 2);
}

TEST(Outside, CatalogueNamesAndTheFixedCataloguesWithoutARow)
{
    Outside s;
    auto form = s.Open();
    // The text is a CatalogName, or else what GetCatalogID makes of it.
    const std::vector<std::pair<std::string, std::string>> cases{
        {"2000", "2000"}, {"NGC 2000", "2000"}, {"COMET", ""}, {"PLANETS", ""}, {"", ""}};
    for (const auto& [typed, id] : cases) {
        const long long n = s.Add(*form, "C/2026 A1", "11/24/2026");
        Outside::Type(*form, "txtCatalog", typed);
        form->KeyDown('U');
        EXPECT_EQ(
            s.Log("Select Catalog From Logbook Where ObservationNumber = " + std::to_string(n)), id)
            << typed;
    }

    const auto list = logbook::LoadOutsidePopup(s.context, "CATALOG", " COMET ");
    EXPECT_EQ(list.rows, (std::vector<std::string>{"2000", "PLANETS", "COMET", "ASTEROID"}));
    EXPECT_EQ(list.selected, 2);
    EXPECT_EQ(logbook::LoadOutsidePopup(s.context, "LOGTYPE", "Moon").rows,
              (std::vector<std::string>{"Default", "Galaxies"}));
    EXPECT_EQ(logbook::LoadOutsidePopup(s.context, "LOGTYPE", "Moon").selected, -1);
    EXPECT_EQ(logbook::LoadOutsidePopup(s.context, "SEEING", "").rows, logbook::SeeingList());
}

TEST(Outside, GridHoldsYesterdayTodayAndTomorrowLatestFirst)
{
    Outside s;
    auto form = s.Open();
    s.Add(*form, "NGC 224", "11/22/2026"); // two days ago
    s.Add(*form, "NGC 1976", "11/23/2026", "23:10");
    s.Add(*form, "NGC 7000", "11/24/2026", "20:00");
    s.Add(*form, "NGC 7000", "11/24/2026", "22:00");
    s.Add(*form, "NGC 224", "11/25/2026");
    s.Add(*form, "NGC 224", "11/26/2026");
    std::vector<std::string> numbers;
    for (const auto& row : form->vaSpread1)
        numbers.push_back(row[1]);
    EXPECT_EQ(numbers, (std::vector<std::string>{"5", "4", "3", "2"}));

    // Enter on a row clears the form first, then shows that entry with its CCD fields.
    s.Type(*form, "txtimgname", "left over");
    form->tab = 0;
    ASSERT_EQ(form->KeyDown('G'), OutsideKey::Grid);
    ASSERT_TRUE(form->GridEnter(4));
    EXPECT_EQ(form->entry.lblObNo + "|" + Outside::Text(*form, "txtObjectID") + "|" +
                  Outside::Text(*form, "txtCatalog") + "|" + Outside::Text(*form, "txtimgname"),
              "2|NGC 1976|2000|");
    EXPECT_FALSE(form->GridEnter(5));
}

TEST(Outside, KeysPerTabAndDeleteWithoutQuestion)
{
    Outside s;
    auto form = s.Open();
    const long long n = s.Add(*form, "NGC 224", "11/24/2026");
    s.TakeShown();

    // On the other tabs only the tab keys, add and update count.
    for (int tab : {1, 2}) {
        form->tab = tab;
        for (int key : {'C', 'D', 'G', 'K', 'V', '0'})
            EXPECT_EQ(form->KeyDown(key), OutsideKey::None) << tab << " " << char(key);
    }
    EXPECT_EQ(s.Count("Logbook"), 1);
    EXPECT_EQ(form->entry.lblObNo, std::to_string(n));
    EXPECT_EQ(form->KeyDown('3'), OutsideKey::Tab);
    EXPECT_EQ(form->tab, 2);
    EXPECT_EQ(form->KeyDown('1'), OutsideKey::Tab);

    // Delete on the first tab: no question, the rows and the flag go, the form is cleared.
    s.logbook->Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) "
                       "Values (1, 'core', '/tmp/m31.png')");
    EXPECT_EQ(form->KeyDown('D'), OutsideKey::Delete);
    EXPECT_TRUE(s.ui.asked.empty());
    EXPECT_EQ(s.TakeShown(),
              (std::vector<std::string>{"Observation Deleted|Observation Deleted|I"}));
    for (const char* table : {"Logbook", "CCDLog", "ImageLog"})
        EXPECT_EQ(s.Count(table), 0) << table;
    EXPECT_EQ(s.Obj("Select Observed From SelvaneTable Where ID = 1"), "0");
    EXPECT_EQ(form->entry.lblObNo, "");
    EXPECT_TRUE(form->vaSpread1.empty());

    // A new entry: delete does nothing and says nothing.
    s.Type(*form, "txtObjectID", "NGC 7000");
    EXPECT_FALSE(form->DeleteEntry());
    EXPECT_TRUE(s.TakeShown().empty());
    EXPECT_EQ(Outside::Text(*form, "txtObjectID"), "NGC 7000");
}

TEST(Outside, AnEntryNamedOnOpeningAndADateThatIsNone)
{
    Outside s;
    auto form = s.Open();
    const long long n = s.Add(*form, "NGC 1976", "11/24/2026", "22:15");
    s.Type(*form, "txtimgname", "orion");
    form->KeyDown('U');

    auto opened = s.Open(n);
    EXPECT_EQ(opened->entry.lblObNo + "|" + Outside::Text(*opened, "txtObjectID") + "|" +
                  Outside::Text(*opened, "txttime") + "|" + Outside::Text(*opened, "txtimgname"),
              std::to_string(n) + "|NGC 1976|22:15:00|orion");
    EXPECT_EQ(s.Open(999)->entry.lblObNo, "");

    // A date that is none is refused on leaving, and neither add nor update writes it.
    s.TakeShown();
    EXPECT_FALSE(s.Type(*opened, "txtdate", "31/31/2026"));
    EXPECT_FALSE(opened->UpdateEntryToLogbook());
    opened->entry.lblObNo.clear();
    EXPECT_FALSE(opened->AddEntry());
    const auto shown = s.TakeShown();
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[0], "Invalid Date|You have entered an invalid date|U");
    EXPECT_NE(shown[2].find("frmOutsideMain.AddEntry"), std::string::npos) << shown[2];
    EXPECT_EQ(s.Count("Logbook"), 1);
    EXPECT_EQ(s.Log("Select DateObserved From Logbook"), "2026-11-24");
}

} // namespace
