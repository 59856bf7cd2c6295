#pragma once
// The computed columns of one row: atlas pages, precession to the observing date, the best
// time to observe, altitude and azimuth, rise and set, each behind its own switch, in that
// order. Safe to run for many rows at once on several threads when the fault sink is.

#include "astro/FaultSink.h"
#include "astro/ObservingClock.h"
#include "astro/Position.h"
#include "spread/GridRow.h"

namespace spread {

// What the hour angle, rise and set, and the best-time search take from the clock, worked out
// once for a load.
struct RowPlans
{
    astro::SkyPlan sky;
    astro::BestTimePlan best; // samples only when the best time is on
    const astro::Clock* computerClock = nullptr;
    int PInterval = 0;
    bool optimum = false;
};

RowPlans MakeRowPlans(const astro::ObservingClock& clock, const astro::Clock& computerClock,
                      int PInterval, bool optimum);

// ComputeColumns: fills computed from the row's stored position.
// Given: options (the switches; nothing runs in turbo mode), clock and computerClock (the
//   observing clock and site), epochYear (EPOCH of the record), position (the stored one).
// Returned: position becomes the precessed one when precession runs; computed holds altitude
//   and azimuth rounded to 2 decimals and the column texts.
// Status: a fault inside an astronomy routine goes to faults and ends the row's computing: the
//   columns not yet computed stay empty (computed.cutShort), so that nothing the fault left
//   behind is computed with.
// Notes: the routines run through the plans of options.plans, made by the first row (under
//   real time the computer clock is read then, once per load); a call with another clock than
//   the first makes its own.
void ComputeColumns(const RowOptions& options, const astro::ObservingClock& clock,
                    const astro::Clock& computerClock, double epochYear, Position& position,
                    ComputedColumns& computed, astro::FaultSink& faults);

} // namespace spread
