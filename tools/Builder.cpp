#include "tools/Builder.h"

#include "data/Schema.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "tools/ObjectWriter.h"
#include "tools/SkyMath.h"
#include "tools/Sources.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <numbers>
#include <ostream>
#include <set>
#include <unordered_map>

namespace tools {

namespace {

constexpr const char* Location = "tools.BuildDatabases";

[[noreturn]] void Fail(const std::string& message)
{
    throw services::Fault(message, Location);
}

std::optional<double> Rounded(std::optional<double> value, double step)
{
    if (!value)
        return value;
    return std::round(*value / step) * step;
}

// Code of ValidObjectTypes for each source type number, from object_types.csv.
struct TypeTable
{
    std::vector<std::pair<std::string, std::string>> codes; // code, description, in file order
    std::map<int, std::string> fromNgcIcList;
    std::map<int, std::string> fromDeepSky;
};

TypeTable ReadTypeTable(const std::string& path)
{
    const CsvTable csv = ReadCsv(path);
    const auto code = csv.Column("code");
    const auto description = csv.Column("description");
    const auto ngcIc = csv.Column("openngc_kscat_type");
    const auto deepSky = csv.Column("stellarium_type");
    TypeTable t;
    auto addAll = [](std::map<int, std::string>& to, const std::string& list,
                     const std::string& value) {
        std::size_t start = 0;
        while (start <= list.size()) {
            const auto bar = list.find('|', start);
            const std::string item =
                list.substr(start, bar == std::string::npos ? std::string::npos : bar - start);
            if (!item.empty())
                to.emplace(std::stoi(item), value);
            if (bar == std::string::npos)
                break;
            start = bar + 1;
        }
    };
    for (const auto& row : csv.rows) {
        t.codes.emplace_back(row[code], row[description]);
        addAll(t.fromNgcIcList, row[ngcIc], row[code]);
        addAll(t.fromDeepSky, row[deepSky], row[code]);
    }
    return t;
}

std::string TypeOf(const std::map<int, std::string>& map, int type)
{
    auto it = map.find(type);
    return it == map.end() ? "?" : it->second;
}

// Order of the NGC/IC rows: NGC before IC before others, then number, then component letter.
struct SortKey
{
    int prefix = 0;
    long number = 0;
    std::string rest;
    auto operator<=>(const SortKey&) const = default;
};

SortKey KeyOf(const std::string& designation)
{
    SortKey key;
    const auto space = designation.find(' ');
    const std::string prefix = designation.substr(0, space);
    key.prefix = prefix == "NGC" ? 0 : prefix == "IC" ? 1 : 2;
    std::size_t k = space == std::string::npos ? designation.size() : space + 1;
    std::size_t end = k;
    while (end < designation.size() && std::isdigit(static_cast<unsigned char>(designation[end])))
        ++end;
    key.number = end > k ? std::stol(designation.substr(k, end - k)) : 0;
    key.rest = designation.substr(end);
    return key;
}

struct CatalogCount
{
    std::string name;
    std::string description;
    long long count = 0;
};

// One further catalogue of the deep-sky file: its code, description, the prefix of its names in
// the name list, and its designation of a record ("" when the record is not in it).
struct DeepSkyCatalog
{
    const char* name;
    const char* description;
    const char* namesPrefix;
    std::function<std::string(const DeepSkyRecord&)> designation;
    std::function<std::uint32_t(const DeepSkyRecord&)> number;
};

std::string Numbered(const char* prefix, std::uint32_t n)
{
    return n == 0 ? std::string() : std::string(prefix) + std::to_string(n);
}

std::string Texted(const char* prefix, const std::string& s)
{
    return s.empty() ? std::string() : std::string(prefix) + s;
}

std::vector<DeepSkyCatalog> DeepSkyCatalogs()
{
    using R = const DeepSkyRecord&;
    auto none = [](R) { return std::uint32_t{0}; };
    return {
        {"CALDWELL", "Caldwell", "C", [](R r) { return Numbered("C ", r.C); },
         [](R r) { return r.C; }},
        {"BARNARD", "Barnard dark nebulae", "B", [](R r) { return Numbered("B ", r.B); },
         [](R r) { return r.B; }},
        {"SH2", "Sharpless HII regions", "SH2", [](R r) { return Numbered("Sh2-", r.Sh2); },
         [](R r) { return r.Sh2; }},
        {"VDB", "van den Bergh reflection nebulae", "VDB",
         [](R r) { return Numbered("vdB ", r.VdB); }, [](R r) { return r.VdB; }},
        {"RCW", "RCW H-alpha emission regions", "RCW", [](R r) { return Numbered("RCW ", r.RCW); },
         [](R r) { return r.RCW; }},
        {"LDN", "Lynds dark nebulae", "LDN", [](R r) { return Numbered("LDN ", r.LDN); },
         [](R r) { return r.LDN; }},
        {"LBN", "Lynds bright nebulae", "LBN", [](R r) { return Numbered("LBN ", r.LBN); },
         [](R r) { return r.LBN; }},
        {"CR", "Collinder open clusters", "CR", [](R r) { return Numbered("Cr ", r.Cr); },
         [](R r) { return r.Cr; }},
        {"MEL", "Melotte clusters", "MEL", [](R r) { return Numbered("Mel ", r.Mel); },
         [](R r) { return r.Mel; }},
        {"PGC", "Principal Galaxies Catalogue", "PGC", [](R r) { return Numbered("PGC ", r.PGC); },
         [](R r) { return r.PGC; }},
        {"UGC", "Uppsala General Catalogue of galaxies", "UGC",
         [](R r) { return Numbered("UGC ", r.UGC); }, [](R r) { return r.UGC; }},
        {"CED", "Cederblad bright diffuse nebulae", "CED",
         [](R r) { return Texted("Ced ", r.Ced); }, none},
        {"ARP", "Arp peculiar galaxies", "ARP", [](R r) { return Numbered("Arp ", r.Arp); },
         [](R r) { return r.Arp; }},
        {"VV", "Vorontsov-Velyaminov interacting galaxies", "VV",
         [](R r) { return Numbered("VV ", r.VV); }, [](R r) { return r.VV; }},
        {"PK", "Perek-Kohoutek planetary nebulae", "PK", [](R r) { return Texted("PK ", r.PK); },
         none},
        {"PNG", "Strasbourg-ESO galactic planetary nebulae", "PNG",
         [](R r) { return Texted("PN G", r.PNG); }, none},
        {"SNRG", "Galactic supernova remnants", "SNRG", [](R r) { return Texted("SNR G", r.SNRG); },
         none},
        {"ABELL", "Abell galaxy clusters", "ACO", [](R r) { return Texted("Abell ", r.ACO); },
         none},
        {"HCG", "Hickson compact groups", "HCG", [](R r) { return Texted("HCG ", r.HCG); }, none},
        {"ESO", "ESO/Uppsala survey", "ESO", [](R r) { return Texted("ESO ", r.ESO); }, none},
        {"VDBH", "van den Bergh-Herbst southern nebulae", "VDBH",
         [](R r) { return Texted("vdBH ", r.VdBH); }, none},
        {"DWB", "Dickel-Wendker-Bieritz Cygnus nebulae", "DWB",
         [](R r) { return Numbered("DWB ", r.DWB); }, [](R r) { return r.DWB; }},
        {"TR", "Trumpler open clusters", "TR", [](R r) { return Numbered("Tr ", r.Tr); },
         [](R r) { return r.Tr; }},
        {"ST", "Stock open clusters", "ST", [](R r) { return Numbered("St ", r.St); },
         [](R r) { return r.St; }},
        {"RU", "Ruprecht open clusters", "RU", [](R r) { return Numbered("Ru ", r.Ru); },
         [](R r) { return r.Ru; }},
        {"VDBHA", "van den Bergh-Hagen southern clusters", "VDBHA",
         [](R r) { return Numbered("vdB-Ha ", r.VdBHa); }, [](R r) { return r.VdBHa; }},
    };
}

// Name-list key of a designation "PGC 2557" under prefix "PGC": "PGC|2557".
std::string NameKey(const DeepSkyCatalog& c, const std::string& designation)
{
    std::string number = designation;
    for (const char* lead : {"Sh2-", "PN G", "SNR G", "vdB-Ha ", "Abell "}) {
        if (number.rfind(lead, 0) == 0) {
            number = number.substr(std::string(lead).size());
            return std::string(c.namesPrefix) + "|" + number;
        }
    }
    const auto space = number.find(' ');
    return std::string(c.namesPrefix) + "|" + number.substr(space + 1);
}

struct SmallEdition
{
    std::vector<ObjectRow> rows;
};

// Shared state of one build.
struct Build
{
    BuildInputs in;
    std::string outDir;
    std::ostream* log = nullptr;
    TypeTable types;
    std::unique_ptr<ConstellationFinder> constellations;
    std::map<std::string, std::string> names;
    std::vector<ObjectRow> ngcIcRows;
    std::vector<ObjectRow> extraRows;
    std::vector<CatalogCount> extraCounts;
    std::map<std::string, long long> idOf2000;
    std::map<std::string, long long> idOfCaldwell;

