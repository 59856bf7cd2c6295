// The telescope chooser on the offscreen platform, over a scripted search: what it lists, what
// a pick, a typed identifier and a cancel answer, and a search that found nothing.

#include "scope/ui/frmChooser.h"

#include "GuiApp.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

using scope::Discovery;
using scope::ui::frmChooser;

// Runs action on the chooser once it is shown modally.
void WhenShown(std::function<void(frmChooser&)> action)
{
    QTimer::singleShot(0, [action] {
        if (auto* chooser = dynamic_cast<frmChooser*>(QApplication::activeModalWidget()))
            action(*chooser);
    });
}

TEST(ScopeChooser, ListsTheFoundTelescopesAndAnswersThePickOrTheTypedIdentifier)
{
    App();
    int searches = 0;
    Discovery found;
    found.devices = {{"indi://127.0.0.1:7624/Telescope Simulator", "Telescope Simulator"},
                     {"alpaca://127.0.0.1:11111/telescope/0", "Alpaca Mount"}};
    found.problems = {"192.168.1.9:32227 did not answer"};
    frmChooser chooser([&] {
        ++searches;
        return found;
    });

    // The current setting is selected among the devices found; a pick replaces it.
    WhenShown([](frmChooser& c) {
        auto* list = c.findChild<QListWidget*>("lstDevices");
        EXPECT_EQ(list->count(), 2);
        EXPECT_EQ(list->currentRow(), 1);
        EXPECT_EQ(c.findChild<QLabel*>("lblStatus")->text().toStdString(),
                  "192.168.1.9:32227 did not answer");
        list->setCurrentRow(0);
        c.accept();
    });
    EXPECT_EQ(chooser.Choose("alpaca://127.0.0.1:11111/telescope/0"),
              "indi://127.0.0.1:7624/Telescope Simulator");

    // A typed identifier, blanks trimmed, survives a second search.
    WhenShown([](frmChooser& c) {
        c.findChild<QLineEdit*>("txtIdentifier")->setText("  alpaca://10.0.0.5:11111/telescope/1 ");
        c.Search();
        c.accept();
    });
    EXPECT_EQ(chooser.Choose(""), "alpaca://10.0.0.5:11111/telescope/1");
    EXPECT_EQ(searches, 3);

    // Cancel answers nothing; a search without devices says so.
    found = {};
    WhenShown([](frmChooser& c) {
        EXPECT_EQ(c.findChild<QListWidget*>("lstDevices")->count(), 0);
        EXPECT_EQ(c.findChild<QLabel*>("lblStatus")->text().toStdString(),
                  "No telescope was found.");
        c.reject();
    });
    EXPECT_EQ(chooser.Choose("indi://127.0.0.1:7624/Telescope Simulator"), "");
}

} // namespace
