#include "data/SettingsStore.h"

#include <QSettings>
#include <QStringList>

#include <cstdlib>

namespace data {

namespace {

std::string Lower(const std::string& text)
{
    return QString::fromStdString(text).toLower().toStdString();
}

QString Group(const std::string& key)
{
    return QString(SettingsSection) + "/" + QString::fromStdString(key);
}

std::string EnvOrEmpty(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

} // namespace

SettingsStore::SettingsStore(std::filesystem::path file)
    : file_(std::move(file)),
      settings_(std::make_unique<QSettings>(QString::fromStdString(file_.string()),
                                            QSettings::IniFormat))
{
}

SettingsStore::~SettingsStore() = default;
SettingsStore::SettingsStore(SettingsStore&&) noexcept = default;
SettingsStore& SettingsStore::operator=(SettingsStore&&) noexcept = default;

std::filesystem::path SettingsStore::DefaultPath(const std::string& settingsArgument)
{
    if (!settingsArgument.empty())
        return settingsArgument;
    if (std::string env = EnvOrEmpty("SELVANE_SETTINGS"); !env.empty())
        return env;
    std::filesystem::path config = EnvOrEmpty("XDG_CONFIG_HOME");
    if (config.empty())
        config = std::filesystem::path(EnvOrEmpty("HOME")) / ".config";
    return config / "Selvane2000" / "Selvane2000.ini";
}

std::optional<std::string> SettingsStore::StoredKey(const std::string& key) const
{
    settings_->beginGroup(SettingsSection);
    const QStringList keys = settings_->childKeys();
    settings_->endGroup();
    const QString wanted = QString::fromStdString(key);
    for (const QString& k : keys)
        if (k.compare(wanted, Qt::CaseInsensitive) == 0)
            return k.toStdString();
    return std::nullopt;
}

std::optional<std::string> SettingsStore::Get(const std::string& key) const
{
    if (auto it = overrides_.find(Lower(key)); it != overrides_.end())
        return it->second;
    const auto stored = StoredKey(key);
    if (!stored)
        return std::nullopt;
    const QVariant value = settings_->value(Group(*stored));
    // A text holding commas comes back as a list when it was written without quotes.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(",").toStdString();
    return value.toString().toStdString();
}

std::string SettingsStore::Get(const std::string& key, const std::string& defaultText) const
{
    return Get(key).value_or(defaultText);
}

void SettingsStore::Save(const std::string& key, const std::string& value)
{
    if (auto it = overrides_.find(Lower(key)); it != overrides_.end()) {
        it->second = value;
        return;
    }
    const std::string name = StoredKey(key).value_or(key);
    settings_->setValue(Group(name), QString::fromStdString(value));
}

void SettingsStore::DeleteSection()
{
    settings_->remove(SettingsSection);
}

void SettingsStore::Sync()
{
    settings_->sync();
}

void SettingsStore::Override(const std::string& key, const std::string& value)
{
    overrides_[Lower(key)] = value;
}

bool SettingsStore::IsOverridden(const std::string& key) const
{
    return overrides_.count(Lower(key)) > 0;
}

} // namespace data
