#include "charts/ui/frmChartType.h"

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace charts::ui {

frmChartType::frmChartType(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("Star Charts"));
    auto* layout = new QVBoxLayout(this);
    optCdc = new QRadioButton(tr("Cartes Du Ciel"), this);
    optCdc->setObjectName("optCdc");
    optSelvane = new QRadioButton(tr("Selvane Charts"), this);
    optSelvane->setObjectName("optSelvane");
    optSelvane->setChecked(true);
    layout->addWidget(optCdc);
    layout->addWidget(optSelvane);
    auto* text = new QLabel(tr("The contents of your existing spreadsheet will be sent to the "
                               "star chart type you have selected"),
                            this);
    text->setWordWrap(true);
    layout->addWidget(text);
    cmdCreate = new QPushButton(tr("Create Chart"), this);
    cmdCreate->setObjectName("cmdCreate");
    cmdCreate->setDefault(true);
    layout->addWidget(cmdCreate);
    connect(cmdCreate, &QPushButton::clicked, this, &QDialog::accept);
}

std::string frmChartType::Choice() const
{
    return optCdc->isChecked() ? "C" : "D";
}

std::string frmChartType::Ask()
{
    return exec() == QDialog::Accepted ? Choice() : std::string();
}

} // namespace charts::ui
