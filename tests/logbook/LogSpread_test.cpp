// The log view, its sort and the logbook search over a real logbook with the test object
// database attached, as the program links them at start.

#include "LogTestSession.h"

#include "logbook/LogSearch.h"
#include "logbook/LogSpread.h"
#include "tests/TestFiles.h"

#include <tuple>

using logbook::LogSortBoxes;
using logbook::LogSpread;
using logtest::LogSession;
using Strings = std::vector<std::string>;

namespace {

// A session whose logbook reaches SelvaneTable, with a few entries:
//   1 NGC 224 (M 31), seen, CCD row with dark frame, one image, rich notes
//   2 NGC 7000, not seen, notes that are only markup, log type Galaxies
//   3 an object in no catalogue, notes in plain text
struct SpreadSession : LogSession
{
    SpreadSession()
    {
        data::RebuildLink(*logbook, prefs.cdDrive, prefs.UseCd);
        auto add = [&](const std::string& values) {
            logbook->Execute("Insert Into Logbook (ObservationNumber, ObjectID, Catalog, "
                             "DateObserved, TimeObserved, LocationObserved, SeenFlag, "
                             "ObservationText, LogType) Values (" +
                             values + ")");
        };
        add("1, 'NGC 224', '2000', '2026-11-20', '21:30:00', 'Home', -1, "
            "'<html><body><p><b>Dust</b> lane</p></body></html>', 'Default'");
        add("2, 'NGC 7000', '2000', '2025-01-05', '20:00:00', ' ', 0, "
            "'<html><body><p> </p></body></html>', 'Galaxies'");
        add("3, 'COMET X', 'PRIVATE', '2026-02-01', '05:00:00', 'Field', -1, 'Tail 2 deg', "
            "'Default'");
        logbook->Execute("Insert Into CCDLog (ObservationNumber, ImageName, ExposureTime, "
                         "darkframe, flatfield) Values (1, 'm31.fit', '300', -1, 0)");
        logbook->Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, ImagePath) "
                         "Values (1, 'Core', '/img/m31.png')");
    }

    Strings Cells(const LogSpread& view, std::initializer_list<int> cols)
    {
        Strings out;
        for (const auto& row : view.grdObjectLog) {
            std::string line;
            for (int col : cols)
                line += (line.empty() ? "" : "|") + row.cells[static_cast<std::size_t>(col - 1)];
            out.push_back(line);
        }
        return out;
    }
};

TEST(LogSpread, StatementsCharacterForCharacter)
{
    const std::string join =
        "SELECT Logbook.ObjectID, SelvaneTable.OtherID, SelvaneTable.ObjectType, "
        "SelvaneTable.Constellation, Logbook.ObservationNumber, Logbook.Catalog, "
        "Logbook.DateObserved, Logbook.TimeObserved, Logbook.LocationObserved, Logbook.SeenFlag, "
        "Logbook.Transparency, Logbook.Seeing, Logbook.EquipmentUsed, Logbook.Rating, "
        "Logbook.ShortDescription, Logbook.ObservationText, Logbook.LogType, CCDLog.ImageName, "
        "CCDLog.ExposureTime, CCDLog.ExposureMode, CCDLog.Telescope, CCDLog.CCDcamera, "
        "CCDLog.FocalDistance, CCDLog.FieldOfView, CCDLog.CoolingRate, CCDLog.DarkFrame, "
        "CCDLog.FlatField, CCDLog.PictureRating, CCDLog.Notes FROM (CCDLog RIGHT JOIN Logbook "
        "ON CCDLog.ObservationNumber = Logbook.ObservationNumber) LEFT JOIN SelvaneTable ON "
        "(Logbook.Catalog = SelvaneTable.Catalog) AND (Logbook.ObjectId = SelvaneTable.ObjectID)";
    EXPECT_EQ(join, logbook::LogSpreadSql("Show All Types"));
    EXPECT_EQ(join + " WHERE (((Logbook.LogType)='O''Meara''s'))",
              logbook::LogSpreadSql("O'Meara's"));
    const std::string images =
        "Select Logbook.ObjectID, Logbook.Catalog, ImageLog.ImagePath, "
        "ImageLog.ImageDescription from ImageLog INNER JOIN Logbook On ImageLog.ObservationNumber "
        "= Logbook.ObservationNumber ";
    EXPECT_EQ(images, logbook::ImageListSql("Show All Types"));
    EXPECT_EQ(images + "Where Logtype = 'It''s'", logbook::ImageListSql("It's"));

    // The design text of the box becomes "Show All Types" before the query is made. An empty
    // logbook shows no rows and zero objects.
    LogSession s;
    data::RebuildLink(*s.logbook, s.prefs.cdDrive, s.prefs.UseCd);
    LogSpread view(s.context);
    EXPECT_EQ("Combo1", view.cboLogTypeFilter);
    view.Init();
    EXPECT_EQ("Show All Types", view.cboLogTypeFilter);
    EXPECT_EQ(join, view.sql);
    EXPECT_EQ((Strings{"Show All Types", "Default", "Galaxies"}), view.logTypeItems);
    ASSERT_TRUE(view.LoadTheGrid());
    EXPECT_TRUE(view.grdObjectLog.empty());
    EXPECT_TRUE(view.ListView2.empty());
    EXPECT_EQ("0 Objects", view.lblNOM);
    EXPECT_TRUE(s.TakeShown().empty());
}

