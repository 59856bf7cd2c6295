#include "tools/Sources.h"

#include "services/Fault.h"
#include "services/Vb.h"
#include "tools/SkyMath.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <sqlite3.h>
#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstring>
#include <fstream>
#include <sstream>

namespace tools {

namespace {

[[noreturn]] void Fail(const std::string& message, const std::string& location)
{
    throw services::Fault(message, location);
}

std::string Trimmed(std::string_view text)
{
    std::size_t b = 0;
    std::size_t e = text.size();
    while (b < e && std::isspace(static_cast<unsigned char>(text[b])))
        ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(text[e - 1])))
        --e;
    return std::string(text.substr(b, e - b));
}

// A number of a data file: "." decimal sign, no grouping; blank or unreadable gives nullopt.
std::optional<double> Number(std::string_view text)
{
    const std::string t = Trimmed(text);
    if (t.empty())
        return std::nullopt;
    double value = 0;
    const char* first = t.c_str();
    if (*first == '+')
        ++first;
    auto [ptr, ec] = std::from_chars(first, t.c_str() + t.size(), value);
    if (ec != std::errc() || ptr == first)
        return std::nullopt;
    return value;
}

std::vector<std::string> SplitCsvLine(const std::string& line)
{
    std::vector<std::string> fields;
    std::string field;
    bool quoted = false;
    for (std::size_t k = 0; k < line.size(); ++k) {
        const char c = line[k];
        if (quoted) {
            if (c == '"' && k + 1 < line.size() && line[k + 1] == '"') {
                field += '"';
                ++k;
            } else if (c == '"') {
                quoted = false;
            } else {
                field += c;
            }
        } else if (c == '"') {
            quoted = true;
        } else if (c == ',') {
            fields.push_back(field);
            field.clear();
        } else if (c != '\r') {
            field += c;
        }
    }
    fields.push_back(field);
    return fields;
}

// Big-endian reader over the decompressed deep-sky stream.
class StreamReader
{
public:
    StreamReader(const std::string& bytes, const std::string& path) : bytes_(bytes), path_(path) {}
    bool AtEnd() const { return pos_ >= bytes_.size(); }
    std::uint32_t U32()
    {
        Need(4);
        std::uint32_t v = 0;
        for (int k = 0; k < 4; ++k)
            v = (v << 8) | static_cast<unsigned char>(bytes_[pos_++]);
        return v;
    }
    double F64()
    {
        Need(8);
        std::uint64_t v = 0;
        for (int k = 0; k < 8; ++k)
            v = (v << 8) | static_cast<unsigned char>(bytes_[pos_++]);
        double d = 0;
        std::memcpy(&d, &v, sizeof d);
        return d;
    }
    // Length in bytes, then UTF-16BE; 0xFFFFFFFF is a null text.
    std::string Text()
    {
        const std::uint32_t length = U32();
        if (length == 0xFFFFFFFFu)
            return {};
        Need(length);
        std::u16string units;
        for (std::uint32_t k = 0; k + 1 < length; k += 2)
            units.push_back(
                static_cast<char16_t>((static_cast<unsigned char>(bytes_[pos_ + k]) << 8) |
                                      static_cast<unsigned char>(bytes_[pos_ + k + 1])));
        pos_ += length;
        return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size())).toStdString();
    }

private:
    void Need(std::size_t n) const
    {
        if (pos_ + n > bytes_.size())
            Fail(path_ + ": the deep-sky catalogue ends inside a record", "tools.ReadDeepSky");
    }
    const std::string& bytes_;
    const std::string& path_;
    std::size_t pos_ = 0;
};

std::vector<std::string> TabFields(const std::string& line)
{
    std::vector<std::string> f;
    std::size_t start = 0;
    while (true) {
        const auto tab = line.find('\t', start);
        f.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
        if (tab == std::string::npos)
            break;
        start = tab + 1;
    }
    return f;
}

