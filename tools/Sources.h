#pragma once
// Readers of the offline catalogue files the database builder turns into the shipped databases:
// small CSV tables, the NGC/IC list (SQLite), the deep-sky catalogue of the planetarium data
// (gzip-compressed big-endian data stream), its name list, the Hipparcos variable and double star
// lists, the binary star files (for positions by HD number), the places list and the comet and
// asteroid element lists (JSON). Positions are J2000.0, angles in degrees unless named otherwise.
// Every reader throws services::Fault naming the file when it cannot be read.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tools {

// A comma-separated table whose first non-comment line names the columns; lines starting
// with "#" are comments (the source line of a copied table).
struct CsvTable
{
    std::vector<std::string> header;
    std::vector<std::vector<std::string>> rows;
    // Index of a column; throws when the table has no such column.
    std::size_t Column(const std::string& name) const;
    std::string path;
};
CsvTable ReadCsv(const std::string& path);

// Whole content of a gzip-compressed file.
std::string ReadGzipFile(const std::string& path);

// One row of the NGC/IC list.
struct NgcIcObject
{
    std::string name;       // "NGC 224", "IC 434", "M 31" (Messier rows name the NGC in identifier)
    std::string identifier; // "NGC0224", "IC0434", "NGC0061A", "M 40"
    int type = 255;         // the list's own type number
    double raDeg = 0;
    double decDeg = 0;
    std::optional<double> magnitude;
    std::optional<double> majorAxisArcmin;
    std::optional<double> positionAngleDeg;
    std::string longName; // common names and cross-identifications, comma-separated
};
std::vector<NgcIcObject> ReadNgcIcList(const std::string& path);

// "NGC0224" -> "NGC 224", "IC0186A" -> "IC 186A", "M 40" -> "M 40".
std::string DesignationFromIdentifier(const std::string& identifier);

// One record of the planetarium's deep-sky catalogue. Numbers are 0 and texts empty where the
// object is not in that catalogue; magnitudes of 99 mean none.
struct DeepSkyRecord
{
    std::uint32_t id = 0;
    double raRad = 0, decRad = 0;
    double bMag = 99, vMag = 99;
    std::uint32_t type = 0;
    std::string morphology;
    double majorAxisDeg = 0, minorAxisDeg = 0;
    std::uint32_t positionAngle = 0;
    std::uint32_t NGC = 0, IC = 0, M = 0, C = 0, B = 0, Sh2 = 0, VdB = 0, RCW = 0, LDN = 0, LBN = 0,
                  Cr = 0, Mel = 0, PGC = 0, UGC = 0;
    std::string Ced;
    std::uint32_t Arp = 0, VV = 0;
    std::string PK, PNG, SNRG, ACO, HCG, ESO, VdBH;
    std::uint32_t DWB = 0, Tr = 0, St = 0, Ru = 0, VdBHa = 0;
};
// Parses the decompressed stream; throws when it ends inside a record or has a wrong header.
std::vector<DeepSkyRecord> ParseDeepSkyCatalog(const std::string& bytes, const std::string& path);

// Common names by "PREFIX|number", prefix upper-cased ("NGC|224" -> "Andromeda Galaxy"); the
// first name of an object wins.
std::map<std::string, std::string> ReadDeepSkyNames(const std::string& path);

// Hipparcos number -> HD number.
std::unordered_map<int, int> ReadHipToHd(const std::string& path);

struct CatalogStar
{
    double raDeg = 0;
    double decDeg = 0;
    double magnitude = 0;
};
// Stars of the binary star files, by HD number (stars without one are skipped); adds to stars.
void ReadBinaryStars(const std::string& path, std::unordered_map<int, CatalogStar>& stars);

struct VariableStar
{
    int hip = 0;
    std::string name; // "R And"
    std::string type; // "M"
    std::optional<double> maxMagnitude, minMagnitude;
    std::optional<double> epochOfMaximum; // JD - 2400000
    std::optional<double> periodDays;
    std::optional<double> durationPercent;
    std::string spectrum;
};
std::vector<VariableStar> ReadVariableStars(const std::string& path);

struct DoubleStar
{
    int hip = 0;
    std::string wds; // "00000+3852"
    std::optional<double> positionAngleDeg;
    std::optional<double> separationArcsec;
};
std::vector<DoubleStar> ReadDoubleStars(const std::string& path);

// "dd° mm' ss\"" with the sign on the degrees ("-0° 30' 00\"" is -0.5); nullopt when unreadable.
std::optional<double> ParseDegreesText(const std::string& text);

struct Place
{
    std::string place;        // "Name, Province, Country" (province left out when blank)
    double latitudeDeg = 0;   // north positive
    double longitudeDeg = 0;  // west positive
    double timeZoneHours = 0; // hours added to local standard time give UT
};
std::vector<Place> ReadPlaces(const std::string& path);

struct CometElements
{
    std::string name;
    int tyear = 0, tmonth = 0;
    double tday = 0;
    double q = 0, e = 0, i = 0, argPeri = 0, ascNode = 0;
    std::optional<double> mag, k;
};
// The minor-planet centre's comet list (JSON array).
std::vector<CometElements> ParseMpcComets(const std::string& json, const std::string& path);
// The small-body database's comet list (JSON object with "fields" and "data").
std::vector<CometElements> ParseJplComets(const std::string& json, const std::string& path);

struct AsteroidElements
{
    int number = 0; // 0 when unnumbered
    std::string name;
    int eyear = 0, emonth = 0;
    double eday = 0;
    double a = 0, e = 0, i = 0, m = 0, node = 0, omega = 0;
    std::optional<double> h, g;
};
std::vector<AsteroidElements> ParseJplAsteroids(const std::string& json, const std::string& path);

// "     1 Ceres (A801 AA)" -> 1, "Ceres"; "(2022 AB)" -> 0, "2022 AB"; "  433 Eros (A898 PA)".
std::pair<int, std::string> SplitAsteroidName(const std::string& fullName);

std::string ReadTextFile(const std::string& path);

} // namespace tools
