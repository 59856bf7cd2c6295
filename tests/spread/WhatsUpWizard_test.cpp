// The What's Up wizard without its window, over real SQLite files: the test object database
// (M 31 in Andromeda, M 42 in Orion, NGC 7000 in Cygnus with no magnitude) with more types and
// catalogues, and a logbook with two observing sites.

#include "spread/WhatsUpWizard.h"

#include "data/ObjectFilter.h"
#include "services/ScriptedUiPort.h"
#include "spread/Spreadsheet.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <tuple>
#include <vector>

using namespace spread;

namespace {

using Ids = std::vector<std::string>;

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
        data::Database::Open(logbookPath)
            ->Execute("Insert Into ObservingSites (ProfileName, Latitude, Longitude, EastWest, "
                      "TimeZone) Values ('Home', 40, 75, 'W', 5), ('Paris', 48.85, 2.35, 'E', -1)");
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

    // The ids of tab 0's rows, in order.
    std::string TabIds() const
    {
        std::string ids;
        const Grid& grid = TMM.grids[0];
        for (int row = 1; row <= grid.MaxRows(); ++row)
            ids += std::string(row > 1 ? ", " : "") + std::string(grid.Text(row, 4));
        return ids;
    }

    // Every value the wizard may change, as the settings hold it.
    std::map<std::string, std::string> Values() const
    {
        std::map<std::string, std::string> values;
        for (const char* key : {"gMagL", "gMagL2", "gMagU", "gMagU2", "Obcon", "Obtod", "ObCat",
                                "sort1", "sort2",  "sort3", "Des1",   "Des2",  "Des3",  "PDate",
                                "Plat",  "PLon",   "PTz",   "Ptime",  "PIB",   "PIB2",  "Pminalt"})
            values[key] = *data::GetPreference(TMM.prefs, key);
        return values;
    }

    static void ToPage(WhatsUpWizard& w, int page)
    {
        while (w.Page() < page)
            w.Next();
    }

    testing_data::TestFolder f;
    std::filesystem::path logbookPath = f.dir.File("Logbook2003-1.mdb");
    services::ScriptedUiPort ui;
    AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    astro::FixedClock clock{{2024, 3, 5, 21, 7, 9}};
};

// Load fills the controls from the settings in force and the databases' lists.
TEST_F(Wizard, LoadSetsTheControlsFromTheSettings)
{
    TMM.prefs.sort3 = "Altitude";
    TMM.prefs.Des3 = "D";
    WhatsUpWizard w(TMM, clock);
    w.Load();

    EXPECT_EQ(w.lstType.items, (Ids{"All Types", "Bright nebula", "Galaxy", "Quasar's host"}));
    EXPECT_EQ(w.lstCat.items, (Ids{"All Catalogs", "Caldwell", "NGC 2000"}));
    // A saved sort the list does not offer shows "<none>"; a computed one stays at any level.
    EXPECT_EQ(w.cbosort, (std::array<std::string, 3>{"Magnitude", "<none>", "Altitude"}));
    EXPECT_EQ(w.chkD, (std::array<bool, 3>{true, false, true}));
    EXPECT_EQ(w.txtDate, "03/05/24"); // today, in the regional short form
    EXPECT_EQ(w.cboSite, "Home");     // the site whose place is the one in force
    EXPECT_EQ(TMM.settings.Get("wuw", ""), "True");

    // No site has the place in force: none is shown or taken.
    TMM.prefs.PLon = 75.5;
    WhatsUpWizard elsewhere(TMM, clock);
    elsewhere.Load();
    EXPECT_EQ(elsewhere.cboSite, "");
    EXPECT_FALSE(elsewhere.Site().has_value());
}