QJsonDocument ParseJson(const std::string& json, const std::string& path)
{
    QJsonParseError error;
    QJsonDocument doc = QJsonDocument::fromJson(
        QByteArray::fromRawData(json.data(), static_cast<qsizetype>(json.size())), &error);
    if (doc.isNull())
        Fail(path + ": " + error.errorString().toStdString(), "tools.ParseJson");
    return doc;
}

// A JSON value that may be a number, a numeric text or null.
std::optional<double> JsonNumber(const QJsonValue& v)
{
    if (v.isDouble())
        return v.toDouble();
    if (v.isString())
        return Number(v.toString().toStdString());
    return std::nullopt;
}

} // namespace

std::size_t CsvTable::Column(const std::string& name) const
{
    auto it = std::find(header.begin(), header.end(), name);
    if (it == header.end())
        Fail(path + " has no column " + name, "tools.ReadCsv");
    return static_cast<std::size_t>(it - header.begin());
}

std::string ReadTextFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        Fail("Cannot open " + path, "tools.ReadTextFile");
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

CsvTable ReadCsv(const std::string& path)
{
    CsvTable table;
    table.path = path;
    for (const std::string& line : services::vb::SplitLines(ReadTextFile(path))) {
        if (line.empty() || line[0] == '#')
            continue;
        if (table.header.empty()) {
            table.header = SplitCsvLine(line);
            continue;
        }
        auto fields = SplitCsvLine(line);
        fields.resize(std::max(fields.size(), table.header.size()));
        table.rows.push_back(std::move(fields));
    }
    if (table.header.empty())
        Fail(path + " is empty", "tools.ReadCsv");
    return table;
}

std::string ReadGzipFile(const std::string& path)
{
    gzFile file = gzopen(path.c_str(), "rb");
    if (!file)
        Fail("Cannot open " + path, "tools.ReadGzipFile");
    std::string out;
    char buffer[1 << 16];
    int n = 0;
    while ((n = gzread(file, buffer, sizeof buffer)) > 0)
        out.append(buffer, static_cast<std::size_t>(n));
    const bool failed = n < 0;
    gzclose(file);
    if (failed)
        Fail(path + " is not a readable gzip file", "tools.ReadGzipFile");
    return out;
}

std::vector<NgcIcObject> ReadNgcIcList(const std::string& path)
{
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        Fail("Cannot open " + path, "tools.ReadNgcIcList");
    }
    sqlite3_stmt* st = nullptr;
    const char* sql = "SELECT name, catalog_identifier, type, ra, dec, magnitude, major_axis, "
                      "position_angle, long_name FROM cat ORDER BY rowid";
    if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) != SQLITE_OK) {
        std::string message = sqlite3_errmsg(db);
        sqlite3_close(db);
        Fail(path + ": " + message, "tools.ReadNgcIcList");
    }
    auto text = [&](int col) {
        const unsigned char* t = sqlite3_column_text(st, col);
        return t ? std::string(reinterpret_cast<const char*>(t)) : std::string();
    };
    auto optional = [&](int col) -> std::optional<double> {
        if (sqlite3_column_type(st, col) == SQLITE_NULL)
            return std::nullopt;
        return sqlite3_column_double(st, col);
    };
    std::vector<NgcIcObject> out;
    while (sqlite3_step(st) == SQLITE_ROW) {
        NgcIcObject o;
        o.name = text(0);
        o.identifier = text(1);
        o.type = sqlite3_column_int(st, 2);
        o.raDeg = sqlite3_column_double(st, 3);
        o.decDeg = sqlite3_column_double(st, 4);
        o.magnitude = optional(5);
        o.majorAxisArcmin = optional(6);
        o.positionAngleDeg = optional(7);
        o.longName = text(8);
        out.push_back(std::move(o));
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    if (out.empty())
        Fail(path + " holds no objects", "tools.ReadNgcIcList");
    return out;
}

