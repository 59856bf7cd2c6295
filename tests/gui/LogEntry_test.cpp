// The log entry window over real SQLite files in a temporary program folder (the built small
// edition and a new logbook): fields typed and left as a person does, the command buttons, the
// grid, the rich boxes and their keys, the images; then the logbook's commands on the main
// window.
//
// The screenshots are log-entry.png, log-ccd.png and log-image.png.

#include "logbook/ui/frmLogEntryNew.h"

#include "data/ObjectFilter.h"
#include "logbook/LogEntryForm.h"
#include "logbook/ui/frmEQDialog.h"
#include "spread/Grid.h"
#include "spread/Plans.h"
#include "spread/ui/GridModel.h"

#include "LogbookFolder.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCursor>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

using logbook::ui::frmLogEntryNew;

// A logbook with a log type, three instruments and a site.
const std::vector<std::string> Seed = {
    "Insert Into PerLogType (LogType, LogTypeDesc) values ('Default', 'Default')",
    "Insert Into Equipment (Equipment) values ('10 inch Dobsonian f/4.7')",
    "Insert Into Equipment (Equipment) values ('13 mm eyepiece')",
    "Insert Into Equipment (Equipment) values ('OIII filter')",
    "Insert Into ObservingSites (ProfileName) values ('Backyard')",
};

struct LogWindow : LogbookFolder
{
    TestPort ui;
    data::Preferences prefs;
    data::CurrentObject current;
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
    logbook::LogContext context{ui, nullptr, nullptr, prefs, dir, current, clock};
    std::unique_ptr<frmLogEntryNew> window;

