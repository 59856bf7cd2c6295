#include "tools/ChartData.h"

#include "services/Fault.h"
#include "tools/Sources.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <unordered_map>
#include <vector>

namespace tools {

namespace {

constexpr const char* kLocation = "tools.BuildChartData";
constexpr double kFaintestStar = 9.0;

[[noreturn]] void Fail(const std::string& message)
{
    throw services::Fault(message, kLocation);
}

std::vector<std::string> ReadLines(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        Fail("Cannot read " + path);
    std::vector<std::string> lines;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

std::string Trim(const std::string& text)
{
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    const auto last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

double Number(const std::string& text)
{
    try {
        return std::stod(text);
    } catch (const std::exception&) {
        return std::nan("");
    }
}

// "hhmmss.ss" or "hhmmss" -> hours; "sddmmss.s" or "sddmmss" -> degrees.
double Sexagesimal(const std::string& text, bool hasSign)
{
    const std::string body = hasSign ? text.substr(1) : text;
    if (body.size() < 6)
        return std::nan("");
    const double value = Number(body.substr(0, 2)) + Number(body.substr(2, 2)) / 60.0 +
                         Number(body.substr(4)) / 3600.0;
    return hasSign && text[0] == '-' ? -value : value;
}

struct SourceStar
{
    std::uint32_t id = 0;
    double raHours = 0;
    double decDeg = 0;
    double mag = 0;
    std::string name;
};

std::vector<SourceStar> ReadStarList(const std::string& path)
{
    const auto lines = ReadLines(path);
    std::vector<SourceStar> stars;
    for (std::size_t n = 0; n < lines.size(); ++n) {
        const std::string& line = lines[n];
        if (line.empty() || line[0] == '#' || line.size() < 51)
            continue;
        SourceStar s;
        s.id = static_cast<std::uint32_t>(n + 1);
        s.raHours = Sexagesimal(line.substr(0, 9), false);
        s.decDeg = Sexagesimal(line.substr(10, 9), true);
        s.mag = Number(line.substr(45, 6));
        if (!std::isfinite(s.raHours) || !std::isfinite(s.decDeg) || !std::isfinite(s.mag) ||
            s.mag > kFaintestStar)
            continue;
        // ", designation, proper name": the proper name when there is one, else the designation.
        const auto comma = line.find(',', 51);
        if (comma != std::string::npos) {
            const std::string rest = line.substr(comma + 1);
            const auto second = rest.find(',');
            const std::string designation = Trim(rest.substr(0, second));
            const std::string proper =
                second == std::string::npos ? std::string() : Trim(rest.substr(second + 1));
            s.name = proper.empty() ? designation : proper;
        }
        stars.push_back(std::move(s));
    }
    std::stable_sort(stars.begin(), stars.end(),
                     [](const SourceStar& a, const SourceStar& b) { return a.mag < b.mag; });
    return stars;
}

template <typename T> void Put(std::string& out, T value)
{
    char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    out.append(bytes, sizeof(T));
}

void WriteFile(const std::string& path, const std::string& content)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
    if (!out)
        Fail("Cannot write " + path);
}

void WriteStars(const std::vector<SourceStar>& stars, const std::string& path)
{
    std::string out = "SLVSTARS";
    Put<std::uint32_t>(out, 1);
    Put<std::uint32_t>(out, static_cast<std::uint32_t>(stars.size()));
    std::string names;
    for (const auto& s : stars) {
        Put<std::uint32_t>(out, s.id);
        Put<float>(out, static_cast<float>(s.raHours));
        Put<float>(out, static_cast<float>(s.decDeg));
        Put<std::int16_t>(out, static_cast<std::int16_t>(std::lround(s.mag * 100)));
        Put<std::uint16_t>(out, static_cast<std::uint16_t>(s.name.size()));
        names += s.name;
    }
    WriteFile(path, out + names);
}

// The lines of one sky culture's section ("C Western") of a multi-culture file.
std::vector<std::string> WesternSection(const std::vector<std::string>& lines)
{
    std::vector<std::string> section;
    bool inside = false;
    for (const auto& line : lines) {
        if (line.rfind("C ", 0) == 0) {
            if (inside)
                break;
            inside = Trim(line) == "C Western";
            continue;
        }
        if (inside)
            section.push_back(line);
    }
    return section;
}

std::string Point(char op, double raHours, double decDeg)
{
    std::ostringstream out;
    out.precision(7);
    out << op << ' ' << raHours << ' ' << decDeg << '\n';
    return out.str();
}

double Separation(double ra1Hours, double dec1Deg, double ra2Hours, double dec2Deg)
{
    constexpr double d = 3.14159265358979323846 / 180.0;
    const double c =
        std::sin(dec1Deg * d) * std::sin(dec2Deg * d) +
        std::cos(dec1Deg * d) * std::cos(dec2Deg * d) * std::cos((ra1Hours - ra2Hours) * 15 * d);
    return std::acos(std::clamp(c, -1.0, 1.0)) / d;
}

} // namespace

ChartDataCounts BuildChartData(const std::string& kstarsDir, const std::string& outDir)
{
    ChartDataCounts counts;
    const std::string in = kstarsDir + "/";
    const std::string out = outDir + "/";

    const auto stars = ReadStarList(in + "stars.dat");
    WriteStars(stars, out + "stars.dat");
    counts.stars = static_cast<int>(stars.size());

    // Figures name their stars by HD number; the binary star files know the HD numbers.
    std::unordered_map<int, CatalogStar> byHd;
    ReadBinaryStars(in + "namedstars.dat", byHd);
    ReadBinaryStars(in + "unnamedstars.dat", byHd);
    // Two figure stars are missing from the binary files: their positions (J2000, to a few
    // arc seconds), snapped to the nearest star of the list.
    const std::pair<int, std::pair<double, double>> missing[] = {
        {20794, {3.0 + 19.0 / 60 + 55.65 / 3600, -(43.0 + 4.0 / 60 + 11.2 / 3600)}},
        {98230, {11.0 + 18.0 / 60 + 10.90 / 3600, 31.0 + 31.0 / 60 + 44.9 / 3600}},
    };
    for (const auto& [hd, where] : missing) {
        if (byHd.count(hd))
            continue;
        const SourceStar* best = nullptr;
        double bestSep = 0.1;
        for (const auto& s : stars) {
            if (s.mag > 6.5)
                break;
            const double sep = Separation(s.raHours, s.decDeg, where.first, where.second);
            if (sep < bestSep) {
                bestSep = sep;
                best = &s;
            }
        }
        if (best)
            byHd[hd] = CatalogStar{best->raHours * 15, best->decDeg, best->mag};
    }

    std::string lines = "# Constellation figures: M starts a figure line, D continues it.\n";
    bool broken = true;
    for (const auto& line : WesternSection(ReadLines(in + "clines.dat"))) {
        std::istringstream fields(line);
        char op = 0;
        int hd = 0;
        if (!(fields >> op >> hd) || (op != 'M' && op != 'D'))
            continue;
        const auto found = byHd.find(hd);
        if (found == byHd.end()) {
            ++counts.unresolvedLinePoints;
            broken = true;
            continue;
        }
        lines += Point(op == 'D' && !broken ? 'D' : 'M', found->second.raDeg / 15.0,
                       found->second.decDeg);
        broken = false;
        ++counts.linePoints;
    }
    WriteFile(out + "clines.dat", lines);

    std::string names;
    for (const auto& line : WesternSection(ReadLines(in + "cnames.dat"))) {
        if (line.size() < 17 || line[0] == '#')
            continue;
        const double ra = Sexagesimal(line.substr(0, 6), false);
        const double dec = Sexagesimal(line.substr(6, 7), true);
        std::string name = Trim(line.substr(16));
        bool start = true;
        for (char& c : name) {
            const auto u = static_cast<unsigned char>(c);
            c = static_cast<char>(start ? std::toupper(u) : std::tolower(u));
            start = c == ' ';
        }
        std::ostringstream row;
        row.precision(7);
        row << ra << ' ' << dec << ' ' << line.substr(13, 3) << ' ' << name << '\n';
        names += row.str();
        ++counts.names;
    }
    WriteFile(out + "cnames.dat", names);

    // Boundaries: one closed outline per constellation; right ascensions below 0 wrap.
    std::string bounds = "# Constellation boundaries, one closed outline per constellation.\n";
    std::vector<std::pair<double, double>> outline;
    auto flush = [&] {
        for (std::size_t k = 0; k < outline.size(); ++k)
            bounds += Point(k == 0 ? 'M' : 'D', outline[k].first, outline[k].second);
        if (outline.size() > 2)
            bounds += Point('D', outline[0].first, outline[0].second);
        counts.boundaryPoints += static_cast<int>(outline.size());
        outline.clear();
    };
    for (const auto& line : ReadLines(in + "cbounds.dat")) {
        if (line.empty() || line[0] == '#')
            continue;
        if (line[0] == ':') {
            flush();
            bounds += "# " + line.substr(1) + '\n';
            continue;
        }
        std::istringstream fields(line);
        double ra = 0;
        double dec = 0;
        if (fields >> ra >> dec)
            outline.emplace_back(std::fmod(ra + 48.0, 24.0), dec);
    }
    flush();
    WriteFile(out + "cbounds.dat", bounds);

    std::string milkyWay = "# Milky Way outline.\n";
    for (const auto& line : ReadLines(in + "milkyway.dat")) {
        std::istringstream fields(line);
        char op = 0;
        double ra = 0;
        double dec = 0;
        if (!(fields >> op >> ra >> dec) || (op != 'M' && op != 'D' && op != 'S'))
            continue;
        milkyWay += Point(op == 'D' ? 'D' : 'M', ra, dec);
        ++counts.milkyWayPoints;
    }
    WriteFile(out + "milkyway.dat", milkyWay);
    return counts;
}

} // namespace tools