TEST(LogSpread, RowsCarryObjectCcdPictureAndCheckCells)
{
    SpreadSession s;
    // A second SelvaneTable row with the same id and catalogue shows the entry twice.
    s.objectDb->Execute("Insert Into SelvaneTable (ID, ObjectID, OtherID, ObjectType, "
                        "constellation, Catalog) Values (9, 'NGC 7000', Null, 'BRTNB', 'Cyg', "
                        "'2000')");
    LogSpread view(s.context);
    view.Init();
    ASSERT_TRUE(view.LoadTheGrid());
    EXPECT_EQ("4 Objects", view.lblNOM);
    // Object ID, Obs #, Image, Notes, Type, Const, Catalog, Date, Location, Log Type, CCD
    // Image Name, Exp Time, Dark Frame, Flat Field, Seen Flag.
    Strings rows = s.Cells(view, {1, 2, 3, 4, 5, 6, 7, 8, 10, 16, 17, 18, 25, 26, 28});
    std::sort(rows.begin(), rows.end());
    EXPECT_EQ((Strings{
                  "COMET X|3|0|1|||PRIVATE|02/01/26|Field|Default|||0|0|-1",
                  "NGC 224|1|1|1|GALXY|And|2000|11/20/26|Home|Default|m31.fit|300|1|0|-1",
                  "NGC 7000|2|0|0|BRTNB|Cyg|2000|01/05/25| |Galaxies|||0|0|0",
                  "NGC 7000|2|0|0|BRTNB|Cyg|2000|01/05/25| |Galaxies|||0|0|0",
              }),
              rows);

    // The notes list: entries whose notes have words, the other id only with both ids.
    ASSERT_EQ(2u, view.ListView2.size());
    Strings notes;
    for (const auto& item : view.ListView2)
        notes.push_back(item.object + "|" + item.otherId + "|" + item.date + "|" + item.catalog +
                        "|" + std::to_string(item.number));
    std::sort(notes.begin(), notes.end());
    EXPECT_EQ((Strings{"COMET X||02/01/26|PRIVATE|3", "NGC 224|M 31|11/20/26|2000|1"}), notes);
    const int m31 = view.ListView2[0].number == 1 ? 0 : 1;
    view.ListView2_Click(m31);
    EXPECT_NE(std::string::npos, view.RichTextBox1.find("<b>Dust</b>"));
    EXPECT_EQ("NGC 224", s.current.id);
    EXPECT_EQ(1, s.current.observationNumber);

    view.BuildListView1();
    ASSERT_EQ(1u, view.ListView1.size());
    EXPECT_EQ("NGC 224|2000|Core|/img/m31.png",
              view.ListView1[0].object + "|" + view.ListView1[0].catalog + "|" +
                  view.ListView1[0].description + "|" + view.ListView1[0].path);

    // A log type keeps to its entries, in the grid and the images list alike.
    view.cboLogTypeFilter = "Galaxies";
    ASSERT_TRUE(view.cmdRefresh_Click());
    EXPECT_EQ((Strings{"2", "2"}), s.Cells(view, {2}));
    EXPECT_TRUE(view.ListView1.empty());
}

