#pragma once
// What a preference may hold. One rule per setting that the program computes with (the
// observing date and time, the site, the best-time step, the altitude and azimuth filters, the
// precession date) and one for the object database. The preference windows, the setup wizard,
// LoadPreferences and selvane-cli --set all judge a value by these rules, with the same message.
//
// Angles in degrees (latitude positive north, longitude positive west), the time zone in hours
// behind Greenwich, the best-time step in minutes, the refresh time in seconds. Dates are read
// in the regional short form (services/Vb.h ParseDate), or as ISO 8601 YYYY-MM-DD.

#include "data/Preferences.h"
#include "services/Vb.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace data {

inline constexpr const char* InvalidEntryTitle = "Invalid Entry";

// A value refused by its key's rule.
struct PreferenceProblem
{
    std::string key;  // the setting refused
    std::string text; // the rule's message
};

// Where a value comes from. A blank azimuth box means 0, but a blank stored azimuth is no
// number; the object database rule looks for the file only for a value typed in a window, as a
// stored path is tried when the database is opened.
enum class RuleSource {
    Typed,
    Stored,
};

// Judges one value by its key's rule.
// Given: key, any case; text, as typed or stored; regional, the date form.
// Returns: the text to keep, trimmed ("0" for a blank azimuth, a time as "hh:mm"), or the
//   rule's message; a key without a rule keeps its text as it is.
struct RuleVerdict
{
    std::optional<std::string> kept;
    std::string message; // when refused
};
RuleVerdict CheckPreference(const std::string& key, const std::string& text,
                            const services::vb::Regional& regional,
                            RuleSource source = RuleSource::Typed);

using PreferenceEdits = std::vector<std::pair<std::string, std::string>>;

// Checks and converts every edit of a preference window; on success prefs holds the new values.
// Given: edits, setting keys with their texts as typed (numbers with "."; Yes/No settings as
//   "True"/"False", flags as "Y"/"N"); prefs, the preferences to change; regional, as for
//   CheckPreference.
// Returns: the first problem in the order of the edits, prefs then untouched; nothing on success.
std::optional<PreferenceProblem> ApplyPreferenceEdits(Preferences& prefs,
                                                      const PreferenceEdits& edits,
                                                      const services::vb::Regional& regional = {});

// True for a file name the object database may have, compared without regard to case.
bool IsObjectDatabaseName(const std::string& path);

} // namespace data
