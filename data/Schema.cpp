#include "data/Schema.h"

#include "services/Fault.h"

#include <string>
#include <string_view>

namespace data {

namespace {

// Columns of SelvaneTable and ObjectImages, which share one shape.
constexpr const char* ObjectColumns = R"(
    ID INTEGER PRIMARY KEY,
    ObjectID TEXT COLLATE NOCASE,
    OtherID TEXT COLLATE NOCASE,
    ObjectType TEXT COLLATE NOCASE,
    RAhours REAL,
    RAminutes REAL,
    DeclinationDegrees REAL,
    DeclinationMinutes REAL,
    constellation TEXT COLLATE NOCASE,
    ObjectSize REAL,
    Magnitude REAL,
    Magnitude2 REAL,
    MCode TEXT COLLATE NOCASE,
    Description TEXT COLLATE NOCASE,
    Catalog TEXT COLLATE NOCASE,
    ImageFile TEXT COLLATE NOCASE,
    ImageFOV REAL,
    Observed INTEGER NOT NULL DEFAULT 0,
    EPOCH REAL,
    GalacticLongitude REAL,
    GalacticLatitude REAL,
    PositionAngle REAL,
    Separation REAL,
    HObject TEXT COLLATE NOCASE,
    MessierNumber INTEGER NOT NULL DEFAULT 0,
    SelvaneSup REAL)";

constexpr const char* ValidObjectTypesTable = R"(
CREATE TABLE IF NOT EXISTS ValidObjectTypes (
    ID INTEGER PRIMARY KEY,
    ObjectType TEXT COLLATE NOCASE,
    ObjectTypeDesc TEXT COLLATE NOCASE);
)";

std::string ObjectDatabaseSql()
{
    std::string sql;
    sql += std::string("CREATE TABLE IF NOT EXISTS SelvaneTable (") + ObjectColumns + ");\n";
    sql += std::string("CREATE TABLE IF NOT EXISTS ObjectImages (") + ObjectColumns + ");\n";
    sql += R"(
CREATE TABLE IF NOT EXISTS CatalogLookup (
    ID INTEGER PRIMARY KEY,
    CatalogName TEXT COLLATE NOCASE,
    CatalogDescription TEXT COLLATE NOCASE,
    URLADC TEXT COLLATE NOCASE,
    ImpCount INTEGER NOT NULL DEFAULT 0);
-- The start query (Messier list), the filter's catalogue, constellation and type choices, and
-- the look-ups of one object by its designation.
CREATE INDEX IF NOT EXISTS SelvaneTable_Catalog ON SelvaneTable (Catalog, ObjectID);
CREATE INDEX IF NOT EXISTS SelvaneTable_ObjectID ON SelvaneTable (ObjectID);
CREATE INDEX IF NOT EXISTS SelvaneTable_Messier ON SelvaneTable (MessierNumber);
CREATE INDEX IF NOT EXISTS SelvaneTable_Constellation ON SelvaneTable (constellation);
CREATE INDEX IF NOT EXISTS SelvaneTable_ObjectType ON SelvaneTable (ObjectType);
CREATE INDEX IF NOT EXISTS SelvaneTable_Magnitude ON SelvaneTable (Magnitude);
CREATE INDEX IF NOT EXISTS CatalogLookup_Name ON CatalogLookup (CatalogName);
)";
    // Deliberate: the type list is read on either handle, so both files carry it.
    sql += ValidObjectTypesTable;
    return sql;
}

