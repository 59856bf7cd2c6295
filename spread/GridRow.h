#pragma once
// One row of an object list: from one record's field values and the row's computed columns to
// the 31 tab-separated cell texts, with the row filters that SQL cannot make. This is the hot
// path of a grid load; it allocates nothing once the caller's row buffer has grown.
//
// Positions are sexagesimal triples: right ascension hours, minutes, seconds; declination
// degrees, minutes, seconds with the sign on the first non-zero field (or on the minutes of a
// stored -0 degrees).

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "astro/ObservingClock.h"
#include "astro/Position.h"
#include "services/Vb.h"

namespace spread {

// A short text held in place (a time, a page), so that a row's results never allocate.
template <std::size_t N> struct FixedText
{
    char data[N] = {};
    std::uint8_t size = 0;

    std::string_view View() const { return {data, size}; }
    bool Empty() const { return size == 0; }
    void Assign(std::string_view text)
    {
        size = static_cast<std::uint8_t>(text.size() < N ? text.size() : N);
        std::memcpy(data, text.data(), size);
    }
};

// A number field that may be null.
struct NumberField
{
    double value = 0;
    bool null = true;

    static NumberField Of(double v) { return {v, false}; }
};

// The fields of one record that the grid shows, as LoadTheGrid binds them.
struct ObjectRecord
{
    std::string_view ObjectID, OtherID, ObjectType, constellation, MCode, Description, Catalog,
        ImageFile, HObject;
    NumberField RAhours, RAminutes, DeclinationDegrees, DeclinationMinutes, ObjectSize, Magnitude,
        Magnitude2, EPOCH, GalacticLongitude, GalacticLatitude, PositionAngle, Separation;
    long long ID = 0;
    // The answer for the "obs" column: the Observed field, or a logbook row for the object.
    bool Observed = false;
    // The "pln" column: " ", "X" or "X*" from the tab's plan.
    std::string_view planMark = " ";
    // The distance to the home target when one is set ("Sep" then shows it).
    NumberField targetSeparation;
};

struct Position
{
    double raHours = 0, raMinutes = 0, raSeconds = 0;
    double decDegrees = 0, decMinutes = 0, decSeconds = 0;
};

// The stored position of a record: minutes split into whole minutes and seconds, seconds as
// (minutes - Int(minutes)) x 60. Nothing when RAhours is null (the row shows "n/a").
bool StoredPosition(const ObjectRecord& record, Position& position);

// What the computed columns produced for one row. Texts stay empty when their switch is off.
struct ComputedColumns
{
    double alt = 0; // degrees, rounded to 2 decimals
    double azm = 0; // degrees, rounded to 2 decimals
    FixedText<16> rise, transit, set;
    FixedText<8> skyAtlas, uranometria;
    FixedText<16> millennium;
    bool precessed = false;
    bool cutShort = false; // a trapped fault ended the computing: Alt and Azm stay empty
};

struct RowPlans;

// The astronomy plans (astro/Position.h) of one load's clock: made by the first row that needs
// them and then shared by every row and thread of the load (see ComputeColumns).
class RowPlanCache
{
public:
    RowPlanCache();
    ~RowPlanCache();
    RowPlanCache(const RowPlanCache&) = delete;
    RowPlanCache& operator=(const RowPlanCache&) = delete;

    // The plans for this clock, computer clock, step and best-time switch; made on the first
    // call. Nothing when a later call brings others.
    const RowPlans* Find(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                         int PInterval, bool optimum);

private:
    std::mutex mutex_;
    std::atomic<const RowPlans*> ready_{nullptr};
    std::unique_ptr<RowPlans> plans_;
};

// The settings of one load that the row needs, read once before the loop.
struct RowOptions
{
    bool speed1 = false;
    bool Palt = false;  // Palt is "Y"
    bool Prise = false; // Prise is "Y"
    bool optimum = false;
    bool ShowCharts = false;
    bool precess = false;  // PPre is set and not an empty mask
    std::string ppreYear;  // the year, month and day texts of PPre for Precession; the
    std::string ppreMonth; // year also for the "Epoch" column
    std::string ppreDay;
    astro::PrecessionPlan precession; // the target date of those texts, worked out once
    int PInterval = 10;

    // Row filters; they apply only when PlanLoad is clear.
    bool PlanLoad = false;
    bool hasMinAlt = false; // Pminalt is not blank
    double Pminalt = 0;
    double PAzm1 = 0, PAzm2 = 0, PAzm3 = 0, PAzm4 = 0;
    bool Psupo = false; // Psupo is "Y"
    bool Shers = false;

    char decimalPoint = '.';

    // Shared by the copies of these options, so one load's rows make the plans once.
    std::shared_ptr<RowPlanCache> plans = std::make_shared<RowPlanCache>();
};

// Reads the PPre text into the options: blank, the empty masks "__/__/____" and "__.__.____",
// and a text that is no date leave precession off; otherwise the date, read by the regional
// rule, gives the year, month and day.
void SetPrecessionDate(RowOptions& options, std::string_view PPre,
                       const services::vb::Regional& regional);

struct RowVerdict
{
    bool kept = false;
    bool gcvs = false; // the row's catalogue is "GCVS"
};

// Applies the row filters and, for a kept row, writes the 31 cell texts tab-separated into row
// (cleared first; its capacity is reused). noPosition: RAhours was null; shown: the position
// after precession.
RowVerdict WriteGridRow(const ObjectRecord& record, bool noPosition, const Position& shown,
                        const ComputedColumns& computed, const RowOptions& options,
                        std::string& row);

} // namespace spread
