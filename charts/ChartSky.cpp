#include "charts/ChartSky.h"

#include "charts/Projection.h"
#include "services/Fault.h"

#include <charconv>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

namespace charts {

namespace {

constexpr const char* kLocation = "charts.LoadChartSky";

[[noreturn]] void Damaged(const std::string& path)
{
    throw services::Fault("Chart data file missing or damaged: " + path, kLocation);
}

std::string ReadAll(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        Damaged(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

template <typename T> T Get(const std::string& bytes, std::size_t at)
{
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof(T));
    return value;
}

std::vector<ChartStar> ReadStars(const std::string& path)
{
    const std::string bytes = ReadAll(path);
    constexpr std::size_t header = 16;
    constexpr std::size_t record = 16;
    if (bytes.size() < header || bytes.compare(0, 8, "SLVSTARS") != 0 ||
        Get<std::uint32_t>(bytes, 8) != 1)
        Damaged(path);
    const std::size_t count = Get<std::uint32_t>(bytes, 12);
    if (bytes.size() < header + count * record)
        Damaged(path);
    std::vector<ChartStar> stars(count);
    std::size_t name = header + count * record;
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t at = header + k * record;
        ChartStar& s = stars[k];
        s.id = Get<std::uint32_t>(bytes, at);
        s.raHours = Get<float>(bytes, at + 4);
        s.decDeg = Get<float>(bytes, at + 8);
        s.mag = Get<std::int16_t>(bytes, at + 12) / 100.0f;
        const std::size_t length = Get<std::uint16_t>(bytes, at + 14);
        if (name + length > bytes.size())
            Damaged(path);
        s.name.assign(bytes, name, length);
        name += length;
        double v[3];
        UnitVector(s.raHours, s.decDeg, v);
        for (int i = 0; i < 3; ++i)
            s.v[i] = static_cast<float>(v[i]);
    }
    return stars;
}

bool ParseDouble(const char*& at, const char* end, double& value)
{
    while (at < end && *at == ' ')
        ++at;
    const auto result = std::from_chars(at, end, value);
    if (result.ec != std::errc())
        return false;
    at = result.ptr;
    return true;
}

std::vector<PolylinePoint> ReadPolylines(const std::string& path)
{
    const std::string text = ReadAll(path);
    std::vector<PolylinePoint> points;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        PolylinePoint p;
        const char* at = line.data() + 1;
        const char* end = line.data() + line.size();
        if ((line[0] != 'M' && line[0] != 'D') || !ParseDouble(at, end, p.raHours) ||
            !ParseDouble(at, end, p.decDeg))
            Damaged(path);
        p.draw = line[0] == 'D' && !points.empty();
        points.push_back(p);
    }
    return points;
}

std::vector<ConstellationLabel> ReadLabels(const std::string& path)
{
    std::istringstream lines(ReadAll(path));
    std::vector<ConstellationLabel> labels;
    std::string line;
    while (std::getline(lines, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        ConstellationLabel label;
        if (!(fields >> label.raHours >> label.decDeg >> label.abbreviation))
            Damaged(path);
        std::getline(fields >> std::ws, label.name);
        labels.push_back(std::move(label));
    }
    return labels;
}

} // namespace

ChartSky LoadChartSky(const std::string& folder)
{
    const std::string base = folder + "/";
    ChartSky sky;
    sky.stars = ReadStars(base + kChartStarsFileName);
    sky.figures = ReadPolylines(base + kChartLinesFileName);
    sky.boundaries = ReadPolylines(base + kChartBoundsFileName);
    sky.milkyWay = ReadPolylines(base + kChartMilkyWayFileName);
    sky.labels = ReadLabels(base + kChartNamesFileName);
    return sky;
}

} // namespace charts
