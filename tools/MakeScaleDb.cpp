// make-scale-db FILE [COUNT]
// Writes a database shaped like the full edition with exactly COUNT objects (default 708,000):
// the real rows of the full edition first, then rows spread over the sky whose type, catalogue,
// magnitude and size copy a real row picked at random. For benchmarks only; deterministic.

#include "services/Fault.h"
#include "tools/ObjectWriter.h"
#include "tools/SkyMath.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <cmath>
#include <iostream>
#include <numbers>
#include <random>
#include <string>

namespace {

struct Sample
{
    std::string objectId;
    std::string objectType;
    std::string catalog;
    std::optional<double> size;
    std::optional<double> magnitude;
};

std::optional<double> Column(sqlite3_stmt* st, int k)
{
    if (sqlite3_column_type(st, k) == SQLITE_NULL)
        return std::nullopt;
    return sqlite3_column_double(st, k);
}

std::string Text(sqlite3_stmt* st, int k)
{
    const unsigned char* t = sqlite3_column_text(st, k);
    return t ? reinterpret_cast<const char*>(t) : "";
}

void MakeScaleDb(const std::string& source, const std::string& boundaries,
                 const std::string& target, long long count)
{
    QFile::remove(QString::fromStdString(target));
    if (!QFile::copy(QString::fromStdString(source), QString::fromStdString(target)))
        throw services::Fault("Cannot copy " + source + " to " + target, "make-scale-db");
    sqlite3* db = nullptr;
    if (sqlite3_open(target.c_str(), &db) != SQLITE_OK)
        throw services::Fault("Cannot open " + target, "make-scale-db");
    tools::ExecSql(db, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; BEGIN", "make-scale-db");

    std::vector<Sample> real;
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db,
                       "SELECT ObjectID, ObjectType, Catalog, ObjectSize, Magnitude FROM "
                       "SelvaneTable ORDER BY ID",
                       -1, &st, nullptr);
    while (sqlite3_step(st) == SQLITE_ROW)
        real.push_back({Text(st, 0), Text(st, 1), Text(st, 2), Column(st, 3), Column(st, 4)});
    sqlite3_finalize(st);

    const long long realCount = static_cast<long long>(real.size());
    if (count <= realCount) {
        tools::ExecSql(db, "DELETE FROM SelvaneTable WHERE ID > " + std::to_string(count),
                       "make-scale-db");
    } else {
        const tools::ConstellationFinder finder(tools::ReadBoundaryTable(boundaries));
        std::mt19937_64 random(20000708);
        auto uniform = [&] { return static_cast<double>(random() >> 11) * 0x1.0p-53; };
        sqlite3_prepare_v2(
            db,
            "INSERT INTO SelvaneTable (ID, ObjectID, OtherID, ObjectType, RAhours, RAminutes, "
            "DeclinationDegrees, DeclinationMinutes, constellation, ObjectSize, Magnitude, "
            "Magnitude2, MCode, Description, Catalog, ImageFile, Observed, EPOCH, "
            "GalacticLongitude, GalacticLatitude, HObject, MessierNumber) VALUES (?1, ?2, '', ?3, "
            "?4, ?5, ?6, ?7, ?8, ?9, ?10, NULL, '', '', ?11, NULL, 0, 2000, ?12, ?13, '', 0)",
            -1, &st, nullptr);
        for (long long id = realCount + 1; id <= count; ++id) {
            const Sample& s = real[static_cast<std::size_t>(uniform() * realCount)];
            const double raDeg = uniform() * 360.0;
            const double decDeg = std::asin(2.0 * uniform() - 1.0) * 180.0 / std::numbers::pi;
            const tools::SplitPosition p = tools::SplitRaDec(raDeg, decDeg);
            const tools::Galactic g = tools::GalacticFromJ2000(raDeg, decDeg);
            const std::string prefix = s.objectId.substr(0, s.objectId.find(' '));
            const std::string objectId = prefix + " S" + std::to_string(id);
            const std::string constellation = finder.Find(raDeg, decDeg);
            sqlite3_bind_int64(st, 1, id);
            sqlite3_bind_text(st, 2, objectId.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_text(st, 3, s.objectType.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_double(st, 4, p.RAhours);
            sqlite3_bind_double(st, 5, p.RAminutes);
            sqlite3_bind_double(st, 6, p.DeclinationDegrees);
            sqlite3_bind_double(st, 7, p.DeclinationMinutes);
            sqlite3_bind_text(st, 8, constellation.c_str(), -1, SQLITE_TRANSIENT);
            if (s.size)
                sqlite3_bind_double(st, 9, std::round(*s.size * (0.5 + uniform()) * 100) / 100);
            else
                sqlite3_bind_null(st, 9);
            if (s.magnitude)
                sqlite3_bind_double(st, 10,
                                    std::round((*s.magnitude + uniform() - 0.5) * 100) / 100);
            else
                sqlite3_bind_null(st, 10);
            sqlite3_bind_text(st, 11, s.catalog.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_double(st, 12, std::round(g.lDeg * 1e4) / 1e4);
            sqlite3_bind_double(st, 13, std::round(g.bDeg * 1e4) / 1e4);
            if (sqlite3_step(st) != SQLITE_DONE)
                throw services::Fault(sqlite3_errmsg(db), "make-scale-db");
            sqlite3_reset(st);
        }
        sqlite3_finalize(st);
    }
    tools::ExecSql(db,
                   "UPDATE CatalogLookup SET ImpCount = (SELECT count(*) FROM SelvaneTable "
                   "WHERE SelvaneTable.Catalog = CatalogLookup.CatalogName); COMMIT",
                   "make-scale-db");
    sqlite3_close(db);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2 || argc > 3) {
        std::cerr << "usage: make-scale-db FILE [COUNT]\n";
        return 2;
    }
    long long count = 708000;
    if (argc == 3) {
        try {
            count = std::stoll(argv[2]);
        } catch (const std::exception&) {
            count = 0;
        }
        if (count <= 0) {
            std::cerr << "make-scale-db: COUNT must be a positive whole number\n";
            return 2;
        }
    }
    const QString resources = QCoreApplication::applicationDirPath() + "/resources/";
    try {
        MakeScaleDb((resources + "SelvPro708000.mdb").toStdString(),
                    (resources + "constellation_data_roman87.dat").toStdString(), argv[1], count);
    } catch (const services::Fault& fault) {
        std::cerr << "make-scale-db: " << fault.what() << "\n";
        return 1;
    }
    std::cout << "Wrote " << count << " objects to " << argv[1] << "\n";
    return 0;
}
