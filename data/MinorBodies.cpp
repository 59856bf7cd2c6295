#include "data/MinorBodies.h"

#include "data/Database.h"
#include "services/Fault.h"
#include "services/Vb.h"

#include <QDate>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>

namespace data {

namespace {

const char* TableOf(MinorBodyKind kind)
{
    return kind == MinorBodyKind::Comet ? "Comet" : "Asteroids";
}

std::unique_ptr<Database> OpenForReading(const std::filesystem::path& astComet)
{
    OpenOptions options;
    options.readOnly = true;
    return Database::Open(astComet, options);
}

// The first row of a table whose Name matches; Name compares without regard to case (NOCASE).
Recordset FirstNamed(Database& db, MinorBodyKind kind, std::string_view name)
{
    return db.OpenRecordset(std::string("Select * From ") + TableOf(kind) + " Where Name = '" +
                                services::vb::QuoteForSql(name) + "' Order By rowid Limit 1",
                            Snapshot);
}

std::optional<double> Optional(const Field& field)
{
    if (field.IsNull())
        return std::nullopt;
    return field.Double();
}

// Why a line is refused; the reader adds the file's name and the line.
struct Refused
{
    std::string reason;
};

std::string_view Strip(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// Columns begin to end (0-based, end excluded) of a line, trimmed; columns past the line's end
// read as blanks, since trimmed lines end early.
std::string_view Columns(std::string_view line, std::size_t begin, std::size_t end)
{
    if (begin >= line.size())
        return {};
    return Strip(line.substr(begin, end - begin));
}

std::string Quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

// A plain decimal number in the C locale, the whole text; nothing for anything else.
std::optional<double> ReadNumber(std::string_view text)
{
    double value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size() ||
        !std::isfinite(value))
        return std::nullopt;
    return value;
}

double Required(std::string_view text, const char* what)
{
    const auto value = ReadNumber(text);
    if (!value)
        throw Refused{std::string("the ") + what + " " + Quoted(text) + " is not a number"};
    return *value;
}

// An empty field stays empty (NULL in the table).
std::optional<double> Optional(std::string_view text, const char* what)
{
    if (text.empty())
        return std::nullopt;
    return Required(text, what);
}

bool Whole(double x, double low, double high)
{
    return x >= low && x <= high && x == std::floor(x);
}

// A Gregorian calendar date; day may carry a fraction of the day.
bool IsCalendarDate(double year, double month, double day)
{
    return Whole(year, -9999, 9999) && Whole(month, 1, 12) && day >= 1 && day < 32 &&
           QDate::isValid(static_cast<int>(year), static_cast<int>(month),
                          static_cast<int>(std::floor(day)));
}

CometRow ReadComet(std::string_view line)
{
    CometRow row;
    const auto year = Columns(line, 14, 18);
    const auto month = Columns(line, 19, 21);
    const auto day = Columns(line, 22, 29);
    row.tyear = Required(year, "perihelion year");
    row.tmonth = Required(month, "perihelion month");
    row.tday = Required(day, "perihelion day");
    if (!IsCalendarDate(row.tyear, row.tmonth, row.tday))
        throw Refused{
            "the perihelion date " +
            Quoted(std::string(year) + " " + std::string(month) + " " + std::string(day)) +
            " is not a date"};
    const auto q = Columns(line, 30, 39);
    row.q = Required(q, "perihelion distance");
    if (row.q <= 0)
        throw Refused{"the perihelion distance " + Quoted(q) + " is not above 0"};
    const auto e = Columns(line, 41, 49);
    row.e = Required(e, "eccentricity");
    if (row.e < 0)
        throw Refused{"the eccentricity " + Quoted(e) + " is below 0"};
    row.ArgPeri = Required(Columns(line, 51, 59), "argument of perihelion");
    row.ascnode = Required(Columns(line, 61, 69), "longitude of the ascending node");
    row.i = Required(Columns(line, 71, 79), "inclination");
    row.Mag = Optional(Columns(line, 91, 95), "absolute magnitude");
    row.K = Optional(Columns(line, 96, 100), "magnitude slope");
    row.Name = Columns(line, 102, 158);
    if (row.Name.empty())
        throw Refused{"no name"};
    return row;
}

// One character of a packed date: 0-9, then A = 10 ... Z = 35; -1 for anything else.
int PackedValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'Z')
        return c - 'A' + 10;
    return -1;
}