// Pages 1, 2 and 4: nothing selected or the "All" entry among others means all; otherwise the
// entries in list order, whatever order they were picked in, taken once however often Next is.
TEST_F(Wizard, NextPageTakesTheSelectionsInListOrder)
{
    const struct
    {
        const char* name;
        int page;
        Ids picks;
        const char* value;
    } rows[] = {
        {"nothing selected", 1, {}, ""},
        {"two constellations", 1, {"Ori-Orion", "And-Andromeda"}, "And-Andromeda;Ori-Orion;"},
        {"All with others", 1, {"Ori-Orion", "All Constellations"}, ""},
        {"two types", 2, {"Quasar's host", "Galaxy"}, "Galaxy;Quasar's host;"},
        {"All Catalogs with others", 4, {"NGC 2000", "All Catalogs"}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        TMM.prefs.Obcon = "Ori-Orion;";
        TMM.prefs.Obtod = "Galaxy;";
        TMM.prefs.ObCat = "NGC 2000;";
        WhatsUpWizard w(TMM, clock);
        w.Load();
        ToPage(w, row.page);
        WizardList& list = row.page == 1 ? w.lstCon : row.page == 2 ? w.lstType : w.lstCat;
        for (const std::string& pick : row.picks)
            ASSERT_TRUE(list.Select(pick)) << pick;
        w.Next();
        w.Back();
        w.Next();
        const data::ObjectFilter& shown = TMM.controls.filter;
        const auto [value, label, all] =
            row.page == 1   ? std::tuple(TMM.prefs.Obcon, shown.Obcon, "All Constellations")
            : row.page == 2 ? std::tuple(TMM.prefs.Obtod, shown.Obtod, "All Types")
                            : std::tuple(TMM.prefs.ObCat, shown.ObCat, "All Catalogs");
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(label, *row.value ? row.value : all); // the filter panel's label
    }
}

// WizardComplete's SQL, clause by clause, as Finish leaves it in TMM.SQL: the filter's clauses
// up to magnitude 2 with 99 for an empty upper magnitude, then the ORDER BY without the computed
// sorts, and never a range, whatever the filter panel's other boxes hold.
TEST_F(Wizard, FinishBuildsTheSqlClauseByClause)
{
    const std::string where = "Select * From SelvaneTable  WHERE ";
    const std::string mags = "Magnitude >= -1 and Magnitude <= 10  and ((Magnitude2 >= -1 and "
                             "Magnitude2 <= 99) or isnull(Magnitude2)) ";
    const struct
    {
        const char* name;
        Ids picks; // entries of the three lists
        std::array<std::string, 3> sorts{"<none>", "<none>", "<none>"};
        std::array<bool, 3> desc{};
        std::array<std::string, 2> magL{"-1", "-1"}, magU{"10", "99"};
        bool chkIB = false, chkIB2 = true;
        std::string sql;
    } rows[] = {
        {.name = "everything all, empty boxes",
         .magL = {"", ""},
         .magU = {"", ""},
         .sql = where + "Magnitude >= -1 and Magnitude <= 99  and ((Magnitude2 >= -1 and "
                        "Magnitude2 <= 99) or isnull(Magnitude2)) "},
        {.name = "blanks included, magnitude 2 not",
         .magL = {"2", "-1"},
         .magU = {"8.50", "abc"},
         .chkIB = true,
         .chkIB2 = false,
         .sql = where + "((Magnitude >= 2 and Magnitude <= 8.5) or isnull(Magnitude))  and "
                        "Magnitude2 >= -1 and Magnitude2 <= 0 "},
        {.name = "catalogues",
         .picks = {"NGC 2000", "Caldwell"},
         .sql = where + "(Catalog = 'CALDWELL'  or Catalog = '2000' )  and " + mags},
        {.name = "constellations",
         .picks = {"Cvn-Canes Venatici", "And-Andromeda"},
         .sql = where + "(Constellation = 'And'  or Constellation = 'Cvn' )  and " + mags},
        {.name = "types, quote doubled",
         .picks = {"Quasar's host", "Galaxy"},
         .sql = where + "(ObjectType = 'GALXY'  or ObjectType = 'Q''H' )  and " + mags},
        {.name = "all three lists and three sort levels, the computed one left to the grid",
         .picks = {"Ori-Orion", "Bright nebula", "NGC 2000"},
         .sorts = {"Constellation", "Altitude", "Magnitude"},
         .desc = {true, false, false},
         .sql = where +
                "(Catalog = '2000' ) and ( Constellation = 'Ori' ) and ( ObjectType = "
                "'BRTNB' )  and " +
                mags + "ORDER BY Constellation Desc,  Magnitude Asc"},
        {.name = "only computed sorts: no ORDER BY",
         .sorts = {"Rise", "Sky#", "Set"},
         .desc = {true, true, true},
         .sql = where + mags},
    };
    // Boxes of the filter panel that the wizard never reads.
    TMM.prefs.gSizeU = "50";
    TMM.prefs.gFRAH = "3";
    TMM.prefs.gObjID = "NGC*";
    TMM.prefs.gmagdif = "1";
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        WhatsUpWizard w(TMM, clock);
        w.Load();
        for (const std::string& pick : row.picks)
            ASSERT_TRUE(w.lstCon.Select(pick) || w.lstType.Select(pick) || w.lstCat.Select(pick))
                << pick;
        w.cbosort = row.sorts;
        w.chkD = row.desc;
        w.txtMagL = row.magL;
        w.txtMagU = row.magU;
        w.chkIB = row.chkIB;
        w.chkIB2 = row.chkIB2;
        ToPage(w, kWizardPages);
        w.Next();
        EXPECT_TRUE(w.Closed());
        EXPECT_EQ(TMM.SQL, row.sql);
    }
}

