#pragma once
// Real SQLite files for the data tests: a program folder in a temporary directory holding an
// object database and a logbook with a few known rows.

#include "data/Database.h"
#include "data/ProgramDir.h"

#include <QTemporaryDir>

#include <memory>

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

} // namespace testing_data