    LogWindow() : LogbookFolder(Seed)
    {
        context.logbook = logbookDb.get();
        context.objectDb = objectDb.get();
        window = std::make_unique<frmLogEntryNew>(context);
        window->Open("N");
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    ~LogWindow() { window.reset(); }

    frmLogEntryNew& w() { return *window; }
    logbook::LogEntryForm& form() { return window->Model(); }
    std::string LastText() const { return ui.shown.empty() ? "" : ui.shown.back().LongMessage; }

    static QLineEdit* EditOf(QWidget* field)
    {
        if (auto* box = qobject_cast<QComboBox*>(field))
            return box->lineEdit();
        return qobject_cast<QLineEdit*>(field);
    }
    // A person's typing: the focus arrives in the field (which selects its text), the keys
    // replace the text, and the focus leaves for next.
    void Type(QWidget* field, const QString& text, QWidget* next)
    {
        field->setFocus(Qt::TabFocusReason);
        Settle();
        ASSERT_TRUE(field->hasFocus());
        if (QLineEdit* edit = EditOf(field))
            QTest::keyClicks(edit, text);
        else
            QTest::keyClicks(field, text);
        next->setFocus(Qt::TabFocusReason);
        Settle();
    }
    void Click(QPushButton* button)
    {
        QTest::mouseClick(button, Qt::LeftButton);
        Settle();
    }
    void ClickGridRow(int viewRow)
    {
        w().vsIndexTab1->setCurrentIndex(0);
        Settle();
        QTableWidget& grid = *w().grdLog;
        const QRect cell = grid.visualItemRect(grid.item(viewRow, 0));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
        Settle();
    }

    // M31 observed at 21h in the NGC catalogue, as a person fills the fields and clicks Add.
    void AddM31()
    {
        Type(w().txtObjectID, "m31", w().mskTime);
        EXPECT_EQ(w().txtObjectID->text(), "M31");
        Type(w().mskTime, "21", w().cboCatalog);
        EXPECT_EQ(w().mskTime->text(), "21:00:00");
        Type(w().cboCatalog, "NGC 2000", w().cboSee);
        // The seeing list through its keys: the second text, with its numeral.
        QTest::keyClick(w().cboSee, Qt::Key_Down);
        QTest::keyClick(w().cboSee, Qt::Key_Down);
        Type(w().txtDescription, "Large oval glow", w().txtObjectID);
        Click(w().cmdAdd);
    }
};

// A typed id is upper-cased on leaving; Add logs M31 under its main id with the object's key,
// flags the object observed and shows the new row in the grid and the window's caption. The
// seeing list shows each text with its Antoniadi numeral, while the logbook, the recall of the
// last entry and a typed text outside the list all keep the bare text.
TEST(frmLogEntryNew, TypedEntryIsAddedUnderTheMainId)
{
    LogWindow s;
    QComboBox& see = *s.w().cboSee;
    ASSERT_EQ(see.count(), 5);
    EXPECT_EQ(see.itemText(0) + "|" + see.itemText(4), "I  Pefectly Stable|V  Very Unstable");
    s.AddM31();
    ASSERT_EQ(s.LastText(), "A logbook entry was created successfully");
    const std::string number = Value(*s.logbookDb, "Select max(ObservationNumber) From Logbook");
    EXPECT_EQ(s.w().lblObNo->text().toStdString(), number);
    EXPECT_EQ(s.w().txtObjectID->text(), "NGC 224");
    EXPECT_EQ(s.w().txtOtherID->text(), "M 31");

    // A location left blank is one space, as the readers compare trimmed texts.
    EXPECT_EQ(Value(*s.logbookDb, "Select ObjectID || '|' || Catalog || '|' || DataRec || '|' || "
                                  "TimeObserved || '|' || DateObserved || '|' || ShortDescription "
                                  "|| '|' || LocationObserved || '|' || Seeing From Logbook Where "
                                  "ObservationNumber = " +
                                      number),
              "NGC 224|2000|234|21:00:00|2024-03-15|Large oval glow| |Mostly Stable");
    EXPECT_EQ(Value(*s.objectDb, "Select Observed From SelvaneTable Where ID = 234"), "-1");

    QTableWidget& grid = *s.w().grdLog;
    ASSERT_EQ(grid.rowCount(), 1);
    EXPECT_EQ(
        (grid.item(0, 0)->text() + "|" + grid.item(0, 1)->text() + "|" + grid.item(0, 2)->text())
            .toStdString(),
        "NGC 224|" + number + "|2000");
    EXPECT_EQ(s.w().windowTitle(), "Logbook   -   1 Entries Displayed...");

    // After Clear the empty box recalls the last entry's seeing when it gets the focus.
    s.Click(s.w().cmdClear);
    EXPECT_EQ(see.currentText(), "");
    EXPECT_FALSE(s.form().dirty);
    see.setFocus(Qt::TabFocusReason);
    Settle();
    EXPECT_EQ(see.currentText(), "II  Mostly Stable");
    EXPECT_EQ(s.form().f.cboSee, "Mostly Stable");
    EXPECT_TRUE(s.form().dirty);

    s.Type(&see, "Steady at 200x", s.w().txtDescription);
    EXPECT_EQ(s.form().f.cboSee, "Steady at 200x");
    // A numeral typed before a text of the list is the list's text.
    s.Type(&see, "IV  Unstable", s.w().txtDescription);
    EXPECT_EQ(s.form().f.cboSee, "Unstable");
}

// A location over 50 characters is refused on leaving with the size message, and the focus
// goes back to it; 50 characters pass and the focus moves on.
// The summary is refused until the entry names its object and catalogue; the print tools of
// the three notes bands ask for their notes reports.
TEST(frmLogEntryNew, PrintCommandsAskForTheirReports)
{
    LogWindow s;
    std::vector<int> printed;
    s.w().printReport = [&](int number) { printed.push_back(number); };
    s.Click(s.w().cmdPrintSum);
    EXPECT_TRUE(printed.empty());
    EXPECT_EQ(s.LastText(), "You must select an existing object or complete the entry of the "
                            "existing object before it can be printed.");
    EXPECT_EQ(s.ui.shown.back().ShortMessage, "ATTENTION");
    s.AddM31();
    s.Click(s.w().cmdPrintSum);
    for (QTextEdit* box : {s.w().RichTextBox1, s.w().rchNotes, s.w().rchNotesccd})
        s.w().RichBar(box)->findChild<QAction*>("print")->trigger();
    EXPECT_EQ(printed, (std::vector<int>{134, 18, 19, 20}));
}

TEST(frmLogEntryNew, RefusedFieldKeepsTheFocus)
{
    LogWindow s;
    s.Type(s.w().txtLocation, QString(51, 'a'), s.w().txtDescription);
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].LongMessage, "Location Must be less than 50 characters long");
    EXPECT_TRUE(s.w().txtLocation->hasFocus());
    EXPECT_FALSE(s.w().txtDescription->hasFocus());

    s.Type(s.w().txtLocation, QString(50, 'b'), s.w().txtDescription);
    EXPECT_EQ(s.ui.shown.size(), 1u);
    EXPECT_TRUE(s.w().txtDescription->hasFocus());
    EXPECT_EQ(s.form().f.txtLocation, std::string(50, 'b'));
}

