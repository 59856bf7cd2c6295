#include "scope/ui/frmChooser.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace scope::ui {

frmChooser::frmChooser(Discover discover, QWidget* parent)
    : QDialog(parent), discover_(std::move(discover))
{
    setObjectName("frmChooser");
    setWindowTitle("Telescope Chooser");
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("Telescopes found:", this));
    lstDevices = new QListWidget(this);
    lstDevices->setObjectName("lstDevices");
    layout->addWidget(lstDevices);
    lblStatus = new QLabel(this);
    lblStatus->setObjectName("lblStatus");
    lblStatus->setWordWrap(true);
    layout->addWidget(lblStatus);

    auto* typed = new QHBoxLayout;
    typed->addWidget(new QLabel("Identifier:", this));
    txtIdentifier = new QLineEdit(this);
    txtIdentifier->setObjectName("txtIdentifier");
    txtIdentifier->setPlaceholderText("indi://HOST:PORT/DEVICE or alpaca://HOST:PORT/telescope/N");
    typed->addWidget(txtIdentifier, 1);
    layout->addLayout(typed);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    cmdSearch = buttons->addButton("Search Again", QDialogButtonBox::ActionRole);
    cmdSearch->setObjectName("cmdSearch");
    layout->addWidget(buttons);
    resize(560, 360);

    connect(lstDevices, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            txtIdentifier->setText(lstDevices->item(row)->data(Qt::UserRole).toString());
    });
    connect(lstDevices, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(cmdSearch, &QPushButton::clicked, this, &frmChooser::Search);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void frmChooser::Search()
{
    const QString typed = txtIdentifier->text();
    lstDevices->clear();
    lblStatus->setText("Searching...");
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Discovery found = discover_();
    QApplication::restoreOverrideCursor();
    for (const DeviceEntry& entry : found.devices) {
        auto* item = new QListWidgetItem(
            QString::fromStdString(entry.device + "  (" + entry.identifier + ")"), lstDevices);
        item->setData(Qt::UserRole, QString::fromStdString(entry.identifier));
    }
    QStringList status;
    if (found.devices.empty())
        status << "No telescope was found.";
    for (const std::string& problem : found.problems)
        status << QString::fromStdString(problem);
    lblStatus->setText(status.join("\n"));
    // The typed identifier stays, and selects its device when one was found.
    txtIdentifier->setText(typed);
    for (int row = 0; row < lstDevices->count(); ++row)
        if (lstDevices->item(row)->data(Qt::UserRole).toString() == typed.trimmed())
            lstDevices->setCurrentRow(row);
}

std::string frmChooser::Choose(const std::string& current)
{
    txtIdentifier->setText(QString::fromStdString(current));
    Search();
    if (exec() != QDialog::Accepted)
        return {};
    return txtIdentifier->text().trimmed().toStdString();
}

} // namespace scope::ui
