#pragma once
// frmTarget: the home target shown, the choice of the telescope as the target (chkScopeHome) and
// the targeting switch cmdTurn. Opened from the TARGET button of the filter's Ranges 2 tab.

#include "spread/Targeting.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QLabel;
class QPushButton;

namespace scope::ui {

class frmTarget : public QDialog
{
public:
    // Given: target, the run's home target; ui, the program's port; switched, run after each
    //   change of the switch (the spreadsheet reloads its tab). All outlive the window.
    frmTarget(spread::Targeting& target, services::UiPort& ui, std::function<void()> switched,
              QWidget* parent = nullptr);

    // Form_Load: the labels and the switch's caption for the current state, the window shown.
    void Open();

    QCheckBox* chkScopeHome = nullptr;
    QPushButton* cmdTurn = nullptr;
    QLabel* lblHome = nullptr;
    QLabel* lblCatalog = nullptr;
    QLabel* lblra = nullptr;
    QLabel* lblDec = nullptr;
    QLabel* lblOnOff = nullptr;

private:
    void ShowState();

    spread::Targeting& target_;
    services::UiPort& ui_;
    std::function<void()> switched_;
    QLabel* captions_[4] = {};
};

} // namespace scope::ui
