#pragma once
// The automatic logbook backup window: the folder the logbook is copied into at every
// shut-down, with a check box that turns the copy on and off. OK keeps the choice in
// AutoBackupPath and saves the settings; Cancel keeps nothing.

#include <QDialog>

#include <string>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace data {
class SettingsStore;
struct Preferences;
} // namespace data
namespace services {
class UiPort;
}

namespace logbook::ui {

class frmAutoBackup : public QDialog
{
public:
    // Given: logbookName, the file name the copy keeps (Logbook2003-1.mdb).
    frmAutoBackup(services::UiPort& ui, data::Preferences& prefs, data::SettingsStore& store,
                  const std::string& logbookName, QWidget* parent = nullptr);

    // The folder chooser; a chosen folder fills txtPath and turns the copy on.
    void Command1_Click();
    // Keeps the choice and closes; a folder that does not exist is refused and the window stays.
    void cmdOK_Click();

    QLineEdit* txtPath = nullptr;
    QCheckBox* Check1 = nullptr;
    QPushButton* Command1 = nullptr;
    QLabel* lblCurrentLog = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    services::UiPort& ui_;
    data::Preferences& prefs_;
    data::SettingsStore& store_;
};

} // namespace logbook::ui
