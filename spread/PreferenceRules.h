#pragma once
// What the preference windows accept. A window collects its boxes as (key, text) edits;
// ApplyPreferenceEdits checks every edit against the key's rule and converts it into the typed
// preference, all or nothing, so that a refused entry loses none of the others' values.

#include "data/Preferences.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace data {
class Database;
}

namespace spread {

inline constexpr const char* InvalidEntryTitle = "Invalid Entry";

using PreferenceEdits = std::vector<std::pair<std::string, std::string>>;

struct PreferenceProblem
{
    std::string key;  // the setting refused
    std::string text; // the message, shown as kind "U" under InvalidEntryTitle
};

// Checks and converts every edit; on success prefs holds the new values.
// Given: edits, setting keys with their texts as typed (numbers with "."; Yes/No settings as
//   "True"/"False", flags as "Y"/"N"); prefs, the preferences to change.
// Returns: the first problem in the order of the edits, prefs then untouched; nothing on success.
// Notes: an empty azimuth box means 0. Keys without a rule of their own are converted only.
std::optional<PreferenceProblem> ApplyPreferenceEdits(data::Preferences& prefs,
                                                      const PreferenceEdits& edits);

// True for a file name the object database may have, compared without regard to case.
bool IsObjectDatabaseName(const std::string& path);

// One place of the shipped Location list or one of the observer's ObservingSites.
// Latitude in degrees, positive north; longitude in degrees, positive west; time zone in hours
// behind Greenwich.
struct Place
{
    std::string name;
    double Latitude = 0;
    double Longitude = 0;
    double TimeZone = 0;
};

// The shipped places, "Select * From Location Order By Place", from the logbook database.
std::vector<Place> LoadLocationList(data::Database& logbook);
// The observer's sites, "Select * from ObservingSites"; a site given with EastWest "E" has its
// longitude turned positive west.
// The observer's sites, "Select * from ObservingSites": a longitude with EastWest "E" is east,
// with "W" west, whatever its sign; with neither it is taken as stored, positive west.
std::vector<Place> LoadObservingSites(data::Database& logbook);

} // namespace spread