TEST(LogSpread, OverrideQueryAndBadStatement)
{
    SpreadSession s;
    LogSpread view(s.context);
    view.Init();
    // A query that lacks columns leaves their cells empty and the checks off; the override
    // takes the held query's place once.
    view.queryOverride = "Select * From Logbook Where ObservationNumber = 3";
    ASSERT_TRUE(view.LoadTheGrid());
    EXPECT_TRUE(view.queryOverride.empty());
    EXPECT_EQ("Select * From Logbook Where ObservationNumber = 3", view.sql);
    EXPECT_EQ((Strings{"COMET X|3|0|1|||PRIVATE|Field|||0|0|-1"}),
              s.Cells(view, {1, 2, 3, 4, 5, 6, 7, 10, 17, 21, 25, 26, 28}));
    EXPECT_EQ("1 Objects", view.lblNOM);

    // A statement the database refuses: the message with the statement, an empty grid.
    view.queryOverride = "Select * From Nowhere";
    EXPECT_FALSE(view.LoadTheGrid());
    EXPECT_TRUE(view.grdObjectLog.empty());
    EXPECT_EQ("1 Objects", view.lblNOM);
    ASSERT_EQ(1u, s.ui.shown.size());
    EXPECT_EQ("The SQL statement failed....Please verify that the statement was entered "
              "correctly:Select * From Nowhere\nOccurred in : ctlLogSpread.LoadTheGrid",
              s.ui.shown[0].message.LongMessage);
}

TEST(LogSort, KeysAndTheirColumns)
{
    const auto& keys = logbook::LogSortKeys();
    ASSERT_EQ(24u, keys.size());
    EXPECT_EQ("ObjectID                                                  - Col 01", keys[0]);
    EXPECT_EQ("CCD Picture Rating                                        - Col 27", keys[23]);
    const std::pair<const char*, int> cases[] = {{"1", 1},
                                                 {"08", 8},
                                                 {"dateobserved", 8},
                                                 {"CCD Field of View", 23},
                                                 // Time and the picture cells are no keys.
                                                 {"9", 0},
                                                 {"3", 0},
                                                 {"4", 0},
                                                 {"28", 0},
                                                 {"TimeObserved", 0},
                                                 {"", 0}};
    for (const auto& [given, col] : cases) {
        SCOPED_TRACE(given);
        EXPECT_EQ(col, logbook::SortKeyColumn(logbook::SortKeyFor(given)));
    }
}

TEST(LogSort, ComparesNumbersDatesAndTextsKeepingTies)
{
    auto row = [](const std::string& id, const std::string& n, const std::string& date,
                  const std::string& site) {
        logbook::LogSpreadRow r;
        r.cells[0] = id;
        r.cells[1] = n;
        if (!date.empty())
            r.cells[7] = date.substr(5, 2) + "/" + date.substr(8, 2) + "/" + date.substr(2, 2);
        r.storedDate = date;
        r.cells[9] = site;
        return r;
    };
    const std::vector<logbook::LogSpreadRow> loaded{
        row("ngc 7000", "10", "1999-12-31", "Home"), row("NGC 224", "9", "2026-01-02", "field"),
        row("NGC 7000", "2", "2001-06-01", "Field"), row("m 13", "100", "", "home")};
    auto key = [](int col, bool desc = false) {
        return logbook::LogSortBox{logbook::SortKeyFor(std::to_string(col)), desc};
    };
    const std::pair<LogSortBoxes, std::string> cases[] = {
        {{}, "10 9 2 100"},       // no keys: as loaded
        {{key(2)}, "2 9 10 100"}, // numbers, not texts
        {{key(2, true)}, "100 10 9 2"},
        {{key(8)}, "100 10 2 9"}, // no date first; 1999 before 2001
        {{key(1)}, "100 9 10 2"}, // case ignored, ties keep order
        {{logbook::LogSortBox{}, key(10), key(1, true)}, "2 9 10 100"}, // empty box skipped
    };
    for (const auto& [boxes, expected] : cases) {
        SCOPED_TRACE(expected);
        auto rows = loaded;
        logbook::AdvancedSort(rows, boxes);
        std::string order;
        for (const auto& r : rows)
            order += (order.empty() ? "" : " ") + r.cells[1];
        EXPECT_EQ(expected, order);
    }
}

