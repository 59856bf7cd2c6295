// The What's Up wizard without its window, over real SQLite files: the test object database
// (M 31 in Andromeda, M 42 in Orion, NGC 7000 in Cygnus with no magnitude) with more types and
// catalogues, and a logbook with two observing sites.

#include "spread/WhatsUpWizard.h"

#include "data/ObjectFilter.h"
#include "services/ScriptedUiPort.h"
#include "spread/Spreadsheet.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace spread;

namespace {

class Wizard : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        testing_data::MakeObjectDatabase(f.objectPath);
        {
            auto db = data::Database::Open(f.objectPath);
            // A quote in a description, and the solar-system catalogues the wizard leaves out.
            db->Execute("Insert Into ValidObjectTypes (ObjectType, ObjectTypeDesc) Values "
                        "('BRTNB', 'Bright nebula'), ('Q''H', 'Quasar''s host')");
            db->Execute("Insert Into CatalogLookup (CatalogName, CatalogDescription) Values "
                        "('PLANETS', 'Planets'), ('COMET', 'Comets'), ('ASTEROID', 'Asteroid'), "
                        "('CALDWELL', 'Caldwell')");
            // As in the built editions, an object outside the Herschel list has HObject ''.
            db->Execute("Update SelvaneTable Set HObject = '' Where ID = 1");
        }
        testing_data::MakeLogbook(logbookPath);
        {
            auto db = data::Database::Open(logbookPath);
            db->Execute("Insert Into ObservingSites (ProfileName, Latitude, Longitude, EastWest, "
                        "TimeZone) Values ('Home', 40, 75, 'W', 5), ('Paris', 48.85, 2.35, 'E', "
                        "-1)");
        }
        TMM.objectDb = data::Database::Open(f.objectPath);
        TMM.logbookDb = data::Database::Open(logbookPath);
        data::Preferences& p = TMM.prefs;
        p.PDate = "03/15/2024";
        p.Ptime = "22:00";
        p.Plat = 40;
        p.PLon = 75;
        p.PTz = 5;
        p.sort1 = "Magnitude";
        p.Des1 = "D";
        p.sort2 = "Nonsense";
        p.Pminalt = "-90";
        RefreshPref(TMM);
    }

    std::vector<std::string> Ids() const
    {
        std::vector<std::string> ids;
        const Grid& grid = TMM.grids[0];
        for (int row = 1; row <= grid.MaxRows(); ++row)
            ids.emplace_back(grid.Text(row, 4));
        return ids;
    }

    // Every value the wizard may change, as the settings hold it.
    std::vector<std::string> Values() const
    {
        std::vector<std::string> values;
        for (const char* key : {"gMagL", "gMagL2", "gMagU", "gMagU2", "Obcon", "Obtod", "ObCat",
                                "sort1", "sort2",  "sort3", "Des1",   "Des2",  "Des3",  "PDate",
                                "Plat",  "PLon",   "PTz",   "Ptime",  "PIB",   "PIB2",  "Pminalt"})
            values.push_back(std::string(key) + "=" + *data::GetPreference(TMM.prefs, key));
        return values;
    }

    // Every page set and Finish clicked, with the apply box on or off.
    void FinishOnEveryPage(bool apply)
    {
        TMM.prefs.wizapppref = apply;
        const std::vector<std::string> before = Values();
        const data::ObjectFilter shownBefore = TMM.controls.filter;
        const data::SortOptions sortsBefore = TMM.controls.sorts;

        WhatsUpWizard w(TMM, clock);
        w.Load();
        w.lstCon.Select("Cyg-Cygnus");
        w.lstCon.Select("Ori-Orion");
        w.Next();
        w.lstType.Select("Bright nebula");
        w.Next();
        w.cbosort = {"ObjectID", "<none>", "<none>"};
        w.chkD = {true, false, false};
        w.Next();
        w.Next();
        ASSERT_TRUE(w.SelectSite("paris")); // names compare without regard to case
        w.txtDate = "2024-03-20";
        w.txtTime = "";
        w.Next();
        w.txtMagU = {"", ""};
        w.chkIB = true;
        w.txtMinAlt = "";
        w.Next();
        ASSERT_TRUE(w.Closed());

        // Paris on the 20th at 22:00 local: Orion is up, Cygnus (no magnitude, kept by chkIB)
        // too; ordered by ObjectID descending.
        EXPECT_EQ(Ids(), (std::vector<std::string>{"NGC 7000", "NGC 1976"}));
        EXPECT_EQ(TMM.grids[0].Tag(), "");
        if (!apply) {
            EXPECT_EQ(Values(), before);
            EXPECT_EQ(TMM.controls.filter.Obcon, shownBefore.Obcon);
            EXPECT_EQ(TMM.controls.filter.gMagU, shownBefore.gMagU);
            EXPECT_EQ(TMM.controls.sorts.cbosort, sortsBefore.cbosort);
            EXPECT_EQ(TMM.controls.sorts.chkD, sortsBefore.chkD);
        } else {
            const data::Preferences& p = TMM.prefs;
            EXPECT_EQ(p.Obcon, "Cyg-Cygnus;Ori-Orion;");
            EXPECT_EQ(p.Obtod, "Bright nebula;");
            EXPECT_EQ(p.ObCat, "");
            EXPECT_EQ(p.sort1, "ObjectID");
            EXPECT_EQ(p.Des1, "D");
            EXPECT_EQ(p.sort2, "");
            EXPECT_EQ(p.PDate, "2024-03-20");
            EXPECT_EQ(p.Ptime, "22:00"); // the empty box left it
            EXPECT_DOUBLE_EQ(p.Plat, 48.85);
            EXPECT_DOUBLE_EQ(p.PLon, -2.35);
            EXPECT_DOUBLE_EQ(p.PTz, -1);
            EXPECT_EQ(p.gMagU, "");
            EXPECT_EQ(p.PIB, "Y");
            EXPECT_EQ(p.Pminalt, "");
            EXPECT_EQ(TMM.controls.filter.Obcon, "Cyg-Cygnus;Ori-Orion;");
            EXPECT_EQ(TMM.controls.sorts.cbosort[0], "ObjectID");
            EXPECT_EQ(TMM.settings.Get("Obcon"), std::nullopt);
            data::SavePreferences(TMM.prefs, TMM.settings);
            EXPECT_EQ(TMM.settings.Get("Obcon", ""), "Cyg-Cygnus;Ori-Orion;");
            EXPECT_EQ(TMM.settings.Get("PLon", ""), "-2.35");
        }
    }

    // Pages 1 to 5 with Next, to page 6.
    static void ToLastPage(WhatsUpWizard& w)
    {
        while (w.Page() < kWizardPages)
            w.Next();
    }

    testing_data::TestFolder f;
    std::filesystem::path logbookPath = f.dir.File("Logbook2003-1.mdb");
    services::ScriptedUiPort ui;
    AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    astro::FixedClock clock{{2024, 3, 5, 21, 7, 9}};
};

