#include "spread/Spreadsheet.h"

#include "services/ScriptedUiPort.h"
#include "tests/data/TestDatabases.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace spread;

namespace {

class SpreadFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ui.echo = false;
        testing_data::MakeObjectDatabase(f.objectPath);
        data::OpenOptions options;
        TMM.objectDb = data::Database::Open(f.objectPath, options);
        TMM.prefs.PDate = "03/15/2024";
        TMM.prefs.Ptime = "22:00";
        TMM.prefs.Plat = 40;
        TMM.prefs.PLon = 75;
        TMM.prefs.PTz = 5;
        TMM.prefs.ObCat = "NGC 2000;";
        TMM.prefs.Obcon = "";
        TMM.prefs.PIB = "Y";
    }

    std::vector<std::string> Ids(int tab = 0) const
    {
        std::vector<std::string> ids;
        const Grid& grid = TMM.grids[static_cast<std::size_t>(tab)];
        for (int row = 1; row <= grid.MaxRows(); ++row)
            ids.emplace_back(grid.Text(row, 4));
        return ids;
    }

    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    AppState TMM{ui, f.dir, data::SettingsStore(f.dir.File("s.ini"))};
    astro::FixedClock clock{{2024, 3, 5, 21, 7, 9}};
    GridLoad load;
};

TEST_F(SpreadFixture, StatusBandTexts)
{
    struct Case
    {
        const char* name;
        double Plat, PLon, PTz;
        const char* UseRealTime;
        const char* PPre;
        bool recordMode;
        const char* lblDate;
        const char* lblTime;
        const char* lblLat;
        const char* lblLong;
        const char* lblMisc;
    };
    const Case cases[] = {
        {"plan clock, north and west", 46.5, 90.2, 6, "N", "", false, "Date: 03/15/2024",
         "Time: 22:00", "Lat: 46\u00B030'00\"", "Lon: 90\u00B012'00\"  Time Zone : 6", ""},
        // Seconds round to a whole number; south and east keep their sign in front.
        {"south, east, half-hour zone", -33.8575, -151.2153, -9.5, "N", "", false,
         "Date: 03/15/2024", "Time: 22:00", "Lat: -33\u00B051'27\"",
         "Lon: -151\u00B012'55\"  Time Zone : -9.5", ""},
        {"computer clock", 0.25, 0, 0, "Y", "", false, "Date: 03/05/24", "Time: 21:07:09",
         "Lat: 00\u00B015'00\"", "Lon: 00\u00B000'00\"  Time Zone : 0", ""},
        {"precessed", 40, 75, 5, "N", "01/01/2050", false, "Date: 03/15/2024", "Time: 22:00",
         "Lat: 40\u00B000'00\"", "Lon: 75\u00B000'00\"  Time Zone : 5",
         "Object Positions Precessed to : 01/01/2050"},
        {"plan open wins over precession", 40, 75, 5, "N", "01/01/2050", true,
         "Date: 03/15/2024", "Time: 22:00", "Lat: 40\u00B000'00\"",
         "Lon: 75\u00B000'00\"  Time Zone : 5", "RECORD MODE"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TMM.prefs.Plat = c.Plat;
        TMM.prefs.PLon = c.PLon;
        TMM.prefs.PTz = c.PTz;
        TMM.prefs.UseRealTime = c.UseRealTime;
        TMM.prefs.PPre = c.PPre;
        TMM.status.lblMisc = "stale";
        UpdateStatusBar(TMM, clock, c.recordMode);
        EXPECT_EQ(TMM.status.lblDate, c.lblDate);
        EXPECT_EQ(TMM.status.lblTime, c.lblTime);
        EXPECT_EQ(TMM.status.lblLat, c.lblLat);
        EXPECT_EQ(TMM.status.lblLong, c.lblLong);
        EXPECT_EQ(TMM.status.lblMisc, c.lblMisc);
    }
    // A blank plan date means today: the band shows the computer's date, not a blank.
    TMM.prefs.UseRealTime = "N";
    TMM.prefs.PDate = "";
    UpdateStatusBar(TMM, clock, false);
    EXPECT_EQ(TMM.status.lblDate, "Date: 03/05/24");
}

TEST_F(SpreadFixture, RefreshApplyAndTheRefreshButton)
{
    // Apply does nothing before the first load has been requested.
    TMM.NoLoadYet = true;
    ApplyIt(TMM, load, clock);
    EXPECT_EQ(TMM.grids[0].MaxRows(), 0);
    TMM.NoLoadYet = false;

    // Refresh runs the last finished load again, not the SQL set since.
    TMM.SQL = "Select * From SelvaneTable Where ID = 3";
    RefreshIt(TMM, load, clock);
    EXPECT_EQ(Ids(), std::vector<std::string>{"NGC 7000"});
    TMM.SQL = "Select * From SelvaneTable Where ID = 1";
    RefreshIt(TMM, load, clock);
    EXPECT_EQ(Ids(), std::vector<std::string>{"NGC 7000"});

    // Apply builds from the filter: the catalogue NGC 2000, every object.
    ApplyIt(TMM, load, clock);
    EXPECT_EQ(Ids().size(), 3u);
    EXPECT_NE(TMM.lastLoadSql.find("WHERE"), std::string::npos);

    // The refresh button on tab 2: tag cleared, controls refreshed, the tab built.
    TMM.CurrTab = 2;
    TMM.grids[2].SetTag("Old list");
    TMM.prefs.gFDECD = "0";
    TMM.prefs.PAzm1 = 400; // an exclusion no azimuth reaches
    TMM.prefs.PAzm2 = 500;
    sscommandRefresh_Click(TMM, load, clock);
    EXPECT_EQ(TMM.grids[2].Tag(), "");
    EXPECT_EQ(Ids(2), (std::vector<std::string>{"NGC 224", "NGC 7000"}));
    EXPECT_EQ(TMM.controls.txtazm, (std::array<std::string, 4>{"400", "500", "", ""}));
    EXPECT_EQ(TMM.status.lblDate, "Date: 03/15/2024");

    // On an image tab it loads no grid.
    TMM.CurrTab = 5;
    sscommandRefresh_Click(TMM, load, clock);
    RefreshIt(TMM, load, clock);
    EXPECT_EQ(Ids(2).size(), 2u);
    EXPECT_TRUE(ui.shown.empty());
}

} // namespace
