#include "tools/ObjectWriter.h"

#include "data/Schema.h"
#include "services/Fault.h"
#include "tools/SkyMath.h"

#include <cmath>
#include <cstdio>

namespace tools {

namespace {

constexpr const char* Location = "tools.ObjectWriter";

void Check(sqlite3* db, int rc, const std::string& what)
{
    if (rc != SQLITE_OK && rc != SQLITE_DONE && rc != SQLITE_ROW)
        throw services::Fault(what + ": " + sqlite3_errmsg(db), Location);
}

void BindText(sqlite3_stmt* st, int index, const std::string& text)
{
    sqlite3_bind_text(st, index, text.c_str(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void BindOptional(sqlite3_stmt* st, int index, const std::optional<double>& value)
{
    if (value)
        sqlite3_bind_double(st, index, *value);
    else
        sqlite3_bind_null(st, index);
}

} // namespace

void ExecSql(sqlite3* db, const std::string& sql, const std::string& location)
{
    char* error = nullptr;
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::string message = error ? error : sqlite3_errmsg(db);
        sqlite3_free(error);
        throw services::Fault(message, location);
    }
}

sqlite3* CreateDatabaseFile(const std::string& path, int schemaKind)
{
    std::remove(path.c_str());
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) !=
        SQLITE_OK) {
        std::string message = db ? sqlite3_errmsg(db) : "out of memory";
        sqlite3_close(db);
        throw services::Fault("Cannot create " + path + ": " + message, Location);
    }
    // A build file needs no rollback journal: a failed build is simply run again.
    ExecSql(db, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF;", Location);
    data::CreateSchema(db, static_cast<data::SchemaKind>(schemaKind));
    ExecSql(db, "BEGIN", Location);
    return db;
}

void FinishDatabaseFile(sqlite3* db)
{
    ExecSql(db, "COMMIT", Location);
    sqlite3_close(db);
}

ObjectWriter::ObjectWriter(const std::string& path) : path_(path)
{
    db_ = CreateDatabaseFile(path, static_cast<int>(data::SchemaKind::ObjectDatabase));
    Check(db_,
          sqlite3_prepare_v2(
              db_,
              "INSERT INTO SelvaneTable (ID, ObjectID, OtherID, ObjectType, RAhours, RAminutes, "
              "DeclinationDegrees, DeclinationMinutes, constellation, ObjectSize, Magnitude, "
              "Magnitude2, MCode, Description, Catalog, ImageFile, ImageFOV, Observed, EPOCH, "
              "GalacticLongitude, GalacticLatitude, PositionAngle, Separation, HObject, "
              "MessierNumber, SelvaneSup) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, "
              "?12, ?13, ?14, ?15, NULL, NULL, 0, 2000, ?16, ?17, ?18, ?19, ?20, ?21, NULL)",
              -1, &insertObject_, nullptr),
          "prepare SelvaneTable insert");
    Check(db_,
          sqlite3_prepare_v2(db_,
                             "INSERT INTO CatalogLookup (CatalogName, CatalogDescription, URLADC, "
                             "ImpCount) VALUES (?1, ?2, ?3, ?4)",
                             -1, &insertCatalog_, nullptr),
          "prepare CatalogLookup insert");
    Check(db_,
          sqlite3_prepare_v2(db_,
                             "INSERT INTO ValidObjectTypes (ObjectType, ObjectTypeDesc) "
                             "VALUES (?1, ?2)",
                             -1, &insertType_, nullptr),
          "prepare ValidObjectTypes insert");
}

ObjectWriter::~ObjectWriter()
{
    sqlite3_finalize(insertObject_);
    sqlite3_finalize(insertCatalog_);
    sqlite3_finalize(insertType_);
    if (db_)
        sqlite3_close(db_);
}

long long ObjectWriter::Insert(const ObjectRow& row)
{
    const SplitPosition pos = SplitRaDec(row.raDeg, row.decDeg);
    std::optional<double> l = row.GalacticLongitude;
    std::optional<double> b = row.GalacticLatitude;
    if (!row.galacticGiven) {
        const Galactic g = GalacticFromJ2000(row.raDeg, row.decDeg);
        l = std::round(g.lDeg * 1e4) / 1e4;
        b = std::round(g.bDeg * 1e4) / 1e4;
    }
    sqlite3_stmt* st = insertObject_;
    const long long id = nextId_++;
    sqlite3_bind_int64(st, 1, id);
    BindText(st, 2, row.ObjectID);
    BindText(st, 3, row.OtherID);
    BindText(st, 4, row.ObjectType);
    sqlite3_bind_double(st, 5, pos.RAhours);
    sqlite3_bind_double(st, 6, pos.RAminutes);
    sqlite3_bind_double(st, 7, pos.DeclinationDegrees);
    sqlite3_bind_double(st, 8, pos.DeclinationMinutes);
    BindText(st, 9, row.constellation);
    BindOptional(st, 10, row.ObjectSize);
    BindOptional(st, 11, row.Magnitude);
    BindOptional(st, 12, row.Magnitude2);
    BindText(st, 13, row.MCode);
    BindText(st, 14, row.Description);
    BindText(st, 15, row.Catalog);
    BindOptional(st, 16, l);
    BindOptional(st, 17, b);
    BindOptional(st, 18, row.PositionAngle);
    BindOptional(st, 19, row.Separation);
    BindText(st, 20, row.HObject);
    sqlite3_bind_int64(st, 21, row.MessierNumber);
    Check(db_, sqlite3_step(st), "insert " + row.ObjectID);
    sqlite3_reset(st);
    return id;
}

void ObjectWriter::InsertCatalog(const std::string& name, const std::string& description,
                                 const std::string& url, long long count)
{
    BindText(insertCatalog_, 1, name);
    BindText(insertCatalog_, 2, description);
    BindText(insertCatalog_, 3, url);
    sqlite3_bind_int64(insertCatalog_, 4, count);
    Check(db_, sqlite3_step(insertCatalog_), "insert catalogue " + name);
    sqlite3_reset(insertCatalog_);
}

void ObjectWriter::InsertObjectType(const std::string& code, const std::string& description)
{
    BindText(insertType_, 1, code);
    BindText(insertType_, 2, description);
    Check(db_, sqlite3_step(insertType_), "insert object type " + code);
    sqlite3_reset(insertType_);
}

void ObjectWriter::Finish()
{
    sqlite3_finalize(insertObject_);
    sqlite3_finalize(insertCatalog_);
    sqlite3_finalize(insertType_);
    insertObject_ = insertCatalog_ = insertType_ = nullptr;
    FinishDatabaseFile(db_);
    db_ = nullptr;
}

void ObjectWriter::Exec(const std::string& sql)
{
    ExecSql(db_, sql, Location);
}

} // namespace tools
