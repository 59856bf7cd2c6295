#pragma once
// Real SQLite files for the data tests: a program folder in a temporary directory holding an
// object database and a logbook with a few known rows.

#include "data/Database.h"
#include "data/ProgramDir.h"

#include <QTemporaryDir>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace testing_data {

struct TestFolder
{
    QTemporaryDir temp;
    data::ProgramDir dir{temp.path().toStdString()};
    std::filesystem::path objectPath = dir.File("SelvPro708000.mdb");
};

// Creates the object database with M 31 (NGC 224), M 42 (NGC 1976, observed), NGC 7000 and a
// catalogue row; returns its path.
void MakeObjectDatabase(const std::filesystem::path& path);
// Creates a logbook with two observations of NGC 224 and one CCD row.
void MakeLogbook(const std::filesystem::path& path);
// Creates AstComet.mdb or ccdimages.mdb with one row.
void MakeAstComet(const std::filesystem::path& path);
void MakeCcdImages(const std::filesystem::path& path);

long CountRows(data::Database& db, const std::string& table);

// The first column of the first row of a query; "<none>" without a row.
inline std::string One(data::Database& db, const std::string& sql)
{
    auto rs = db.OpenRecordset(sql, data::Snapshot);
    return rs.Eof() ? std::string("<none>") : rs.Fields(0).Value();
}

// The rows of a query, each as "value|value|..." with null as "<null>".
inline std::vector<std::string> Rows(data::Database& db, const std::string& sql)
{
    std::vector<std::string> rows;
    for (auto rs = db.OpenRecordset(sql, data::Snapshot); !rs.Eof(); rs.MoveNext()) {
        std::string row;
        for (int i = 0; i < rs.FieldCount(); ++i)
            row += (i ? "|" : "") + (rs.Fields(i).IsNull() ? "<null>" : rs.Fields(i).Value());
        rows.push_back(row);
    }
    return rows;
}

// Every row of every table, each prefixed with its table (SQLite's own tables left out).
inline std::multiset<std::string> Dump(data::Database& db)
{
    std::multiset<std::string> rows;
    for (const std::string& table : Rows(db, "Select name From sqlite_master Where type = 'table' "
                                             "And substr(name, 1, 7) <> 'sqlite_'"))
        for (const std::string& row : Rows(db, "Select * From [" + table + "]"))
            rows.insert(table + ": " + row);
    return rows;
}

} // namespace testing_data