// Load fills every control from the settings in force; the lists start unselected.
TEST_F(Wizard, LoadSetsEveryControlFromTheSettings)
{
    TMM.prefs.PIB = "Y";
    TMM.prefs.PIB2 = "N";
    TMM.prefs.sort3 = "Altitude";
    TMM.prefs.Des3 = "D";
    TMM.prefs.gMagU2 = "12";
    TMM.prefs.wizapppref = true;
    WhatsUpWizard w(TMM, clock);
    w.Load();

    EXPECT_EQ(w.lstType.items,
              (std::vector<std::string>{"All Types", "Bright nebula", "Galaxy", "Quasar's host"}));
    EXPECT_EQ(w.lstCat.items, (std::vector<std::string>{"All Catalogs", "Caldwell", "NGC 2000"}));
    EXPECT_EQ(w.lstCon.items, WizardConstellationList());
    for (const WizardList* list : {&w.lstCon, &w.lstType, &w.lstCat})
        EXPECT_TRUE(list->Selected().empty());
    // A saved sort the list does not offer shows "<none>"; a computed one stays at any level.
    EXPECT_EQ(w.cbosort, (std::array<std::string, 3>{"Magnitude", "<none>", "Altitude"}));
    EXPECT_EQ(w.chkD, (std::array<bool, 3>{true, false, true}));
    EXPECT_EQ(w.txtDate, "03/05/24"); // today, in the regional short form
    EXPECT_EQ(w.txtTime, "22:00");
    EXPECT_EQ(w.cboSite, "Home"); // the site whose place is the one in force
    ASSERT_EQ(w.sites.size(), 2u);
    EXPECT_DOUBLE_EQ(w.sites[1].Longitude, -2.35); // east of Greenwich
    EXPECT_EQ(w.txtMagL, (std::array<std::string, 2>{"-1", "-1"}));
    EXPECT_EQ(w.txtMagU, (std::array<std::string, 2>{"999", "12"}));
    EXPECT_TRUE(w.chkIB);
    EXPECT_FALSE(w.chkIB2);
    EXPECT_EQ(w.txtMinAlt, "-90");
    EXPECT_TRUE(w.chkwizapply);
    EXPECT_EQ(w.selections.size(), 3u);
    EXPECT_TRUE(TMM.prefs.wuw);
    EXPECT_EQ(TMM.settings.Get("wuw", ""), "True");
    EXPECT_EQ(w.Page(), 1);
    EXPECT_FALSE(w.BackEnabled());

    // No site has the place in force: none is shown, and Finish keeps the place.
    TMM.prefs.PLon = 75.5;
    WhatsUpWizard elsewhere(TMM, clock);
    elsewhere.Load();
    EXPECT_EQ(elsewhere.cboSite, "");
    EXPECT_FALSE(elsewhere.Site().has_value());
}