// Ctrl+B bolds the selected words; the notes are stored with their markup and the other
// equipment picked in its dialog as lines; a click on the entry's grid row brings both back.
TEST(frmLogEntryNew, BoldNotesSurviveTheLogbook)
{
    LogWindow s;
    s.AddM31();
    const std::string number = s.form().lblObNo;
    ASSERT_FALSE(number.empty());

    s.w().vsIndexTab1->setCurrentIndex(2);
    QTextEdit& notes = *s.w().rchNotes;
    s.Type(&notes, "Bright core, dust lane to the south", &notes);
    QTextCursor cursor = notes.textCursor();
    cursor.setPosition(0);
    cursor.setPosition(11, QTextCursor::KeepAnchor); // "Bright core"
    notes.setTextCursor(cursor);
    QTest::keyClick(&notes, Qt::Key_B, Qt::ControlModifier);
    EXPECT_EQ(notes.textCursor().charFormat().fontWeight(), QFont::Bold);
    EXPECT_EQ(notes.toPlainText(), "Bright core, dust lane to the south");
    EXPECT_TRUE(s.form().dirty);

    // The picker is modal: it is answered once it is up.
    QTimer::singleShot(0, [] {
        auto* picker = dynamic_cast<logbook::ui::frmEQDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(picker, nullptr);
        for (int row : {1, 2}) {
            picker->List1->setCurrentRow(row);
            picker->cmdAdd->click();
        }
        picker->cmdOK->click();
    });
    s.Click(s.w().cmdOtherEquipment);
    ASSERT_EQ(s.w().List1->count(), 2);

    s.Click(s.w().cmdUpdate);
    ASSERT_EQ(s.LastText(), "A logbook entry was updated successfully");
    const std::string where = " From Logbook Where ObservationNumber = " + number;
    const std::string stored = Value(*s.logbookDb, "Select ObservationText" + where);
    EXPECT_NE(stored.find("font-weight:700"), std::string::npos) << stored;
    EXPECT_EQ(Value(*s.logbookDb, "Select OtherEquipment" + where),
              "13 mm eyepiece\r\nOIII filter\r\n");

    s.Click(s.w().cmdClear);
    EXPECT_EQ(notes.toPlainText(), "");
    EXPECT_EQ(s.w().List1->count(), 0);
    s.ClickGridRow(0);
    EXPECT_EQ(s.w().lblObNo->text().toStdString(), number);
    EXPECT_EQ(notes.toPlainText(), "Bright core, dust lane to the south");
    QTextCursor bold(notes.document());
    bold.setPosition(5);
    EXPECT_EQ(bold.charFormat().fontWeight(), QFont::Bold);
    bold.setPosition(20);
    EXPECT_EQ(bold.charFormat().fontWeight(), QFont::Normal);
    ASSERT_EQ(s.w().List1->count(), 2);
    EXPECT_EQ(s.w().List1->item(0)->text(), "13 mm eyepiece");
    EXPECT_EQ(s.w().List1->item(1)->text(), "OIII filter");
    EXPECT_EQ(s.w().grdLog->item(0, 0)->background().color(),
              QColor(0xc0, 0xff, 0xff)); // ffffc0 as blue, green, red

    s.w().vsIndexTab1->setCurrentIndex(2);
    SaveShot(s.w(), "log-entry.png", &notes);
}

