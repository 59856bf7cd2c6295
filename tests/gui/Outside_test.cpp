// The outside window driven by the keyboard alone over the built small edition and a new
// logbook: the focus order, Enter on a list button and in its popup, Esc, the Ctrl keys of
// each tab and the grid.
//
// With SELVANE_SCREENSHOTS naming a folder, the window is saved there as outside-main.png and,
// with the catalogue popup open over it, outside-popup.png.

#include "logbook/ui/frmOutsideMain.h"

#include "data/ObjectFilter.h"
#include "logbook/ui/frmOutsidePopup.h"

#include "LogbookFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

using logbook::ui::frmOutsideMain;
using logbook::ui::frmOutsidePopup;

// A logbook with a log type, two instruments and a site.
const std::vector<std::string> Seed = {
    "Insert Into PerLogType (LogType, LogTypeDesc) values ('Default', 'Default')",
    "Insert Into Equipment (Equipment) values ('10 inch Dobsonian f/4.7')",
    "Insert Into Equipment (Equipment) values ('ST-7 camera')",
    "Insert Into ObservingSites (ProfileName) values ('Backyard')",
};

struct OutsideWindow : LogbookFolder
{
    TestPort ui;
    data::Preferences prefs;
    data::SettingsStore settings{dir.File("settings.ini")};
    data::CurrentObject current;
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
    logbook::LogContext context{ui, nullptr, nullptr, prefs, dir, current, clock};
    std::unique_ptr<frmOutsideMain> window;

    OutsideWindow() : LogbookFolder(Seed)
    {
        context.logbook = logbookDb.get();
        context.objectDb = objectDb.get();
        window = std::make_unique<frmOutsideMain>(context, settings);
        window->Open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        Settle();
    }

    QWidget* Focused() const { return QApplication::focusWidget(); }
    QLineEdit* Line(const char* name) const
    {
        return qobject_cast<QLineEdit*>(window->Control(name));
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(Focused(), key, modifiers);
        Settle();
    }
    void Type(const QString& text)
    {
        QTest::keyClicks(Focused(), text);
        Settle();
    }
    // Enter on the focused list button; in the popup that opens, `search` typed (none: Esc)
    // and Enter.
    void Pick(const QString& search)
    {
        QTimer::singleShot(0, [search] {
            QWidget* popup = QApplication::activeModalWidget();
            ASSERT_NE(popup, nullptr);
            auto* list = popup->findChild<QListWidget*>("List1");
            if (search.isEmpty()) {
                QTest::keyClick(list, Qt::Key_Escape);
                return;
            }
            QTest::keyClicks(list, search);
            QTest::keyClick(list, Qt::Key_Return);
        });
        Key(Qt::Key_Return);
    }
};