// Back returns a page and takes nothing; Next takes the page's values anew. The next button
// reads "Finish" on the last page only.
TEST_F(Wizard, BackTakesNothing)
{
    WhatsUpWizard w(TMM, clock);
    w.Load();
    w.Back();
    EXPECT_EQ(w.Page(), 1);
    w.Next();
    w.lstType.Select("Galaxy");
    w.Back();
    EXPECT_EQ(w.Page(), 1);
    EXPECT_FALSE(w.BackEnabled());
    EXPECT_EQ(TMM.prefs.Obtod, "All Types"); // page 2 was left by Back
    EXPECT_EQ(TMM.prefs.Obcon, "");          // page 1 took "all" on the way forward
    w.lstCon.Select("Cyg-Cygnus");
    w.Next();
    EXPECT_EQ(TMM.prefs.Obcon, "Cyg-Cygnus;");
    ToLastPage(w);
    EXPECT_EQ(TMM.prefs.Obtod, "Galaxy;");
    EXPECT_EQ(std::string(w.NextCaption()), "Finish");
    w.Back();
    EXPECT_EQ(std::string(w.NextCaption()), "Next >>");
    EXPECT_FALSE(w.Closed());
}

// NextPage1 to NextPage3: nothing selected or the "All" entry means all; otherwise the entries
// in list order, whatever order they were picked in. Going back and forward takes them anew.
TEST_F(Wizard, NextPageTakesTheSelectionsInListOrder)
{
    struct Row
    {
        const char* name;
        int page; // 1, 2 or 4
        std::vector<std::string> picks;
        const char* value;
        const char* label; // the spreadsheet's label afterwards
        std::vector<std::string> taken;
    };
    const Row rows[] = {
        {"nothing selected", 1, {}, "", "All Constellations", {}},
        {"two, list order",
         1,
         {"Ori-Orion", "And-Andromeda"},
         "And-Andromeda;Ori-Orion;",
         "And-Andromeda;Ori-Orion;",
         {"And-Andromeda", "Ori-Orion"}},
        {"All with others", 1, {"Ori-Orion", "All Constellations"}, "", "All Constellations", {}},
        {"types",
         2,
         {"Quasar's host", "Galaxy"},
         "Galaxy;Quasar's host;",
         "Galaxy;Quasar's host;",
         {"Galaxy", "Quasar's host"}},
        {"no type", 2, {}, "", "All Types", {}},
        {"All Catalogs with others", 4, {"NGC 2000", "All Catalogs"}, "", "All Catalogs", {}},
        {"catalogues",
         4,
         {"NGC 2000", "Caldwell"},
         "Caldwell;NGC 2000;",
         "Caldwell;NGC 2000;",
         {"Caldwell", "NGC 2000"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TMM.prefs.Obcon = "Ori-Orion;";
        TMM.prefs.Obtod = "Galaxy;";
        TMM.prefs.ObCat = "NGC 2000;";
        WhatsUpWizard w(TMM, clock);
        w.Load();
        while (w.Page() < row.page)
            w.Next();
        WizardList& list = row.page == 1 ? w.lstCon : row.page == 2 ? w.lstType : w.lstCat;
        for (const std::string& pick : row.picks)
            ASSERT_TRUE(list.Select(pick)) << pick;
        // Twice over, as Back and Next again: the set is not taken twice.
        w.Next();
        w.Back();
        w.Next();
        const char* key = row.page == 1 ? "CON" : row.page == 2 ? "TYP" : "CAT";
        const std::string& value = row.page == 1   ? TMM.prefs.Obcon
                                   : row.page == 2 ? TMM.prefs.Obtod
                                                   : TMM.prefs.ObCat;
        const data::ObjectFilter& shown = TMM.controls.filter;
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(row.page == 1   ? shown.Obcon
                  : row.page == 2 ? shown.Obtod
                                  : shown.ObCat,
                  row.label);
        EXPECT_EQ(w.selections[key], row.taken);
    }
}

// WizardComplete's SQL, clause by clause, as Finish leaves it in TMM.SQL: the filter's clauses
// up to magnitude 2 with 99 for an empty upper magnitude, then the ORDER BY, and never a range,
// whatever the filter panel's other boxes hold.
TEST_F(Wizard, FinishBuildsTheSqlClauseByClause)
{
    struct Row
    {
        const char* name;
        std::vector<std::string> cons, types, cats;
        std::array<std::string, 3> sorts;
        std::array<bool, 3> desc;
        std::array<std::string, 2> magL, magU;
        bool chkIB, chkIB2;
        const char* sql;
    };
    const std::array<std::string, 3> none{"<none>", "<none>", "<none>"};
    const Row rows[] = {
        {"everything all, empty boxes",
         {},
         {},
         {},
         none,
         {},
         {"", ""},
         {"", ""},
         false,
         true,
         "Select * From SelvaneTable  WHERE Magnitude >= -1 and Magnitude <= 99  and "
         "((Magnitude2 >= -1 and Magnitude2 <= 99) or isnull(Magnitude2)) "},
        {"blanks included, magnitude 2 not",
         {},
         {},
         {},
         none,
         {},
         {"2", "-1"},
         {"8.50", "abc"},
         true,
         false,
         "Select * From SelvaneTable  WHERE ((Magnitude >= 2 and Magnitude <= 8.5) or "
         "isnull(Magnitude))  and Magnitude2 >= -1 and Magnitude2 <= 0 "},
        {"catalogues",
         {},
         {},
         {"NGC 2000", "Caldwell"},
         none,
         {},
         {"-1", "-1"},
         {"10", "99"},
         false,
         true,
         "Select * From SelvaneTable  WHERE (Catalog = 'CALDWELL'  or Catalog = '2000' )  and "
         "Magnitude >= -1 and Magnitude <= 10  and ((Magnitude2 >= -1 and Magnitude2 <= 99) or "
         "isnull(Magnitude2)) "},
        {"constellations",
         {"Cvn-Canes Venatici", "And-Andromeda"},
         {},
         {},
         none,
         {},
         {"-1", "-1"},
         {"10", "99"},
         false,
         true,
         "Select * From SelvaneTable  WHERE (Constellation = 'And'  or Constellation = 'Cvn' ) "
         " and Magnitude >= -1 and Magnitude <= 10  and ((Magnitude2 >= -1 and Magnitude2 <= "
         "99) or isnull(Magnitude2)) "},
        {"types, quote doubled",
         {},
         {"Quasar's host", "Galaxy"},
         {},
         none,
         {},
         {"-1", "-1"},
         {"10", "99"},
         true,
         true,
         "Select * From SelvaneTable  WHERE (ObjectType = 'GALXY'  or ObjectType = 'Q''H' )  "
         "and ((Magnitude >= -1 and Magnitude <= 10) or isnull(Magnitude))  and ((Magnitude2 >= "
         "-1 and Magnitude2 <= 99) or isnull(Magnitude2)) "},
        {"all three selections and three sort levels, computed one left to the grid",
         {"Ori-Orion"},
         {"Bright nebula"},
         {"NGC 2000"},
         {"Constellation", "Altitude", "Magnitude"},
         {true, false, false},
         {"-1", "-1"},
         {"10", "99"},
         false,
         true,
         "Select * From SelvaneTable  WHERE (Catalog = '2000' ) and ( Constellation = 'Ori' ) "
         "and ( ObjectType = 'BRTNB' )  and Magnitude >= -1 and Magnitude <= 10  and "
         "((Magnitude2 >= -1 and Magnitude2 <= 99) or isnull(Magnitude2)) ORDER BY "
         "Constellation Desc,  Magnitude Asc"},
        {"only computed sorts: no ORDER BY",
         {},
         {},
         {},
         {"Rise", "Sky#", "Set"},
         {true, true, true},
         {"-1", "-1"},
         {"10", "99"},
         false,
         true,
         "Select * From SelvaneTable  WHERE Magnitude >= -1 and Magnitude <= 10  and "
         "((Magnitude2 >= -1 and Magnitude2 <= 99) or isnull(Magnitude2)) "},
    };
    // Boxes of the filter panel that the wizard never reads.
    TMM.prefs.gSizeU = "50";
    TMM.prefs.gFRAH = "3";
    TMM.prefs.gObjID = "NGC*";
    TMM.prefs.gmagdif = "1";
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        WhatsUpWizard w(TMM, clock);
        w.Load();
        for (const std::string& c : row.cons)
            w.lstCon.Select(c);
        for (const std::string& t : row.types)
            w.lstType.Select(t);
        for (const std::string& c : row.cats)
            w.lstCat.Select(c);
        w.cbosort = row.sorts;
        w.chkD = row.desc;
        w.txtMagL = row.magL;
        w.txtMagU = row.magU;
        w.chkIB = row.chkIB;
        w.chkIB2 = row.chkIB2;
        ToLastPage(w);
        w.Next();
        EXPECT_TRUE(w.Closed());
        EXPECT_EQ(TMM.SQL, row.sql);
    }
}

// Finish with the apply box off: the tab shows the wizard's result, and every value the wizard
// took, the longitude included, is put back, in the settings and in the spreadsheet's
// controls. With the box on, the wizard's values stay and reach the settings file only when
// the preferences are next saved.
TEST_F(Wizard, FinishWithApplyOffPutsEverythingBack)
{
    FinishOnEveryPage(false);
}

TEST_F(Wizard, FinishWithApplyOnKeepsTheWizardsValues)
{
    FinishOnEveryPage(true);
}

// The time box: blank keeps Ptime, a time is kept as "hh:mm", text that is no time as typed;
// the date is taken as typed on page 5, and Now fills both from the clock.
TEST_F(Wizard, PageFiveTakesDateAndTime)
{
    struct Row
    {
        const char* date;
        const char* time;
        const char* PDate;
        const char* Ptime;
    };
    const Row rows[] = {
        {"03/20/2024", "", "03/20/2024", "22:00"},
        {"03/20/2024", "   ", "03/20/2024", "22:00"},
        {"", "9:05", "", "09:05"},
        {"2024-03-20", "23:30:45", "2024-03-20", "23:30"},
        {"03/20/2024", "late", "03/20/2024", "late"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.date) + "|" + row.time);
        TMM.prefs.PDate = "01/01/2024";
        TMM.prefs.Ptime = "22:00";
        TMM.prefs.wizapppref = true;
        WhatsUpWizard w(TMM, clock);
        w.Load();
        for (int page = 1; page < 5; ++page)
            w.Next();
        w.txtDate = row.date;
        w.txtTime = row.time;
        w.Next();
        EXPECT_EQ(TMM.prefs.PDate, row.PDate);
        EXPECT_EQ(TMM.prefs.Ptime, row.Ptime);
    }

    clock.Set({2025, 12, 31, 23, 59, 58});
    WhatsUpWizard w(TMM, clock);
    w.Load();
    w.txtTime = "";
    w.Now();
    EXPECT_EQ(w.txtDate, "12/31/25");
    EXPECT_EQ(w.txtTime, "23:59");
}

