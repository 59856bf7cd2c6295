#include "scope/ui/frmTarget.h"

#include <QCheckBox>
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

frmTarget::frmTarget(spread::Targeting& target, services::UiPort& ui,
                     std::function<void()> switched, QWidget* parent)
    : QDialog(parent), target_(target), ui_(ui), switched_(std::move(switched))
{
    setObjectName("frmTarget");
    setWindowTitle("Home Target");
    setModal(false);
    auto* layout = new QVBoxLayout(this);
    chkScopeHome = new QCheckBox("Use the telescope's position as the home target", this);
    chkScopeHome->setObjectName("chkScopeHome");
    chkScopeHome->setChecked(target.TargetIsScope);
    layout->addWidget(chkScopeHome);

    auto* grid = new QGridLayout;
    const auto row = [&](int at, const char* name) {
        captions_[at] = new QLabel(this);
        grid->addWidget(captions_[at], at, 0, Qt::AlignRight);
        auto* value = new QLabel(this);
        value->setObjectName(name);
        value->setMinimumWidth(160);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        grid->addWidget(value, at, 1);
        return value;
    };
    lblHome = row(0, "lblHome");
    lblCatalog = row(1, "lblCatalog");
    lblra = row(2, "lblra");
    lblDec = row(3, "lblDec");
    layout->addLayout(grid);

    lblOnOff = new QLabel(this);
    lblOnOff->setObjectName("lblOnOff");
    QFont bold = lblOnOff->font();
    bold.setBold(true);
    lblOnOff->setFont(bold);
    layout->addWidget(lblOnOff);

    auto* buttons = new QHBoxLayout;
    cmdTurn = new QPushButton(this);
    cmdTurn->setObjectName("cmdTurn");
    auto* cmdClose = new QPushButton("Close", this);
    buttons->addStretch();
    buttons->addWidget(cmdTurn);
    buttons->addWidget(cmdClose);
    layout->addLayout(buttons);

    connect(chkScopeHome, &QCheckBox::toggled, this, [this] { ShowState(); });
    connect(cmdTurn, &QPushButton::clicked, this, [this] {
        if (spread::cmdTurn_Click(target_, chkScopeHome->isChecked(), ui_)) {
            ShowState();
            if (switched_)
                switched_();
        }
    });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::close);
}

void frmTarget::Open()
{
    chkScopeHome->setChecked(target_.TargetIsScope);
    ShowState();
    show();
    raise();
    activateWindow();
}

void frmTarget::ShowState()
{
    const spread::TargetLabels labels = spread::TargetLabelsOf(target_, chkScopeHome->isChecked());
    captions_[0]->setText(Q(labels.captionHome));
    captions_[1]->setText(Q(labels.captionCatalog));
    captions_[2]->setText(Q(labels.captionRa));
    captions_[3]->setText(Q(labels.captionDec));
    lblHome->setText(Q(labels.lblHome));
    lblCatalog->setText(Q(labels.lblCatalog));
    lblra->setText(Q(labels.lblra));
    lblDec->setText(Q(labels.lblDec));
    cmdTurn->setText(Q(spread::TurnCaption(target_)));
    lblOnOff->setText(Q(spread::OnOffText(target_)));
}

} // namespace scope::ui