// Deliberate: Logbook numbers its entries with AUTOINCREMENT, so that a number is never given
// twice, not even that of a deleted last entry: a number kept in LastLogEntry, a plan or a
// report never comes to name a later observation.
std::string LogbookSql()
{
    std::string sql = R"(
CREATE TABLE IF NOT EXISTS Logbook (
    ObservationNumber INTEGER PRIMARY KEY AUTOINCREMENT,
    ObjectID TEXT COLLATE NOCASE,
    Catalog TEXT COLLATE NOCASE,
    DateObserved TEXT COLLATE NOCASE,
    TimeObserved TEXT COLLATE NOCASE,
    LocationObserved TEXT COLLATE NOCASE,
    EquipmentUsed TEXT COLLATE NOCASE,
    OtherEquipment TEXT COLLATE NOCASE,
    Seeing TEXT COLLATE NOCASE,
    Transparency TEXT COLLATE NOCASE,
    Rating TEXT COLLATE NOCASE,
    ShortDescription TEXT COLLATE NOCASE,
    ObservationText TEXT COLLATE NOCASE,
    SeenFlag INTEGER NOT NULL DEFAULT 0,
    DataRec INTEGER NOT NULL DEFAULT 0,
    LogType TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS Logbook_Object ON Logbook (ObjectID, Catalog);
CREATE INDEX IF NOT EXISTS Logbook_LogType ON Logbook (LogType);
-- The log grid lists the newest nights first.
CREATE INDEX IF NOT EXISTS Logbook_Date ON Logbook (DateObserved);

CREATE TABLE IF NOT EXISTS CCDLog (
    ObservationNumber INTEGER,
    ImageName TEXT COLLATE NOCASE,
    ExposureTime TEXT COLLATE NOCASE,
    ExposureMode TEXT COLLATE NOCASE,
    Telescope TEXT COLLATE NOCASE,
    CCDCamera TEXT COLLATE NOCASE,
    FocalDistance TEXT COLLATE NOCASE,
    FieldOfView TEXT COLLATE NOCASE,
    Coolingrate TEXT COLLATE NOCASE,
    darkframe INTEGER NOT NULL DEFAULT 0,
    flatfield INTEGER NOT NULL DEFAULT 0,
    PictureRating TEXT COLLATE NOCASE,
    Notes TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS CCDLog_Observation ON CCDLog (ObservationNumber);

CREATE TABLE IF NOT EXISTS ImageLog (
    Sequence INTEGER PRIMARY KEY AUTOINCREMENT,
    ObservationNumber INTEGER,
    ImageDescription TEXT COLLATE NOCASE,
    ImagePath TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS ImageLog_Observation ON ImageLog (ObservationNumber);

CREATE TABLE IF NOT EXISTS SessionLog (
    SessionDate TEXT COLLATE NOCASE,
    sessiontext TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS SessionLog_Date ON SessionLog (SessionDate);

-- One row that mirrors the last saved entry form; every column but the exposure time.
CREATE TABLE IF NOT EXISTS LastLogEntry (
    ObservationNumber INTEGER,
    ObjectID TEXT COLLATE NOCASE,
    Catalog TEXT COLLATE NOCASE,
    DateObserved TEXT COLLATE NOCASE,
    TimeObserved TEXT COLLATE NOCASE,
    LocationObserved TEXT COLLATE NOCASE,
    Transparency TEXT COLLATE NOCASE,
    Seeing TEXT COLLATE NOCASE,
    EquipmentUsed TEXT COLLATE NOCASE,
    OtherEquipment TEXT COLLATE NOCASE,
    Rating TEXT COLLATE NOCASE,
    ShortDescription TEXT COLLATE NOCASE,
    ObservationText TEXT COLLATE NOCASE,
    LogType TEXT COLLATE NOCASE,
    ImageName TEXT COLLATE NOCASE,
    ExposureMode TEXT COLLATE NOCASE,
    Telescope TEXT COLLATE NOCASE,
    CCDCamera TEXT COLLATE NOCASE,
    FocalDistance TEXT COLLATE NOCASE,
    FieldOfView TEXT COLLATE NOCASE,
    Coolingrate TEXT COLLATE NOCASE,
    darkframe INTEGER NOT NULL DEFAULT 0,
    flatfield INTEGER NOT NULL DEFAULT 0,
    PictureRating TEXT COLLATE NOCASE,
    Notes TEXT COLLATE NOCASE,
    sessiontext TEXT COLLATE NOCASE);

-- The night's faintest star and sky-quality-meter reading, one row per date beside SessionLog.
CREATE TABLE IF NOT EXISTS SessionSky (
    SessionDate TEXT COLLATE NOCASE,
    FaintestStar TEXT COLLATE NOCASE,
    SkyQuality TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS SessionSky_Date ON SessionSky (SessionDate);

CREATE TABLE IF NOT EXISTS PerLogType (
    LogType TEXT COLLATE NOCASE,
    LogTypeDesc TEXT COLLATE NOCASE);

CREATE TABLE IF NOT EXISTS ObservingSites (
    ProfileName TEXT COLLATE NOCASE,
    Location TEXT COLLATE NOCASE,
    Latitude REAL,
    Longitude REAL,
    EastWest TEXT COLLATE NOCASE,
    TimeZone REAL);

CREATE TABLE IF NOT EXISTS Location (
    Place TEXT COLLATE NOCASE,
    Latitude REAL,
    Longitude REAL,
    TimeZone REAL);

CREATE TABLE IF NOT EXISTS Equipment (
    Equipment TEXT COLLATE NOCASE);

CREATE TABLE IF NOT EXISTS ProfileSettings (
    ProfileName TEXT COLLATE NOCASE,
    "Column" TEXT COLLATE NOCASE,
    Settings TEXT COLLATE NOCASE);

CREATE TABLE IF NOT EXISTS UserCatalog (
    ObjectID TEXT COLLATE NOCASE,
    Catalog TEXT COLLATE NOCASE,
    Author TEXT COLLATE NOCASE,
    Notes TEXT COLLATE NOCASE,
    DateObserved TEXT COLLATE NOCASE,
    TimeObserved TEXT COLLATE NOCASE,
    ObservationText TEXT COLLATE NOCASE,
    Rating TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS UserCatalog_Object ON UserCatalog (ObjectID);

CREATE TABLE IF NOT EXISTS ValidOtherLogs (
    OtherLogName TEXT COLLATE NOCASE);

CREATE TABLE IF NOT EXISTS BConst (
    Const TEXT COLLATE NOCASE,
    BConst TEXT COLLATE NOCASE);

CREATE TABLE IF NOT EXISTS xref (
    NGC TEXT COLLATE NOCASE,
    Her TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS xref_NGC ON xref (NGC);

CREATE TABLE IF NOT EXISTS skyroverxref (
    objectid TEXT COLLATE NOCASE,
    skyroverid TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS skyroverxref_Object ON skyroverxref (objectid);
)";
    sql += ValidObjectTypesTable;
    return sql;
}

constexpr const char* AstCometSql = R"(
CREATE TABLE IF NOT EXISTS Comet (
    Name TEXT COLLATE NOCASE,
    tyear REAL,
    tmonth REAL,
    tday REAL,
    q REAL,
    e REAL,
    i REAL,
    ArgPeri REAL,
    ascnode REAL,
    Mag REAL,
    K REAL,
    EPOCH REAL);
CREATE TABLE IF NOT EXISTS Asteroids (
    ANumber INTEGER PRIMARY KEY,
    Anumb REAL,
    Name TEXT COLLATE NOCASE,
    eyear REAL,
    emonth REAL,
    eday REAL,
    a REAL,
    e REAL,
    i REAL,
    M REAL,
    Node REAL,
    omega REAL,
    g REAL,
    h REAL);
CREATE INDEX IF NOT EXISTS Comet_Name ON Comet (Name);
CREATE INDEX IF NOT EXISTS Asteroids_Name ON Asteroids (Name);
)";

constexpr const char* CcdImagesSql = R"(
CREATE TABLE IF NOT EXISTS ccd_data2 (
    "Picture Name" TEXT COLLATE NOCASE,
    "Picture Rating" TEXT COLLATE NOCASE,
    "Observer" TEXT COLLATE NOCASE,
    "Exposure Time" TEXT COLLATE NOCASE,
    "Camera" TEXT COLLATE NOCASE,
    "Resolution Mode" TEXT COLLATE NOCASE,
    "Date" TEXT COLLATE NOCASE,
    "Telescope" TEXT COLLATE NOCASE,
    "Aperture inch" TEXT COLLATE NOCASE,
    "Focal Lenght mm" TEXT COLLATE NOCASE,
    "Guided with" TEXT COLLATE NOCASE,
    "Place Observed" TEXT COLLATE NOCASE,
    "Level over Sea" TEXT COLLATE NOCASE,
    "Comments" TEXT COLLATE NOCASE);
CREATE INDEX IF NOT EXISTS ccd_data2_Picture ON ccd_data2 ("Picture Name");
)";

std::string SqlFor(SchemaKind kind)
{
    switch (kind) {
    case SchemaKind::ObjectDatabase:
        return ObjectDatabaseSql();
    case SchemaKind::Logbook:
        return LogbookSql();
    case SchemaKind::AstComet:
        return AstCometSql;
    case SchemaKind::CcdImages:
        return CcdImagesSql;
    }
    return {};
}

} // namespace

namespace {

constexpr const char* LogbookColumns =
    "ObservationNumber, ObjectID, Catalog, DateObserved, TimeObserved, LocationObserved, "
    "EquipmentUsed, OtherEquipment, Seeing, Transparency, Rating, ShortDescription, "
    "ObservationText, SeenFlag, DataRec, LogType";

bool LogbookNeedsNumbering(sqlite3* db)
{
    sqlite3_stmt* stmt = nullptr;
    bool needs = false;
    if (sqlite3_prepare_v2(db,
                           "SELECT sql FROM sqlite_master WHERE type = 'table' AND name = 'Logbook'",
                           -1, &stmt, nullptr) == SQLITE_OK &&
        sqlite3_step(stmt) == SQLITE_ROW) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0));
        needs = text && std::string_view(text).find("AUTOINCREMENT") == std::string_view::npos;
    }
    sqlite3_finalize(stmt);
    return needs;
}

// A logbook of an earlier build numbered its entries by the highest row alone, so a deleted
// last entry's number came back. Its Logbook table is rebuilt to count on from the highest
// number any table still holds.
std::string LogbookNumberingSql()
{
    const std::string columns = LogbookColumns;
    const std::string values =
        "ObservationNumber, ObjectID, Catalog, DateObserved, TimeObserved, LocationObserved, "
        "EquipmentUsed, OtherEquipment, Seeing, Transparency, Rating, ShortDescription, "
        "ObservationText, ifnull(SeenFlag, 0), ifnull(DataRec, 0), LogType";
    return "ALTER TABLE Logbook RENAME TO Logbook_earlier;\n" + LogbookSql() +
           "INSERT INTO Logbook (" + columns + ") SELECT " + values +
           " FROM Logbook_earlier;\n"
           "DROP TABLE Logbook_earlier;\n"
           "DELETE FROM sqlite_sequence WHERE name = 'Logbook';\n"
           "INSERT INTO sqlite_sequence (name, seq) SELECT 'Logbook', max(n) FROM ("
           "SELECT max(ObservationNumber) AS n FROM Logbook UNION ALL "
           "SELECT max(ObservationNumber) FROM CCDLog UNION ALL "
           "SELECT max(ObservationNumber) FROM ImageLog UNION ALL "
           "SELECT max(ObservationNumber) FROM LastLogEntry) WHERE n IS NOT NULL "
           "HAVING max(n) IS NOT NULL;\n";
}

} // namespace

void CreateSchema(sqlite3* db, SchemaKind kind)
{
    std::string body = SqlFor(kind);
    if (kind == SchemaKind::Logbook && LogbookNeedsNumbering(db))
        body = LogbookNumberingSql() + body;
    const std::string sql = "BEGIN;\n" + body + "\nCOMMIT;";
    char* error = nullptr;
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::string message = error ? error : sqlite3_errmsg(db);
        sqlite3_free(error);
        sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
        throw services::Fault(message, "data.CreateSchema");
    }
}

} // namespace data
