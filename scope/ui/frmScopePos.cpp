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

    auto* buttons = new QHBoxLayout;
    cmdRefresh = new QPushButton("Refresh", this);
    cmdRefresh->setObjectName("cmdRefresh");
    cmdClose = new QPushButton("Close", this);
    cmdClose->setObjectName("cmdClose");
    buttons->addStretch();
    buttons->addWidget(cmdRefresh);
    buttons->addWidget(cmdClose);
    layout->addLayout(buttons);
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

} // namespace scope::ui
