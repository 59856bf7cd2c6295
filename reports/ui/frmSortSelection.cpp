#include "reports/ui/frmSortSelection.h"

#include "reports/LogReports.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace reports::ui {

frmSortSelection::frmSortSelection(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Sort Selection"));
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    const char* labels[3] = {"Sort by", "Then by", "Then by"};
    for (std::size_t k = 0; k < cboSort.size(); ++k) {
        const int row = static_cast<int>(k);
        cboSort[k] = new QComboBox(this);
        cboSort[k]->setObjectName(QString("cboSort%1").arg(row));
        for (const std::string& column : LogSingleSortColumns())
            cboSort[k]->addItem(QString::fromStdString(column));
        chkDesc[k] = new QCheckBox(tr("Descending"), this);
        chkDesc[k]->setObjectName(QString("chkDesc%1").arg(row));
        grid->addWidget(new QLabel(tr(labels[k]), this), row, 0);
        grid->addWidget(cboSort[k], row, 1);
        grid->addWidget(chkDesc[k], row, 2);
    }
    txtObject = new QLineEdit(this);
    txtObject->setObjectName("txtObject");
    txtObject->setPlaceholderText(tr("every object"));
    grid->addWidget(new QLabel(tr("Object ID like"), this), 3, 0);
    grid->addWidget(txtObject, 3, 1, 1, 2);
    layout->addLayout(grid);
    auto* buttons = new QHBoxLayout;
    cmdOK = new QPushButton(tr("OK"), this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(tr("Cancel"), this);
    cmdCancel->setObjectName("cmdCancel");
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

SortSelection frmSortSelection::Selection() const
{
    SortSelection selection;
    for (std::size_t k = 0; k < cboSort.size(); ++k) {
        selection.column[k] = cboSort[k]->currentText().toStdString();
        selection.descending[k] = chkDesc[k]->isChecked();
    }
    selection.like = txtObject->text().toStdString();
    return selection;
}

std::optional<SortSelection> frmSortSelection::Ask()
{
    if (exec() != QDialog::Accepted)
        return std::nullopt;
    return Selection();
}

} // namespace reports::ui
