#pragma once
// The spreadsheet's own operations around a grid load: the status band texts, the filter
// controls from the settings, refresh and apply, and the three timers of the real-time mode.
// The windows read the texts from TMM.status and TMM.controls; the QTimers belong to the window,
// which calls the tick routines here.

#include "astro/ObservingClock.h"
#include "spread/AppState.h"
#include "spread/LoadTheGrid.h"

#include <string>

namespace spread {

inline constexpr const char* RecordModeMisc = "RECORD MODE";
inline constexpr const char* PrecessedMisc = "Object Positions Precessed to : ";

// UpdateStatusBar: TMM.status's date, time, latitude, longitude and miscellaneous texts.
// Given: TMM (PDate, Ptime, UseRealTime, Plat, PLon, PTz, PPre, the regional formats);
//   computerClock, for date and time when UseRealTime is "Y"; recordMode, the current tab's
//   plan is open.
// Notes: latitude and longitude read degrees, the degree sign, minutes, the minute sign,
//   seconds and the second sign, each part "00", with "-" in front of a negative value.
void UpdateStatusBar(AppState& TMM, const astro::Clock& computerClock, bool recordMode);
// The same for the current tab: record mode when its plan is open.
void UpdateStatusBar(AppState& TMM, const astro::Clock& computerClock);

// The filter labels lblCatDes, lblConst, lblType from ObCat, Obcon, Obtod ("All Catalogs",
// "All Constellations", "All Types" for an empty one), and their decoded selections.
void SetFilterLabels(AppState& TMM);
// SetSortOptions: the three sort combos and their check boxes from sort1..sort3, Des1..Des3.
void SetSortOptions(AppState& TMM);
// The azimuth boxes from PAzm1..PAzm4 (a value of exactly 0 leaves a box empty), chkOptimum,
// chkTimes and txtInterval.
void FillFilterBoxes(AppState& TMM);
// RefreshPref: every filter control (TMM.controls) from the settings: the three above.
void RefreshPref(AppState& TMM);

// The box text of an azimuth limit: empty for exactly 0, else the number.
std::string AzimuthBoxText(double azimuthDeg);

// RefreshIt: the last finished load's SQL again on the current tab, "NOBUILD": same query, new
// positions. Before any load the current SQL stands.
void RefreshIt(AppState& TMM, GridLoad& load, const astro::Clock& computerClock);

// ApplyIt: once the first load has been requested, a load of the current tab from the filter
// ("BUILD"); before that nothing.
void ApplyIt(AppState& TMM, GridLoad& load, const astro::Clock& computerClock);

// sscommandRefresh_Click: on a spreadsheet tab the grid's tag cleared, the status band and the
// filter controls refreshed, and, once the first load has been requested, a "BUILD" load; on
// an image tab the image list (which arrives with the image gallery; nothing yet).
void sscommandRefresh_Click(AppState& TMM, GridLoad& load, const astro::Clock& computerClock);


} // namespace spread
