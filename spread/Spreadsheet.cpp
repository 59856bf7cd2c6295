#include "spread/Spreadsheet.h"

#include "astro/Time.h"
#include "services/Vb.h"

namespace spread {
namespace {

// Degrees, minutes and seconds of an angle, each "00", with their signs.
std::string DegreesMinutesSeconds(double angleDeg)
{
    using services::vb::Format;
    const astro::Sexagesimal s = astro::ConvertFromDecimal(angleDeg);
    return std::string(s.sign == '-' ? "-" : "") + Format(s.degrees, "00") + "\u00B0" +
           Format(s.minutes, "00") + "'" + Format(s.seconds, "00") + "\"";
}

QDate DateOf(const astro::LocalDateTime& now)
{
    return QDate(now.year, now.month, now.day);
}

QTime TimeOf(const astro::LocalDateTime& now)
{
    return QTime(now.hour, now.minute, now.second);
}

bool RealTime(const data::Preferences& p)
{
    return p.UseRealTime == "Y";
}

void LoadCurrentTab(AppState& TMM, LoadMode mode, GridLoad& load,
                    const astro::Clock& computerClock)
{
    // An image tab holds no grid; LoadTheGrid refuses it too, but the grid must exist.
    if (TMM.CurrTab < 0 || TMM.CurrTab >= kSpreadTabs)
        return;
    LoadTheGrid(TMM, TMM.grids[static_cast<std::size_t>(TMM.CurrTab)], mode, load,
                computerClock);
}

// LoadImageList: the image gallery of tabs 5 and 6 arrives with its own subsystem.
void LoadImageList(AppState&) {}

} // namespace

void UpdateStatusBar(AppState& TMM, const astro::Clock& computerClock, bool recordMode)
{
    const data::Preferences& p = TMM.prefs;
    StatusBand& s = TMM.status;
    if (RealTime(p)) {
        const astro::LocalDateTime now = computerClock.Now();
        s.lblDate = "Date: " + services::vb::ShortDate(DateOf(now), data::RegionalOf(p));
        s.lblTime = "Time: " + services::vb::LongTime(TimeOf(now));
    } else {
        // A blank plan date means today, and the list is computed for today: say so.
        s.lblDate = "Date: " + (services::vb::Trim(p.PDate).empty()
                                    ? services::vb::ShortDate(DateOf(computerClock.Now()),
                                                              data::RegionalOf(p))
                                    : p.PDate);
        s.lblTime = "Time: " + p.Ptime;
    }
    s.lblLat = "Lat: " + DegreesMinutesSeconds(p.Plat);
    s.lblLong = "Lon: " + DegreesMinutesSeconds(p.PLon) + "  Time Zone : " +
                services::vb::Format(p.PTz, "General Number");
    if (recordMode)
        s.lblMisc = RecordModeMisc;
    else if (!services::vb::Trim(p.PPre).empty())
        s.lblMisc = PrecessedMisc + p.PPre;
    else
        s.lblMisc.clear();
}

std::string AzimuthBoxText(double azimuthDeg)
{
    return azimuthDeg == 0 ? std::string() : services::vb::Format(azimuthDeg, "General Number");
}

void SetFilterLabels(AppState& TMM)
{
    FilterControls& c = TMM.controls;
    c.filter = data::FilterFromPreferences(TMM.prefs);
    c.catalogs = data::DecodeDesc(c.filter.ObCat, data::DescTag::Catalogs);
    c.constellations = data::DecodeDesc(c.filter.Obcon, data::DescTag::Constellations);
    c.types = data::DecodeDesc(c.filter.Obtod, data::DescTag::Types);
}

void SetSortOptions(AppState& TMM)
{
    const data::Preferences& p = TMM.prefs;
    TMM.controls.sorts =
        data::SetSortOptions({p.sort1, p.sort2, p.sort3}, {p.Des1, p.Des2, p.Des3});
}

void FillFilterBoxes(AppState& TMM)
{
    const data::Preferences& p = TMM.prefs;
    FilterControls& c = TMM.controls;
    c.txtazm = {AzimuthBoxText(p.PAzm1), AzimuthBoxText(p.PAzm2), AzimuthBoxText(p.PAzm3),
                AzimuthBoxText(p.PAzm4)};
    c.chkOptimum = p.optimum;
    c.chkTimes = p.timesAMPM;
    c.txtInterval = std::to_string(p.PInterval);
}

void UpdateStatusBar(AppState& TMM, const astro::Clock& computerClock)
{
    const bool recordMode = TMM.CurrTab >= 0 && TMM.CurrTab < kPlanTabs &&
                            TMM.plans[static_cast<std::size_t>(TMM.CurrTab)].PlanActive;
    UpdateStatusBar(TMM, computerClock, recordMode);
}

void RefreshPref(AppState& TMM)
{
    SetFilterLabels(TMM);
    SetSortOptions(TMM);
    FillFilterBoxes(TMM);
}

void RefreshIt(AppState& TMM, GridLoad& load, const astro::Clock& computerClock)
{
    if (!TMM.lastLoadSql.empty())
        TMM.SQL = TMM.lastLoadSql;
    LoadCurrentTab(TMM, LoadMode::NoBuild, load, computerClock);
}

void ApplyIt(AppState& TMM, GridLoad& load, const astro::Clock& computerClock)
{
    if (!TMM.NoLoadYet)
        LoadCurrentTab(TMM, LoadMode::Build, load, computerClock);
}

void sscommandRefresh_Click(AppState& TMM, GridLoad& load, const astro::Clock& computerClock)
{
    if (TMM.CurrTab < 0 || TMM.CurrTab >= kSpreadTabs) {
        LoadImageList(TMM);
        return;
    }
    TMM.grids[static_cast<std::size_t>(TMM.CurrTab)].SetTag({});
    UpdateStatusBar(TMM, computerClock);
    RefreshPref(TMM);
    if (!TMM.NoLoadYet)
        LoadCurrentTab(TMM, LoadMode::Build, load, computerClock);
}

} // namespace spread