// Cancel closes without putting anything back: what the pages took before it stays in force,
// and what they had not yet taken is left alone. The apply box is written at each click.
TEST_F(Wizard, CancelKeepsWhatThePagesTook)
{
    const std::vector<std::string> before = Values();
    const std::string sql = TMM.SQL;
    WhatsUpWizard w(TMM, clock);
    w.Load();
    w.chkwizapply_Click(true);
    EXPECT_EQ(TMM.settings.Get("wizapppref", ""), "True");
    w.chkwizapply_Click(false);
    EXPECT_EQ(TMM.settings.Get("wizapppref", ""), "False");
    EXPECT_FALSE(TMM.prefs.wizapppref);

    w.lstCon.Select("And-Andromeda");
    for (int page = 1; page < 5; ++page)
        w.Next();
    w.txtDate = "12/24/2024";
    ASSERT_TRUE(w.SelectSite("Paris"));
    w.Cancel();
    EXPECT_TRUE(w.Closed());
    w.Next(); // a closed wizard takes no more clicks
    EXPECT_EQ(TMM.prefs.Obcon, "And-Andromeda;");
    EXPECT_EQ(TMM.controls.filter.Obcon, "And-Andromeda;");
    EXPECT_EQ(TMM.prefs.Obtod, ""); // page 2 took "all"
    EXPECT_EQ(TMM.prefs.ObCat, ""); // and page 4
    EXPECT_EQ(TMM.prefs.PDate, "03/15/2024");
    EXPECT_DOUBLE_EQ(TMM.prefs.PLon, 75);
    EXPECT_EQ(TMM.SQL, sql);
    std::vector<std::string> after = Values();
    EXPECT_EQ(std::vector<std::string>(after.begin() + 7, after.end()),
              std::vector<std::string>(before.begin() + 7, before.end()));
}