TEST(LogSpread, ColumnWidthsRoundTripThroughTheFile)
{
    LogSession s;
    LogSpread view(s.context);
    const auto defaults = view.widths;
    view.SetDBColumns(); // no file yet
    EXPECT_EQ(defaults, view.widths);

    for (std::size_t col = 0; col < view.widths.size(); ++col)
        view.widths[col] = static_cast<double>(col) + 0.5;
    view.widths[5] = 0; // a hidden column stays hidden
    view.SaveTheColumns();
    const std::string text = test_files::ReadText(s.f.dir.File("dbCol2.dat"));
    EXPECT_EQ("\"0.5\",\"1.5\",\"2.5\",\"3.5\",\"4.5\"\r\n", text.substr(0, 31));
    EXPECT_EQ(6, std::count(text.begin(), text.end(), '\n')); // 28 widths, 5 a line

    for (const bool wider : {false, true}) {
        SCOPED_TRACE(wider);
        s.prefs.autosizespread = wider;
        LogSpread next(s.context);
        next.SetDBColumns();
        // The row headers are not set, and column 28 is not stored.
        EXPECT_EQ(
            std::tuple(next.widths[0], next.widths[1], next.widths[5], next.widths[27],
                       next.widths[28]),
            std::tuple(defaults[0], wider ? 2.5 : 1.5, 0.0, wider ? 28.5 : 27.5, defaults[28]));
    }
}

TEST(LogSearch, StatementsCharacterForCharacter)
{
    using logbook::SeenChoice;
    const std::string join =
        "SELECT SelvaneTable.ObjectID, SelvaneTable.ObjectType, SelvaneTable.Constellation, "
        "Logbook.ObservationNumber, Logbook.Catalog, Logbook.DateObserved, Logbook.TimeObserved, "
        "Logbook.LocationObserved, Logbook.Transparency, Logbook.Seeing, Logbook.EquipmentUsed, "
        "Logbook.Rating, Logbook.ShortDescription, Logbook.ObservationText, Logbook.LogType, "
        "CCDLog.ImageName, CCDLog.ExposureTime, CCDLog.ExposureMode, CCDLog.Telescope, "
        "CCDLog.CCDcamera, CCDLog.FocalDistance, CCDLog.FieldOfView, CCDLog.CoolingRate, "
        "CCDLog.DarkFrame, CCDLog.FlatField, CCDLog.PictureRating, CCDLog.Notes, Logbook.SeenFlag "
        "FROM (CCDLog RIGHT JOIN Logbook ON CCDLog.ObservationNumber = Logbook.ObservationNumber) "
        "INNER JOIN SelvaneTable ON (Logbook.Catalog = SelvaneTable.Catalog) AND "
        "(Logbook.ObjectId = SelvaneTable.ObjectID) Where LogType = 'Default' ";
    const std::string plain = "Select * From Logbook Where LogType = 'Default' ";

    logbook::LogSearchCriteria none;
    logbook::LogSearchCriteria all;
    all.optObjectID = true;
    all.txtObjectID = "NGC 2*";
    all.optSite = true;
    all.cboSite = "O'Hare";
    all.txtNotes = "it's";
    all.optEquipment = true;
    all.cboEquip = "8\" SCT";
    all.optDate = true;
    all.DTPicker1 = QDate(2003, 2, 1);
    all.DTPicker2 = QDate(2026, 12, 31);
    all.optType = true;
    all.cboType = "GALXY - Galaxy";
    all.optConst = true;
    all.cboCon = "And-Andromeda";
    all.optSeen = SeenChoice::NotSeen;
    logbook::LogSearchCriteria idOnly;
    idOnly.optObjectID = true;
    idOnly.txtObjectID = "NGC 224";
    idOnly.optSeen = SeenChoice::Seen;
    logbook::LogSearchCriteria blankNotes;
    blankNotes.txtNotes = "   ";
    blankNotes.cboSite = "Home"; // its option is off

    const std::string conditions =
        " and SelvaneTable.ObjectID like 'NGC 2*'  and LocationObserved = 'O''Hare'  and "
        "ObservationText Like '*it''s*'  and EquipmentUsed = '8\" SCT' ";
    const std::string tail =
        " and SelvaneTable.ObjectType = 'GALXY'  and SelvaneTable.Constellation = 'And'  and "
        "Logbook.SeenFlag <> -1";
    const std::tuple<const char*, logbook::LogSearchCriteria, std::string, std::string> cases[] = {
        {"none", none, plain, plain},
        {"all", all,
         join + conditions + " and DateObserved >= #02/01/2003# and DateObserved <= #12/31/2026#" +
             tail,
         join + conditions + " and DateObserved >=#02/01/2003# and DateObserved <=#12/31/2026#" +
             tail},
        {"id only", idOnly,
         plain + " and SelvaneTable.ObjectID like 'NGC 224*'  and Logbook.SeenFlag = -1",
         plain + " and SelvaneTable.ObjectID like 'NGC 224*'  and Logbook.SeenFlag = -1"},
        {"blank notes", blankNotes, plain, plain},
    };
    for (const auto& [name, criteria, first, second] : cases) {
        SCOPED_TRACE(name);
        const auto sql = logbook::BuildLogSearchSql(criteria, "Default");
        EXPECT_EQ(first, sql.first);
        EXPECT_EQ(second, sql.second);
    }
    EXPECT_EQ("Select * From Logbook Where LogType = 'Bob''s' ",
              logbook::BuildLogSearchSql(none, "Bob's").first);
}