std::string DesignationFromIdentifier(const std::string& identifier)
{
    std::size_t k = 0;
    while (k < identifier.size() && std::isalpha(static_cast<unsigned char>(identifier[k])))
        ++k;
    const std::string prefix = identifier.substr(0, k);
    std::size_t digits = k;
    while (digits < identifier.size() && identifier[digits] == ' ')
        ++digits;
    std::size_t end = digits;
    while (end < identifier.size() && std::isdigit(static_cast<unsigned char>(identifier[end])))
        ++end;
    if (end == digits)
        return identifier;
    int number = 0;
    std::from_chars(identifier.data() + digits, identifier.data() + end, number);
    return prefix + " " + std::to_string(number) + identifier.substr(end);
}

std::vector<DeepSkyRecord> ParseDeepSkyCatalog(const std::string& bytes, const std::string& path)
{
    StreamReader in(bytes, path);
    const std::string version = in.Text();
    const std::string edition = in.Text();
    if (version.empty() || version[0] != '3')
        Fail(path + ": unknown deep-sky catalogue version " + version, "tools.ReadDeepSky");
    (void)edition;
    std::vector<DeepSkyRecord> out;
    while (!in.AtEnd()) {
        DeepSkyRecord r;
        r.id = in.U32();
        r.raRad = in.F64();
        r.decRad = in.F64();
        r.bMag = in.F64();
        r.vMag = in.F64();
        r.type = in.U32();
        r.morphology = in.Text();
        r.majorAxisDeg = in.F64();
        r.minorAxisDeg = in.F64();
        r.positionAngle = in.U32();
        for (int k = 0; k < 6; ++k)
            in.F64(); // redshift, parallax and distance with their errors
        for (std::uint32_t* field : {&r.NGC, &r.IC, &r.M, &r.C, &r.B, &r.Sh2, &r.VdB, &r.RCW,
                                     &r.LDN, &r.LBN, &r.Cr, &r.Mel, &r.PGC, &r.UGC})
            *field = in.U32();
        r.Ced = in.Text();
        r.Arp = in.U32();
        r.VV = in.U32();
        for (std::string* field : {&r.PK, &r.PNG, &r.SNRG, &r.ACO, &r.HCG, &r.ESO, &r.VdBH})
            *field = in.Text();
        for (std::uint32_t* field : {&r.DWB, &r.Tr, &r.St, &r.Ru, &r.VdBHa})
            *field = in.U32();
        out.push_back(std::move(r));
    }
    return out;
}