    std::string Table(const std::string& file) const { return in.tablesDir + "/" + file; }
    std::string Out(const std::string& file) const { return outDir + "/" + file; }
};

void MakeNgcIcRows(Build& b)
{
    const auto objects = ReadNgcIcList(b.in.kstarsDir + "/OpenNGC.kscat");
    std::vector<std::pair<SortKey, ObjectRow>> keyed;
    for (const NgcIcObject& o : objects) {
        ObjectRow row;
        // Messier rows of the list are named "M 31" and carry the NGC/IC number as identifier.
        row.ObjectID =
            o.name.rfind("M ", 0) == 0 ? DesignationFromIdentifier(o.identifier) : o.name;
        row.ObjectType = TypeOf(b.types.fromNgcIcList, o.type);
        row.raDeg = o.raDeg;
        row.decDeg = o.decDeg;
        row.constellation = b.constellations->Find(o.raDeg, o.decDeg);
        row.ObjectSize = Rounded(o.majorAxisArcmin, 0.01);
        row.Magnitude = Rounded(o.magnitude, 0.01);
        row.PositionAngle = o.positionAngleDeg;
        row.Catalog = "2000";
        const auto space = row.ObjectID.find(' ');
        std::string prefix = row.ObjectID.substr(0, space);
        auto name = b.names.find(prefix + "|" + row.ObjectID.substr(space + 1));
        if (name != b.names.end())
            row.OtherID = name->second;
        keyed.emplace_back(KeyOf(row.ObjectID), std::move(row));
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& x, const auto& y) { return x.first < y.first; });
    for (auto& [key, row] : keyed)
        b.ngcIcRows.push_back(std::move(row));