// A header click sorts the grid, ascending then descending; "Obs #" sorts by value (9 before
// 10), and a click on a sorted row still shows the entry of that row.
TEST(frmLogEntryNew, HeaderSortTogglesAndClicksReachTheirEntry)
{
    LogWindow s;
    for (const char* sql : {
             "Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
             "TimeObserved, SeenFlag, LogType) values (9, 'NGC 7000', '2000', '2023-08-01', "
             "'23:00:00', -1, 'Default')",
             "Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
             "TimeObserved, SeenFlag, LogType) values (10, 'NGC 1976', '2000', '2024-01-05', "
             "'20:00:00', -1, 'Default')",
         })
        s.logbookDb->Execute(sql);
    s.Click(s.w().cmdShowAll);
    QTableWidget& grid = *s.w().grdLog;
    ASSERT_EQ(grid.rowCount(), 2);
    EXPECT_EQ(grid.item(0, 1)->text(), "10"); // newest first

    QHeaderView& header = *grid.horizontalHeader();
    const QPoint obsHeader(header.sectionViewportPosition(1) + 5, header.height() / 2);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, obsHeader);
    EXPECT_EQ(grid.item(0, 1)->text(), "9");
    EXPECT_EQ(grid.item(1, 1)->text(), "10");
    s.ClickGridRow(0);
    EXPECT_EQ(s.w().lblObNo->text(), "9");
    EXPECT_EQ(s.w().txtObjectID->text(), "NGC 7000");

    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, obsHeader);
    EXPECT_EQ(grid.item(0, 1)->text(), "10");
    s.ClickGridRow(0);
    EXPECT_EQ(s.w().lblObNo->text(), "10");
    EXPECT_EQ(s.w().txtObjectID->text(), "NGC 1976");
}