// The packed epoch "K24AH": century letter (I = 18, J = 19, K = 20), two digits of the year,
// then month and day, each 1-9 or A = 10 ... V = 31.
void UnpackEpoch(std::string_view packed, AsteroidRow& row)
{
    const auto refuse = [&] {
        return Refused{"the packed epoch " + Quoted(packed) + " is not a date"};
    };
    if (packed.size() != 5)
        throw refuse();
    const int century = PackedValue(packed[0]);
    const int tens = PackedValue(packed[1]);
    const int units = PackedValue(packed[2]);
    const int month = PackedValue(packed[3]);
    const int day = PackedValue(packed[4]);
    if (century < 10 || tens < 0 || tens > 9 || units < 0 || units > 9 || month < 1 || day < 1 ||
        !IsCalendarDate(century * 100 + tens * 10 + units, month, day))
        throw refuse();
    row.eyear = century * 100 + tens * 10 + units;
    row.emonth = month;
    row.eday = day;
}

// The readable designation: "(4) Vesta" is number 4 named Vesta, anything else is the name of
// an unnumbered body ("2024 AB1").
void ReadDesignation(std::string_view designation, AsteroidRow& row)
{
    row.Anumb = 0;
    const auto close = designation.find(')');
    if (!designation.empty() && designation.front() == '(' && close != std::string_view::npos) {
        const auto number = Strip(designation.substr(1, close - 1));
        const auto value = ReadNumber(number);
        if (!value || !Whole(*value, 1, 1e15))
            throw Refused{"the asteroid number " + Quoted(number) + " is not a number"};
        row.Anumb = *value;
        designation = Strip(designation.substr(close + 1));
    }
    row.Name = designation;
    if (row.Name.empty())
        throw Refused{"no name"};
}

AsteroidRow ReadAsteroid(std::string_view line)
{
    AsteroidRow row;
    row.g = Optional(Columns(line, 8, 13), "absolute magnitude");
    row.h = Optional(Columns(line, 14, 19), "slope parameter");
    UnpackEpoch(Columns(line, 20, 25), row);
    row.M = Required(Columns(line, 26, 35), "mean anomaly");
    row.omega = Required(Columns(line, 37, 46), "argument of perihelion");
    row.Node = Required(Columns(line, 48, 57), "longitude of the ascending node");
    row.i = Required(Columns(line, 59, 68), "inclination");
    const auto e = Columns(line, 70, 79);
    row.e = Required(e, "eccentricity");
    if (row.e < 0)
        throw Refused{"the eccentricity " + Quoted(e) + " is below 0"};
    const auto a = Columns(line, 92, 103);
    row.a = Required(a, "semimajor axis");
    if (row.e >= 1)
        throw Refused{"the orbit is not an ellipse (e " + Quoted(e) + ")"};
    if (row.a <= 0)
        throw Refused{"the orbit is not an ellipse (a " + Quoted(a) + ")"};
    ReadDesignation(Columns(line, 166, 194), row);
    return row;
}

// The lines of a text without their line ends ("\n" or "\r\n").
std::vector<std::string_view> SplitLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto end = text.find('\n');
        auto line = text.substr(0, end);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        lines.push_back(line);
        if (end == std::string_view::npos)
            break;
        text.remove_prefix(end + 1);
    }
    return lines;
}

// Reads every non-blank line from lines[first] on into rows; the refusal of the first bad
// line ("CometEls.txt line 17: ..."), lines counted from 1, empties rows.
template <class Row, class ReadRow>
std::string ReadRows(const std::vector<std::string_view>& lines, std::size_t first,
                     std::string_view fileName, std::vector<Row>& rows, ReadRow readRow)
{
    rows.reserve(lines.size() - std::min(first, lines.size()));
    for (std::size_t n = first; n < lines.size(); ++n) {
        if (Strip(lines[n]).empty())
            continue;
        try {
            rows.push_back(readRow(lines[n]));
        } catch (const Refused& refused) {
            rows.clear();
            return std::string(fileName) + " line " + std::to_string(n + 1) + ": " + refused.reason;
        }
    }
    return {};
}

bool IsDashedLine(std::string_view line)
{
    line = Strip(line);
    return line.size() >= 5 && line.find_first_not_of('-') == std::string_view::npos;
}