// Every page set and Finish clicked. The tab shows the wizard's result either way; with the
// apply box off every value the wizard took, the longitude of the site included, is put back in
// the settings and the spreadsheet's controls, with it on the wizard's values stay in force
// without reaching the settings file.
TEST_F(Wizard, FinishWithTheApplyBoxOffAndOn)
{
    for (bool apply : {false, true}) {
        SCOPED_TRACE(apply);
        TMM.prefs.wizapppref = apply;
        const std::map<std::string, std::string> before = Values();
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
        ToPage(w, 5);
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
        EXPECT_EQ(TabIds(), "NGC 7000, NGC 1976");
        EXPECT_EQ(TMM.grids[0].Tag(), "");
        if (!apply) {
            EXPECT_EQ(Values(), before);
            EXPECT_EQ(TMM.controls.filter.Obcon + "|" + TMM.controls.filter.gMagU,
                      shownBefore.Obcon + "|" + shownBefore.gMagU);
            EXPECT_EQ(TMM.controls.sorts.cbosort, sortsBefore.cbosort);
            continue;
        }
        std::map<std::string, std::string> kept = before;
        for (const std::string change :
             {"Obcon=Cyg-Cygnus;Ori-Orion;", "Obtod=Bright nebula;", "ObCat=", "sort1=ObjectID",
              "sort2=", "PDate=2024-03-20", "Plat=48.85", "PLon=-2.35", "PTz=-1",
              "gMagU=", "gMagU2=", "PIB=Y", "Pminalt="})
            kept[change.substr(0, change.find('='))] = change.substr(change.find('=') + 1);
        EXPECT_EQ(Values(), kept); // Ptime too: the empty time box left it
        EXPECT_EQ(TMM.controls.filter.Obcon, "Cyg-Cygnus;Ori-Orion;");
        EXPECT_EQ(TMM.controls.sorts.cbosort[0], "ObjectID");
        EXPECT_EQ(TMM.settings.Get("Obcon"), std::nullopt);
    }
}

// Page 5: a blank time keeps Ptime, a time is kept as "hh:mm", text that is no time as typed;
// the date is taken as typed. Now fills both from the clock.
TEST_F(Wizard, PageFiveTakesDateAndTime)
{
    const struct
    {
        const char *date, *time, *PDate, *Ptime;
    } rows[] = {
        {"03/20/2024", "", "03/20/2024", "22:00"},
        {"03/20/2024", "   ", "03/20/2024", "22:00"},
        {"", "9:05", "", "09:05"},
        {"2024-03-20", "23:30:45", "2024-03-20", "23:30"},
        {"03/20/2024", "late", "03/20/2024", "late"},
    };
    TMM.prefs.wizapppref = true;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.date) + "|" + row.time);
        TMM.prefs.Ptime = "22:00";
        WhatsUpWizard w(TMM, clock);
        w.Load();
        ToPage(w, 5);
        w.txtDate = row.date;
        w.txtTime = row.time;
        w.Next();
        EXPECT_EQ(TMM.prefs.PDate, row.PDate);
        EXPECT_EQ(TMM.prefs.Ptime, row.Ptime);
    }

    // A site chosen and then the blank entry: the place in force stays at Finish.
    const double lat = TMM.prefs.Plat, lon = TMM.prefs.PLon;
    WhatsUpWizard site(TMM, clock);
    site.Load();
    ToPage(site, 5);
    ASSERT_TRUE(site.SelectSite("Paris"));
    ASSERT_TRUE(site.SelectSite(""));
    ToPage(site, 6);
    site.Next();
    ASSERT_TRUE(site.Closed());
    EXPECT_EQ(std::pair(TMM.prefs.Plat, TMM.prefs.PLon), std::pair(lat, lon));

    clock.Set({2025, 12, 31, 23, 59, 58});
    WhatsUpWizard w(TMM, clock);
    w.Load();
    w.Now();
    EXPECT_EQ(w.txtDate + " " + w.txtTime, "12/31/25 23:59");
}

