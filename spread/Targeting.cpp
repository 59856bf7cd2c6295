#include "spread/Targeting.h"

#include "astro/Position.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/Grid.h"
#include "spread/Plans.h"

#include <cmath>

namespace spread {

namespace vb = services::vb;

namespace {

// A triple read from texts whose first field carries the sign: the sign goes to the first
// non-zero field, as CalcAngSep reads a triple.
astro::Dms Signed(std::string_view first, std::string_view minutes, std::string_view seconds)
{
    astro::Sexagesimal s;
    s.degrees = std::fabs(vb::Val(first));
    s.minutes = std::fabs(vb::Val(minutes));
    s.seconds = std::fabs(vb::Val(seconds));
    s.sign = vb::Trim(first).starts_with('-') ? '-' : '+';
    return astro::SignPush(s);
}

std::string_view Last(std::string_view text, std::size_t count)
{
    return text.size() > count ? text.substr(text.size() - count) : text;
}

} // namespace

void SetHome(Targeting& target, const Grid& grid, int row, services::UiPort& ui)
{
    services::Trap(ui, SetHomeLocation, [&] {
        if (row < 1 || row > grid.MaxRows())
            return;
        target.TargetObjectID = std::string(grid.Text(row, kObjectIdCol));
        target.TargetCatalog = std::string(grid.Text(row, kCatalogCol));
        target.TargetRA = std::string(grid.Text(row, 7));
        target.TargetDec = std::string(grid.Text(row, 8));
        if (!target.HomeHintShown) {
            target.HomeHintShown = true;
            ui.ShowMessage(HomeHintText, HomeHintTitle, "I");
        }
    });
}

astro::Hms SplitRaText(std::string_view ra)
{
    return {vb::Val(vb::Mid(ra, 1, 2)), vb::Val(vb::Mid(ra, 4, 2)), vb::Val(Last(ra, 4))};
}

astro::Dms SplitDecText(std::string_view dec)
{
    return Signed(vb::Mid(dec, 1, 3), vb::Mid(dec, 5, 2), Last(dec, 4));
}

TargetCentre CentreOfDecimal(double raHours, double decDeg)
{
    const astro::Sexagesimal ra = astro::ConvertFromDecimal(raHours);
    return {{ra.degrees, ra.minutes, ra.seconds},
            astro::SignPush(astro::ConvertFromDecimal(decDeg))};
}

std::optional<TargetCentre> TargetCentreOf(Targeting& target)
{
    if (target.TargetIsScope && target.ScopeEnabled && target.ScopeEnabled()) {
        if (!target.TargetPositionRead) {
            const std::optional<std::pair<double, double>> read =
                target.ReadScope ? target.ReadScope() : std::nullopt;
            if (!read)
                return std::nullopt;
            target.scopeRaHours = read->first;
            target.scopeDecDeg = read->second;
            target.TargetPositionRead = true;
        }
        return CentreOfDecimal(target.scopeRaHours, target.scopeDecDeg);
    }
    return TargetCentre{SplitRaText(target.TargetRA), SplitDecText(target.TargetDec)};
}

double SeparationFrom(const TargetCentre& centre, const astro::Hms& ra, const astro::Dms& dec,
                      astro::FaultSink& faults)
{
    return astro::CalcAngSep(centre.ra, centre.dec, ra, dec, faults);
}

double GetSeparation(Targeting& target, std::string_view ra, std::string_view dec,
                     astro::FaultSink& faults)
{
    const std::optional<TargetCentre> centre = TargetCentreOf(target);
    return centre ? SeparationFrom(*centre, SplitRaText(ra), SplitDecText(dec), faults) : 0;
}

data::ObjectFilter FilterForSql(const Targeting& target, data::ObjectFilter filter)
{
    if (target.TargetingOn) {
        filter.gSepL.clear();
        filter.gSepH.clear();
    }
    return filter;
}

SeparationLimits SeparationLimitsOf(const data::ObjectFilter& filter)
{
    SeparationLimits limits;
    if (!vb::Trim(filter.gSepL).empty())
        limits.low = vb::Val(filter.gSepL);
    if (!vb::Trim(filter.gSepH).empty())
        limits.high = vb::Val(filter.gSepH);
    return limits;
}

TargetLabels TargetLabelsOf(const Targeting& target, bool chkScopeHome)
{
    TargetLabels labels;
    if (chkScopeHome) {
        labels.captionHome = TelescopeText;
        return labels;
    }
    labels.captionHome = "ObjectID:";
    labels.captionCatalog = "Catalog:";
    labels.captionRa = "RA:";
    labels.captionDec = "Dec:";
    if (target.TargetObjectID.empty()) {
        labels.lblHome = NoTargetText;
        return labels;
    }
    labels.lblHome = target.TargetObjectID;
    labels.lblCatalog = target.TargetCatalog;
    labels.lblra = target.TargetRA;
    labels.lblDec = target.TargetDec;
    return labels;
}

bool cmdTurn_Click(Targeting& target, bool chkScopeHome, services::UiPort& ui)
{
    if (chkScopeHome && !(target.ScopeEnabled && target.ScopeEnabled())) {
        ui.ShowMessage(ScopeNotEnabledText, ScopeNotEnabledTitle, "E");
        return false;
    }
    target.TargetIsScope = chkScopeHome;
    target.TargetingOn = !target.TargetingOn;
    target.TargetPositionRead = false;
    return true;
}

std::string TurnCaption(const Targeting& target)
{
    return target.TargetingOn ? TurnOffCaption : TurnOnCaption;
}

std::string OnOffText(const Targeting& target)
{
    return target.TargetingOn ? TargetingOnText : TargetingOffText;
}

} // namespace spread
