#include "spread/ui/frmWhatsUpWizard.h"

#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/AppState.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace spread {

namespace {

QString Q(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string S(const QString& text)
{
    return text.toStdString();
}

void FillList(QListWidget& widget, const WizardList& list)
{
    widget.clear();
    for (std::size_t i = 0; i < list.items.size(); ++i) {
        widget.addItem(Q(list.items[i]));
        widget.item(static_cast<int>(i))->setSelected(list.selected[i]);
    }
}

void ReadList(const QListWidget& widget, WizardList& list)
{
    for (int i = 0; i < widget.count() && i < static_cast<int>(list.selected.size()); ++i)
        list.selected[static_cast<std::size_t>(i)] = widget.item(i)->isSelected();
}

QLineEdit* Box(const char* name, int width)
{
    auto* box = new QLineEdit;
    box->setObjectName(name);
    box->setMaximumWidth(width);
    return box;
}

} // namespace

frmWhatsUpWizard::frmWhatsUpWizard(AppState& state, const astro::Clock& clock, WizardHooks hooks,
                                   QWidget* parent)
    : QDialog(parent), state_(state), wizard_(state, clock, std::move(hooks))
{
    setObjectName("frmWhatsUpWizard");
    setWindowTitle(WizardTitle);
    setModal(true);

    lblHeading = new QLabel;
    lblHeading->setObjectName("lblHeading");
    QFont heading = lblHeading->font();
    heading.setPointSize(heading.pointSize() + 3);
    heading.setBold(true);
    lblHeading->setFont(heading);
    lblHint = new QLabel;
    lblHint->setObjectName("lblHint");
    lblHint->setWordWrap(true);

    fraStep = new QStackedWidget;
    fraStep->setObjectName("fraStep");
    fraStep->addWidget(BuildListPage(lstCon, "lstCon", true));
    fraStep->addWidget(BuildListPage(lstType, "lstType", false));
    fraStep->addWidget(BuildSortPage());
    fraStep->addWidget(BuildListPage(lstCat, "lstCat", false));
    fraStep->addWidget(BuildPlacePage());
    fraStep->addWidget(BuildFilterPage());

    chkwizapply = new QCheckBox(WizardApplyCaption);
    chkwizapply->setObjectName("chkwizapply");
    chkwizapply->setToolTip(WizardApplyTip);
    connect(chkwizapply, &QCheckBox::clicked, this,
            [this](bool checked) { wizard_.chkwizapply_Click(checked); });

    cmdBack = new QPushButton(WizardBackCaption);
    cmdBack->setObjectName("cmdBack");
    cmdNext = new QPushButton(WizardNextCaption);
    cmdNext->setObjectName("cmdNext");
    cmdNext->setDefault(true);
    cmdCancel = new QPushButton(WizardCancelCaption);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdBack, &QPushButton::clicked, this, [this] { cmdBack_Click(); });
    connect(cmdNext, &QPushButton::clicked, this, [this] { cmdNext_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });

    auto* rule = new QFrame;
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Sunken);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(chkwizapply);
    buttons->addStretch(1);
    buttons->addWidget(cmdBack);
    buttons->addWidget(cmdNext);
    buttons->addSpacing(12);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblHeading);
    layout->addWidget(lblHint);
    layout->addSpacing(6);
    layout->addWidget(fraStep, 1);
    layout->addWidget(rule);
    layout->addLayout(buttons);
    resize(760, 560);

    services::Trap(state_.ui, WizardLoadLocation, [this] { wizard_.Load(); });
    ShowValues();
    ShowPage();
}

QWidget* frmWhatsUpWizard::BuildListPage(QListWidget*& list, const char* name, bool columns)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    list = new QListWidget;
    list->setObjectName(name);
    list->setSelectionMode(QAbstractItemView::MultiSelection);
    if (columns) {
        // Eighty-nine names read best in columns, filled downwards.
        list->setFlow(QListView::TopToBottom);
        list->setWrapping(true);
        list->setResizeMode(QListView::Adjust);
    }
    layout->addWidget(list);
    return page;
}