// The CCD tab's fields reach CCDLog on update; an image is attached through the open dialog
// and the description box, shown, and detached again without touching its file.
TEST(frmLogEntryNew, CcdLogAndAttachedImage)
{
    LogWindow s;
    s.AddM31();
    const std::string number = s.form().lblObNo;
    ASSERT_FALSE(number.empty());
    frmLogEntryNew& w = s.w();
    w.vsIndexTab1->setCurrentIndex(3);
    ASSERT_EQ(w.txtmode->count(), 2);
    ASSERT_EQ(w.txtscope->count(), 3);
    const std::pair<QWidget*, const char*> fields[] = {
        {w.txtimgname, "m31_lum_001.fits"},
        {w.txtExpTime, "300"},
        {w.txtmode, "Binning 2x2"},
        {w.txtscope, "80 mm refractor f/6"},
        {w.txtCCD, "Mono CCD 16 MP"},
        {w.txtFocDis, "480 mm"},
        {w.txtFov, "2.1 x 1.6 deg"},
        {w.txtCrate, "-20 C"},
        {w.txtRating, "B+"},
        {w.rchNotesccd, "Guided, 12 subframes"},
    };
    for (const auto& [field, text] : fields)
        s.Type(field, text, w.txtDescription);
    QTest::mouseClick(w.chkdframe, Qt::LeftButton);
    QTest::mouseClick(w.chkFfield, Qt::LeftButton);
    s.Click(w.cmdUpdate);
    ASSERT_EQ(s.LastText(), "A logbook entry was updated successfully");
    EXPECT_EQ(Value(*s.logbookDb, "Select count(*) || '|' || ImageName || '|' || ExposureMode || "
                                  "'|' || Telescope || '|' || darkframe || '|' || flatfield || "
                                  "'|' || (Notes Like '*Guided*') From CCDLog Where "
                                  "ObservationNumber = " +
                                      number),
              "1|m31_lum_001.fits|Binning 2x2|80 mm refractor f/6|-1|-1|1");
    SaveShot(w, "log-ccd.png", w.rchNotesccd);

    const QString picture = s.temp.filePath("m31 field.png");
    QImage image(320, 200, QImage::Format_RGB32);
    image.fill(QColor(10, 12, 30));
    for (int x = 60; x < 260; ++x)
        for (int y = 70; y < 130; ++y)
            if ((x - 160) * (x - 160) / 100.0 / 100.0 + (y - 100) * (y - 100) / 30.0 / 30.0 < 1)
                image.setPixelColor(x, y, QColor(230, 220, 200));
    ASSERT_TRUE(image.save(picture));
    QFile file(picture);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    file.close();

    w.vsIndexTab1->setCurrentIndex(4);
    EXPECT_FALSE(w.svImage1->isVisibleTo(&w));
    s.ui.openAnswers.push_back(picture.toStdString());
    s.ui.inputAnswers.push_back("Core and dust lanes, 300 s");
    w.imageBar->findChild<QAction*>("addimage")->trigger();
    Settle();
    EXPECT_EQ(
        Value(*s.logbookDb, "Select ImagePath From ImageLog Where ObservationNumber = " + number),
        picture.toStdString());
    ASSERT_EQ(w.cbologimages->count(), 1);
    EXPECT_TRUE(w.cbologimages->currentText().endsWith(" " + picture));
    EXPECT_EQ(w.lblImageDescription->text(), "Core and dust lanes, 300 s");
    EXPECT_TRUE(w.svImage1->isVisibleTo(&w) && !w.svImage1->pixmap().isNull());
    SaveShot(w, "log-image.png", w.cbologimages);

    w.imageBar->findChild<QAction*>("deleteimage")->trigger();
    Settle();
    EXPECT_EQ(Value(*s.logbookDb, "Select count(*) From ImageLog"), "0");
    EXPECT_EQ(w.cbologimages->currentText(), logbook::NoImagesAttached);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), bytes);
}

// ---------------------------------------------------------------------------------------------
// The main window

struct Screen : LogbookScreen
{
    Screen() : LogbookScreen(Seed)
    {
        state.prefs.Plat = 40.5;
        state.prefs.PLon = 74;
        state.prefs.PTz = 5;
        state.SQL = data::ShowMessierList().SQL;
        window->LoadCurrentTab("NOBUILD");
    }

    spread::Grid& Grid() { return state.grids[0]; }
    int RowOf(const std::string& id)
    {
        for (int row = 1; row <= Grid().MaxRows(); ++row)
            if (Grid().Text(row, spread::kObjectIdCol) == id)
                return row;
        return 0;
    }
    void ClickCell(int row, int col)
    {
        QTableView& view = window->grdObject(0);
        const QModelIndex index = view.model()->index(row - 1, col - 1);
        view.scrollTo(index);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
        Settle();
    }
    // The entry window, once made (it has no meta-object of its own, so it is found by name).
    frmLogEntryNew* EntryWindow()
    {
        return dynamic_cast<frmLogEntryNew*>(window->findChild<QWidget*>("frmLogEntryNew"));
    }
};