std::optional<std::string> ReadFileBytes(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return std::nullopt;
    const auto size = std::filesystem::file_size(file, error);
    std::ifstream in(file, std::ios::binary);
    if (error || !in)
        return std::nullopt;
    // A full MPCORB.DAT is some 300 MB: read it in one piece.
    std::string bytes(size, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    if (in.bad() || static_cast<std::uintmax_t>(in.gcount()) != size)
        return std::nullopt;
    return bytes;
}

// Writes rows through prepared statements on one connection; every failure throws.
class RowWriter
{
public:
    explicit RowWriter(sqlite3* db) : db_(db) {}
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;
    ~RowWriter()
    {
        for (sqlite3_stmt* stmt : {update_, insert_})
            sqlite3_finalize(stmt);
    }

    void Exec(const char* sql) { Check(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr)); }

    // The statements of the table, columns with Name first: update sets every column of the
    // rows of the name (any case), insert adds a row.
    void Prepare(const std::string& table, const std::vector<const char*>& columns)
    {
        std::string set;
        std::string names;
        std::string marks;
        for (const char* column : columns) {
            set += std::string(set.empty() ? "" : ", ") + column + " = ?";
            names += std::string(names.empty() ? "" : ", ") + column;
            marks += marks.empty() ? "?" : ", ?";
        }
        Check(sqlite3_prepare_v2(db_,
                                 ("UPDATE " + table + " SET " + set + " WHERE Name = ?").c_str(),
                                 -1, &update_, nullptr));
        Check(sqlite3_prepare_v2(
            db_, ("INSERT INTO " + table + " (" + names + ") VALUES (" + marks + ")").c_str(), -1,
            &insert_, nullptr));
        count_ = static_cast<int>(columns.size());
    }

    // values: the columns after Name, in their order; true when the row replaced rows.
    bool Write(const std::string& name, const std::vector<std::optional<double>>& values)
    {
        Bind(update_, name, values);
        Check(sqlite3_bind_text(update_, count_ + 1, name.data(), static_cast<int>(name.size()),
                                SQLITE_STATIC));
        Step(update_);
        if (sqlite3_changes(db_) > 0)
            return true;
        Bind(insert_, name, values);
        Step(insert_);
        return false;
    }

private:
    void Check(int rc)
    {
        if (rc != SQLITE_OK)
            throw services::Fault(sqlite3_errmsg(db_), "");
    }
    void Step(sqlite3_stmt* stmt)
    {
        const int rc = sqlite3_step(stmt);
        sqlite3_reset(stmt);
        if (rc != SQLITE_DONE)
            throw services::Fault(sqlite3_errmsg(db_), "");
    }
    void Bind(sqlite3_stmt* stmt, const std::string& name,
              const std::vector<std::optional<double>>& values)
    {
        Check(
            sqlite3_bind_text(stmt, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC));
        for (std::size_t k = 0; k < values.size(); ++k)
            Check(values[k] ? sqlite3_bind_double(stmt, static_cast<int>(k) + 2, *values[k])
                            : sqlite3_bind_null(stmt, static_cast<int>(k) + 2));
    }

    sqlite3* db_;
    sqlite3_stmt* update_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
    int count_ = 0;
};

// Merges the rows in one transaction; a failure rolls it back and throws.
template <class Row>
void MergeRows(Database& db, const std::string& table, const std::vector<const char*>& columns,
               const std::vector<Row>& rows,
               std::vector<std::optional<double>> (*valuesOf)(const Row&), ImportResult& result)
{
    RowWriter writer(db.Handle());
    writer.Prepare(table, columns);
    writer.Exec("BEGIN IMMEDIATE");
    try {
        for (const Row& row : rows)
            ++(writer.Write(row.Name, valuesOf(row)) ? result.replaced : result.added);
        writer.Exec("COMMIT");
    } catch (...) {
        sqlite3_exec(db.Handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        result.added = result.replaced = 0;
        throw;
    }
}

std::vector<std::optional<double>> CometValues(const CometRow& r)
{
    return {r.tyear, r.tmonth, r.tday, r.q, r.e, r.i, r.ArgPeri, r.ascnode, r.Mag, r.K, r.EPOCH};
}

std::vector<std::optional<double>> AsteroidValues(const AsteroidRow& r)
{
    return {r.Anumb, r.eyear, r.emonth, r.eday, r.a, r.e, r.i, r.M, r.Node, r.omega, r.g, r.h};
}

} // namespace

CometFile ReadCometEls(std::string_view text, std::string_view fileName)
{
    CometFile file;
    file.refusal = ReadRows(SplitLines(text), 0, fileName, file.rows, ReadComet);
    return file;
}