QWidget* frmWhatsUpWizard::BuildSortPage()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    const std::vector<std::string>& names = WizardSortList();
    for (int level = 0; level < 3; ++level) {
        auto* combo = new QComboBox;
        combo->setObjectName(QString("cbosort%1").arg(level));
        for (const std::string& name : names)
            combo->addItem(Q(name));
        combo->setMinimumWidth(220);
        auto* descending = new QCheckBox("Descending Sequence");
        descending->setObjectName(QString("chkD%1").arg(level));
        grid->addWidget(new QLabel(QString("Sort level %1").arg(level + 1)), level, 0);
        grid->addWidget(combo, level, 1);
        grid->addWidget(descending, level, 2);
        cbosort[static_cast<std::size_t>(level)] = combo;
        chkD[static_cast<std::size_t>(level)] = descending;
    }
    grid->setColumnStretch(3, 1);
    grid->setRowStretch(3, 1);
    return page;
}

QWidget* frmWhatsUpWizard::BuildPlacePage()
{
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    cboSite = new QComboBox;
    cboSite->setObjectName("cboSite");
    cboSite->setMinimumWidth(260);
    connect(cboSite, &QComboBox::activated, this, [this](int index) {
        if (index > 0)
            services::Trap(state_.ui, WizardSiteLocation,
                           [&] { wizard_.SelectSite(S(cboSite->itemText(index))); });
        ShowSite();
    });
    lblSite = new QLabel;
    lblSite->setObjectName("lblSite");
    form->addRow("Observing site", cboSite);
    form->addRow("", lblSite);

    txtDate = Box("txtDate", 140);
    txtTime = Box("txtTime", 80);
    cmdNow = new QPushButton(WizardNowCaption);
    cmdNow->setObjectName("cmdNow");
    cmdNow->setToolTip("Today's date and the time now");
    connect(cmdNow, &QPushButton::clicked, this, [this] {
        wizard_.Now();
        txtDate->setText(Q(wizard_.txtDate));
        txtTime->setText(Q(wizard_.txtTime));
    });
    auto* when = new QWidget;
    auto* row = new QHBoxLayout(when);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(txtDate);
    row->addSpacing(12);
    row->addWidget(new QLabel("Time"));
    row->addWidget(txtTime);
    row->addSpacing(12);
    row->addWidget(cmdNow);
    row->addStretch(1);
    form->addRow("Date", when);
    return page;
}

QWidget* frmWhatsUpWizard::BuildFilterPage()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    const char* const lowerNames[] = {"txtMagL0", "txtMagL1"};
    const char* const upperNames[] = {"txtMagU0", "txtMagU1"};
    for (int i = 0; i < 2; ++i) {
        txtMagL[static_cast<std::size_t>(i)] = Box(lowerNames[i], 70);
        txtMagU[static_cast<std::size_t>(i)] = Box(upperNames[i], 70);
        grid->addWidget(new QLabel(i == 0 ? "Magnitude from" : "Magnitude 2 from"), i, 0);
        grid->addWidget(txtMagL[static_cast<std::size_t>(i)], i, 1);
        grid->addWidget(new QLabel("to"), i, 2);
        grid->addWidget(txtMagU[static_cast<std::size_t>(i)], i, 3);
    }
    chkIB = new QCheckBox("Include objects with no magnitude");
    chkIB->setObjectName("chkIB");
    chkIB2 = new QCheckBox("Include objects with no magnitude 2");
    chkIB2->setObjectName("chkIB2");
    grid->addWidget(chkIB, 0, 4);
    grid->addWidget(chkIB2, 1, 4);
    txtMinAlt = Box("txtMinAlt", 70);
    grid->addWidget(new QLabel("Minimum altitude"), 2, 0);
    grid->addWidget(txtMinAlt, 2, 1);
    grid->addWidget(new QLabel("degrees"), 2, 2, 1, 2);
    grid->setColumnStretch(5, 1);
    grid->setRowStretch(3, 1);
    return page;
}

