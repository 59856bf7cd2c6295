#pragma once
// The places a preference window offers for the observing site: the shipped Location list and
// the observer's own ObservingSites, both in the logbook database.

#include <string>
#include <vector>

namespace data {

class Database;

// One place of the shipped Location list or one of the observer's ObservingSites.
// Latitude in degrees, positive north; longitude in degrees, positive west; time zone in hours
// behind Greenwich.
struct Place
{
    std::string name;
    double Latitude = 0;
    double Longitude = 0;
    double TimeZone = 0;
};

// The shipped places, "Select * From Location Order By Place", from the logbook database.
std::vector<Place> LoadLocationList(Database& logbook);
// The observer's sites, "Select * from ObservingSites": a longitude with EastWest "E" is east,
// with "W" west, whatever its sign; with neither it is taken as stored, positive west.
std::vector<Place> LoadObservingSites(Database& logbook);

} // namespace data