    std::map<std::string, std::size_t> index;
    for (std::size_t k = 0; k < b.ngcIcRows.size(); ++k)
        index.emplace(b.ngcIcRows[k].ObjectID, k);

    // Messier numbers: the first object of each number carries it ("M 31"); a second object of
    // the same number (M51's companion, M76's second half) gets the list's name only. Objects
    // outside NGC/IC have rows named after their Messier number.
    const CsvTable messier = ReadCsv(b.Table("messier.csv"));
    const auto mCol = messier.Column("messier");
    const auto objCol = messier.Column("object");
    const auto inNgcCol = messier.Column("in_ngc2000");
    const auto nameCol = messier.Column("common_name");
    std::set<long long> numbered;
    for (const auto& r : messier.rows) {
        const long long m = std::stoll(r[mCol]);
        const std::string id = r[inNgcCol] == "Y" ? r[objCol] : "M " + r[mCol];
        auto it = index.find(id);
        if (it == index.end())
            Fail("Messier object M" + r[mCol] + " (" + id + ") is not in the NGC/IC list");
        ObjectRow& row = b.ngcIcRows[it->second];
        if (numbered.insert(m).second) {
            row.MessierNumber = m;
            row.OtherID = r[inNgcCol] == "Y" ? "M " + r[mCol] : r[objCol];
        } else if (!r[nameCol].empty()) {
            row.OtherID = r[nameCol];
        }
    }
    if (numbered.size() != 110)
        Fail("expected 110 Messier numbers, found " + std::to_string(numbered.size()));

