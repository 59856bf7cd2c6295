#include "data/PreferenceRules.h"

#include <QDate>

#include <cmath>
#include <filesystem>
#include <map>

namespace data {

namespace vb = services::vb;

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
    const char* message; // for a date, the text before the example date
};

// The largest latitude the sky positions can be computed at: a site on a pole has no azimuth.
constexpr double kLatitudeLimit = 89.999999;

const std::map<std::string, KeyRule, std::less<>>& Rules()
{
    constexpr KeyRule kAzimuth{Rule::ZeroWhenBlank, 0, 360,
                               "Azimuths must be numbers of degrees from 0 to 360."};
    static const std::map<std::string, KeyRule, std::less<>> rules = {
        {"PINTERVAL",
         {Rule::WholeNumber, 1, 1440,
          "The interval of the best-time search must be a whole number of minutes from 1 to "
          "1440."}},
        {"REFRESHTIME",
         {Rule::WholeNumber, 0, 86400,
          "The refresh time must be a whole number of seconds; 0 turns the real-time refresh "
          "off."}},
        {"PLAT",
         {Rule::Number, -kLatitudeLimit, kLatitudeLimit,
          "The latitude must be a number of degrees between -90 and 90, positive north; a "
          "site on a pole cannot be computed."}},
        {"PLON",
         {Rule::Number, -180, 180,
          "The longitude must be a number of degrees from -180 to 180, positive west."}},
        {"PTZ",
         {Rule::Number, -14, 14,
          "The time zone must be a number of hours from -14 to 14, positive west of "
          "Greenwich."}},
        {"PMINALT",
         {Rule::BlankOrNumber, -90, 90,
          "The minimum altitude must be blank or a number of degrees from -90 to 90."}},
        {"PAZM1", kAzimuth},
        {"PAZM2", kAzimuth},
        {"PAZM3", kAzimuth},
        {"PAZM4", kAzimuth},
        {"PDATE",
         {Rule::BlankOrDate, 0, 0,
          "The observing date must be blank, for today, or a date of the calendar such as "}},
        {"PPRE",
         {Rule::BlankOrDate, 0, 0,
          "The precession date must be blank, for none, or a date of the calendar such as "}},
        {"PTIME",
         {Rule::Time, 0, 0,
          "The observing time must be a time of day in hours and minutes, such as 22:00."}},
        {"CDDRIVE",
         {Rule::DatabaseFile, 0, 0,
          "Please choose the object database, the file SelvPro708000.mdb or SelvPro13000.mdb."}},
    };
    return rules;
}

// A date rule's message ends with an example in the regional form, with the whole year.
std::string DateMessage(const std::string& key, const KeyRule& rule,
                        const services::vb::Regional& regional)
{
    const QDate example = key == "PDATE" ? QDate(2026, 11, 21) : QDate(2000, 1, 1);
    std::string pattern = regional.dateformat;
    if (const auto year = pattern.find("yy");
        year != std::string::npos && pattern.find("yyyy") == std::string::npos)
        pattern.replace(year, 2, "yyyy");
    return rule.message + vb::FormatDate(example, pattern, regional) + ".";
}

// The text to keep, or nothing when the rule refuses it.
std::optional<std::string> Check(const KeyRule& rule, const std::string& typed,
                                 const services::vb::Regional& regional, RuleSource source)
{
    const std::string text = vb::Trim(typed);
    const bool numeric = vb::IsNumeric(text);
    const double value = numeric ? vb::Val(text) : 0;
    const bool inRange = numeric && std::isfinite(value) && value >= rule.min && value <= rule.max;
    switch (rule.rule) {
    case Rule::Number:
        return inRange ? std::optional(text) : std::nullopt;
    case Rule::WholeNumber:
        return inRange && value == std::floor(value) ? std::optional(text) : std::nullopt;
    case Rule::BlankOrNumber:
        return text.empty() || inRange ? std::optional(text) : std::nullopt;
    case Rule::ZeroWhenBlank:
        if (text.empty() && source == RuleSource::Typed)
            return std::string("0");
        return inRange ? std::optional(text) : std::nullopt;
    case Rule::BlankOrDate:
        return text.empty() || vb::IsDate(text, regional) ? std::optional(text) : std::nullopt;
    case Rule::Time:
        // The sky routines read the hours and minutes at fixed places, so the time is kept in
        // that one form.
        if (const auto time = vb::ParseTime(text))
            return vb::FormatTime(*time, "hh:mm");
        return std::nullopt;
    case Rule::DatabaseFile: {
        if (source == RuleSource::Stored)
            return typed;
        std::error_code ec;
        return IsObjectDatabaseName(text) && std::filesystem::is_regular_file(text, ec)
                   ? std::optional(text)
                   : std::nullopt;
    }
    }
    return std::nullopt;
}

} // namespace

RuleVerdict CheckPreference(const std::string& key, const std::string& text,
                            const services::vb::Regional& regional, RuleSource source)
{
    const std::string name = vb::UCase(key);
    const auto rule = Rules().find(name);
    if (rule == Rules().end())
        return {text, {}};
    if (auto kept = Check(rule->second, text, regional, source))
        return {std::move(kept), {}};
    if (rule->second.rule == Rule::BlankOrDate)
        return {std::nullopt, DateMessage(name, rule->second, regional)};
    return {std::nullopt, rule->second.message};
}

bool IsObjectDatabaseName(const std::string& path)
{
    const std::string name = vb::UCase(std::filesystem::path(path).filename().string());
    return name == "SELVPRO708000.MDB" || name == "SELVPRO13000.MDB";
}

std::optional<PreferenceProblem> ApplyPreferenceEdits(Preferences& prefs,
                                                      const PreferenceEdits& edits,
                                                      const services::vb::Regional& regional)
{
    Preferences changed = prefs;
    for (const auto& [key, typed] : edits) {
        const RuleVerdict verdict = CheckPreference(key, typed, regional);
        if (!verdict.kept)
            return PreferenceProblem{key, verdict.message};
        const std::string failure = SetPreference(changed, key, *verdict.kept);
        if (!failure.empty())
            return PreferenceProblem{key, "The value \"" + typed + "\" cannot be kept: " + failure +
                                              "."};
    }
    prefs = std::move(changed);
    return std::nullopt;
}

} // namespace data
