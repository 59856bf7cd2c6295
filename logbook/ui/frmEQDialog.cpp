#include "logbook/ui/frmEQDialog.h"

#include "logbook/Equipment.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace logbook::ui {

namespace {

QPushButton* Button(const QString& caption, const QString& name)
{
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

} // namespace

frmEQDialog::frmEQDialog(services::UiPort& ui, data::Database& logbook,
                         const std::vector<std::string>& lines, QWidget* parent)
    : QDialog(parent)
{
    setObjectName("frmEQDialog");
    setWindowTitle("Other Equipment");
    List1 = new QListWidget;
    List1->setObjectName("List1");
    List2 = new QListWidget;
    List2->setObjectName("List2");
    cmdAdd = Button("Add >>", "cmdAdd");
    cmdRemove = Button("<< Remove", "cmdRemove");
    cmdOK = Button("OK", "cmdOK");
    cmdCancel = Button("Cancel", "cmdCancel");

    auto* middle = new QVBoxLayout;
    middle->addStretch();
    middle->addWidget(cmdAdd);
    middle->addWidget(cmdRemove);
    middle->addStretch();
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel("Equipment"), 0, 0);
    grid->addWidget(new QLabel("Used for this observation"), 0, 2);
    grid->addWidget(List1, 1, 0);
    grid->addLayout(middle, 1, 1);
    grid->addWidget(List2, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    std::vector<std::string> picks;
    services::Trap(ui, EQDialogLoadLocation, [&] { picks = LoadEquipmentTable(logbook); });
    for (const std::string& pick : picks)
        List1->addItem(QString::fromStdString(pick));
    for (const std::string& line : lines)
        List2->addItem(QString::fromStdString(line));

    connect(cmdAdd, &QPushButton::clicked, this, [this] { cmdAdd_Click(); });
    connect(List1, &QListWidget::itemDoubleClicked, this, [this] { cmdAdd_Click(); });
    connect(cmdRemove, &QPushButton::clicked, this, [this] { cmdRemove_Click(); });
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

bool frmEQDialog::Pick(QWidget* parent, services::UiPort& ui, data::Database& logbook,
                       std::vector<std::string>& lines)
{
    frmEQDialog dialog(ui, logbook, lines, parent);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    lines = dialog.Lines();
    return true;
}

void frmEQDialog::cmdAdd_Click()
{
    const QListWidgetItem* item = List1->currentItem();
    if (!item || services::vb::Trim(item->text().toStdString()).empty())
        return;
    List2->addItem(item->text());
}

void frmEQDialog::cmdRemove_Click()
{
    const int row = List2->currentRow();
    if (row >= 0)
        delete List2->takeItem(row);
}

std::vector<std::string> frmEQDialog::Lines() const
{
    std::vector<std::string> lines;
    for (int i = 0; i < List2->count(); ++i)
        lines.push_back(List2->item(i)->text().toStdString());
    return lines;
}

} // namespace logbook::ui
