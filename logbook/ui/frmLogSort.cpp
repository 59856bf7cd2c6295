#include "logbook/ui/frmLogSort.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFont>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace logbook::ui {

frmLogSort::frmLogSort(QWidget* parent) : QDialog(parent)
{
    setObjectName("frmLogSort");
    setWindowTitle("Sort the Logbook");
    auto* grid = new QGridLayout;
    // The key texts carry their column at a fixed position: a fixed-pitch font keeps it aligned.
    QFont fixed("Courier New");
    fixed.setStyleHint(QFont::TypeWriter);
    const char* levels[] = {"Sort by", "Then by", "Then by"};
    for (int i = 0; i < 3; ++i) {
        auto* box = new QComboBox(this);
        box->setObjectName(QString("cboSort%1").arg(i));
        box->setFont(fixed);
        box->addItem(QString());
        for (const std::string& key : logbook::LogSortKeys())
            box->addItem(QString::fromStdString(key));
        auto* descending = new QCheckBox("Descending", this);
        descending->setObjectName(QString("chkDescending%1").arg(i));
        grid->addWidget(new QLabel(levels[i], this), i, 0);
        grid->addWidget(box, i, 1);
        grid->addWidget(descending, i, 2);
        cboSort[static_cast<std::size_t>(i)] = box;
        chkDescending[static_cast<std::size_t>(i)] = descending;
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(buttons);
}

logbook::LogSortBoxes frmLogSort::Boxes() const
{
    logbook::LogSortBoxes boxes;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        boxes[i] = {cboSort[i]->currentText().toStdString(), chkDescending[i]->isChecked()};
    return boxes;
}

void frmLogSort::SetBoxes(const logbook::LogSortBoxes& boxes)
{
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        cboSort[i]->setCurrentIndex(
            std::max(0, cboSort[i]->findText(QString::fromStdString(boxes[i].text))));
        chkDescending[i]->setChecked(boxes[i].descending);
    }
}

} // namespace logbook::ui
