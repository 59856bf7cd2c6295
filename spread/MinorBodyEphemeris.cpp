#include "spread/MinorBodyEphemeris.h"

#include "astro/Text.h"
#include "astro/Time.h"

#include <cmath>

namespace spread {

astro::EphemInput EphemInputOf(const data::CometRow& row)
{
    astro::EphemInput in;
    in.kind = "C";
    in.elementDate = astro::ElementDateText(row.tyear, row.tmonth, row.tday);
    in.q = row.q;
    in.e = row.e;
    in.i = row.i;
    in.Node = row.ascnode;
    in.peri = row.ArgPeri;
    in.equinox = row.EPOCH == 1950 ? 1 : 0;
    in.cometH = row.Mag;
    in.cometK = row.K;
    return in;
}

astro::EphemInput EphemInputOf(const data::AsteroidRow& row)
{
    astro::EphemInput in;
    in.kind = "A";
    in.elementDate = astro::ElementDateText(row.eyear, row.emonth, row.eday);
    in.M = row.M;
    in.e = row.e;
    in.a = row.a;
    in.i = row.i;
    in.Node = row.Node;
    in.peri = row.omega;
    in.asteroidH = row.g;
    in.asteroidG = row.h;
    return in;
}

namespace {

// The calendar date of a Julian Day of the years these texts show (1 to 9999), where no year
// overflows and so no fault can arise.
astro::CalendarDate DateOf(double jd)
{
    class NoFaults : public astro::FaultSink
    {
        void ReportFault(std::string_view, std::string_view) override {}
        void EndProcess(int) override {}
    } faults;
    return astro::JDToCalendar(jd, faults);
}

// A Julian Day to the nearest minute: the calendar date of its midnight and the minutes after.
struct MinuteOfDay
{
    astro::CalendarDate date;
    long minute = 0;
};

MinuteOfDay ToMinute(double jd)
{
    const double minutes = std::floor((jd + 0.5) * 1440 + 0.5);
    const double day = std::floor(minutes / 1440);
    return {DateOf(day - 0.5), static_cast<long>(minutes - day * 1440)};
}

} // namespace

std::string StartTextOf(double jd)
{
    const astro::CalendarDate date = DateOf(jd);
    return astro::ElementDateText(date.year, date.month, date.day);
}

std::string StepTimeText(double jd)
{
    const MinuteOfDay m = ToMinute(jd);
    return astro::FixedText(m.date.year, 4, 0) + "-" + astro::FixedText(m.date.month, 2, 0) + "-" +
           astro::FixedText(std::floor(m.date.day), 2, 0) + " " +
           astro::FixedText(m.minute / 60, 2, 0) + ":" + astro::FixedText(m.minute % 60, 2, 0);
}

} // namespace spread
