#pragma once
// The tables and fields of every database file of the system, created on an empty SQLite file.
// Text columns compare without regard to case (COLLATE NOCASE); Yes/No fields hold -1 and 0;
// dates are ISO texts (YYYY-MM-DD), times HH:MM:SS.

#include <sqlite3.h>

namespace data {

enum class SchemaKind
{
    ObjectDatabase, // SelvPro708000.mdb, SelvPro13000.mdb: SelvaneTable, ObjectImages, CatalogLookup
    Logbook,        // Logbook2003-1.mdb: the user's observations and lists
    AstComet,       // AstComet.mdb: Comet, Asteroids
    CcdImages,      // ccdimages.mdb: ccd_data2
};

// Creates every table, view and index of one kind of file inside one transaction.
// Given: db, an open read-write connection; kind, which file it is.
// Status: throws services::Fault with SQLite's message when a statement fails; the file is left
// as it was.
// Notes: existing tables are kept (CREATE ... IF NOT EXISTS), so running it twice is harmless.
void CreateSchema(sqlite3* db, SchemaKind kind);

} // namespace data
