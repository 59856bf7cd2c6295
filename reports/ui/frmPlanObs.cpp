#include "reports/ui/frmPlanObs.h"

#include "spread/Plans.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace reports::ui {

frmPlanObs::frmPlanObs(const std::filesystem::path& programDir, QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Objects Observed By Observing Plan"));
    auto* layout = new QVBoxLayout(this);
    lstPlans = new QListWidget(this);
    lstPlans->setObjectName("lstPlans");
    for (const spread::ShortCutTool& plan : spread::LoadTPlan(programDir).plans)
        lstPlans->addItem(QString::fromStdString(plan.key));
    if (lstPlans->count() > 0)
        lstPlans->setCurrentRow(0);
    layout->addWidget(lstPlans);

    cbosort = new QComboBox(this);
    cbosort->setObjectName("cbosort");
    for (const char* caption : {"ObjectID", "Catalog", "Date/Time", "Location", "Equipment",
                                "Seeing", "Transparency", "Rating"})
        cbosort->addItem(QString::fromLatin1(caption));
    auto* form = new QFormLayout;
    form->addRow(tr("Sort By"), cbosort);
    layout->addLayout(form);

    auto* buttons = new QHBoxLayout;
    cmdPrint = new QPushButton(tr("Print"), this);
    cmdPrint->setObjectName("cmdPrint");
    cmdPrint->setDefault(true);
    cmdPrint->setEnabled(lstPlans->count() > 0);
    cmdCancel = new QPushButton(tr("Cancel"), this);
    cmdCancel->setObjectName("cmdCancel");
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);
    connect(cmdPrint, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(lstPlans, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
}

std::string frmPlanObs::Plan() const
{
    const QListWidgetItem* item = lstPlans->currentItem();
    return item ? item->text().toStdString() : std::string();
}

std::string frmPlanObs::Sort() const
{
    return cbosort->currentText().toStdString();
}

} // namespace reports::ui
