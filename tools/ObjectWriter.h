#pragma once
// Writing rows of SelvaneTable, CatalogLookup and ValidObjectTypes into an object database file.

#include <sqlite3.h>

#include <optional>
#include <string>

namespace tools {

// One SelvaneTable row; ID is given by the writer in insertion order, from 1.
struct ObjectRow
{
    std::string ObjectID;
    std::string OtherID;
    std::string ObjectType;
    double raDeg = 0; // J2000; split into the four position fields on writing
    double decDeg = 0;
    std::string constellation;
    std::optional<double> ObjectSize;
    std::optional<double> Magnitude;
    std::optional<double> Magnitude2;
    std::string MCode;
    std::string Description;
    std::string Catalog;
    // Galactic coordinates are computed from the position unless galacticGiven is set; the
    // variable star list keeps the epoch of maximum and the period in these two fields.
    bool galacticGiven = false;
    std::optional<double> GalacticLongitude;
    std::optional<double> GalacticLatitude;
    std::optional<double> PositionAngle;
    std::optional<double> Separation;
    std::string HObject;
    long long MessierNumber = 0;
};

// A fresh database file with the object schema, written in one transaction.
class ObjectWriter
{
public:
    // Creates path (an existing file is replaced) with the object schema.
    // Status: throws services::Fault with SQLite's message.
    explicit ObjectWriter(const std::string& path);
    ~ObjectWriter();
    ObjectWriter(const ObjectWriter&) = delete;
    ObjectWriter& operator=(const ObjectWriter&) = delete;

    // Writes one row and returns its ID.
    long long Insert(const ObjectRow& row);
    void InsertCatalog(const std::string& name, const std::string& description,
                       const std::string& url, long long count);
    void InsertObjectType(const std::string& code, const std::string& description);
    // Commits and closes; the file is complete only after this.
    void Finish();
    sqlite3* Handle() { return db_; }

private:
    void Exec(const std::string& sql);
    sqlite3* db_ = nullptr;
    sqlite3_stmt* insertObject_ = nullptr;
    sqlite3_stmt* insertCatalog_ = nullptr;
    sqlite3_stmt* insertType_ = nullptr;
    long long nextId_ = 1;
    std::string path_;
};

// Opens a new database file of another kind with its schema, inside one open transaction.
sqlite3* CreateDatabaseFile(const std::string& path, int schemaKind);
// Runs SQL, throwing services::Fault with SQLite's message.
void ExecSql(sqlite3* db, const std::string& sql, const std::string& location);
// Commits and closes a file made by CreateDatabaseFile.
void FinishDatabaseFile(sqlite3* db);

} // namespace tools
