#include "scope/ui/frmScopePos.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace scope::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

PositionLabels AddPositionLabels(QWidget& owner, QGridLayout& grid)
{
    const auto row = [&](const char* caption, const char* name) {
        const int at = grid.rowCount();
        grid.addWidget(new QLabel(caption, &owner), at, 0, Qt::AlignRight);
        auto* value = new QLabel(&owner);
        value->setObjectName(name);
        value->setMinimumWidth(140);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        grid.addWidget(value, at, 1);
        return value;
    };
    PositionLabels labels{};
    labels.lblRa = row("Right Ascension :", "lblRa");
    labels.lblDec = row("Declination :", "lblDec");
    labels.lblAlt = row("Altitude :", "lblAlt");
    labels.lblAzm = row("Azimuth :", "lblAzm");
    return labels;
}

void ShowPositionLabels(const PositionLabels& labels, const ScopePosLabels& texts)
{
    labels.lblRa->setText(Q(texts.lblRa));
    labels.lblDec->setText(Q(texts.lblDec));
    labels.lblAlt->setText(Q(texts.lblAlt));
    labels.lblAzm->setText(Q(texts.lblAzm));
}

frmScopePos::frmScopePos(ScopeContext& s, QWidget* parent) : QDialog(parent), s_(s)
{
    setObjectName("frmScopePos");
    setModal(false);
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    const PositionLabels labels = AddPositionLabels(*this, *grid);
    lblRa = labels.lblRa;
    lblDec = labels.lblDec;
    lblAlt = labels.lblAlt;
    lblAzm = labels.lblAzm;
    layout->addLayout(grid);

    const RefreshCloseButtons buttons = AddRefreshClose(*this, *layout);
    cmdRefresh = buttons.cmdRefresh;
    cmdClose = buttons.cmdClose;
    connect(cmdRefresh, &QPushButton::clicked, this, &frmScopePos::Refresh);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
}

void frmScopePos::Open()
{
    setWindowTitle(Q(ScopePosTitle(s_.prefs.telescopetype)));
    show();
    raise();
    activateWindow();
    Refresh();
}

void frmScopePos::Refresh()
{
    const ScopePosShown shown = GetPos(s_);
    if (shown.labels)
        ShowPositionLabels({lblRa, lblDec, lblAlt, lblAzm}, *shown.labels);
}

RefreshCloseButtons AddRefreshClose(QWidget& owner, QBoxLayout& layout)
{
    auto* buttons = new QHBoxLayout;
    RefreshCloseButtons made{new QPushButton("Refresh", &owner), new QPushButton("Close", &owner)};
    made.cmdRefresh->setObjectName("cmdRefresh");
    made.cmdClose->setObjectName("cmdClose");
    buttons->addStretch();
    buttons->addWidget(made.cmdRefresh);
    buttons->addWidget(made.cmdClose);
    layout.addLayout(buttons);
    return made;
}

} // namespace scope::ui