std::map<std::string, std::string> ReadDeepSkyNames(const std::string& path)
{
    std::map<std::string, std::string> names;
    for (const std::string& line : services::vb::SplitLines(ReadTextFile(path))) {
        if (line.size() < 21 || line[0] == '#')
            continue;
        std::string prefix = Trimmed(line.substr(0, 5));
        const std::string number = Trimmed(line.substr(5, 15));
        const auto open = line.find("_(\"", 20);
        const auto close = line.find("\")", open == std::string::npos ? 20 : open);
        if (prefix.empty() || number.empty() || open == std::string::npos ||
            close == std::string::npos)
            continue;
        std::transform(prefix.begin(), prefix.end(), prefix.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        names.emplace(prefix + "|" + number, line.substr(open + 3, close - open - 3));
    }
    return names;
}

std::unordered_map<int, int> ReadHipToHd(const std::string& path)
{
    std::unordered_map<int, int> out;
    // The header comment names the tab-separated columns ("# HIP<tab><tab>SAO<tab>HD<tab>HR":
    // an empty column stands between HIP and SAO), so the HD column is found by its name.
    std::size_t hdColumn = 0;
    for (const std::string& line : services::vb::SplitLines(ReadTextFile(path))) {
        if (line.empty())
            continue;
        if (line[0] == '#') {
            const auto names = TabFields(line.substr(1));
            for (std::size_t k = 0; k < names.size(); ++k)
                if (Trimmed(names[k]) == "HD")
                    hdColumn = k;
            continue;
        }
        if (hdColumn == 0)
            Fail(path + ": no header line naming the HD column", "tools.ReadHipToHd");
        const auto f = TabFields(line);
        if (f.size() <= hdColumn)
            continue;
        const auto hip = Number(f[0]);
        const auto hd = Number(f[hdColumn]);
        if (hip && hd && *hd > 0)
            out.emplace(static_cast<int>(*hip), static_cast<int>(*hd));
    }
    return out;
}

void ReadBinaryStars(const std::string& path, std::unordered_map<int, CatalogStar>& stars)
{
    const std::string bytes = ReadTextFile(path);
    auto u8 = [&](std::size_t at) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes.at(at)));
    };
    auto u16 = [&](std::size_t at) { return u8(at) | (u8(at + 1) << 8); };
    auto u32 = [&](std::size_t at) { return u16(at) | (u16(at + 2) << 16); };
    auto i32 = [&](std::size_t at) { return static_cast<std::int32_t>(u32(at)); };
    auto i16 = [&](std::size_t at) { return static_cast<std::int16_t>(u16(at)); };
    // 124-byte text, "SK", version, field count, 16-byte field descriptors, trixel index.
    constexpr std::size_t headerText = 124;
    if (bytes.size() < headerText + 5 || bytes.compare(headerText, 2, "SK") != 0)
        Fail(path + " is not a binary star file", "tools.ReadBinaryStars");
    const std::uint32_t fieldCount = u16(headerText + 3);
    std::size_t at = headerText + 5 + 16 * fieldCount;
    const std::uint32_t trixels = u32(at);
    at += 4;
    constexpr std::size_t recordSize = 32;
    try {
        for (std::uint32_t t = 0; t < trixels; ++t) {
            const std::size_t entry = at + 12 * t;
            const std::uint32_t offset = u32(entry + 4);
            const std::uint32_t count = u32(entry + 8);
            for (std::uint32_t k = 0; k < count; ++k) {
                const std::size_t rec = offset + recordSize * k;
                const int hd = i32(rec + 20);
                if (hd <= 0)
                    continue;
                CatalogStar s;
                s.raDeg = i32(rec) / 1e6 * 15.0;
                s.decDeg = i32(rec + 4) / 1e5;
                s.magnitude = i16(rec + 24) / 100.0;
                stars.emplace(hd, s);
            }
        }
    } catch (const std::out_of_range&) {
        Fail(path + " ends inside its star records", "tools.ReadBinaryStars");
    }
}

std::vector<VariableStar> ReadVariableStars(const std::string& path)
{
    std::vector<VariableStar> out;
    for (const std::string& line : services::vb::SplitLines(ReadTextFile(path))) {
        if (line.empty() || line[0] == '#')
            continue;
        auto f = TabFields(line);
        f.resize(std::max<std::size_t>(f.size(), 12));
        VariableStar v;
        v.hip = static_cast<int>(Number(f[0]).value_or(0));
        if (v.hip <= 0)
            continue;
        v.name = Trimmed(f[1]);
        v.type = Trimmed(f[2]);
        v.maxMagnitude = Number(f[3]);
        const bool amplitude = Trimmed(f[4]) == "1";
        v.minMagnitude = Number(f[5]);
        if (amplitude && v.minMagnitude && v.maxMagnitude)
            v.minMagnitude = *v.maxMagnitude + *v.minMagnitude;
        v.epochOfMaximum = Number(f[8]);
        v.periodDays = Number(f[9]);
        v.durationPercent = Number(f[10]);
        v.spectrum = Trimmed(f[11]);
        out.push_back(std::move(v));
    }
    return out;
}

