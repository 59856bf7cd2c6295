#include "astro/Constellation.h"

#include "astro/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>

namespace astro {

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool IsFieldSeparator(char c)
{
    return c == ',' || c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The whole file as bytes; false when it cannot be opened. Read through stdio: the lookup reads
// both files at every call, so this is on the batch command's hot path.
bool ReadWholeFile(const std::filesystem::path& file, std::string& text)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::fopen(file.c_str(), "rb"),
                                                            &std::fclose);
    if (!f)
        return false;
    text.clear();
    char buffer[16384];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, f.get())) > 0)
        text.append(buffer, n);
    return true;
}

// The names: the first 88 lines. The fault's description, or empty.
std::string_view ReadNames(const std::string& text, ConstellationTable& table)
{
    std::size_t pos = 0;
    for (int i = 1; i <= kConstellationCount; ++i) {
        if (pos >= text.size())
            return kInputPastEndOfFile;
        std::size_t end = pos;
        while (end < text.size() && text[end] != '\n' && text[end] != '\r')
            ++end;
        table.names[static_cast<std::size_t>(i)].assign(text, pos, end - pos);
        pos = end;
        if (pos < text.size())
            pos += (text[pos] == '\r' && pos + 1 < text.size() && text[pos + 1] == '\n') ? 2 : 1;
    }
    return {};
}

// The boundary records: 357 times four numbers. The fault's description, or empty.
std::string_view ReadBounds(const std::string& text, ConstellationTable& table)
{
    std::size_t pos = 0;
    for (int row = 1; row <= kBoundaryRowCount; ++row) {
        for (auto* column : {&table.raLow, &table.raHigh, &table.decLow, &table.number}) {
            while (pos < text.size() && IsFieldSeparator(text[pos]))
                ++pos;
            if (pos >= text.size())
                return kInputPastEndOfFile;
            const std::size_t start = pos;
            while (pos < text.size() && !IsFieldSeparator(text[pos]))
                ++pos;
            const std::optional<double> value =
                ParseNumber(std::string_view(text).substr(start, pos - start));
            if (!value)
                return kTypeMismatch;
            (*column)[static_cast<std::size_t>(row)] = *value;
        }
    }
    return {};
}

// A group of digits with at most one decimal point; "." alone is 0. Nothing when too large.
std::optional<double> GroupValue(std::string_view group)
{
    if (group.find_first_of("0123456789") == std::string_view::npos)
        return 0.0;
    std::string digits(group);
    if (digits.front() == '.')
        digits.insert(digits.begin(), '0');
    if (digits.back() == '.')
        digits.pop_back();
    double value = 0;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (ec == std::errc() && std::isfinite(value))
        return value;
    // Out of range below: a fraction too small for a double reads as 0.
    if (digits.find_first_not_of('0') == digits.find('.'))
        return 0.0;
    return std::nullopt;
}

std::string_view TrimSpaces(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

} // namespace

bool ReadConstellationTable(const std::filesystem::path& folder, ConstellationTable& table,
                            FaultSink& faults)
{
    std::string text;
    std::string_view fault;
    if (!ReadWholeFile(folder / kConstellationNamesFileName, text))
        fault = kFileNotFound;
    else
        fault = ReadNames(text, table);
    if (fault.empty()) {
        if (!ReadWholeFile(folder / kConstellationBoundsFileName, text))
            fault = kFileNotFound;
        else
            fault = ReadBounds(text, table);
    }
    if (fault.empty())
        return true;
    faults.ReportFault(fault, kGetConLocation);
    return false;
}

int FindBoundaryRow(const ConstellationTable& table, double raHours, double decDeg)
{
    for (std::size_t row = 1; row <= kBoundaryRowCount; ++row) {
        if (!(decDeg >= table.decLow[row]))
            continue;
        if (!(raHours >= table.raLow[row] && raHours < table.raHigh[row]))
            continue;
        return static_cast<int>(row);
    }
    return 0;
}

