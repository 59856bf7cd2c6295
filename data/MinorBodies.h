#pragma once
// The comets and asteroids of "AstComet.mdb" (tables Comet and Asteroids), and the import of
// current elements from the Minor Planet Center's two text formats: "CometEls.txt" (one comet
// a line) and "MPCORB.DAT" (one minor planet a line, after an optional header ending in a
// dashed line). Angles are degrees, J2000.0 ecliptic.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace data {

inline constexpr const char* AstCometFileName = "AstComet.mdb";

// A row of Comet.
struct CometRow
{
    std::string Name;
    double tyear = 0, tmonth = 0, tday = 0; // time of perihelion, tday with its fraction
    double q = 0, e = 0, i = 0, ArgPeri = 0, ascnode = 0;
    std::optional<double> Mag; // absolute magnitude H
    std::optional<double> K;   // magnitude slope
    double EPOCH = 2000;       // equinox of the elements

    bool operator==(const CometRow&) const = default;
};

// A row of Asteroids.
struct AsteroidRow
{
    double Anumb = 0;
    std::string Name;
    double eyear = 0, emonth = 0, eday = 0; // epoch of the elements
    double a = 0, e = 0, i = 0, M = 0, Node = 0, omega = 0;
    std::optional<double> g; // absolute magnitude H
    std::optional<double> h; // slope parameter G

    bool operator==(const AsteroidRow&) const = default;
};

enum class MinorBodyKind
{
    Comet,
    Asteroid
};

// The names of a table in table order (rowid), for the comet window's list.
// Status: throws services::Fault when the file cannot be opened or read.
std::vector<std::string> MinorBodyNames(const std::filesystem::path& astComet, MinorBodyKind kind);

// The first row (in table order) whose Name equals name without regard to case; nothing when
// there is none. Status: as MinorBodyNames.
std::optional<CometRow> FindComet(const std::filesystem::path& astComet, std::string_view name);
std::optional<AsteroidRow> FindAsteroid(const std::filesystem::path& astComet,
                                        std::string_view name);

// The readers of the two formats. Lines are counted from 1, all of them; a line may end in
// "\n" or "\r\n". A bad line refuses the whole text.
struct CometFile
{
    std::vector<CometRow> rows;
    std::string refusal; // empty when read; else, e.g.
    // CometEls.txt line 17: the perihelion distance "0.8x7" is not a number
};
struct AsteroidFile
{
    std::vector<AsteroidRow> rows;
    std::string refusal;
};
// fileName: the file's name as the refusal shows it (the base name of the path).
CometFile ReadCometEls(std::string_view text, std::string_view fileName);
AsteroidFile ReadMpcorb(std::string_view text, std::string_view fileName);

// What an import did: element lines read, rows added, rows replaced; or why it refused.
struct ImportResult
{
    long lines = 0;
    long added = 0;
    long replaced = 0;
    std::string refusal; // empty on success; nothing was written otherwise
};

// Reads file and merges its rows into the table of kind in astComet, in one transaction: a
// row whose Name exists (without regard to case) replaces that row, others are added.
// Status: a file that cannot be read, a refused file, or a database that cannot be written
//   gives a refusal naming the file (and the line); the tables stay as they were.
ImportResult ImportElements(const std::filesystem::path& astComet, MinorBodyKind kind,
                            const std::filesystem::path& file);

} // namespace data
