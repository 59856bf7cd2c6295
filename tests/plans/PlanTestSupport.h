#pragma once
// A real object database file holding a few rows of SelvaneTable, for the record id look-ups.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "data/Database.h"
#include "data/Schema.h"
#include "services/Vb.h"

namespace plans_test {

struct ObjectRow
{
    long long id;
    std::string objectId;
    std::string catalog;
};

inline std::unique_ptr<data::Database> MakeObjectDb(const std::filesystem::path& path,
                                                    const std::vector<ObjectRow>& rows)
{
    data::OpenOptions options;
    options.create = true;
    auto db = data::Database::Open(path, options);
    data::CreateSchema(db->Handle(), data::SchemaKind::ObjectDatabase);
    for (const ObjectRow& r : rows)
        db->Execute("Insert Into SelvaneTable (ID, ObjectID, Catalog) Values (" +
                    std::to_string(r.id) + ", '" + services::vb::QuoteForSql(r.objectId) +
                    "', '" + services::vb::QuoteForSql(r.catalog) + "')");
    return db;
}

} // namespace plans_test