TEST(OutsideWindow, AWholeEntryFromTheKeyboard)
{
    OutsideWindow s;
    ASSERT_EQ(s.ui.shown.size(), 1u);
    EXPECT_EQ(s.ui.shown[0].ShortMessage, logbook::FirstOutsideTitle);
    EXPECT_EQ(s.window->tabs->tabText(0), "Log Entry");
    EXPECT_EQ(s.Focused(), s.window->Control("txtObjectID"));

    // Object id, then Tab to the catalogue button, Enter, the popup, Enter.
    s.Type("ngc 224");
    s.Key(Qt::Key_Tab);
    EXPECT_EQ(s.Line("txtObjectID")->text(), "NGC 224");
    ASSERT_EQ(s.Focused(), s.window->Button("Catalog"));
    s.Pick("2000");
    EXPECT_EQ(s.Line("txtCatalog")->text(), "2000");
    EXPECT_EQ(s.Focused(), s.window->Control("txtCatalog"));

    // Esc leaves the field as it was.
    s.Key(Qt::Key_Tab);
    ASSERT_EQ(s.Focused(), s.window->Button("Logtype"));
    const QString logType = s.Line("txtLogType")->text();
    s.Pick("");
    EXPECT_EQ(s.Line("txtLogType")->text(), logType);
    EXPECT_EQ(s.Focused(), s.window->Button("Logtype"));

    // The time is completed on leaving; the seeing is picked.
    s.window->Control("txttime")->setFocus();
    s.Type("21");
    s.Key(Qt::Key_Tab);
    EXPECT_EQ(s.Line("txttime")->text(), "21:00:00");
    ASSERT_EQ(s.Focused(), s.window->Button("Seeing"));
    s.Pick("Mostly");
    EXPECT_EQ(s.Line("txtseeing")->text(), "Mostly Stable");

    // Ctrl+2 to the CCD tab: Ctrl+D and Ctrl+C do nothing there; Ctrl+A adds from it.
    s.Key(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(s.window->tabs->currentIndex(), 1);
    EXPECT_EQ(s.Focused(), s.window->Control("txtimgname"));
    s.Type("m31-01");
    s.Key(Qt::Key_D, Qt::ControlModifier);
    s.Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(s.Line("txtimgname")->text(), "m31-01");
    s.Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(s.window->txtObs->text(), "1");
    EXPECT_EQ(s.ui.shown.back().ShortMessage, "Observation Added");
    EXPECT_EQ(s.Focused(), s.window->Control("txtObjectID"));
    ASSERT_EQ(s.window->vaSpread1->rowCount(), 1);
    EXPECT_EQ(s.window->vaSpread1->item(0, 0)->text(), "NGC 224");
    EXPECT_EQ(Value(*s.logbookDb, "Select ImageName From CCDLog Where ObservationNumber = 1"),
              "m31-01");

    // Clear, then the grid: Ctrl+G and Enter bring the entry back.
    s.Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(s.window->txtObs->text(), "");
    EXPECT_EQ(s.Line("txtCatalog")->text(), "");
    s.Key(Qt::Key_G, Qt::ControlModifier);
    EXPECT_EQ(s.Focused(), s.window->vaSpread1);
    s.Key(Qt::Key_Return);
    EXPECT_EQ(s.window->txtObs->text(), "1");
    EXPECT_EQ(s.Line("txtseeing")->text(), "Mostly Stable");
    EXPECT_EQ(s.Line("txtimgname")->text(), "m31-01");

    if (const char* folder = std::getenv("SELVANE_SCREENSHOTS")) {
        s.window->Control("txtshortnotes")->setFocus();
        s.Type("Dust lane to the south-east");
        Settle();
        QImage shot = s.window->grab().toImage();
        shot.save(QString(folder) + "/outside-main.png");

        s.window->Button("Catalog")->setFocus();
        Settle();
        frmOutsidePopup popup("Catalog", logbook::LoadOutsidePopup(s.context, "CATALOG", "2000"),
                              s.window.get());
        popup.show();
        popup.move(s.window->mapToGlobal(QPoint(180, 90)));
        Settle();
        shot = s.window->grab().toImage();
        QPainter painter(&shot);
        // The offscreen platform draws no window frames: the popup gets a plain one.
        const QRect at(s.window->mapFromGlobal(popup.pos()), popup.size());
        painter.drawPixmap(at.topLeft(), popup.grab());
        painter.setPen(QPen(Qt::darkGray, 2));
        painter.drawRect(at.adjusted(0, 0, -1, -1));
        painter.end();
        shot.save(QString(folder) + "/outside-popup.png");
        popup.close();
        s.window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(s.window.get()));
        s.window->Control("txtObjectID")->setFocus();
        Settle();
    }

    // In a rich box Ctrl+U underlines and updates.
    s.window->Control("RichTextBox2")->setFocus();
    s.Type("Bar");
    s.Key(Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(s.ui.shown.back().ShortMessage, "Observation Updated");
    EXPECT_TRUE(qobject_cast<QTextEdit*>(s.window->Control("RichTextBox2"))->fontUnderline());
    EXPECT_NE(Value(*s.logbookDb, "Select ObservationText From Logbook").find("Bar"),
              std::string::npos);

    // Delete belongs to the first tab and asks nothing.
    s.Key(Qt::Key_1, Qt::ControlModifier);
    s.Key(Qt::Key_D, Qt::ControlModifier);
    EXPECT_TRUE(s.ui.questions.empty());
    EXPECT_EQ(s.window->vaSpread1->rowCount(), 0);
    EXPECT_EQ(s.ui.shown.back().ShortMessage, "Observation Deleted");
}

// The Outside tool of the main window opens the window on the spreadsheet's current object.
TEST(OutsideWiring, TheOutsideToolOpensTheWindow)
{
    LogbookScreen s(Seed);
    s.state.current.id = "NGC 7000";
    s.window->ab_ToolClick("tolOutside");
    Settle();
    auto* outside = dynamic_cast<frmOutsideMain*>(s.window->findChild<QWidget*>("frmOutsideMain"));
    ASSERT_NE(outside, nullptr);
    EXPECT_TRUE(outside->isVisible());
    EXPECT_EQ(qobject_cast<QLineEdit*>(outside->Control("txtObjectID"))->text(), "NGC 7000");
    EXPECT_EQ(s.state.settings.Get("firstoutside", ""), "Y");
}

} // namespace
