#include "reports/ui/frmPrintout.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace reports::ui {

frmPrintout::frmPrintout(const std::string& caller, const std::string& printpref, QWidget* parent)
    : QDialog(parent), caller_(caller)
{
    setWindowTitle(tr("Select Printout Type"));
    auto* layout = new QVBoxLayout(this);
    optQuick = new QRadioButton(tr("Quick Spreadsheet Printout"), this);
    optQuick->setObjectName("optQuick");
    optClassic = new QRadioButton(tr("Classic Selvane Database Printout"), this);
    optClassic->setObjectName("optClassic");
    (printpref == "C" ? optClassic : optQuick)->setChecked(true);
    layout->addWidget(optQuick);
    layout->addWidget(optClassic);
    auto* buttons = new QHBoxLayout;
    cmdOK = new QPushButton(tr("OK"), this);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(tr("Cancel"), this);
    cmdCancel->setObjectName("cmdCancel");
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

std::string frmPrintout::Choice() const
{
    return optClassic->isChecked() ? "C" : "N";
}

std::string frmPrintout::Ask()
{
    return exec() == QDialog::Accepted ? Choice() : std::string();
}

} // namespace reports::ui
