#include "spread/ui/PreferenceWindows.h"

#include "data/SettingsStore.h"
#include "services/Fault.h"
#include "services/UiPort.h"
#include "services/Vb.h"
#include "spread/MainShell.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWizardPage>

namespace spread {

namespace {

QString Q(const std::string& s)
{
    return QString::fromStdString(s);
}

std::string Degrees(double value)
{
    return services::vb::Format(value, "0.0####");
}

// A list of places whose choice fills the three boxes of the site.
QComboBox* AddPlacePicker(QFormLayout* form, int row, const QString& label,
                          const std::vector<data::Place>& places, QLineEdit* lat, QLineEdit* lon,
                          QLineEdit* tz)
{
    auto* combo = new QComboBox;
    combo->addItem(QString());
    for (const data::Place& place : places)
        combo->addItem(Q(place.name));
    combo->setEnabled(!places.empty());
    form->insertRow(row, label, combo);
    QObject::connect(combo, &QComboBox::activated, combo, [=](int index) {
        if (index < 1 || index > static_cast<int>(places.size()))
            return;
        const data::Place& place = places[static_cast<std::size_t>(index - 1)];
        lat->setText(Q(Degrees(place.Latitude)));
        lon->setText(Q(Degrees(place.Longitude)));
        tz->setText(Q(Degrees(place.TimeZone)));
    });
    return combo;
}

QLineEdit* AddDatabaseBox(QFormLayout* form, PreferenceForm& prefs, services::UiPort& ui)
{
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* path = new QLineEdit(Q(prefs.Stored("cdDrive")));
    path->setObjectName("cdDrive");
    path->setMinimumWidth(320);
    auto* browse = new QPushButton("Browse...");
    browse->setObjectName("cmdBrowse");
    layout->addWidget(path);
    layout->addWidget(browse);
    form->addRow("Object database", row);
    QObject::connect(browse, &QPushButton::clicked, path, [path, &ui] {
        const std::string chosen = ui.AskOpenFile(
            "Select the object database", "Object database (SelvPro708000.mdb SelvPro13000.mdb)");
        if (!chosen.empty())
            path->setText(Q(chosen));
    });
    prefs.AddCustom("cdDrive", path, [path] { return path->text().toStdString(); });
    return path;
}

void AddSiteBoxes(QFormLayout* form, PreferenceForm& prefs,
                  const std::vector<data::Place>& locations, const std::vector<data::Place>* sites)
{
    auto* lat = prefs.AddText(form, "Plat", "Latitude (degrees, north positive)");
    auto* lon = prefs.AddText(form, "PLon", "Longitude (degrees, west positive)");
    auto* tz = prefs.AddText(form, "PTz", "Time zone (hours behind Greenwich)");
    const int first = form->rowCount() - 3;
    auto* place = AddPlacePicker(form, first, "Place", locations, lat, lon, tz);
    place->setObjectName("cboLocation");
    if (sites) {
        auto* site = AddPlacePicker(form, first + 1, "My observing sites", *sites, lat, lon, tz);
        site->setObjectName("cboSites");
    }
}

} // namespace

QLineEdit* PreferenceForm::AddText(QFormLayout* form, const std::string& key, const QString& label)
{
    auto* box = new QLineEdit(Q(Stored(key)));
    box->setObjectName(Q(key));
    form->addRow(label, box);
    fields_.push_back({key, box, [box] { return box->text().toStdString(); }});
    return box;
}

QCheckBox* PreferenceForm::AddCheck(QFormLayout* form, const std::string& key, const QString& label,
                                    bool flags)
{
    auto* box = new QCheckBox(label);
    box->setObjectName(Q(key));
    const std::string stored = services::vb::UCase(Stored(key));
    box->setChecked(flags ? stored == "Y" : stored == "TRUE");
    form->addRow(QString(), box);
    fields_.push_back({key, box, [box, flags] {
                           if (flags)
                               return std::string(box->isChecked() ? "Y" : "N");
                           return std::string(box->isChecked() ? "True" : "False");
                       }});
    return box;
}

QComboBox* PreferenceForm::AddChoice(QFormLayout* form, const std::string& key,
                                     const QString& label,
                                     const std::vector<std::pair<QString, std::string>>& choices)
{
    auto* box = new QComboBox;
    box->setObjectName(Q(key));
    const std::string stored = Stored(key);
    for (const auto& [shown, value] : choices) {
        box->addItem(shown, Q(value));
        if (services::vb::UCase(value) == services::vb::UCase(stored))
            box->setCurrentIndex(box->count() - 1);
    }
    form->addRow(label, box);
    fields_.push_back({key, box, [box] { return box->currentData().toString().toStdString(); }});
    return box;
}

void PreferenceForm::AddCustom(const std::string& key, QWidget* focus,
                               std::function<std::string()> text)
{
    fields_.push_back({key, focus, std::move(text)});
}

std::string PreferenceForm::Stored(const std::string& key) const
{
    return data::GetPreference(prefs_, key).value_or(std::string());
}

data::PreferenceEdits PreferenceForm::Edits() const
{
    data::PreferenceEdits edits;
    for (const Field& field : fields_)
        edits.emplace_back(field.key, field.text());
    return edits;
}

bool PreferenceForm::Keep()
{
    data::Preferences changed = prefs_;
    if (const auto problem =
            data::ApplyPreferenceEdits(changed, Edits(), data::RegionalOf(prefs_))) {
        ui_.ShowMessage(problem->text, data::InvalidEntryTitle, "U");
        for (const Field& field : fields_)
            if (field.key == problem->key)
                field.widget->setFocus();
        return false;
    }
    prefs_ = std::move(changed);
    services::Trap(ui_, "TMM.SavePreferences", [&] {
        data::SavePreferences(prefs_, store_);
        store_.Sync();
    });
    return true;
}

PreferenceWindow::PreferenceWindow(const QString& title, data::Preferences& prefs,
                                   data::SettingsStore& store, services::UiPort& ui,
                                   QWidget* parent)
    : QDialog(parent), layout_(new QFormLayout), form_(prefs, store, ui)
{
    setWindowTitle(title);
    auto* outer = new QVBoxLayout(this);
    outer->addLayout(layout_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOK");
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
    outer->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void PreferenceWindow::accept()
{
    if (form_.Keep())
        QDialog::accept();
}

frmPref::frmPref(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
                 QWidget* parent)
    : PreferenceWindow("Date and Time", prefs, store, ui, parent)
{
    setObjectName("frmPref");
    form_.AddCheck(layout_, "UseRealTime", "Use the computer's clock", true);
    form_.AddText(layout_, "PDate", "Observing date (blank for today)");
    form_.AddText(layout_, "Ptime", "Observing time");
    form_.AddChoice(layout_, "PStd", "Clock",
                    {{"Standard time", "S"}, {"Daylight saving time", "D"}});
    form_.AddText(layout_, "RefreshTime", "Real-time refresh (seconds, 0 for none)");
    form_.AddChoice(layout_, "tLogTime", "Time of new log entries",
                    {{"Local time", "Local"}, {"Universal time", "UT"}});
}

frmPref2::frmPref2(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
                   const std::vector<data::Place>& locations, const std::vector<data::Place>& sites,
                   QWidget* parent)
    : PreferenceWindow("Geographic Location", prefs, store, ui, parent)
{
    setObjectName("frmPref2");
    AddSiteBoxes(layout_, form_, locations, &sites);
}

frmPref6::frmPref6(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
                   QWidget* parent)
    : PreferenceWindow("Miscellaneous", prefs, store, ui, parent)
{
    setObjectName("frmPref6");
    AddDatabaseBox(layout_, form_, ui);
    form_.AddCheck(layout_, "Dsound", "Speak messages");
    form_.AddCheck(layout_, "DataLogType", "Take the \"obs\" column from the logbook");
    form_.AddCheck(layout_, "LogDateHelp", "Date help in the logbook");
    form_.AddText(layout_, "AutoBackupPath", "Automatic logbook backup folder");
    form_.AddText(layout_, "fitspath", "FITS viewer program");
    form_.AddText(layout_, "MoonRisePath", "Moonrise program");
    form_.AddText(layout_, "gTimeServer", "Time server");
}

frmPref7::frmPref7(data::Preferences& prefs, data::SettingsStore& store, services::UiPort& ui,
                   QWidget* parent)
    : PreferenceWindow("Spreadsheet Options", prefs, store, ui, parent)
{
    setObjectName("frmPref7");
    form_.AddCheck(layout_, "Palt", "Compute altitude and azimuth", true);
    form_.AddCheck(layout_, "Prise", "Compute rise and set", true);
    form_.AddCheck(layout_, "optimum", "Compute the transit (best time)");
    form_.AddText(layout_, "PInterval", "Best-time search interval (minutes)");
    form_.AddCheck(layout_, "ShowCharts", "Compute atlas pages");
    form_.AddCheck(layout_, "speed1", "Turbo mode (no computed columns)");
    form_.AddCheck(layout_, "timesAMPM", "Times in 12-hour form");
    form_.AddCheck(layout_, "zerosup", "Hide zero values");
    form_.AddCheck(layout_, "autosizespread", "Size columns to their contents");
    form_.AddText(layout_, "Pminalt", "Minimum altitude (degrees, blank for none)");
    const char* azimuthLabels[] = {"Exclude azimuths from", "Exclude azimuths to",
                                   "Include only azimuths from", "Include only azimuths to"};
    for (int i = 0; i < 4; ++i) {
        const std::string key = "PAzm" + std::to_string(i + 1);
        auto* box = form_.AddText(layout_, key, azimuthLabels[i]);
        // A value of exactly 0 leaves the box empty.
        if (services::vb::Val(box->text().toStdString()) == 0)
            box->clear();
    }
    form_.AddCheck(layout_, "Psupo", "Leave out objects already observed", true);
    form_.AddCheck(layout_, "Shers", "Herschel 400 objects only");
    form_.AddText(layout_, "PPre", "Precess positions to date (blank for none)");
    std::vector<std::pair<QString, std::string>> rows;
    for (const std::string& choice : RowsReturnedChoices())
        rows.emplace_back(Q(choice), std::to_string(RowretFromChoice(choice)));
    auto* rowret = form_.AddChoice(layout_, "rowret", "Rows Returned", rows);
    if (rowret->findData(Q(form_.Stored("rowret"))) < 0) {
        // A count typed in an earlier session stays selectable as it was.
        rowret->addItem(Q(form_.Stored("rowret")), Q(form_.Stored("rowret")));
        rowret->setCurrentIndex(rowret->count() - 1);
    }
}

frmSetupWizard::frmSetupWizard(data::Preferences& prefs, data::SettingsStore& store,
                               services::UiPort& ui, const std::vector<data::Place>& locations,
                               QWidget* parent)
    : QWizard(parent), form_(prefs, store, ui)
{
    setObjectName("frmSetupWizard");
    setWindowTitle("Setup Wizard");

    auto* site = new QWizardPage;
    site->setTitle("Your observing site");
    site->setSubTitle("Choose the nearest place from the list, or type the latitude, longitude "
                      "and time zone of your site.");
    auto* siteForm = new QFormLayout(site);
    AddSiteBoxes(siteForm, form_, locations, nullptr);
    addPage(site);

    auto* database = new QWizardPage;
    database->setTitle("The object database");
    database->setSubTitle("Point to the object database, SelvPro708000.mdb or SelvPro13000.mdb.");
    auto* databaseForm = new QFormLayout(database);
    AddDatabaseBox(databaseForm, form_, ui);
    addPage(database);
}

void frmSetupWizard::accept()
{
    if (form_.Keep())
        QWizard::accept();
}

} // namespace spread
