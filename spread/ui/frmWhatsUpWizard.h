#pragma once
// The What's Up wizard's window: six pages in a stack, a heading and a hint above them, Back,
// Next and Cancel below. The wizard itself (spread/WhatsUpWizard.h) holds the values and runs
// the steps; the window copies its controls into it before each click and shows the result.

#include "astro/ObservingClock.h"
#include "spread/WhatsUpWizard.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;

namespace spread {

struct AppState;

class frmWhatsUpWizard : public QDialog
{
public:
    // Given: state, the application state the wizard changes; clock, the computer clock for
    //   today's date and the "Now" button; hooks, the spreadsheet's load and RefreshPref.
    // Notes: the wizard's Load runs here; a failure is reported under WizardLoadLocation and
    //   the window opens with the lists it could fill.
    frmWhatsUpWizard(AppState& state, const astro::Clock& clock, WizardHooks hooks,
                     QWidget* parent = nullptr);

    WhatsUpWizard& Wizard() { return wizard_; }

    // Closing the window any other way than Finish is Cancel.
    void reject() override;

    // The controls, under their names, for the tests.
    QLabel* lblHeading = nullptr;
    QLabel* lblHint = nullptr;
    QStackedWidget* fraStep = nullptr;
    QListWidget* lstCon = nullptr;
    QListWidget* lstType = nullptr;
    QListWidget* lstCat = nullptr;
    std::array<QComboBox*, 3> cbosort{};
    std::array<QCheckBox*, 3> chkD{};
    QComboBox* cboSite = nullptr;
    QLabel* lblSite = nullptr;
    QLineEdit* txtDate = nullptr;
    QLineEdit* txtTime = nullptr;
    QPushButton* cmdNow = nullptr;
    std::array<QLineEdit*, 2> txtMagL{};
    std::array<QLineEdit*, 2> txtMagU{};
    QCheckBox* chkIB = nullptr;
    QCheckBox* chkIB2 = nullptr;
    QLineEdit* txtMinAlt = nullptr;
    QCheckBox* chkwizapply = nullptr;
    QPushButton* cmdBack = nullptr;
    QPushButton* cmdNext = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    QWidget* BuildListPage(QListWidget*& list, const char* name, bool columns);
    QWidget* BuildSortPage();
    QWidget* BuildPlacePage();
    QWidget* BuildFilterPage();
    // The wizard's values into the controls, and the controls into the wizard.
    void ShowValues();
    void ReadControls();
    // The heading, hint, frame and buttons of the current page.
    void ShowPage();
    void ShowSite();
    void cmdNext_Click();
    void cmdBack_Click();

    AppState& state_;
    WhatsUpWizard wizard_;
};

} // namespace spread