std::string ConstellationAbbreviation(std::string_view name)
{
    std::string abbreviation;
    for (char c : name) {
        if (c == ' ' || (c >= 'a' && c <= 'z'))
            continue;
        if (!abbreviation.empty() && c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
        abbreviation.push_back(c);
    }
    return abbreviation;
}

std::string Parse(std::string_view text)
{
    std::string form;
    bool point = false;
    bool separator = false;
    int groups = 0;
    for (char c : text) {
        const bool keep = IsDigit(c) || (c == '.' && !point);
        if (!keep) {
            separator = true;
            continue;
        }
        if (c == '.')
            point = true;
        // A run of other characters between kept ones is one blank; leading runs are dropped.
        if (separator || form.empty()) {
            if (++groups > 3)
                break;
            if (!form.empty())
                form.push_back(' ');
            separator = false;
        }
        form.push_back(c);
    }
    if (text.find('-') != std::string_view::npos)
        form = " " + form + "-";
    return form;
}

std::optional<double> Whole(std::string_view normalForm, FaultSink& faults)
{
    const bool negative = normalForm.find('-') != std::string_view::npos;
    double field[3] = {0, 0, 0};
    int count = 0;
    std::size_t pos = 0;
    while (count < 3) {
        while (pos < normalForm.size() && (normalForm[pos] == ' ' || normalForm[pos] == '-'))
            ++pos;
        if (pos >= normalForm.size())
            break;
        const std::size_t start = pos;
        while (pos < normalForm.size() && normalForm[pos] != ' ' && normalForm[pos] != '-')
            ++pos;
        const std::optional<double> value = GroupValue(normalForm.substr(start, pos - start));
        if (!value) {
            faults.ReportFault(kOverflow, kWholeLocation);
            return std::nullopt;
        }
        field[count++] = *value;
    }
    const double value = field[0] + field[1] / 60 + field[2] / 3600;
    if (!std::isfinite(value)) {
        faults.ReportFault(kOverflow, kWholeLocation);
        return std::nullopt;
    }
    return negative ? -value : value;
}

std::optional<PrecessedPosition> Precess(double alpha, double delta, double E0, double E1,
                                         FaultSink& faults)
{
    constexpr double F = kConstellationRadiansPerDegree;
    const double T = (E1 - E0) / 100;
    const double zeta = (2305.65 * T + 0.302 * T * T + 0.018 * T * T * T) / 3600 * F;
    const double z = (2305.65 * T + 0.302 * T * T + 0.018 * T * T * T + 0.791 * T * T) / 3600;
    const double theta = (2003.829 - 0.4260001 * T - 0.04200001 * T * T) * T / 3600 * F;
    const double a0 = alpha * 15 * F;
    const double d0 = delta * F;
    if (!std::isfinite(zeta) || !std::isfinite(z) || !std::isfinite(theta) || !std::isfinite(a0) ||
        !std::isfinite(d0)) {
        faults.ReportFault(kOverflow, kPrecessLocation);
        return std::nullopt;
    }
    const double A = std::cos(d0) * std::sin(a0 + zeta);
    const double B =
        std::cos(theta) * std::cos(d0) * std::cos(a0 + zeta) - std::sin(theta) * std::sin(d0);
    const double C =
        std::sin(theta) * std::cos(d0) * std::cos(a0 + zeta) + std::cos(theta) * std::sin(d0);
    if (B == 0) {
        // The run-time's division: 0 / 0 overflows, anything else by 0 divides by zero.
        faults.ReportFault(A == 0 ? kOverflow : kDivisionByZero, kPrecessLocation);
        return std::nullopt;
    }
    PrecessedPosition out;
    out.alpha = (std::atan(A / B) / F + z) / 15;
    if (B < 0)
        out.alpha += 12;
    else if (A < 0)
        out.alpha += 24;
    if (out.alpha < 0)
        out.alpha += 24;
    if (out.alpha >= 24)
        out.alpha -= 24;
    // Deliberate: A, B and C are a rotated unit vector, so C past 1 (by 1e-12 at most) is
    // floating-point rounding at a pole, not a fault.
    out.delta = std::asin(std::clamp(C, -1.0, 1.0)) / F;
    return out;
}

ConstellationName GetCon(std::string_view raText, std::string_view decText,
                         std::string_view epochText, const std::filesystem::path& folder,
                         FaultSink& faults)
{
    const auto table = std::make_unique<ConstellationTable>();
    if (!ReadConstellationTable(folder, *table, faults))
        return {};
    const std::optional<double> ra = Whole(Parse(raText), faults);
    if (!ra)
        return {};
    const std::optional<double> dec = Whole(Parse(decText), faults);
    if (!dec)
        return {};
    const double epoch = LeadingNumber(Parse(epochText));
    const std::optional<PrecessedPosition> p = Precess(*ra, *dec, epoch, kBoundaryEquinox, faults);
    if (!p)
        return {};
    const int row = FindBoundaryRow(*table, p->alpha, p->delta);
    if (row == 0)
        return {};
    const double number = std::nearbyint(table->number[static_cast<std::size_t>(row)]);
    if (!(number >= 1 && number <= kConstellationCount)) {
        faults.ReportFault(kSubscriptOutOfRange, kGetConLocation);
        return {};
    }
    ConstellationName out;
    out.name = TrimSpaces(table->names[static_cast<std::size_t>(number)]);
    out.abbreviation = ConstellationAbbreviation(out.name);
    return out;
}

} // namespace astro
