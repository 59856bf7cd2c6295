#include "TestDatabases.h"

#include "data/Schema.h"

namespace testing_data {

namespace {

std::unique_ptr<data::Database> Create(const std::filesystem::path& path, data::SchemaKind kind)
{
    data::OpenOptions options;
    options.create = true;
    auto db = data::Database::Open(path, options);
    data::CreateSchema(db->Handle(), kind);
    return db;
}

} // namespace

void MakeObjectDatabase(const std::filesystem::path& path)
{
    auto db = Create(path, data::SchemaKind::ObjectDatabase);
    db->Execute("Insert Into SelvaneTable (ID, ObjectID, OtherID, ObjectType, RAhours, RAminutes, "
                "DeclinationDegrees, DeclinationMinutes, constellation, ObjectSize, Magnitude, "
                "Catalog, ImageFile, Observed, HObject, MessierNumber) Values (1, 'NGC 224', "
                "'M 31', 'GALXY', 0, 42.7, 41, 16, 'And', 178, 3.4, '2000', 'm31.jpg', 0, ' ', "
                "31)");
    db->Execute("Insert Into SelvaneTable (ID, ObjectID, OtherID, ObjectType, RAhours, RAminutes, "
                "DeclinationDegrees, DeclinationMinutes, constellation, ObjectSize, Magnitude, "
                "Catalog, ImageFile, Observed, HObject, MessierNumber) Values (2, 'NGC 1976', "
                "'M 42', 'BRTNB', 5, 35.4, -5, 27, 'Ori', 85, 4, '2000', ' ', True, 'H1', 42)");
    db->Execute("Insert Into SelvaneTable (ID, ObjectID, OtherID, ObjectType, RAhours, RAminutes, "
                "DeclinationDegrees, DeclinationMinutes, constellation, ObjectSize, Magnitude, "
                "Catalog, Observed, MessierNumber) Values (3, 'NGC 7000', 'North America', "
                "'BRTNB', 20, 58.8, 44, 20, 'Cyg', 120, Null, '2000', 0, 0)");
    db->Execute("Insert Into CatalogLookup (CatalogName, CatalogDescription, ImpCount) Values "
                "('2000', 'NGC 2000', 3)");
    db->Execute("Insert Into ValidObjectTypes (ObjectType, ObjectTypeDesc) Values ('GALXY', "
                "'Galaxy')");
}

void MakeLogbook(const std::filesystem::path& path)
{
    auto db = Create(path, data::SchemaKind::Logbook);
    db->Execute("Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
                "TimeObserved, LocationObserved, SeenFlag, DataRec, LogType) Values (1, "
                "'NGC 224', '2000', #02/14/2003#, '21:30:00', 'Home', -1, 1, 'Default')");
    db->Execute("Insert Into Logbook (ObservationNumber, ObjectID, Catalog, DateObserved, "
                "TimeObserved, LocationObserved, SeenFlag, DataRec, LogType) Values (2, "
                "'NGC 224', '2000', #3/1/2003#, '22:00:00', 'Field', 0, 1, 'Default')");
    db->Execute("Insert Into CCDLog (ObservationNumber, ImageName) Values (1, 'm31.fit')");
    db->Execute("Insert Into xref (NGC, Her) Values ('NGC 224', 'H1')");
}

void MakeAstComet(const std::filesystem::path& path)
{
    auto db = Create(path, data::SchemaKind::AstComet);
    db->Execute("Insert Into Comet (Name, tyear, tmonth, tday, q, e) Values ('1P/Halley', "
                "1986, 2, 9.4589, 0.587104, 0.967277)");
}

void MakeCcdImages(const std::filesystem::path& path)
{
    auto db = Create(path, data::SchemaKind::CcdImages);
    db->Execute("Insert Into ccd_data2 ([Picture Name], [Focal Lenght mm]) Values ('m31.fit', "
                "'1200')");
}

long CountRows(data::Database& db, const std::string& table)
{
    auto rs = db.OpenRecordset("Select count(*) From " + table, data::Snapshot);
    return static_cast<long>(rs.Fields(0).Long());
}

} // namespace testing_data
