#include "spread/PreferenceRules.h"

#include "data/Database.h"
#include "services/Vb.h"

#include <cmath>
#include <filesystem>
#include <map>

namespace spread {

namespace {

enum class Rule {
    Number,      // within [min, max]
    WholeNumber, // whole, within [min, max]
    BlankOrNumber,
    ZeroWhenBlank,
    BlankOrDate,
    Time,
    DatabaseFile,
};

struct KeyRule
{
    Rule rule;
    double min = 0;
    double max = 0;
    const char* message;
};

const std::map<std::string, KeyRule>& Rules()
{
    static const std::map<std::string, KeyRule> rules = {
        {"PInterval",
         {Rule::WholeNumber, 1, 1440,
          "The interval of the best-time search must be a whole number of minutes from 1 to "
          "1440."}},
        {"RefreshTime",
         {Rule::WholeNumber, 0, 86400,
          "The refresh time must be a whole number of seconds; 0 turns the real-time refresh "
          "off."}},
        {"Plat",
         {Rule::Number, -90, 90, "The latitude must be a number of degrees from -90 to 90."}},
        {"PLon",
         {Rule::Number, -180, 180,
          "The longitude must be a number of degrees from -180 to 180, positive west."}},
        {"PTz",
         {Rule::Number, -14, 14,
          "The time zone must be a number of hours from -14 to 14, positive west of "
          "Greenwich."}},
        {"Pminalt",
         {Rule::BlankOrNumber, -90, 90,
          "The minimum altitude must be blank or a number of degrees from -90 to 90."}},
        {"PAzm1",
         {Rule::ZeroWhenBlank, 0, 360, "Azimuths must be numbers of degrees from 0 to 360."}},
        {"PAzm2",
         {Rule::ZeroWhenBlank, 0, 360, "Azimuths must be numbers of degrees from 0 to 360."}},
        {"PAzm3",
         {Rule::ZeroWhenBlank, 0, 360, "Azimuths must be numbers of degrees from 0 to 360."}},
        {"PAzm4",
         {Rule::ZeroWhenBlank, 0, 360, "Azimuths must be numbers of degrees from 0 to 360."}},
        {"PDate",
         {Rule::BlankOrDate, 0, 0,
          "The observing date must be blank, for today, or a date such as 11/21/2026."}},
        {"PPre",
         {Rule::BlankOrDate, 0, 0,
          "The precession date must be blank, for none, or a date such as 1/1/2000."}},
        {"Ptime",
         {Rule::Time, 0, 0,
          "The observing time must be given as hours and minutes, such as 22:00."}},
        {"cdDrive",
         {Rule::DatabaseFile, 0, 0,
          "Please choose the object database, the file SelvPro708000.mdb or SelvPro13000.mdb."}},
    };
    return rules;
}

// The text to store, or nothing when the rule refuses it.
std::optional<std::string> Check(const KeyRule& rule, const std::string& typed)
{
    const std::string text = services::vb::Trim(typed);
    const bool numeric = services::vb::IsNumeric(text);
    const double value = numeric ? services::vb::Val(text) : 0;
    const bool inRange = numeric && std::isfinite(value) && value >= rule.min && value <= rule.max;
    switch (rule.rule) {
    case Rule::Number:
        return inRange ? std::optional(text) : std::nullopt;
    case Rule::WholeNumber:
        return inRange && value == std::floor(value) ? std::optional(text) : std::nullopt;
    case Rule::BlankOrNumber:
        return text.empty() || inRange ? std::optional(text) : std::nullopt;
    case Rule::ZeroWhenBlank:
        if (text.empty())
            return std::string("0");
        return inRange ? std::optional(text) : std::nullopt;
    case Rule::BlankOrDate:
        return text.empty() || services::vb::IsDate(text) ? std::optional(text) : std::nullopt;
    case Rule::Time:
        return services::vb::ParseTime(text) ? std::optional(text) : std::nullopt;
    case Rule::DatabaseFile: {
        std::error_code ec;
        return IsObjectDatabaseName(text) && std::filesystem::is_regular_file(text, ec)
                   ? std::optional(text)
                   : std::nullopt;
    }
    }
    return std::nullopt;
}

} // namespace

bool IsObjectDatabaseName(const std::string& path)
{
    const std::string name = services::vb::UCase(std::filesystem::path(path).filename().string());
    return name == "SELVPRO708000.MDB" || name == "SELVPRO13000.MDB";
}

std::optional<PreferenceProblem> ApplyPreferenceEdits(data::Preferences& prefs,
                                                      const PreferenceEdits& edits)
{
    data::Preferences changed = prefs;
    for (const auto& [key, typed] : edits) {
        std::string text = typed;
        const auto rule = Rules().find(key);
        if (rule != Rules().end()) {
            const auto accepted = Check(rule->second, typed);
            if (!accepted)
                return PreferenceProblem{key, rule->second.message};
            text = *accepted;
        }
        const std::string failure = data::SetPreference(changed, key, text);
        if (!failure.empty())
            return PreferenceProblem{key, "The value \"" + typed + "\" cannot be kept: " + failure +
                                              "."};
    }
    prefs = std::move(changed);
    return std::nullopt;
}

std::vector<Place> LoadLocationList(data::Database& logbook)
{
    std::vector<Place> places;
    auto rs = logbook.OpenRecordset("Select * From Location Order By Place", data::Snapshot);
    auto name = rs.Fields("Place");
    auto lat = rs.Fields("Latitude");
    auto lon = rs.Fields("Longitude");
    auto tz = rs.Fields("TimeZone");
    for (; !rs.Eof(); rs.MoveNext())
        places.push_back(
            {services::vb::Trim(name.Text()), lat.Double(), lon.Double(), tz.Double()});
    return places;
}

std::vector<Place> LoadObservingSites(data::Database& logbook)
{
    std::vector<Place> sites;
    auto rs = logbook.OpenRecordset("Select * from ObservingSites", data::Snapshot);
    auto name = rs.Fields("ProfileName");
    auto lat = rs.Fields("Latitude");
    auto lon = rs.Fields("Longitude");
    auto eastWest = rs.Fields("EastWest");
    auto tz = rs.Fields("TimeZone");
    for (; !rs.Eof(); rs.MoveNext()) {
        const std::string side = services::vb::UCase(services::vb::Trim(eastWest.Text()));
        double longitude = lon.Double();
        if (side == "E")
            longitude = -std::fabs(longitude);
        else if (side == "W")
            longitude = std::fabs(longitude);
        sites.push_back({services::vb::Trim(name.Text()), lat.Double(), longitude, tz.Double()});
    }
    return sites;
}

} // namespace spread