    const CsvTable herschel = ReadCsv(b.Table("herschel400.csv"));
    const auto ngcCol = herschel.Column("ngc");
    const auto herCol = herschel.Column("herschel");
    for (const auto& r : herschel.rows) {
        auto it = index.find("NGC " + r[ngcCol]);
        if (it == index.end())
            Fail("Herschel object NGC " + r[ngcCol] + " is not in the NGC/IC list");
        b.ngcIcRows[it->second].HObject = r[herCol];
    }
}

void MakeDeepSkyRows(Build& b)
{
    const std::string folder = b.in.stellariumDir + "/nebulae/default/";
    const auto records =
        ParseDeepSkyCatalog(ReadGzipFile(folder + "catalog.dat"), folder + "catalog.dat");
    const auto catalogs = DeepSkyCatalogs();
    for (const DeepSkyCatalog& c : catalogs) {
        std::vector<const DeepSkyRecord*> members;
        for (const DeepSkyRecord& r : records)
            if (!c.designation(r).empty())
                members.push_back(&r);
        std::stable_sort(members.begin(), members.end(), [&](auto* x, auto* y) {
            const auto nx = c.number(*x);
            const auto ny = c.number(*y);
            if (nx != ny)
                return nx < ny;
            return c.designation(*x) < c.designation(*y);
        });
        for (const DeepSkyRecord* r : members) {
            ObjectRow row;
            row.ObjectID = c.designation(*r);
            row.Catalog = c.name;
            row.ObjectType = TypeOf(b.types.fromDeepSky, static_cast<int>(r->type));
            row.raDeg = r->raRad * 180.0 / std::numbers::pi;
            row.decDeg = r->decRad * 180.0 / std::numbers::pi;
            row.constellation = b.constellations->Find(row.raDeg, row.decDeg);
            if (r->majorAxisDeg > 0)
                row.ObjectSize = std::round(r->majorAxisDeg * 60.0 * 100.0) / 100.0;
            const bool hasV = r->vMag < 98;
            const bool hasB = r->bMag < 98;
            if (hasV || hasB)
                row.Magnitude = std::round((hasV ? r->vMag : r->bMag) * 100.0) / 100.0;
            if (hasV && hasB)
                row.Magnitude2 = std::round(r->bMag * 100.0) / 100.0;
            if (r->positionAngle != 0)
                row.PositionAngle = r->positionAngle;
            row.MCode = r->morphology;
            // The other designation: Messier, NGC or IC first, then a common name, then the
            // first other catalogue that holds the object.
            if (r->M)
                row.OtherID = "M " + std::to_string(r->M);
            else if (r->NGC)
                row.OtherID = "NGC " + std::to_string(r->NGC);
            else if (r->IC)
                row.OtherID = "IC " + std::to_string(r->IC);
            if (row.OtherID.empty()) {
                for (const DeepSkyCatalog& other : catalogs) {
                    const std::string d = other.designation(*r);
                    if (d.empty())
                        continue;
                    auto name = b.names.find(NameKey(other, d));
                    if (name != b.names.end()) {
                        row.OtherID = name->second;
                        break;
                    }
                }
            }
            if (row.OtherID.empty()) {
                for (const DeepSkyCatalog& other : catalogs) {
                    const std::string d = other.designation(*r);
                    if (!d.empty() && &other != &c) {
                        row.OtherID = d;
                        break;
                    }
                }
            }
            b.extraRows.push_back(std::move(row));
        }
        b.extraCounts.push_back({c.name, c.description, static_cast<long long>(members.size())});
    }
}

void MakeStarRows(Build& b)
{
    const std::string stars = b.in.stellariumDir + "/stars/default/";
    const auto hipToHd = ReadHipToHd(stars + "cross-id.dat");
    std::unordered_map<int, CatalogStar> byHd;
    ReadBinaryStars(b.in.kstarsDir + "/namedstars.dat", byHd);
    ReadBinaryStars(b.in.kstarsDir + "/unnamedstars.dat", byHd);
    auto position = [&](int hip) -> const CatalogStar* {
        auto hd = hipToHd.find(hip);
        if (hd == hipToHd.end())
            return nullptr;
        auto star = byHd.find(hd->second);
        return star == byHd.end() ? nullptr : &star->second;
    };

    long long variables = 0;
    for (const VariableStar& v : ReadVariableStars(stars + "gcvs_hip_part.dat")) {
        const CatalogStar* s = position(v.hip);
        if (!s)
            continue;
        ObjectRow row;
        row.ObjectID = v.name;
        row.OtherID = v.type;
        row.ObjectType = "Vars";
        row.Catalog = "GCVS";
        row.raDeg = s->raDeg;
        row.decDeg = s->decDeg;
        row.constellation = b.constellations->Find(s->raDeg, s->decDeg);
        row.Magnitude = v.maxMagnitude;
        row.Magnitude2 = v.minMagnitude;
        row.MCode = v.spectrum;
        row.galacticGiven = true;
        row.GalacticLongitude = v.epochOfMaximum;
        row.GalacticLatitude = v.periodDays;
        row.Separation = v.durationPercent;
        b.extraRows.push_back(std::move(row));
        ++variables;
    }
    b.extraCounts.push_back(
        {"GCVS", "General Catalogue of Variable Stars (Hipparcos stars)", variables});

    long long doubles = 0;
    std::set<std::string> seen;
    for (const DoubleStar& d : ReadDoubleStars(stars + "wds_hip_part.dat")) {
        const CatalogStar* s = position(d.hip);
        if (!s || !seen.insert(d.wds).second)
            continue;
        ObjectRow row;
        row.ObjectID = "WDS " + d.wds;
        row.OtherID = "HIP " + std::to_string(d.hip);
        row.ObjectType = "Dblst";
        row.Catalog = "WDS";
        row.raDeg = s->raDeg;
        row.decDeg = s->decDeg;
        row.constellation = b.constellations->Find(s->raDeg, s->decDeg);
        row.Magnitude = s->magnitude;
        row.PositionAngle = d.positionAngleDeg;
        row.Separation = d.separationArcsec;
        b.extraRows.push_back(std::move(row));
        ++doubles;
    }
    b.extraCounts.push_back({"WDS", "Washington Double Star Catalog (Hipparcos stars)", doubles});
}

void WriteObjectTypes(ObjectWriter& w, const TypeTable& types)
{
    for (const auto& [code, description] : types.codes)
        w.InsertObjectType(code, description);
}

void WriteEdition(Build& b, const std::string& file, bool full)
{
    ObjectWriter w(b.Out(file));
    for (const ObjectRow& row : b.ngcIcRows) {
        const long long id = w.Insert(row);
        b.idOf2000.emplace(row.ObjectID, id);
    }
    long long total = static_cast<long long>(b.ngcIcRows.size());
    *b.log << file << ":\n  2000      " << b.ngcIcRows.size() << "\n";
    w.InsertCatalog("2000", "NGC 2000", "", static_cast<long long>(b.ngcIcRows.size()));
    if (full) {
        for (const ObjectRow& row : b.extraRows) {
            const long long id = w.Insert(row);
            if (row.Catalog == "CALDWELL")
                b.idOfCaldwell.emplace(row.ObjectID, id);
        }
        for (const CatalogCount& c : b.extraCounts) {
            w.InsertCatalog(c.name, c.description, "", c.count);
            *b.log << "  " << c.name
                   << std::string(10 - std::min<std::size_t>(9, c.name.size()), ' ') << c.count
                   << "\n";
            total += c.count;
        }
    }
    WriteObjectTypes(w, b.types);
    w.Finish();
    *b.log << "  total     " << total << "\n";
}

void WriteLogbookTemplate(Build& b)
{
    sqlite3* db =
        CreateDatabaseFile(b.Out("Logbook2003-1.mdb"), static_cast<int>(data::SchemaKind::Logbook));
    auto prepare = [&](const char* sql) {
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db, sql, -1, &st, nullptr) != SQLITE_OK)
            Fail(std::string("logbook template: ") + sqlite3_errmsg(db));
        return st;
    };
    auto run = [&](sqlite3_stmt* st) {
        if (sqlite3_step(st) != SQLITE_DONE)
            Fail(std::string("logbook template: ") + sqlite3_errmsg(db));
        sqlite3_reset(st);
    };
    auto text = [](sqlite3_stmt* st, int k, const std::string& s) {
        sqlite3_bind_text(st, k, s.c_str(), static_cast<int>(s.size()), SQLITE_TRANSIENT);
    };

    const auto places = ReadPlaces(b.in.kstarsDir + "/citydb.sqlite");
    sqlite3_stmt* st = prepare("INSERT INTO Location (Place, Latitude, Longitude, TimeZone) "
                               "VALUES (?1, ?2, ?3, ?4)");
    for (const Place& p : places) {
        text(st, 1, p.place);
        sqlite3_bind_double(st, 2, std::round(p.latitudeDeg * 1e6) / 1e6);
        sqlite3_bind_double(st, 3, std::round(p.longitudeDeg * 1e6) / 1e6);
        sqlite3_bind_double(st, 4, p.timeZoneHours);
        run(st);
    }
    sqlite3_finalize(st);

    st = prepare("INSERT INTO ValidObjectTypes (ObjectType, ObjectTypeDesc) VALUES (?1, ?2)");
    for (const auto& [code, description] : b.types.codes) {
        text(st, 1, code);
        text(st, 2, description);
        run(st);
    }
    sqlite3_finalize(st);

    const CsvTable herschel = ReadCsv(b.Table("herschel400.csv"));
    st = prepare("INSERT INTO xref (NGC, Her) VALUES (?1, ?2)");
    for (const auto& r : herschel.rows) {
        text(st, 1, "NGC " + r[herschel.Column("ngc")]);
        text(st, 2, r[herschel.Column("herschel")]);
        run(st);
    }
    sqlite3_finalize(st);

    const CsvTable neighbours = ReadCsv(b.Table("constellation_neighbours.csv"));
    st = prepare("INSERT INTO BConst (Const, BConst) VALUES (?1, ?2)");
    for (const auto& r : neighbours.rows) {
        text(st, 1, r[neighbours.Column("const")]);
        text(st, 2, r[neighbours.Column("neighbour")]);
        run(st);
    }
    sqlite3_finalize(st);

    ExecSql(db, "INSERT INTO PerLogType (LogType, LogTypeDesc) VALUES ('Default', 'Default')",
            Location);
    FinishDatabaseFile(db);
    *b.log << "Logbook2003-1.mdb: Location " << places.size() << ", ValidObjectTypes "
           << b.types.codes.size() << ", xref " << herschel.rows.size() << ", BConst "
           << neighbours.rows.size() << ", PerLogType 1\n";
}

