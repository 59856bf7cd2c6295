#pragma once
// The telescope control panel (key scopepanel): the mount's position, read again every
// ScopeDelay1 seconds while the window is shown; N, S, E and W move the mount while held; Stop,
// tracking, Park and Unpark. Each button calls one operation of scope/ScopePanel.h.

#include "scope/ScopePanel.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;
class QTimer;

namespace scope::ui {

class frmScopePanel : public QDialog
{
public:
    // Given: s, the telescope routines' context; it outlives the window.
    explicit frmScopePanel(ScopeContext& s, QWidget* parent = nullptr);

    // The title, the tracking state and the position read, the window shown.
    void Open();
    // Reads the position. A failed read empties the labels and stops the timer until the next
    // click on Refresh, so that a lost mount does not bring a fault window at each tick.
    void Refresh();

    bool TimerActive() const;

    QLabel* lblRa = nullptr;
    QLabel* lblDec = nullptr;
    QLabel* lblAlt = nullptr;
    QLabel* lblAzm = nullptr;
    QPushButton* cmdNorth = nullptr;
    QPushButton* cmdSouth = nullptr;
    QPushButton* cmdEast = nullptr;
    QPushButton* cmdWest = nullptr;
    QPushButton* cmdStop = nullptr;
    QCheckBox* chkTracking = nullptr;
    QPushButton* cmdPark = nullptr;
    QPushButton* cmdUnpark = nullptr;
    QPushButton* cmdRefresh = nullptr;
    QPushButton* cmdClose = nullptr;

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QPushButton* MoveButton(const char* caption, const char* name, Direction direction);
    void ShowTracking();

    ScopeContext& s_;
    QTimer* tmrRefresh_ = nullptr;
};

} // namespace scope::ui
