#pragma once
// The window of the mount's current position (key cspos): right ascension, declination,
// altitude and azimuth, read when the window opens and at each Refresh; no timer.

#include "scope/TelescopeStuff.h"

#include <QDialog>

class QBoxLayout;
class QGridLayout;
class QLabel;
class QPushButton;

namespace scope::ui {

class frmScopePos : public QDialog
{
public:
    // Given: s, the telescope routines' context; it outlives the window.
    explicit frmScopePos(ScopeContext& s, QWidget* parent = nullptr);

    // Form_Load: the title of telescopetype, the position read, the window shown.
    void Open();
    // GetPos: the busy message, the position, the labels when it was read.
    void Refresh();

    QLabel* lblRa = nullptr;
    QLabel* lblDec = nullptr;
    QLabel* lblAlt = nullptr;
    QLabel* lblAzm = nullptr;
    QPushButton* cmdRefresh = nullptr;
    QPushButton* cmdClose = nullptr;

private:
    ScopeContext& s_;
};

// The four position rows of the telescope windows, captioned, into a grid layout; used by
// frmScopePos and frmScopePanel.
struct PositionLabels
{
    QLabel* lblRa;
    QLabel* lblDec;
    QLabel* lblAlt;
    QLabel* lblAzm;
};
PositionLabels AddPositionLabels(QWidget& owner, QGridLayout& grid);
void ShowPositionLabels(const PositionLabels& labels, const ScopePosLabels& texts);

// The row of the Refresh and Close buttons at the foot of a telescope window.
struct RefreshCloseButtons
{
    QPushButton* cmdRefresh;
    QPushButton* cmdClose;
};
RefreshCloseButtons AddRefreshClose(QWidget& owner, QBoxLayout& layout);

} // namespace scope::ui
