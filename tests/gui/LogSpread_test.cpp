// The log view on the main window and the logbook search window, over a copy of the small
// edition and a new logbook with a few entries, linked as the program links them at start.
//
// With SELVANE_SCREENSHOTS naming a folder, the view's three pages are saved there as
// logspread-grid.png, logspread-images.png and logspread-notes.png, and the search window as
// logsearch.png.

#include "data/DatabaseFiles.h"
#include "logbook/ui/ctlLogSpread.h"
#include "logbook/ui/frmLogEntryNew.h"
#include "logbook/ui/frmLogSearch.h"

#include "LogbookFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTreeWidget>

#include <filesystem>

#include <gtest/gtest.h>

namespace {

// The main window over a program folder whose logbook holds five entries, one with a CCD row
// and a picture, three with notes.
struct Screen : LogbookScreen
{
    QString picture;

    Screen()
        : LogbookScreen({"Insert Into PerLogType (LogType, LogTypeDesc) Values ('Default', "
                         "'Default')",
                         "Insert Into ObservingSites (ProfileName) Values ('Backyard')"},
                        {1300, 700})
    {
        data::RebuildLink(*state.logbookDb, dir.File(data::ObjectDatabaseName).string(), false);
        picture = temp.filePath("m42.png");
        QImage image(320, 240, QImage::Format_RGB32);
        image.fill(QColor(10, 10, 40));
        QPainter painter(&image);
        painter.setBrush(QColor(200, 120, 160));
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(QPoint(160, 120), 70, 50);
        painter.end();
        image.save(picture);
        const std::string rows[] = {
            "1, 'NGC 224', '2000', '2024-03-10', '21:30:00', 'Backyard', '10 inch Dobsonian', "
            "'Clear', 'Mostly Stable', 'A', 'Bright core, dust lane', -1, "
            "'<p><b>Dust lane</b> seen with averted vision.</p>', 'Default'",
            "2, 'NGC 1976', '2000', '2024-03-10', '21:45:00', 'Backyard', '10 inch Dobsonian', "
            "'Clear', 'Mostly Stable', 'A+', 'Trapezium split', -1, "
            "'Four stars of the Trapezium, nebula wings to the edge of the field.', 'Default'",
            "3, 'NGC 7000', '2000', '2023-08-12', '23:10:00', 'Dark site', '80 mm refractor', "
            "'Very Clear', 'Somewhat Stable', 'B', 'With OIII filter', -1, Null, 'Default'",
            "4, 'NGC 891', '2000', '2023-11-04', '22:00:00', 'Backyard', '10 inch Dobsonian', "
            "'Poor', 'Unstable', 'D', 'Not seen', 0, ' ', 'Default'",
            "5, 'NGC 6543', '2000', '2024-03-14', '03:20:00', 'Dark site', '10 inch Dobsonian', "
            "'Clear', 'Mostly Stable', 'B+', 'Blue disc', -1, "
            "'<p>Small <span style=\"color:#0000ff;\">blue</span> disc, central star.</p>', "
            "'Default'"};
        for (const std::string& row : rows)
            state.logbookDb->Execute(
                "Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
                "TimeObserved, LocationObserved, EquipmentUsed, Transparency, Seeing, Rating, "
                "ShortDescription, SeenFlag, ObservationText, LogType) Values (" +
                row + ")");
        state.logbookDb->Execute(
            "Insert Into CCDLog (ObservationNumber, ImageName, ExposureTime, CCDCamera, "
            "darkframe, flatfield) Values (2, 'm42-01.fit', '30', 'ST-8', -1, 0)");
        state.logbookDb->Execute("Insert Into ImageLog (ObservationNumber, ImageDescription, "
                                 "ImagePath) Values (2, 'Trapezium region', '" +
                                 picture.toStdString() + "')");
        Settle();
    }