// A click in the obs column asks before logging; Yes logs the row's object for today under
// its key and marks the row "X"; asking for more details opens the entry window on the new
// entry; No to the first question logs nothing.
TEST(LogbookWiring, ObsColumnClickLogsTheRow)
{
    Screen s;
    const int m31 = s.RowOf("NGC 224");
    const int m42 = s.RowOf("NGC 1976");
    const int m45 = s.RowOf("M 45");
    ASSERT_GT(m31, 0);
    ASSERT_GT(m42, 0);
    ASSERT_GT(m45, 0);
    ASSERT_EQ(s.Grid().Text(m31, app::kObsCol), " ");

    s.ui.askAnswers = {true, false};
    s.ClickCell(m31, app::kObsCol);
    EXPECT_EQ(s.ui.questions,
              (std::vector<std::string>{
                  "Add this object to your Default personal logbook ?",
                  "Would you like to add additional information to this log entry?"}));
    EXPECT_EQ(s.Grid().Text(m31, app::kObsCol), "X");
    const QAbstractItemModel& model = *s.window->grdObject(0).model();
    EXPECT_EQ(model.data(model.index(m31 - 1, app::kObsCol - 1)).toString(), "X");
    auto& logbookDb = *s.state.logbookDb;
    EXPECT_EQ(Value(logbookDb, "Select count(*) || '|' || ObjectID || '|' || DataRec || '|' || "
                               "DateObserved From Logbook"),
              "1|NGC 224|234|2024-03-15");
    EXPECT_EQ(s.EntryWindow(), nullptr);

    s.ui.askAnswers = {false};
    s.ClickCell(m45, app::kObsCol);
    EXPECT_EQ(Value(logbookDb, "Select count(*) From Logbook"), "1");
    EXPECT_EQ(s.Grid().Text(m45, app::kObsCol), " ");

    s.ui.askAnswers = {true, true};
    s.ClickCell(m42, app::kObsCol);
    const std::string number =
        Value(logbookDb, "Select ObservationNumber From Logbook Where ObjectID = 'NGC 1976'");
    frmLogEntryNew* entry = s.EntryWindow();
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(entry->isVisible());
    EXPECT_EQ((entry->lblObNo->text() + "|" + entry->txtObjectID->text()).toStdString(),
              number + "|NGC 1976");
    EXPECT_EQ(entry->grdLog->rowCount(), 2);
}

// The grid menu's "el" opens the entry window on the selected row's object: its entries only,
// the latest one shown; fixobs rebuilds the flags from the logbook and the tab shows them.
TEST(LogbookWiring, LogThisObjectAndFixObservations)
{
    Screen s;
    const int m42 = s.RowOf("NGC 1976");
    ASSERT_GT(m42, 0);
    auto& logbookDb = *s.state.logbookDb;
    logbookDb.Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
                      "SeenFlag, LogType) values ('NGC 1976', '2000', '2024-01-05', '20:00:00', "
                      "-1, 'Default')");
    logbookDb.Execute("Insert Into Logbook (ObjectID, Catalog, DateObserved, TimeObserved, "
                      "SeenFlag, LogType) values ('NGC 7000', '2000', '2023-08-01', '23:00:00', "
                      "-1, 'Default')");
    ASSERT_EQ(s.Grid().Text(m42, app::kObsCol), " ");

    s.ui.shown.clear();
    s.window->ab_ToolClick("fixobs");
    EXPECT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.Grid().Text(m42, app::kObsCol), "X");
    EXPECT_EQ(Value(logbookDb, "Select DataRec From Logbook Where ObjectID = 'NGC 1976'"),
              Value(*s.state.objectDb, "Select ID From SelvaneTable Where ObjectID = 'NGC 1976'"));

    QTableView& view = s.window->grdObject(0);
    view.setCurrentIndex(view.model()->index(m42 - 1, 5));
    s.window->ab_ToolClick("el");
    frmLogEntryNew* entry = s.EntryWindow();
    ASSERT_NE(entry, nullptr);
    ASSERT_EQ(entry->grdLog->rowCount(), 1);
    EXPECT_EQ(entry->grdLog->item(0, 0)->text(), "NGC 1976");
    EXPECT_EQ(entry->txtObjectID->text(), "NGC 1976");
    EXPECT_EQ(
        entry->lblObNo->text().toStdString(),
        Value(logbookDb, "Select ObservationNumber From Logbook Where ObjectID = 'NGC 1976'"));
    EXPECT_EQ(entry->Model().mode, "N");

    // The tool bar's key opens the whole logbook.
    s.window->ab_ToolClick("tolLogbook");
    EXPECT_EQ(entry->grdLog->rowCount(), 2);
}

} // namespace
