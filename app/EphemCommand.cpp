#include "app/EphemCommand.h"

#include "app/CliOptions.h"

#include "astro/Text.h"
#include "data/MinorBodies.h"
#include "services/Fault.h"
#include "spread/MinorBodyEphemeris.h"
#include "spread/PortFaults.h"

#include <charconv>
#include <cmath>
#include <optional>

namespace app {

namespace {

constexpr long kMaxSteps = 100000;

// What the arguments ask for: a named row of a table, or elements typed out.
struct EphemRequest
{
    std::string error; // the usage error, or empty
    bool named = false;
    data::MinorBodyKind kind = data::MinorBodyKind::Comet;
    std::string name;
    astro::EphemInput in;
};

bool AllDigits(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

int Number(std::string_view digits)
{
    int n = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), n);
    return n;
}

// A real calendar date of the years 1 to 9999 (as the observing date reads it) and a time of day.
bool ValidDateTime(std::string_view year, std::string_view month, std::string_view day, int hour,
                   int minute)
{
    return year != "0000" &&
           astro::ParseObservingDate(std::string(year) + "-" + std::string(month) + "-" +
                                     std::string(day)) &&
           hour <= 23 && minute <= 59;
}

// The positional text YYYYMMDD[HH[MM[SS[.ss]]]] of a real date and time.
bool ValidPositionalDate(std::string_view text)
{
    const std::string_view whole = text.substr(0, text.find('.'));
    if (whole.size() < 8 || whole.size() > 14 || whole.size() % 2 != 0 || !AllDigits(whole))
        return false;
    if (whole.size() < text.size() &&
        (whole.size() != 14 || !AllDigits(text.substr(15)) || text.size() == 15))
        return false;
    auto field = [&](std::size_t at) {
        return at < whole.size() ? Number(whole.substr(at, 2)) : 0;
    };
    return ValidDateTime(whole.substr(0, 4), whole.substr(4, 2), whole.substr(6, 2), field(8),
                         field(10)) &&
           field(12) <= 59;
}

// "YYYY-MM-DD" with an optional "HH:MM" as the positional start text; empty when not one.
std::string StartText(std::string_view date, std::string_view time)
{
    if (date.size() != 10 || date[4] != '-' || date[7] != '-' || !AllDigits(date.substr(0, 4)) ||
        !AllDigits(date.substr(5, 2)) || !AllDigits(date.substr(8, 2)))
        return {};
    if (!time.empty() && (time.size() != 5 || time[2] != ':' || !AllDigits(time.substr(0, 2)) ||
                          !AllDigits(time.substr(3, 2))))
        return {};
    const std::string hhmm =
        time.empty() ? "0000" : std::string(time.substr(0, 2)) + std::string(time.substr(3, 2));
    const std::string text = std::string(date.substr(0, 4)) + std::string(date.substr(5, 2)) +
                             std::string(date.substr(8, 2)) + hhmm + "00";
    return ValidPositionalDate(text) ? text : std::string();
}

std::optional<long> Steps(const std::string& text)
{
    if (!AllDigits(text) || text.size() > 6)
        return std::nullopt;
    const long n = Number(text);
    return n >= 1 && n <= kMaxSteps ? std::optional<long>(n) : std::nullopt;
}

std::optional<double> Step(const std::string& text)
{
    const std::optional<double> step = astro::ParseNumber(text);
    return step && *step != 0 && std::isfinite(*step) ? step : std::nullopt;
}

EphemRequest Usage(std::string error)
{
    EphemRequest r;
    r.error = std::move(error);
    return r;
}

EphemRequest ParseNamed(const std::vector<std::string>& args)
{
    EphemRequest r;
    r.named = true;
    r.kind = args[0] == "comet" ? data::MinorBodyKind::Comet : data::MinorBodyKind::Asteroid;
    r.name = args[1];
    std::size_t next = 3;
    // The time may follow the date as its own argument.
    std::string_view time;
    if (args.size() > 3 && args[3].find(':') != std::string::npos) {
        time = args[3];
        next = 4;
    } else if (const std::size_t blank = args[2].find(' '); blank != std::string::npos) {
        time = std::string_view(args[2]).substr(blank + 1);
    }
    const std::string_view date = std::string_view(args[2]).substr(0, args[2].find(' '));
    r.in.start = StartText(date, time);
    if (r.in.start.empty())
        return Usage("START \"" + args[2] + "\" is not a date YYYY-MM-DD or YYYY-MM-DD HH:MM");
    if (args.size() > next + 2)
        return Usage("ephem " + args[0] + " takes NAME START [STEPS [STEP]]");
    r.in.steps = 10;
    if (args.size() > next) {
        const std::optional<long> steps = Steps(args[next]);
        if (!steps)
            return Usage("STEPS \"" + args[next] + "\" is not a whole number from 1 to 100000");
        r.in.steps = *steps;
    }
    if (args.size() > next + 1) {
        const std::optional<double> step = Step(args[next + 1]);
        if (!step)
            return Usage("STEP \"" + args[next + 1] + "\" is not a number of days other than 0");
        r.in.step = *step;
    }
    return r;
}

EphemRequest ParseElements(const std::vector<std::string>& args)
{
    if (args.size() != 18)
        return Usage("ephem elements takes 17 inputs");
    EphemRequest r;
    r.in.kind = args[1];
    if (r.in.kind != "A" && r.in.kind != "C")
        return Usage("KIND \"" + args[1] + "\" is not A or C");
    const char* dateNames[] = {"ELDATE", "START"};
    const std::size_t dateAt[] = {2, 15};
    for (int k = 0; k < 2; ++k)
        if (!ValidPositionalDate(args[dateAt[k]]))
            return Usage(std::string(dateNames[k]) + " \"" + args[dateAt[k]] +
                         "\" is not a date YYYYMMDD[HH[MM[SS[.ss]]]]");
    r.in.elementDate = args[2];
    r.in.start = args[15];
    const char* names[] = {"M", "E", "A", "Q", "I", "NODE", "PERI", "EQX"};
    double* fields[] = {&r.in.M, &r.in.e,    &r.in.a,    &r.in.q,
                        &r.in.i, &r.in.Node, &r.in.peri, &r.in.equinox};
    for (std::size_t k = 0; k < 8; ++k) {
        const std::optional<double> value = astro::ParseNumber(args[3 + k]);
        if (!value)
            return Usage(std::string(names[k]) + " \"" + args[3 + k] + "\" is not a number");
        *fields[k] = *value;
    }
    const char* magnitudeNames[] = {"CH", "CK", "AH", "AG"};
    std::optional<double>* magnitudes[] = {&r.in.cometH, &r.in.cometK, &r.in.asteroidH,
                                           &r.in.asteroidG};
    for (std::size_t k = 0; k < 4; ++k) {
        if (args[11 + k].empty())
            continue;
        *magnitudes[k] = astro::ParseNumber(args[11 + k]);
        if (!*magnitudes[k])
            return Usage(std::string(magnitudeNames[k]) + " \"" + args[11 + k] +
                         "\" is not a number");
    }
    const std::optional<long> steps = Steps(args[16]);
    if (!steps)
        return Usage("STEPS \"" + args[16] + "\" is not a whole number from 1 to 100000");
    r.in.steps = *steps;
    const std::optional<double> step = Step(args[17]);
    if (!step)
        return Usage("STEP \"" + args[17] + "\" is not a number of days other than 0");
    r.in.step = *step;
    return r;
}

EphemRequest ParseEphemArgs(const std::vector<std::string>& args)
{
    if (args.empty())
        return Usage("ephem needs comet, asteroid or elements");
    if (args[0] == "elements")
        return ParseElements(args);
    if (args[0] != "comet" && args[0] != "asteroid")
        return Usage("\"" + args[0] + "\" is not comet, asteroid or elements");
    if (args.size() < 3)
        return Usage("ephem " + args[0] + " needs NAME and START");
    return ParseNamed(args);
}

// The named row's elements into r.in (keeping its start and steps), and its stored name.
// Returned: false when the table has no such name (the port has said so) or cannot be read.
bool LoadNamed(spread::AppState& TMM, EphemRequest& r)
{
    const auto file = TMM.dir.File(data::AstCometFileName);
    bool found = false;
    const bool read = services::Trap(TMM.ui, "TMM.EPHEM", [&] {
        astro::EphemInput elements;
        if (r.kind == data::MinorBodyKind::Comet) {
            if (const auto row = data::FindComet(file, r.name)) {
                elements = spread::EphemInputOf(*row);
                r.name = row->Name;
                found = true;
            }
        } else if (const auto row = data::FindAsteroid(file, r.name)) {
            elements = spread::EphemInputOf(*row);
            r.name = row->Name;
            found = true;
        }
        if (!found)
            return;
        elements.start = r.in.start;
        elements.steps = r.in.steps;
        elements.step = r.in.step;
        r.in = elements;
    });
    if (read && !found) {
        const bool comet = r.kind == data::MinorBodyKind::Comet;
        TMM.ui.ShowMessage("There is no " + std::string(comet ? "comet" : "asteroid") +
                               " named \"" + r.name + "\" in " + data::AstCometFileName + ".",
                           comet ? "Comet" : "Asteroid Data", "E");
    }
    return read && found;
}

} // namespace

std::string CheckEphemArgs(const std::vector<std::string>& args)
{
    return ParseEphemArgs(args).error;
}

int RunEphemCommand(spread::AppState& TMM, const std::vector<std::string>& args, std::ostream& out)
{
    EphemRequest r = ParseEphemArgs(args);
    if (!r.error.empty())
        return 2;
    if (r.named && !LoadNamed(TMM, r))
        return 1;
    const std::string name = r.named ? r.name : std::string();
    spread::PortFaults faults(TMM.ui);
    out << "Name\tDate\tRA\tDec\tDelta\tr\tMag\tElong\n";
    astro::EPHEM(r.in, TMM.dir.path, faults, faults, [&](const astro::EphemStep& s) {
        out << name << '\t' << spread::StepTimeText(s.jd) << '\t';
        for (const double x : {s.ra, s.dec, s.delta, s.r})
            out << FixedDecimals(x, 6) << '\t';
        out << (s.mag ? FixedDecimals(*s.mag, 2) : std::string()) << '\t'
            << FixedDecimals(s.elongation, 0) << '\n';
    });
    out.flush();
    return faults.count > 0 ? 1 : 0;
}

} // namespace app
