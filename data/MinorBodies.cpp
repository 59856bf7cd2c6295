#include "data/MinorBodies.h"

#include "data/Database.h"
#include "services/Vb.h"

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

} // namespace

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