// Wiz2 and Wiz3: one sort level from PmSort / PsSort, the magnitude and size limits, rows
// below the horizon dropped when Pminalt is blank, and the settings unchanged afterwards.
TEST_F(Wizard, WhatsUpListsOfMessierAndHerschel)
{
    const auto load = [this] {
        GridLoad gridLoad;
        LoadTheGrid(TMM, TMM.grids[0], LoadMode::NoBuild, gridLoad, clock);
    };
    struct Row
    {
        const char* name;
        bool herschel;
        const char* sortEntry;
        const char* direction;
        const char* maxMag;
        const char* maxSize;
        const char* Pminalt;
        const char* Ptime;
        const char* sql;
        std::vector<std::string> ids;
    };
    const Row rows[] = {
        {"Messier by constellation",
         false,
         "4",
         "A",
         "8",
         "",
         "",
         "22:00",
         "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' and "
         "Magnitude <= 8 ORDER BY Constellation Asc",
         {"NGC 224", "NGC 1976"}},
        {"Messier descending, size limit",
         false,
         "4",
         "D",
         "8",
         "100",
         "",
         "22:00",
         "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' and "
         "Magnitude <= 8 and ObjectSize <= 100 ORDER BY Constellation Desc",
         {"NGC 1976"}},
        {"Messier by altitude, highest first, sorted by the grid",
         false,
         "1",
         "D",
         "8",
         "",
         "-90",
         "22:00",
         "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' and "
         "Magnitude <= 8",
         {"NGC 1976", "NGC 224"}},
        {"Messier by an entry the list has not: no order",
         false,
         "99",
         "A",
         "3.5",
         "",
         "",
         "22:00",
         "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' and "
         "Magnitude <= 3.5",
         {"NGC 224"}},
        {"Herschel, no limit",
         true,
         "0",
         "A",
         "",
         "",
         "",
         "22:00",
         "Select * From SelvaneTable Where Catalog = '2000' and HOBJECT <> ''",
         {"NGC 1976"}},
        {"Herschel, faint limit",
         true,
         "3",
         "A",
         "3",
         "",
         "",
         "22:00",
         "Select * From SelvaneTable Where Catalog = '2000' and HOBJECT <> '' and Magnitude <= "
         "3 ORDER BY Catalog Asc",
         {}},
        // In the morning Orion has set: a blank minimum altitude drops it, -90 keeps it.
        {"Messier in the morning",
         false,
         "4",
         "A",
         "8",
         "",
         "",
         "10:00",
         "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' and "
         "Magnitude <= 8 ORDER BY Constellation Asc",
         {"NGC 224"}},
        {"Messier in the morning, no minimum",
         false,
         "4",
         "A",
         "8",
         "",
         "-90",
         "10:00",
         "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000' and "
         "Magnitude <= 8 ORDER BY Constellation Asc",
         {"NGC 224", "NGC 1976"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        data::Preferences& p = TMM.prefs;
        (row.herschel ? p.PsSort : p.PmSort) = row.sortEntry;
        (row.herschel ? p.Pssorto : p.Pmsorto) = row.direction;
        p.PMaxMag = row.maxMag;
        p.PMaxSize = row.maxSize;
        p.Pminalt = row.Pminalt;
        p.Ptime = row.Ptime;
        const std::vector<std::string> before = Values();
        ASSERT_TRUE(row.herschel ? Wiz3(TMM, load) : Wiz2(TMM, load));
        EXPECT_EQ(TMM.SQL, row.sql);
        EXPECT_EQ(Ids(), row.ids);
        EXPECT_EQ(Values(), before);
    }

    TMM.CurrTab = 5;
    int loads = 0;
    EXPECT_FALSE(Wiz2(TMM, [&] { ++loads; }));
    EXPECT_EQ(loads, 0);
    ASSERT_FALSE(ui.shown.empty());
    EXPECT_EQ(ui.shown.back().Text(), "Please select a spreadsheet tab first");
    EXPECT_EQ(ui.shown.back().message.ShortMessage, "Invalid Usage!");
}

} // namespace
