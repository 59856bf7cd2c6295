#include "scope/ui/frmScopePanel.h"

#include "scope/ui/frmScopePos.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

namespace scope::ui {

frmScopePanel::frmScopePanel(ScopeContext& s, QWidget* parent) : QDialog(parent), s_(s)
{
    setObjectName("frmScopePanel");
    setModal(false);
    auto* layout = new QVBoxLayout(this);

    auto* where = new QGroupBox("Position", this);
    auto* grid = new QGridLayout(where);
    const PositionLabels labels = AddPositionLabels(*this, *grid);
    lblRa = labels.lblRa;
    lblDec = labels.lblDec;
    lblAlt = labels.lblAlt;
    lblAzm = labels.lblAzm;
    layout->addWidget(where);

    auto* motion = new QGroupBox("Move", this);
    auto* pad = new QGridLayout(motion);
    cmdNorth = MoveButton("N", "cmdNorth", Direction::North);
    cmdSouth = MoveButton("S", "cmdSouth", Direction::South);
    cmdEast = MoveButton("E", "cmdEast", Direction::East);
    cmdWest = MoveButton("W", "cmdWest", Direction::West);
    cmdStop = new QPushButton("Stop", this);
    cmdStop->setObjectName("cmdStop");
    pad->addWidget(cmdNorth, 0, 1);
    pad->addWidget(cmdEast, 1, 0);
    pad->addWidget(cmdStop, 1, 1);
    pad->addWidget(cmdWest, 1, 2);
    pad->addWidget(cmdSouth, 2, 1);
    layout->addWidget(motion);

    auto* mount = new QHBoxLayout;
    chkTracking = new QCheckBox("Tracking", this);
    chkTracking->setObjectName("chkTracking");
    cmdPark = new QPushButton("Park", this);
    cmdPark->setObjectName("cmdPark");
    cmdUnpark = new QPushButton("Unpark", this);
    cmdUnpark->setObjectName("cmdUnpark");
    mount->addWidget(chkTracking);
    mount->addStretch();
    mount->addWidget(cmdPark);
    mount->addWidget(cmdUnpark);
    layout->addLayout(mount);

    const RefreshCloseButtons buttons = AddRefreshClose(*this, *layout);
    cmdRefresh = buttons.cmdRefresh;
    cmdClose = buttons.cmdClose;

    tmrRefresh_ = new QTimer(this);
    tmrRefresh_->setObjectName("tmrRefresh");
    connect(tmrRefresh_, &QTimer::timeout, this, &frmScopePanel::Refresh);
    connect(cmdRefresh, &QPushButton::clicked, this, &frmScopePanel::Refresh);
    connect(cmdStop, &QPushButton::clicked, this, [this] { PanelStop(s_); });
    connect(chkTracking, &QCheckBox::clicked, this, [this](bool on) {
        if (!PanelSetTracking(s_, on))
            ShowTracking();
    });
    connect(cmdPark, &QPushButton::clicked, this, [this] { PanelPark(s_); });
    connect(cmdUnpark, &QPushButton::clicked, this, [this] { PanelUnpark(s_); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
}

QPushButton* frmScopePanel::MoveButton(const char* caption, const char* name, Direction direction)
{
    auto* button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setMinimumSize(56, 40);
    connect(button, &QPushButton::pressed, this,
            [this, direction] { PanelMove(s_, direction, true); });
    connect(button, &QPushButton::released, this,
            [this, direction] { PanelMove(s_, direction, false); });
    return button;
}

void frmScopePanel::Open()
{
    setWindowTitle(QString::fromStdString(s_.prefs.telescopetype + " Control Panel"));
    show();
    raise();
    activateWindow();
    ShowTracking();
    Refresh();
}

void frmScopePanel::Refresh()
{
    // Stopped while reading: a fault window shown by the read must not see the next tick.
    tmrRefresh_->stop();
    const std::optional<ScopePosLabels> texts = PanelPosition(s_);
    const PositionLabels labels{lblRa, lblDec, lblAlt, lblAzm};
    ShowPositionLabels(labels, texts.value_or(ScopePosLabels{}));
    if (texts && isVisible())
        tmrRefresh_->start(PanelRefreshSeconds(s_.prefs) * 1000);
}

bool frmScopePanel::TimerActive() const
{
    return tmrRefresh_->isActive();
}

void frmScopePanel::ShowTracking()
{
    const std::optional<bool> tracking = PanelTracking(s_);
    const QSignalBlocker quiet(chkTracking);
    chkTracking->setChecked(tracking.value_or(false));
    chkTracking->setEnabled(tracking.has_value());
}

void frmScopePanel::hideEvent(QHideEvent* event)
{
    tmrRefresh_->stop();
    QDialog::hideEvent(event);
}

} // namespace scope::ui