TEST(LogSearch, IdNeedsTheJoinAndTheJoinFinds)
{
    SpreadSession s;
    auto form = s.Open();
    s.ui.shown.clear();

    // The id alone: the plain statement names SelvaneTable, which the database refuses.
    logbook::LogSearchCriteria c;
    c.optObjectID = true;
    c.txtObjectID = "NGC 2";
    form->currentQuery = logbook::BuildLogSearchSql(c, s.prefs.Ltype).first;
    EXPECT_FALSE(form->LoadObservations());
    EXPECT_TRUE(form->grdLog.empty());
    ASSERT_EQ(1u, s.ui.shown.size());
    EXPECT_NE(std::string::npos, s.ui.shown[0].message.LongMessage.find(
                                     "Occurred in : frmLogEntryNew.LoadObservations"));

    // With a constellation the join is there: the entry window and the log view both find it.
    c.optConst = true;
    c.cboCon = "And-Andromeda";
    const std::string first = logbook::BuildLogSearchSql(c, s.prefs.Ltype).first;
    form->currentQuery = first;
    ASSERT_TRUE(form->LoadObservations());
    ASSERT_EQ(1u, form->grdLog.size());
    EXPECT_EQ("NGC 224", form->grdLog[0][0]);
    LogSpread view(s.context);
    view.Init();
    view.queryOverride = first;
    ASSERT_TRUE(view.LoadTheGrid());
    EXPECT_EQ((Strings{"NGC 224|1|And|m31.fit|-1"}), s.Cells(view, {1, 2, 6, 17, 28}));

    // The lists of the boxes.
    s.logbook->Execute("Insert Into Equipment (Equipment) Values ('8\" SCT')");
    const auto lists = logbook::LoadLogSearchLists(s.ui, s.logbook.get(), s.objectDb.get());
    EXPECT_NE(lists.cboEquip.end(),
              std::find(lists.cboEquip.begin(), lists.cboEquip.end(), "8\" SCT"));
    EXPECT_NE(lists.cboType.end(),
              std::find_if(lists.cboType.begin(), lists.cboType.end(),
                           [](const data::ObjectTypeRow& t) { return t.ObjectType == "GALXY"; }));
    EXPECT_EQ(88u, lists.cboCon.size());
}

} // namespace