void frmWhatsUpWizard::ShowValues()
{
    FillList(*lstCon, wizard_.lstCon);
    // Columns as wide as the longest name, so that no name is cut.
    int widest = 0;
    for (const std::string& name : wizard_.lstCon.items)
        widest = std::max(widest, lstCon->fontMetrics().horizontalAdvance(Q(name)));
    lstCon->setGridSize(QSize(widest + 16, lstCon->fontMetrics().height() + 4));
    FillList(*lstType, wizard_.lstType);
    FillList(*lstCat, wizard_.lstCat);
    for (std::size_t level = 0; level < 3; ++level) {
        cbosort[level]->setCurrentIndex(
            std::max(0, cbosort[level]->findText(Q(wizard_.cbosort[level]))));
        chkD[level]->setChecked(wizard_.chkD[level]);
    }
    cboSite->clear();
    cboSite->addItem(QString());
    for (const data::Place& site : wizard_.sites)
        cboSite->addItem(Q(site.name));
    cboSite->setCurrentIndex(std::max(0, cboSite->findText(Q(wizard_.cboSite))));
    cboSite->setEnabled(!wizard_.sites.empty());
    ShowSite();
    txtDate->setText(Q(wizard_.txtDate));
    txtTime->setText(Q(wizard_.txtTime));
    for (std::size_t i = 0; i < 2; ++i) {
        txtMagL[i]->setText(Q(wizard_.txtMagL[i]));
        txtMagU[i]->setText(Q(wizard_.txtMagU[i]));
    }
    chkIB->setChecked(wizard_.chkIB);
    chkIB2->setChecked(wizard_.chkIB2);
    txtMinAlt->setText(Q(wizard_.txtMinAlt));
    chkwizapply->setChecked(wizard_.chkwizapply);
}

void frmWhatsUpWizard::ReadControls()
{
    ReadList(*lstCon, wizard_.lstCon);
    ReadList(*lstType, wizard_.lstType);
    ReadList(*lstCat, wizard_.lstCat);
    for (std::size_t level = 0; level < 3; ++level) {
        wizard_.cbosort[level] = S(cbosort[level]->currentText());
        wizard_.chkD[level] = chkD[level]->isChecked();
    }
    wizard_.txtDate = S(txtDate->text());
    wizard_.txtTime = S(txtTime->text());
    for (std::size_t i = 0; i < 2; ++i) {
        wizard_.txtMagL[i] = S(txtMagL[i]->text());
        wizard_.txtMagU[i] = S(txtMagU[i]->text());
    }
    wizard_.chkIB = chkIB->isChecked();
    wizard_.chkIB2 = chkIB2->isChecked();
    wizard_.txtMinAlt = S(txtMinAlt->text());
}

void frmWhatsUpWizard::ShowPage()
{
    const WizardPageText& text = wizard_.PageText();
    lblHeading->setText(Q(text.heading));
    lblHint->setText(Q(text.hint));
    fraStep->setCurrentIndex(wizard_.Page() - 1);
    cmdBack->setEnabled(wizard_.BackEnabled());
    cmdNext->setText(wizard_.NextCaption());
}

void frmWhatsUpWizard::ShowSite()
{
    const std::optional<data::Place>& site = wizard_.Site();
    if (!site) {
        lblSite->setText(wizard_.sites.empty() ? "No observing sites are kept in the logbook."
                                               : "");
        return;
    }
    using services::vb::Format;
    lblSite->setText(Q("Latitude " + Format(site->Latitude, "General Number") + "   Longitude " +
                       Format(site->Longitude, "General Number") + "   Time zone " +
                       Format(site->TimeZone, "General Number")));
}

void frmWhatsUpWizard::cmdNext_Click()
{
    ReadControls();
    services::Trap(state_.ui, WizardNextLocation, [this] { wizard_.Next(); });
    if (wizard_.Closed()) {
        accept();
        return;
    }
    ShowPage();
}

void frmWhatsUpWizard::cmdBack_Click()
{
    ReadControls();
    wizard_.Back();
    ShowPage();
}

void frmWhatsUpWizard::reject()
{
    wizard_.Cancel();
    QDialog::reject();
}

} // namespace spread