std::vector<DoubleStar> ReadDoubleStars(const std::string& path)
{
    std::vector<DoubleStar> out;
    for (const std::string& line : services::vb::SplitLines(ReadTextFile(path))) {
        if (line.empty() || line[0] == '#')
            continue;
        auto f = TabFields(line);
        f.resize(std::max<std::size_t>(f.size(), 5));
        DoubleStar d;
        d.hip = static_cast<int>(Number(f[0]).value_or(0));
        if (d.hip <= 0)
            continue;
        d.wds = Trimmed(f[1]);
        d.positionAngleDeg = Number(f[3]);
        d.separationArcsec = Number(f[4]);
        out.push_back(std::move(d));
    }
    return out;
}

std::optional<double> ParseDegreesText(const std::string& text)
{
    const std::string t = Trimmed(text);
    if (t.empty())
        return std::nullopt;
    const bool negative = t[0] == '-';
    std::vector<double> parts;
    std::string digits;
    for (char c : t) {
        if (std::isdigit(static_cast<unsigned char>(c)) || c == '.') {
            digits += c;
        } else if (!digits.empty()) {
            parts.push_back(Number(digits).value_or(0));
            digits.clear();
        }
    }
    if (!digits.empty())
        parts.push_back(Number(digits).value_or(0));
    if (parts.empty() || parts.size() > 3)
        return std::nullopt;
    parts.resize(3, 0.0);
    const double value = parts[0] + parts[1] / 60.0 + parts[2] / 3600.0;
    return negative ? -value : value;
}

std::vector<Place> ReadPlaces(const std::string& path)
{
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        Fail("Cannot open " + path, "tools.ReadPlaces");
    }
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db,
                           "SELECT Name, Province, Country, Latitude, Longitude, TZ FROM city "
                           "ORDER BY id",
                           -1, &st, nullptr) != SQLITE_OK) {
        std::string message = sqlite3_errmsg(db);
        sqlite3_close(db);
        Fail(path + ": " + message, "tools.ReadPlaces");
    }
    auto text = [&](int col) {
        const unsigned char* t = sqlite3_column_text(st, col);
        return t ? Trimmed(reinterpret_cast<const char*>(t)) : std::string();
    };
    std::vector<Place> out;
    while (sqlite3_step(st) == SQLITE_ROW) {
        Place p;
        const std::string province = text(1);
        p.place = text(0) + (province.empty() ? "" : ", " + province) + ", " + text(2);
        const auto lat = ParseDegreesText(text(3));
        const auto lonEast = ParseDegreesText(text(4));
        if (!lat || !lonEast)
            continue;
        p.latitudeDeg = *lat;
        p.longitudeDeg = -*lonEast;
        p.timeZoneHours = -sqlite3_column_double(st, 5);
        out.push_back(std::move(p));
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    return out;
}

std::vector<CometElements> ParseMpcComets(const std::string& json, const std::string& path)
{
    const QJsonDocument doc = ParseJson(json, path);
    if (!doc.isArray())
        Fail(path + ": expected a list of comets", "tools.ParseMpcComets");
    std::vector<CometElements> out;
    for (const QJsonValue& item : doc.array()) {
        const QJsonObject o = item.toObject();
        CometElements c;
        c.name = Trimmed(o.value("Designation_and_name").toString().toStdString());
        c.tyear = o.value("Year_of_perihelion").toInt();
        c.tmonth = o.value("Month_of_perihelion").toInt();
        c.tday = o.value("Day_of_perihelion").toDouble();
        c.q = o.value("Perihelion_dist").toDouble();
        c.e = o.value("e").toDouble();
        c.i = o.value("i").toDouble();
        c.argPeri = o.value("Peri").toDouble();
        c.ascNode = o.value("Node").toDouble();
        c.mag = JsonNumber(o.value("H"));
        c.k = JsonNumber(o.value("G"));
        if (c.name.empty() || c.tyear == 0)
            continue;
        out.push_back(std::move(c));
    }
    return out;
}

