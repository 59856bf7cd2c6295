#pragma once
// The per-user settings store: an INI file, group "Preferences", one key per setting, values as
// text ("True", "False", "Y", numbers with "."). Keys are found without regard to case, as the
// store of the earlier edition did; writing a key keeps the spelling it already has in the file.
// Overrides (selvane-cli --set) are read in place of the file's values and are never written.

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

class QSettings;

namespace data {

inline constexpr const char* SettingsSection = "Preferences";

class SettingsStore
{
public:
    explicit SettingsStore(std::filesystem::path file);
    ~SettingsStore();
    SettingsStore(SettingsStore&&) noexcept;
    SettingsStore& operator=(SettingsStore&&) noexcept;

    // The file chosen by --settings, else $SELVANE_SETTINGS, else
    // $XDG_CONFIG_HOME/Selvane2000/Selvane2000.ini (XDG_CONFIG_HOME defaults to ~/.config).
    static std::filesystem::path DefaultPath(const std::string& settingsArgument);

    const std::filesystem::path& File() const { return file_; }

    // GetSetting: the stored text, or nothing when the key is absent.
    std::optional<std::string> Get(const std::string& key) const;
    std::string Get(const std::string& key, const std::string& defaultText) const;
    // SaveSetting.
    void Save(const std::string& key, const std::string& value);
    // DeleteSetting of the whole section.
    void DeleteSection();
    // Writes pending changes to the file.
    void Sync();

    void Override(const std::string& key, const std::string& value);
    bool IsOverridden(const std::string& key) const;

private:
    std::optional<std::string> StoredKey(const std::string& key) const;
    std::filesystem::path file_;
    std::unique_ptr<QSettings> settings_;
    std::map<std::string, std::string> overrides_; // by lower-case key
};

} // namespace data
