#include "logbook/ui/frmEditEquipment.h"

#include "data/Database.h"
#include "services/Fault.h"
#include "services/UiPort.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace logbook::ui {

namespace {

QString Q(const std::string& text)
{
    return QString::fromStdString(text);
}

// A box shows the start of its text, since names are padded with blanks to their column.
void Fill(QLineEdit* box, const std::string& text)
{
    box->setText(QString::fromStdString(text));
    box->setCursorPosition(0);
}

std::string S(const QLineEdit* box)
{
    return box->text().toStdString();
}

QLineEdit* Box(QFormLayout* form, const QString& label, const QString& name)
{
    auto* box = new QLineEdit;
    box->setObjectName(name);
    form->addRow(label, box);
    return box;
}

// A tab of a list beside the boxes of a new row.
QListWidget* Tab(QTabWidget* tabs, const QString& title, const QString& listName,
                 QFormLayout*& form, bool fixedColumns)
{
    auto* page = new QWidget;
    auto* layout = new QHBoxLayout(page);
    auto* list = new QListWidget;
    list->setObjectName(listName);
    if (fixedColumns)
        list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    list->setMinimumWidth(360);
    layout->addWidget(list, 1);
    form = new QFormLayout;
    layout->addLayout(form, 1);
    tabs->addTab(page, title);
    return list;
}

} // namespace

frmEditEquipment::frmEditEquipment(services::UiPort& ui, data::ProgramDir dir,
                                   const services::vb::Regional& regional,
                                   data::Database* logbook, QWidget* parent)
    : QDialog(parent), ui_(ui), dir_(std::move(dir)), regional_(regional), logbook_(logbook)
{
    setObjectName("frmEditEquipment");
    setWindowTitle("Edit Equipment");
    sstab1 = new QTabWidget;
    sstab1->setObjectName("sstab1");

    QFormLayout* form = nullptr;
    List1 = Tab(sstab1, "Telescopes", "List1", form, true);
    Text1[0] = Box(form, "Name", "Text1_0");
    Text1[1] = Box(form, "Aperture (mm)", "Text1_1");
    Text1[2] = Box(form, "F-ratio", "Text1_2");
    List2 = Tab(sstab1, "Eyepieces", "List2", form, true);
    Text2[0] = Box(form, "Name", "Text2_0");
    Text2[1] = Box(form, "Size (mm)", "Text2_1");
    Text2[2] = Box(form, "Apparent field (deg)", "Text2_2");
    List3 = Tab(sstab1, "CCD Cameras", "List3", form, false);
    text3[0] = Box(form, "Camera", "text3_0");
    List4 = Tab(sstab1, "Exposure Modes", "List4", form, false);
    text3[1] = Box(form, "Exposure mode", "text3_1");

    cmdAdd = new QPushButton("Add");
    cmdAdd->setObjectName("cmdAdd");
    cmdDelete = new QPushButton("Delete");
    cmdDelete->setObjectName("cmdDelete");
    cmdClose = new QPushButton("Close");
    cmdClose->setObjectName("cmdClose");
    cmdAdd->setAutoDefault(false);
    cmdDelete->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAdd);
    buttons->addWidget(cmdDelete);
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sstab1);
    layout->addLayout(buttons);
    resize(800, 320);

    connect(sstab1, &QTabWidget::currentChanged, this, [this](int tab) { sstab1_Click(tab); });
    connect(cmdAdd, &QPushButton::clicked, this, [this] { cmdAdd_Click(); });
    connect(cmdDelete, &QPushButton::clicked, this, [this] { cmdDelete_Click(); });
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    connect(List1, &QListWidget::itemClicked, this, [this] { List1_Click(); });

    sstab1_Click(0);
}

EquipmentKind frmEditEquipment::CurrentKind() const
{
    return static_cast<EquipmentKind>(sstab1->currentIndex());
}

QListWidget* frmEditEquipment::ListOf(EquipmentKind kind) const
{
    const std::array<QListWidget*, 4> lists{List1, List2, List3, List4};
    return lists[static_cast<size_t>(kind)];
}

void frmEditEquipment::ShowRows(EquipmentKind kind)
{
    QListWidget* list = ListOf(kind);
    list->clear();
    for (const std::string& row : rows_[static_cast<size_t>(kind)])
        list->addItem(Q(row));
}

void frmEditEquipment::sstab1_Click(int tab)
{
    if (tab < 0 || tab > 3)
        return;
    const auto kind = static_cast<EquipmentKind>(tab);
    rows_[static_cast<size_t>(tab)] = ReadEquipmentList(ui_, dir_, kind);
    ShowRows(kind);
}

void frmEditEquipment::cmdAdd_Click()
{
    const EquipmentKind kind = CurrentKind();
    std::string record;
    switch (kind) {
    case EquipmentKind::Scope: {
        ScopeBoxes boxes{S(Text1[0]), S(Text1[1]), S(Text1[2])};
        record = MakeScopeRecord(ui_, boxes, regional_);
        Fill(Text1[0], boxes.name);
        Fill(Text1[1], boxes.aperture);
        Fill(Text1[2], boxes.fratio);
        break;
    }
    case EquipmentKind::Eyepiece: {
        EyepieceBoxes boxes{S(Text2[0]), S(Text2[1]), S(Text2[2])};
        record = MakeEyepieceRecord(ui_, boxes, regional_);
        Fill(Text2[0], boxes.name);
        Fill(Text2[1], boxes.size);
        Fill(Text2[2], boxes.field);
        break;
    }
    case EquipmentKind::Ccd:
    case EquipmentKind::Exp:
        record = MakeTextRecord(ui_, kind, S(text3[kind == EquipmentKind::Ccd ? 0 : 1]));
        break;
    }
    const bool written = AddEquipmentRow(ui_, dir_, kind, rows_[static_cast<size_t>(kind)], record);
    ShowRows(kind);
    if (written)
        SyncTable(kind);
}

void frmEditEquipment::cmdDelete_Click()
{
    const EquipmentKind kind = CurrentKind();
    const int row = ListOf(kind)->currentRow();
    if (row < 0)
        return;
    const bool written =
        DeleteEquipmentRow(ui_, dir_, kind, rows_[static_cast<size_t>(kind)], row);
    ShowRows(kind);
    if (written)
        SyncTable(kind);
}

void frmEditEquipment::List1_Click()
{
    const int row = List1->currentRow();
    const std::vector<std::string>& scopes = rows_[static_cast<size_t>(EquipmentKind::Scope)];
    if (row < 0 || static_cast<size_t>(row) >= scopes.size())
        return;
    const ScopeBoxes boxes = SplitScopeRecord(scopes[static_cast<size_t>(row)]);
    Fill(Text1[0], boxes.name);
    Fill(Text1[1], boxes.aperture);
    Fill(Text1[2], boxes.fratio);
}

void frmEditEquipment::SyncTable(EquipmentKind kind)
{
    if (!logbook_ || kind == EquipmentKind::Exp)
        return;
    services::Trap(ui_, UpdateLocation(kind), [this] { SyncEquipmentTable(*logbook_, dir_); });
}

} // namespace logbook::ui
