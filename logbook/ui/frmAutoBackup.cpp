#include "logbook/ui/frmAutoBackup.h"

#include "data/Preferences.h"
#include "data/SettingsStore.h"
#include "logbook/Backup.h"
#include "services/Fault.h"
#include "services/UiPort.h"
#include "services/Vb.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace logbook::ui {

frmAutoBackup::frmAutoBackup(services::UiPort& ui, data::Preferences& prefs,
                             data::SettingsStore& store, const std::string& logbookName,
                             QWidget* parent)
    : QDialog(parent), ui_(ui), prefs_(prefs), store_(store)
{
    setObjectName("frmAutoBackup");
    setWindowTitle("Configure Auto Logbook Backup");

    Check1 = new QCheckBox("Back up the logbook automatically when Selvane closes");
    Check1->setObjectName("Check1");
    txtPath = new QLineEdit;
    txtPath->setObjectName("txtPath");
    txtPath->setMinimumWidth(380);
    Command1 = new QPushButton("Browse...");
    Command1->setObjectName("Command1");
    lblCurrentLog = new QLabel(QString::fromStdString(AutoBackupLabel(logbookName)));
    lblCurrentLog->setObjectName("lblCurrentLog");
    lblCurrentLog->setWordWrap(true);
    cmdOK = new QPushButton("OK");
    cmdOK->setObjectName("cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton("Cancel");
    cmdCancel->setObjectName("cmdCancel");

    auto* folder = new QGridLayout;
    folder->addWidget(new QLabel("Backup folder"), 0, 0);
    folder->addWidget(txtPath, 0, 1);
    folder->addWidget(Command1, 0, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Check1);
    layout->addLayout(folder);
    layout->addWidget(lblCurrentLog);
    layout->addStretch();
    layout->addLayout(buttons);

    txtPath->setText(QString::fromStdString(prefs_.AutoBackupPath));
    Check1->setChecked(!services::vb::Trim(prefs_.AutoBackupPath).empty());

    connect(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmAutoBackup::Command1_Click()
{
    const std::string folder = ui_.AskFolder(AutoBackupFolderPrompt);
    if (folder.empty())
        return;
    txtPath->setText(QString::fromStdString(folder));
    Check1->setChecked(true);
}

void frmAutoBackup::cmdOK_Click()
{
    if (!SaveAutoBackupPath(ui_, prefs_, Check1->isChecked(), txtPath->text().toStdString()))
        return;
    services::Trap(ui_, "frmAutoBackup.cmdOK_Click", [&] {
        data::SavePreferences(prefs_, store_);
        store_.Sync();
    });
    accept();
}

} // namespace logbook::ui
