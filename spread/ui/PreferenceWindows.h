#pragma once
// The preference windows the program needs to be usable: date and time (frmPref), geographic
// location (frmPref2), miscellaneous (frmPref6), spreadsheet options (frmPref7) and the setup
// wizard of the first run (frmSetupWizard). Each shows the settings it edits, refuses an entry
// that does not fit with a message naming it, and on OK keeps the values and saves every
// preference.

#include "data/Places.h"
#include "data/PreferenceRules.h"

#include <QDialog>
#include <QWizard>

#include <functional>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QWidget;

namespace data {
class SettingsStore;
}
namespace services {
class UiPort;
}

namespace spread {

// The boxes of one window, each bound to a setting key, and the keeping of their values.
class PreferenceForm
{
public:
    PreferenceForm(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui)
        : prefs_(prefs), store_(store), ui_(ui)
    {
    }

    // A text box holding the setting's stored text.
    QLineEdit* AddText(QFormLayout* form, const std::string& key, const QString& label);
    // A check box for a Yes/No setting ("True"/"False") or, with flags, a "Y"/"N" setting.
    QCheckBox* AddCheck(QFormLayout* form, const std::string& key, const QString& label,
                        bool flags = false);
    // A list of (shown text, stored text) choices.
    QComboBox* AddChoice(QFormLayout* form, const std::string& key, const QString& label,
                         const std::vector<std::pair<QString, std::string>>& choices);
    // A box whose edit text is made by the caller.
    void AddCustom(const std::string& key, QWidget* focus, std::function<std::string()> text);

    data::PreferenceEdits Edits() const;
    // Checks and keeps every value, then saves all preferences. On a refused entry shows the
    // message (kind "U"), puts the focus on the box and returns false, changing nothing.
    bool Keep();

    const data::Preferences& Prefs() const { return prefs_; }
    std::string Stored(const std::string& key) const;

private:
    struct Field
    {
        std::string key;
        QWidget* widget;
        std::function<std::string()> text;
    };
    data::Preferences& prefs_;
    data::SettingsStore& store_;
    services::UiPort& ui_;
    std::vector<Field> fields_;
};

// A preference window: a form of boxes with OK and Cancel.
class PreferenceWindow : public QDialog
{
public:
    PreferenceWindow(const QString& title, data::Preferences& prefs, data::SettingsStore& store,
                     services::UiPort& ui, QWidget* parent);
    PreferenceForm& Form() { return form_; }
    void accept() override;

protected:
    QFormLayout* layout_;
    PreferenceForm form_;
};

// Date and time: real-time use, observing date and time, standard or daylight time, refresh.
class frmPref : public PreferenceWindow
{
public:
    frmPref(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
            QWidget* parent = nullptr);
};

// Geographic location: latitude, longitude, time zone, filled from the shipped places or the
// observer's sites.
class frmPref2 : public PreferenceWindow
{
public:
    frmPref2(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
             const std::vector<data::Place>& locations, const std::vector<data::Place>& sites,
             QWidget* parent = nullptr);
};

// Miscellaneous: the object database file, speech, outside programs, the backup folder.
class frmPref6 : public PreferenceWindow
{
public:
    frmPref6(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
             QWidget* parent = nullptr);
};

// Spreadsheet options: what is computed for each row, the row filters and the rows returned.
class frmPref7 : public PreferenceWindow
{
public:
    frmPref7(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
             QWidget* parent = nullptr);
};

// The first run's setup: the observing site, then the object database.
class frmSetupWizard : public QWizard
{
public:
    frmSetupWizard(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
                   const std::vector<data::Place>& locations, QWidget* parent = nullptr);
    PreferenceForm& Form() { return form_; }
    void accept() override;

private:
    PreferenceForm form_;
};

} // namespace spread
