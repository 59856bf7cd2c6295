#pragma once
// The observing clock and site, and the computer clock, as the astronomy routines receive them.
// Nothing here is read from settings: the caller builds the value from its preferences.

#include <ctime>
#include <string>

namespace astro {

// The observer's clock and site, under the names of the settings they come from.
struct ObservingClock
{
    // "Y": the computer's clock gives date and time; anything else: PDate and Ptime do.
    std::string UseRealTime = "N";
    // Observing date as month/day/year (two- or four-digit year) or YYYY-MM-DD; blank: today.
    std::string PDate;
    // Observing time "hh:mm": hours are characters 1-2, minutes characters 4-5.
    std::string Ptime = "22:00";
    double Plat = 46.5; // latitude, degrees, north positive
    double Plon = 90.2; // longitude, degrees, WEST positive
    double PTz = 6.0;   // hours added to local time to give Universal Time
    // "S" standard time; anything else counts as daylight time.
    std::string PStd = "S";
    // Times on a 12-hour clock with " AM"/" PM"; false: 24-hour "hh:mm".
    bool timesAMPM = true;
};

// A local date and time of the computer's clock.
struct LocalDateTime
{
    int year = 2000;
    int month = 1; // 1-12
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// "The computer clock": where the routines learn the local date and time when real time is on.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual LocalDateTime Now() const = 0;
};

// The machine's local time.
class SystemClock : public Clock
{
public:
    LocalDateTime Now() const override
    {
        const std::time_t t = std::time(nullptr);
        std::tm tm{};
        localtime_r(&t, &tm);
        return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec};
    }
};

// A clock standing at a set moment, for tests and scripted runs.
class FixedClock : public Clock
{
public:
    explicit FixedClock(LocalDateTime now = {}) : now_(now) {}
    void Set(LocalDateTime now) { now_ = now; }
    LocalDateTime Now() const override { return now_; }

private:
    LocalDateTime now_;
};

} // namespace astro