// Back returns a page and takes nothing; Next takes the page's values anew. Cancel closes
// without putting anything back: what the pages took before it stays in force, and what they had
// not yet taken is left alone. The apply box is written at each click.
TEST_F(Wizard, BackAndCancelKeepWhatThePagesTook)
{
    std::map<std::string, std::string> expected = Values();
    const std::string sql = TMM.SQL;
    WhatsUpWizard w(TMM, clock);
    w.Load();
    w.chkwizapply_Click(true);
    EXPECT_EQ(TMM.settings.Get("wizapppref", ""), "True");
    w.chkwizapply_Click(false);
    EXPECT_EQ(TMM.settings.Get("wizapppref", ""), "False");

    w.Next();
    w.lstType.Select("Galaxy");
    w.Back();
    EXPECT_EQ(w.Page(), 1);
    EXPECT_EQ(TMM.prefs.Obtod, expected["Obtod"]);
    w.lstCon.Select("And-Andromeda");
    ToPage(w, 5);
    w.txtDate = "12/24/2024";
    ASSERT_TRUE(w.SelectSite("Paris"));
    w.Cancel();
    EXPECT_TRUE(w.Closed());
    w.Next(); // a closed wizard takes no more clicks
    expected["Obcon"] = "And-Andromeda;";
    expected["Obtod"] = "Galaxy;";
    expected["ObCat"] = ""; // page 4 took "all"
    EXPECT_EQ(Values(), expected);
    EXPECT_EQ(TMM.controls.filter.Obcon, "And-Andromeda;");
    EXPECT_EQ(TMM.SQL, sql);
}

// Wiz2 and Wiz3: one sort level from PmSort / PsSort, the magnitude and size limits, rows below
// the horizon dropped when Pminalt is blank, and the settings unchanged afterwards.
TEST_F(Wizard, WhatsUpListsOfMessierAndHerschel)
{
    const std::string messier =
        "Select * From SelvaneTable Where MessierNumber > 0 and catalog = '2000'";
    const std::string herschel =
        "Select * From SelvaneTable Where Catalog = '2000' and HOBJECT <> ''";
    const struct
    {
        const char* name;
        bool herschel;
        const char *sortEntry, *direction, *maxMag, *maxSize, *Pminalt, *Ptime;
        std::string sql;
        const char* ids;
    } rows[] = {
        {"Messier by constellation", false, "4", "A", "8", "", "", "22:00",
         messier + " and Magnitude <= 8 ORDER BY Constellation Asc", "NGC 224, NGC 1976"},
        {"Messier descending, size limit", false, "4", "D", "8", "100", "", "22:00",
         messier + " and Magnitude <= 8 and ObjectSize <= 100 ORDER BY Constellation Desc",
         "NGC 1976"},
        {"Messier by altitude, highest first, sorted by the grid", false, "1", "D", "8", "", "-90",
         "22:00", messier + " and Magnitude <= 8", "NGC 1976, NGC 224"},
        {"Messier by an entry the list has not: no order", false, "99", "A", "3.5", "", "", "22:00",
         messier + " and Magnitude <= 3.5", "NGC 224"},
        {"Herschel, no limit", true, "0", "A", "", "", "", "22:00", herschel, "NGC 1976"},
        {"Herschel, faint limit", true, "3", "A", "3", "", "", "22:00",
         herschel + " and Magnitude <= 3 ORDER BY Catalog Asc", ""},
        // In the morning Orion has set: a blank minimum altitude drops it, -90 keeps it.
        {"Messier in the morning", false, "4", "A", "8", "", "", "10:00",
         messier + " and Magnitude <= 8 ORDER BY Constellation Asc", "NGC 224"},
        {"Messier in the morning, no minimum", false, "4", "A", "8", "", "-90", "10:00",
         messier + " and Magnitude <= 8 ORDER BY Constellation Asc", "NGC 224, NGC 1976"},
    };
    const auto load = [this] {
        GridLoad gridLoad;
        LoadTheGrid(TMM, TMM.grids[0], LoadMode::NoBuild, gridLoad, clock);
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        data::Preferences& p = TMM.prefs;
        (row.herschel ? p.PsSort : p.PmSort) = row.sortEntry;
        (row.herschel ? p.Pssorto : p.Pmsorto) = row.direction;
        p.PMaxMag = row.maxMag;
        p.PMaxSize = row.maxSize;
        p.Pminalt = row.Pminalt;
        p.Ptime = row.Ptime;
        const std::map<std::string, std::string> before = Values();
        ASSERT_TRUE(row.herschel ? Wiz3(TMM, load) : Wiz2(TMM, load));
        EXPECT_EQ(TMM.SQL, row.sql);
        EXPECT_EQ(TabIds(), row.ids);
        EXPECT_EQ(Values(), before);
    }

    TMM.CurrTab = 5;
    int loads = 0;
    EXPECT_FALSE(Wiz2(TMM, [&] { ++loads; }));
    EXPECT_EQ(loads, 0);
    ASSERT_FALSE(ui.shown.empty());
    EXPECT_EQ(ui.shown.back().Text(), "Please select a spreadsheet tab first");
}

} // namespace