    logbook::ui::ctlLogSpread* View()
    {
        return window->findChild<logbook::ui::ctlLogSpread*>("ctlLogSpread");
    }
};

// The three keys switch the client area to the log view, which loads the logbook with its
// count in the status band; a double click on a row opens that entry; the notes and images
// pages show the chosen entry's notes and picture.
TEST(ctlLogSpread, KeysShowTheViewAndItsPages)
{
    Screen s;
    s.window->ab_ToolClick("tolLogSpread");
    Settle();
    logbook::ui::ctlLogSpread* view = s.View();
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(s.window->ClientViews().currentWidget()->objectName(), "ctlLogSpread1");
    EXPECT_EQ(s.window->lblNOM->text(), "5 Objects");
    const QAbstractItemModel& model = *view->grdObjectLog->model();
    ASSERT_EQ(model.rowCount(), 5);
    EXPECT_EQ(model.headerData(7, Qt::Horizontal).toString(), "Date");
    auto rowOf = [&](const QString& id) {
        for (int row = 0; row < model.rowCount(); ++row)
            if (model.data(model.index(row, 0)).toString() == id)
                return row;
        return -1;
    };
    const int m42 = rowOf("NGC 1976");
    ASSERT_GE(m42, 0);
    EXPECT_EQ(model.data(model.index(m42, 24), Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_FALSE(model.data(model.index(m42, 2), Qt::DecorationRole).isNull()); // image
    EXPECT_TRUE(model.data(model.index(rowOf("NGC 7000"), 3), Qt::DecorationRole).isNull());
    SaveShot(*s.window, "logspread-grid.png");

    s.window->ab_ToolClick("tolSpread");
    EXPECT_EQ(s.window->ClientViews().currentIndex(), 0);
    s.window->ab_ToolClick("vlassp");
    EXPECT_EQ(s.window->ClientViews().currentWidget()->objectName(), "ctlLogSpread1");

    view->sstab1->setCurrentIndex(1);
    ASSERT_EQ(view->ListView1->topLevelItemCount(), 1);
    view->ListView1->setCurrentItem(view->ListView1->topLevelItem(0));
    EXPECT_FALSE(view->svImage1->pixmap().isNull());
    SaveShot(*s.window, "logspread-images.png");

    view->sstab1->setCurrentIndex(2);
    ASSERT_EQ(view->ListView2->topLevelItemCount(), 3);
    const auto m31 = view->ListView2->findItems("NGC 224", Qt::MatchExactly);
    ASSERT_EQ(m31.size(), 1);
    view->ListView2->setCurrentItem(m31[0]);
    EXPECT_EQ(view->RichTextBox1->toPlainText(), "Dust lane seen with averted vision.");
    EXPECT_EQ(m31[0]->text(1), "M 31");
    SaveShot(*s.window, "logspread-notes.png");

    view->sstab1->setCurrentIndex(0);
    const QModelIndex row = model.index(m42, 0);
    emit view->grdObjectLog->doubleClicked(row);
    Settle();
    auto* entry =
        dynamic_cast<logbook::ui::frmLogEntryNew*>(s.window->findChild<QWidget*>("frmLogEntryNew"));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->lblObNo->text(), "2");
    EXPECT_EQ(entry->txtObjectID->text(), "NGC 1976");
}

// A search from the view loads its first statement there; the type box gives its code.
// Print on the grid page prints the log grid; on the notes page the chosen item's notes under
// its object's ids; on the images page nothing.
TEST(ctlLogSpread, PrintFollowsThePage)
{
    Screen s;
    s.window->ab_ToolClick("tolLogSpread");
    Settle();
    logbook::ui::ctlLogSpread* view = s.View();
    ASSERT_NE(view, nullptr);
    int grids = 0;
    std::vector<std::string> notes;
    view->printLog = [&] { ++grids; };
    view->printNotes = [&](const std::string& title, const std::string& text) {
        notes.push_back(title + "|" + text);
    };
    view->cmdPrint->click();
    EXPECT_EQ(grids, 1);
    view->sstab1->setCurrentIndex(1);
    view->cmdPrint->click();
    view->sstab1->setCurrentIndex(2);
    Settle();
    view->ListView2->setCurrentItem(nullptr);
    view->cmdPrint->click();
    EXPECT_TRUE(notes.empty());
    int m42 = -1;
    for (int i = 0; i < view->ListView2->topLevelItemCount(); ++i)
        if (view->ListView2->topLevelItem(i)->text(0) == "NGC 1976")
            m42 = i;
    ASSERT_GE(m42, 0);
    view->ListView2->setCurrentItem(view->ListView2->topLevelItem(m42));
    view->cmdPrint->click();
    ASSERT_EQ(notes.size(), 1u);
    EXPECT_TRUE(notes[0].starts_with("Object ID : NGC 1976 - ")) << notes[0];
    EXPECT_NE(notes[0].find("Four stars of the Trapezium"), std::string::npos);
    EXPECT_EQ(grids, 1);
}

TEST(frmLogSearch, FindLoadsTheViewWithTheFirstStatement)
{
    Screen s;
    s.window->ab_ToolClick("tolLogSpread");
    Settle();
    logbook::ui::ctlLogSpread* view = s.View();
    ASSERT_NE(view, nullptr);

    logbook::LogContext context{s.ui,
                                s.state.logbookDb.get(),
                                s.state.objectDb.get(),
                                s.state.prefs,
                                s.dir,
                                s.state.current,
                                s.clock};
    logbook::ui::frmLogSearch search(context, s.window.get());
    search.optSite->setChecked(true);
    search.cboSite->setCurrentText("Backyard");
    search.txtNotes->setText("averted");
    search.optType->setChecked(true);
    search.cboType->setCurrentIndex(search.cboType->findData("Gx"));
    search.optSeen0->setChecked(true);
    search.show();
    SaveShot(search, "logsearch.png");
    std::string first;
    search.found = [&](const logbook::LogSearchSql& sql) {
        first = sql.first;
        view->Model().queryOverride = sql.first;
        view->LoadTheGrid();
    };
    search.cmdFind_Click();
    const std::string tail = "Where LogType = 'Default'  and LocationObserved = 'Backyard'  and "
                             "ObservationText Like '*averted*'  and SelvaneTable.ObjectType = "
                             "'Gx'  and Logbook.SeenFlag = -1";
    ASSERT_GE(first.size(), tail.size());
    EXPECT_EQ(first.substr(first.size() - tail.size()), tail);
    EXPECT_EQ(view->grdObjectLog->model()->rowCount(), 1);
    EXPECT_EQ(s.window->lblNOM->text(), "1 Objects");
}

} // namespace