namespace {

// Rows of a small-body query answer as field name -> value.
std::vector<QJsonObject> QueryRows(const std::string& json, const std::string& path)
{
    const QJsonDocument doc = ParseJson(json, path);
    const QJsonArray fields = doc.object().value("fields").toArray();
    const QJsonArray data = doc.object().value("data").toArray();
    if (fields.isEmpty())
        Fail(path + ": expected \"fields\" and \"data\"", "tools.ParseQuery");
    std::vector<QJsonObject> rows;
    rows.reserve(static_cast<std::size_t>(data.size()));
    for (const QJsonValue& item : data) {
        const QJsonArray values = item.toArray();
        QJsonObject row;
        for (qsizetype k = 0; k < fields.size() && k < values.size(); ++k)
            row.insert(fields[k].toString(), values[k]);
        rows.push_back(row);
    }
    return rows;
}

} // namespace

std::vector<CometElements> ParseJplComets(const std::string& json, const std::string& path)
{
    std::vector<CometElements> out;
    for (const QJsonObject& row : QueryRows(json, path)) {
        CometElements c;
        c.name = Trimmed(row.value("full_name").toString().toStdString());
        const auto tp = JsonNumber(row.value("tp"));
        const auto q = JsonNumber(row.value("q"));
        const auto e = JsonNumber(row.value("e"));
        if (c.name.empty() || !tp || !q || !e)
            continue;
        const CalendarDate date = CalendarFromJd(*tp);
        c.tyear = date.year;
        c.tmonth = date.month;
        c.tday = date.day;
        c.q = *q;
        c.e = *e;
        c.i = JsonNumber(row.value("i")).value_or(0);
        c.argPeri = JsonNumber(row.value("w")).value_or(0);
        c.ascNode = JsonNumber(row.value("om")).value_or(0);
        c.mag = JsonNumber(row.value("M1"));
        out.push_back(std::move(c));
    }
    return out;
}

std::pair<int, std::string> SplitAsteroidName(const std::string& fullName)
{
    std::string t = Trimmed(fullName);
    int number = 0;
    std::size_t k = 0;
    while (k < t.size() && std::isdigit(static_cast<unsigned char>(t[k])))
        ++k;
    if (k > 0 && (k == t.size() || t[k] == ' ')) {
        std::from_chars(t.data(), t.data() + k, number);
        t = Trimmed(t.substr(k));
    }
    // "Ceres (A801 AA)" keeps the name; "(2022 AB)" alone is the designation.
    const auto open = t.find('(');
    if (open == 0) {
        const auto close = t.find(')');
        return {number,
                Trimmed(t.substr(1, close == std::string::npos ? std::string::npos : close - 1))};
    }
    if (open != std::string::npos)
        t = Trimmed(t.substr(0, open));
    return {number, t};
}

std::vector<AsteroidElements> ParseJplAsteroids(const std::string& json, const std::string& path)
{
    std::vector<AsteroidElements> out;
    for (const QJsonObject& row : QueryRows(json, path)) {
        AsteroidElements a;
        std::tie(a.number, a.name) =
            SplitAsteroidName(row.value("full_name").toString().toStdString());
        const auto epochMjd = JsonNumber(row.value("epoch_mjd"));
        const auto semiMajor = JsonNumber(row.value("a"));
        if (a.name.empty() || !epochMjd || !semiMajor)
            continue;
        const CalendarDate date = CalendarFromJd(*epochMjd + 2400000.5);
        a.eyear = date.year;
        a.emonth = date.month;
        a.eday = date.day;
        a.a = *semiMajor;
        a.e = JsonNumber(row.value("e")).value_or(0);
        a.i = JsonNumber(row.value("i")).value_or(0);
        a.m = JsonNumber(row.value("ma")).value_or(0);
        a.node = JsonNumber(row.value("om")).value_or(0);
        a.omega = JsonNumber(row.value("w")).value_or(0);
        a.h = JsonNumber(row.value("H"));
        a.g = JsonNumber(row.value("G"));
        out.push_back(std::move(a));
    }
    return out;
}

} // namespace tools
