#include "logbook/ui/frmLogSearch.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace logbook::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

QComboBox* Box(const char* name, const std::vector<std::string>& items, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(name);
    box->setEditable(true);
    for (const std::string& item : items)
        box->addItem(Q(item));
    return box;
}

} // namespace

frmLogSearch::frmLogSearch(logbook::LogContext& context, QWidget* parent)
    : QDialog(parent), ctx_(context)
{
    setObjectName("frmLogSearch");
    setWindowTitle("Search the Logbook");
    const logbook::LogSearchLists lists =
        logbook::LoadLogSearchLists(ctx_.ui, ctx_.logbook, ctx_.objectDb);

    auto* grid = new QGridLayout;
    int row = 0;
    auto option = [&](QCheckBox*& box, const char* name, const char* caption, QWidget* field) {
        box = new QCheckBox(caption, this);
        box->setObjectName(name);
        grid->addWidget(box, row, 0);
        grid->addWidget(field, row++, 1);
        field->setEnabled(false);
        connect(box, &QCheckBox::toggled, field, &QWidget::setEnabled);
    };
    txtObjectID = new QLineEdit(this);
    txtObjectID->setObjectName("txtObjectID");
    option(optObjectID, "optObjectID", "Object ID begins with", txtObjectID);
    cboSite = Box("cboSite", lists.cboSite, this);
    option(optSite, "optSite", "Observing site", cboSite);
    txtNotes = new QLineEdit(this);
    txtNotes->setObjectName("txtNotes");
    grid->addWidget(new QLabel("Notes contain", this), row, 0);
    grid->addWidget(txtNotes, row++, 1);
    cboEquip = Box("cboEquip", lists.cboEquip, this);
    option(optEquipment, "optEquipment", "Equipment", cboEquip);

    auto* dates = new QWidget(this);
    auto* datesLayout = new QHBoxLayout(dates);
    datesLayout->setContentsMargins(0, 0, 0, 0);
    const astro::LocalDateTime now = ctx_.clock.Now();
    const QDate today(now.year, now.month, now.day);
    DTPicker1 = new QDateEdit(today.addMonths(-1), dates);
    DTPicker1->setObjectName("DTPicker1");
    DTPicker2 = new QDateEdit(today, dates);
    DTPicker2->setObjectName("DTPicker2");
    for (QDateEdit* picker : {DTPicker1, DTPicker2}) {
        picker->setCalendarPopup(true);
        picker->setDisplayFormat("yyyy-MM-dd");
    }
    datesLayout->addWidget(DTPicker1);
    datesLayout->addWidget(new QLabel("to", dates));
    datesLayout->addWidget(DTPicker2);
    option(optDate, "optDate", "Observed from", dates);

    cboType = new QComboBox(this);
    cboType->setObjectName("cboType");
    for (const data::ObjectTypeRow& type : lists.cboType)
        cboType->addItem(Q(type.ObjectType + " - " + type.ObjectTypeDesc), Q(type.ObjectType));
    option(optType, "optType", "Object type", cboType);
    cboCon = Box("cboCon", lists.cboCon, this);
    cboCon->setEditable(false);
    option(optConst, "optConst", "Constellation", cboCon);

    auto* seen = new QGroupBox("Seen", this);
    auto* seenLayout = new QHBoxLayout(seen);
    optAny = new QRadioButton("Either", seen);
    optSeen0 = new QRadioButton("Seen", seen);
    optSeen0->setObjectName("optSeen0");
    optSeen1 = new QRadioButton("Not seen", seen);
    optSeen1->setObjectName("optSeen1");
    optAny->setChecked(true);
    for (QRadioButton* button : {optAny, optSeen0, optSeen1})
        seenLayout->addWidget(button);
    grid->addWidget(seen, row++, 0, 1, 2);

    auto* note =
        new QLabel("Searching in log type \"" + Q(ctx_.prefs.Ltype) +
                       "\". An object ID search needs an object type or a constellation as well.",
                   this);
    note->setWordWrap(true);

    auto* buttons = new QDialogButtonBox(this);
    auto* cmdFind = buttons->addButton("Find", QDialogButtonBox::AcceptRole);
    cmdFind->setObjectName("cmdFind");
    buttons->addButton(QDialogButtonBox::Close);
    connect(cmdFind, &QPushButton::clicked, this, [this] { cmdFind_Click(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(note);
    layout->addWidget(buttons);
}

logbook::LogSearchCriteria frmLogSearch::Criteria() const
{
    logbook::LogSearchCriteria c;
    c.optObjectID = optObjectID->isChecked();
    c.txtObjectID = txtObjectID->text().toStdString();
    c.optSite = optSite->isChecked();
    c.cboSite = cboSite->currentText().toStdString();
    c.txtNotes = txtNotes->text().toStdString();
    c.optEquipment = optEquipment->isChecked();
    c.cboEquip = cboEquip->currentText().toStdString();
    c.optDate = optDate->isChecked();
    c.DTPicker1 = DTPicker1->date();
    c.DTPicker2 = DTPicker2->date();
    c.optType = optType->isChecked();
    c.cboType = cboType->currentData().toString().toStdString();
    c.optConst = optConst->isChecked();
    c.cboCon = cboCon->currentText().toStdString();
    c.optSeen = optSeen0->isChecked()   ? logbook::SeenChoice::Seen
                : optSeen1->isChecked() ? logbook::SeenChoice::NotSeen
                                        : logbook::SeenChoice::Any;
    return c;
}

void frmLogSearch::cmdFind_Click()
{
    const logbook::LogSearchSql sql = logbook::BuildLogSearchSql(Criteria(), ctx_.prefs.Ltype);
    accept();
    if (found)
        found(sql);
}

} // namespace logbook::ui