AsteroidFile ReadMpcorb(std::string_view text, std::string_view fileName)
{
    const std::vector<std::string_view> lines = SplitLines(text);
    std::size_t first = 0;
    for (std::size_t n = 0; n < lines.size(); ++n) {
        if (IsDashedLine(lines[n])) {
            first = n + 1;
            break;
        }
    }
    AsteroidFile file;
    file.refusal = ReadRows(lines, first, fileName, file.rows, ReadAsteroid);
    return file;
}

ImportResult ImportElements(const std::filesystem::path& astComet, MinorBodyKind kind,
                            const std::filesystem::path& file)
{
    ImportResult result;
    const auto text = ReadFileBytes(file);
    if (!text) {
        result.refusal = "Cannot read " + file.string();
        return result;
    }
    const std::string fileName = file.filename().string();
    CometFile comets;
    AsteroidFile asteroids;
    if (kind == MinorBodyKind::Comet) {
        comets = ReadCometEls(*text, fileName);
        result.refusal = comets.refusal;
        result.lines = static_cast<long>(comets.rows.size());
    } else {
        asteroids = ReadMpcorb(*text, fileName);
        result.refusal = asteroids.refusal;
        result.lines = static_cast<long>(asteroids.rows.size());
    }
    if (!result.refusal.empty()) {
        result.lines = 0;
        return result;
    }
    try {
        auto db = Database::Open(astComet);
        if (kind == MinorBodyKind::Comet)
            MergeRows(*db, "Comet",
                      {"Name", "tyear", "tmonth", "tday", "q", "e", "i", "ArgPeri", "ascnode",
                       "Mag", "K", "EPOCH"},
                      comets.rows, CometValues, result);
        else
            MergeRows(*db, "Asteroids",
                      {"Name", "Anumb", "eyear", "emonth", "eday", "a", "e", "i", "M", "Node",
                       "omega", "g", "h"},
                      asteroids.rows, AsteroidValues, result);
    } catch (const services::Fault& fault) {
        result.refusal =
            "Cannot write " + astComet.string() + " for " + fileName + ": " + fault.what();
    }
    return result;
}

std::vector<std::string> MinorBodyNames(const std::filesystem::path& astComet, MinorBodyKind kind)
{
    auto db = OpenForReading(astComet);
    std::vector<std::string> names;
    auto rs = db->OpenRecordset(
        std::string("Select Name From ") + TableOf(kind) + " Order By rowid", Snapshot);
    for (auto name = rs.Fields("Name"); !rs.Eof(); rs.MoveNext())
        names.push_back(name.Value());
    return names;
}

std::optional<CometRow> FindComet(const std::filesystem::path& astComet, std::string_view name)
{
    auto db = OpenForReading(astComet);
    auto rs = FirstNamed(*db, MinorBodyKind::Comet, name);
    if (rs.Eof())
        return std::nullopt;
    CometRow row;
    row.Name = rs.Fields("Name").Value();
    row.tyear = rs.Fields("tyear").Double();
    row.tmonth = rs.Fields("tmonth").Double();
    row.tday = rs.Fields("tday").Double();
    row.q = rs.Fields("q").Double();
    row.e = rs.Fields("e").Double();
    row.i = rs.Fields("i").Double();
    row.ArgPeri = rs.Fields("ArgPeri").Double();
    row.ascnode = rs.Fields("ascnode").Double();
    row.Mag = Optional(rs.Fields("Mag"));
    row.K = Optional(rs.Fields("K"));
    if (!rs.Fields("EPOCH").IsNull())
        row.EPOCH = rs.Fields("EPOCH").Double();
    return row;
}

std::optional<AsteroidRow> FindAsteroid(const std::filesystem::path& astComet,
                                        std::string_view name)
{
    auto db = OpenForReading(astComet);
    auto rs = FirstNamed(*db, MinorBodyKind::Asteroid, name);
    if (rs.Eof())
        return std::nullopt;
    AsteroidRow row;
    row.Anumb = rs.Fields("Anumb").Double();
    row.Name = rs.Fields("Name").Value();
    row.eyear = rs.Fields("eyear").Double();
    row.emonth = rs.Fields("emonth").Double();
    row.eday = rs.Fields("eday").Double();
    row.a = rs.Fields("a").Double();
    row.e = rs.Fields("e").Double();
    row.i = rs.Fields("i").Double();
    row.M = rs.Fields("M").Double();
    row.Node = rs.Fields("Node").Double();
    row.omega = rs.Fields("omega").Double();
    row.g = Optional(rs.Fields("g"));
    row.h = Optional(rs.Fields("h"));
    return row;
}

} // namespace data
