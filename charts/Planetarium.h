#pragma once
// The planetarium bridge: a chart sent to an outside planetarium program instead of our own
// chart window. Two programs are spoken to: Cartes du Ciel through its TCP command server
// (CR LF lines, one reply a line) and Stellarium through the form POSTs of its Remote Control
// plugin. The calls keep the names of the chart bridge: CDC_SetObservatory and CDC_SetDate set
// the site and moment, CDC_DrawChart or CDC_CenterOnConst open a chart, CDC_PlotDSO adds objects
// and CDC_EndChart sends the whole chart in one exchange. All positions are J2000.
//
// Which program: the setting `planetarium`, "cdc://HOST:PORT" (blank: cdc://127.0.0.1:3292) or
// "stellarium://HOST:PORT"; the program file: the setting `CartesPath`, or `skychart` or
// `stellarium` on PATH.

#include "astro/ObservingClock.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace charts {

enum class PlanetariumKind { CartesDuCiel, Stellarium };

struct PlanetariumAddress
{
    PlanetariumKind kind = PlanetariumKind::CartesDuCiel;
    std::string host = "127.0.0.1"; // without brackets
    int port = 3292;
};

// The setting `planetarium`. Blank: Cartes du Ciel on 127.0.0.1:3292. "cdc://HOST" and
// "stellarium://HOST" take the programs' own ports, 3292 and 8090. Anything else: nothing.
std::optional<PlanetariumAddress> ParsePlanetarium(std::string_view setting);

// "cdc://127.0.0.1:3292", "stellarium://[::1]:8090": the address as the setting writes it.
std::string PlanetariumUrl(const PlanetariumAddress& address);

// "Cartes du Ciel" or "Stellarium", as messages name the program.
std::string PlanetariumName(PlanetariumKind kind);

// The program file of the planetarium: `CartesPath` when it names an executable file (or a
// folder holding `skychart` or `stellarium`), otherwise that name in a folder of path (the
// PATH text, folders separated by ':'). Empty when none is found.
std::filesystem::path FindPlanetariumProgram(PlanetariumKind kind, std::string_view cartesPath,
                                             std::string_view path);

// The observing site as the bridge sends it.
struct PlanetariumSite
{
    double Plat = 0;        // degrees, north positive
    double Plon = 0;        // degrees, WEST positive
    double PTz = 0;         // hours added to local time to give Universal Time
    std::string PStd = "S"; // "S" standard time; anything else: daylight time, one hour on
    std::string name = "Selvane";
};

// One object of a chart.
struct PlanetariumObject
{
    std::string ObjectID;
    double raHours = 0;    // J2000
    double decDegrees = 0; // J2000
    std::string label;     // Messier number or other name; blank: ObjectID
};

// Everything one chart sends.
struct PlanetariumChart
{
    PlanetariumSite site;
    astro::LocalDateTime moment; // civil time of the site's zone, to the minute
    double raHours = 0;          // centre, J2000
    double decDegrees = 0;
    double field = 35;         // degrees across; sent whole, clamped to 1..180
    std::string heading;       // `TCaption`
    std::string constellation; // set by CDC_CenterOnConst: its three letters
    std::vector<PlanetariumObject> objects;
};

// What the program answered, or that it did not. what() is the message for the user: it names
// the program, the address and the answer.
class PlanetariumError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Gathers a chart between CDC_DrawChart (or CDC_CenterOnConst) and CDC_EndChart, then sends it.
class Planetarium
{
public:
    virtual ~Planetarium() = default;

    void CDC_SetObservatory(const PlanetariumSite& site) { chart_.site = site; }
    // The computer clock, to the minute: seconds are dropped.
    void CDC_SetDate(const astro::LocalDateTime& moment);
    // Starts a chart on a centre; the objects plotted before are dropped.
    void CDC_DrawChart(double raHours, double decDegrees, double field, std::string heading);
    // As CDC_DrawChart on a constellation: its first three letters, and its centre as the
    // caller's constellation table gives it.
    void CDC_CenterOnConst(std::string_view constellation, double raHours, double decDegrees,
                           double field, std::string heading);
    void CDC_PlotDSO(PlanetariumObject object);
    // Sends the chart gathered since CDC_DrawChart. Throws PlanetariumError; the chart stays
    // gathered, so that it can be sent again.
    void CDC_EndChart() { Send(chart_); }

    const PlanetariumChart& Chart() const { return chart_; }

protected:
    virtual void Send(const PlanetariumChart& chart) = 0;

private:
    PlanetariumChart chart_;
};

// Cartes du Ciel's command server. listFile is where the object list goes (an absolute path
// the program can read); timeout bounds the connection and each reply.
std::unique_ptr<Planetarium> MakeCartesDuCiel(const PlanetariumAddress& address,
                                              std::filesystem::path listFile,
                                              std::chrono::milliseconds timeout);

// Stellarium's Remote Control plugin; timeout bounds each request.
std::unique_ptr<Planetarium> MakeStellarium(const PlanetariumAddress& address,
                                            std::chrono::milliseconds timeout);

// The bridge of the setting's program.
std::unique_ptr<Planetarium> MakePlanetarium(const PlanetariumAddress& address,
                                             std::filesystem::path listFile,
                                             std::chrono::milliseconds timeout);

// The texts that go on the wire, for the two programs and the tests.
// SETOBS argument: "LAT:+41d52m48sLON:+087d37m48sALT:0mOBS:Selvane", whole arc seconds.
std::string CdcObservatory(const PlanetariumSite& site);
// SETTZ argument: "UTC-4", "UTC+5:30", "UTC+0".
std::string CdcTimeZone(const PlanetariumSite& site);
// Julian Day (UT) of a civil moment of the site's zone.
double JulianDayUT(const astro::LocalDateTime& moment, const PlanetariumSite& site);
// "5h35m17.30s" and "-5d23m28.0s".
std::string StellariumRa(double raHours);
std::string StellariumDec(double decDegrees);

} // namespace charts