void WriteAstComet(Build& b)
{
    auto mpc = ParseMpcComets(ReadGzipFile(b.in.kstarsDir + "/cometels.json.gz"),
                              b.in.kstarsDir + "/cometels.json.gz");
    const auto jpl = ParseJplComets(ReadTextFile(b.in.kstarsDir + "/comets.dat"),
                                    b.in.kstarsDir + "/comets.dat");
    std::set<std::string> known;
    for (const CometElements& c : mpc)
        known.insert(c.name);
    std::size_t fromMpc = mpc.size();
    for (const CometElements& c : jpl) {
        // Only comets with an absolute magnitude are of use; the slope of 4 is the one the
        // minor-planet centre itself gives comets without a measured slope.
        if (known.count(c.name) || !c.mag)
            continue;
        CometElements copy = c;
        copy.k = 4.0;
        mpc.push_back(copy);
    }
    const auto asteroids = ParseJplAsteroids(ReadTextFile(b.in.kstarsDir + "/asteroids.dat"),
                                             b.in.kstarsDir + "/asteroids.dat");

    sqlite3* db =
        CreateDatabaseFile(b.Out("AstComet.mdb"), static_cast<int>(data::SchemaKind::AstComet));
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO Comet (Name, tyear, tmonth, tday, q, e, i, ArgPeri, ascnode, "
                       "Mag, K, EPOCH) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, 2000)",
                       -1, &st, nullptr);
    auto optional = [](sqlite3_stmt* s, int k, std::optional<double> v) {
        v ? sqlite3_bind_double(s, k, *v) : sqlite3_bind_null(s, k);
    };
    for (const CometElements& c : mpc) {
        sqlite3_bind_text(st, 1, c.name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_double(st, 2, c.tyear);
        sqlite3_bind_double(st, 3, c.tmonth);
        sqlite3_bind_double(st, 4, std::round(c.tday * 1e6) / 1e6);
        sqlite3_bind_double(st, 5, c.q);
        sqlite3_bind_double(st, 6, c.e);
        sqlite3_bind_double(st, 7, c.i);
        sqlite3_bind_double(st, 8, c.argPeri);
        sqlite3_bind_double(st, 9, c.ascNode);
        optional(st, 10, c.mag);
        optional(st, 11, c.k);
        if (sqlite3_step(st) != SQLITE_DONE)
            Fail(std::string("AstComet.mdb: ") + sqlite3_errmsg(db));
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_prepare_v2(db,
                       "INSERT INTO Asteroids (Anumb, Name, eyear, emonth, eday, a, e, i, M, "
                       "Node, omega, g, h) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, "
                       "?12, ?13)",
                       -1, &st, nullptr);
    for (const AsteroidElements& a : asteroids) {
        sqlite3_bind_double(st, 1, a.number);
        sqlite3_bind_text(st, 2, a.name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_double(st, 3, a.eyear);
        sqlite3_bind_double(st, 4, a.emonth);
        sqlite3_bind_double(st, 5, std::round(a.eday * 1e6) / 1e6);
        sqlite3_bind_double(st, 6, a.a);
        sqlite3_bind_double(st, 7, a.e);
        sqlite3_bind_double(st, 8, a.i);
        sqlite3_bind_double(st, 9, a.m);
        sqlite3_bind_double(st, 10, a.node);
        sqlite3_bind_double(st, 11, a.omega);
        optional(st, 12, a.h);
        optional(st, 13, a.g);
        if (sqlite3_step(st) != SQLITE_DONE)
            Fail(std::string("AstComet.mdb: ") + sqlite3_errmsg(db));
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    FinishDatabaseFile(db);
    *b.log << "AstComet.mdb: Comet " << mpc.size() << " (" << fromMpc << " MPC, "
           << mpc.size() - fromMpc << " JPL), Asteroids " << asteroids.size() << "\n";
}

void WriteText(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    if (!out)
        Fail("Cannot write " + path);
}

// Old record numbers of the shipped plans: the plans were saved against an older object table
// whose rows lay a few places from today's, so each NGC entry is found again by its number when
// a plan opens.
constexpr long long OldTableShift = 7;

std::string PlanLine(const std::string& objectId, const std::string& catalog, long long id)
{
    return services::vb::WriteRecord({objectId, catalog, id});
}

// One entry of a shipped plan for "NGC n", "IC n" or another designation.
std::string PlanEntry(Build& b, const std::string& designation, const std::string& caldwell)
{
    if (designation.rfind("NGC ", 0) == 0) {
        auto it = b.idOf2000.find(designation);
        if (it == b.idOf2000.end())
            Fail("plan object " + designation + " is not in catalogue 2000");
        return PlanLine(designation.substr(4), "2000", it->second + OldTableShift);
    }
    // Entries that are no NGC object are not found again on opening: their stored record
    // numbers must be today's.
    auto it = b.idOf2000.find(designation);
    if (it != b.idOf2000.end())
        return PlanLine(designation, "2000", it->second);
    auto c = b.idOfCaldwell.find(caldwell);
    if (c == b.idOfCaldwell.end())
        Fail("plan object " + designation + " is in no catalogue");
    return PlanLine(caldwell, "CALDWELL", c->second);
}

void WriteShippedTexts(Build& b)
{
    const CsvTable herschel = ReadCsv(b.Table("herschel400.csv"));
    const auto ngcCol = herschel.Column("ngc");
    const auto herCol = herschel.Column("herschel");
    std::string href;
    std::string club1;
    std::string club2;
    for (std::size_t k = 0; k < herschel.rows.size(); ++k) {
        const auto& r = herschel.rows[k];
        // NGC number right-aligned in characters 1-4, the designation from character 8.
        std::string line = std::string(4 - std::min<std::size_t>(4, r[ngcCol].size()), ' ') +
                           r[ngcCol] + "   " + r[herCol];
        href += line + "\r\n";
        (k < herschel.rows.size() / 2 ? club1 : club2) += PlanEntry(b, "NGC " + r[ngcCol], "");
    }
    WriteText(b.Out("Href.txt"), href);
    WriteText(b.Out("HCLUB1.PLN"), club1);
    WriteText(b.Out("HCLUB2.PLN"), club2);

    const CsvTable caldwell = ReadCsv(b.Table("caldwell.csv"));
    std::string caldwellPlan;
    for (const auto& r : caldwell.rows) {
        const std::string number = r[caldwell.Column("caldwell")];
        const std::string object = r[caldwell.Column("object")];
        caldwellPlan += PlanEntry(b, object, "C " + number);
    }
    WriteText(b.Out("CALDWELL.PLN"), caldwellPlan);

    // Bright showpieces of both hemispheres through the year.
    const int showpieces[] = {104,  224,  253,  869,  884,  1976, 1952, 2070, 2237, 2392,
                              2632, 3031, 3034, 3242, 4565, 4594, 5139, 5194, 5272, 6205,
                              6523, 6543, 6611, 6618, 6720, 6826, 6853, 7009, 7293, 7662};
    std::string sampler;
    for (int n : showpieces)
        sampler += PlanEntry(b, "NGC " + std::to_string(n), "");
    WriteText(b.Out("123096.PLN"), sampler);
    *b.log << "Href.txt " << herschel.rows.size() << " lines; HCLUB1.PLN "
           << herschel.rows.size() / 2 << ", HCLUB2.PLN "
           << herschel.rows.size() - herschel.rows.size() / 2 << ", CALDWELL.PLN "
           << caldwell.rows.size() << ", 123096.PLN " << std::size(showpieces) << " entries\n";
}

} // namespace

void BuildDatabases(const BuildInputs& inputs, const std::string& outDir, std::ostream& log)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    auto seconds = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    Build b;
    b.in = inputs;
    b.outDir = outDir;
    b.log = &log;
    b.types = ReadTypeTable(b.Table("object_types.csv"));
    b.constellations = std::make_unique<ConstellationFinder>(
        ReadBoundaryTable(b.Table("constellation_data_roman87.dat")));
    b.names = ReadDeepSkyNames(inputs.stellariumDir + "/nebulae/default/names.dat");

    MakeNgcIcRows(b);
    WriteEdition(b, "SelvPro13000.mdb", false);
    log << "  (" << seconds() << " s)\n";
    MakeDeepSkyRows(b);
    MakeStarRows(b);
    WriteEdition(b, "SelvPro708000.mdb", true);
    log << "  (" << seconds() << " s)\n";
    WriteLogbookTemplate(b);
    WriteAstComet(b);
    sqlite3* ccd =
        CreateDatabaseFile(b.Out("ccdimages.mdb"), static_cast<int>(data::SchemaKind::CcdImages));
    FinishDatabaseFile(ccd);
    WriteShippedTexts(b);
    log << "Built in " << seconds() << " s\n";
}

} // namespace tools
