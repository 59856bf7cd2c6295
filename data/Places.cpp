#include "data/Places.h"

#include "data/Database.h"
#include "services/Vb.h"

#include <cmath>

namespace data {

std::vector<Place> LoadLocationList(Database& logbook)
{
    std::vector<Place> places;
    auto rs = logbook.OpenRecordset("Select * From Location Order By Place", Snapshot);
    auto name = rs.Fields("Place");
    auto lat = rs.Fields("Latitude");
    auto lon = rs.Fields("Longitude");
    auto tz = rs.Fields("TimeZone");
    for (; !rs.Eof(); rs.MoveNext())
        places.push_back(
            {services::vb::Trim(name.Text()), lat.Double(), lon.Double(), tz.Double()});
    return places;
}

std::vector<Place> LoadObservingSites(Database& logbook)
{
    std::vector<Place> sites;
    auto rs = logbook.OpenRecordset("Select * from ObservingSites", Snapshot);
    auto name = rs.Fields("ProfileName");
    auto lat = rs.Fields("Latitude");
    auto lon = rs.Fields("Longitude");
    auto eastWest = rs.Fields("EastWest");
    auto tz = rs.Fields("TimeZone");
    for (; !rs.Eof(); rs.MoveNext()) {
        const std::string side = services::vb::UCase(services::vb::Trim(eastWest.Text()));
        double longitude = lon.Double();
        if (side == "E")
            longitude = -std::fabs(longitude);
        else if (side == "W")
            longitude = std::fabs(longitude);
        sites.push_back({services::vb::Trim(name.Text()), lat.Double(), longitude, tz.Double()});
    }
    return sites;
}

} // namespace data
