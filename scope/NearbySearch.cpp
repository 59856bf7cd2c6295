#include "scope/NearbySearch.h"

#include "astro/Constellation.h"
#include "data/Database.h"
#include "services/Fault.h"
#include "services/Vb.h"
#include "spread/PlanFile.h"
#include "spread/Plans.h"
#include "spread/PortFaults.h"

#include <algorithm>
#include <cmath>

namespace scope {

namespace vb = services::vb;

namespace {

const char* FormName(SearchWindow window)
{
    return window == SearchWindow::Identify ? "frmIdentify" : "frmNTOS";
}

// Which end of a range stands open: at its default it writes no comparison.
enum class OpenEnd {
    None,
    Low,
    High,
};

struct RangeField
{
    const char* field;
    double lowDefault;
    double highDefault;
    OpenEnd open;
};

double BoxValue(const std::string& box, double fallback)
{
    return vb::Trim(box).empty() ? fallback : vb::Val(box);
}

std::string NumberText(double value)
{
    return vb::Format(value, "");
}

// One range clause, as BuildSQLSelectString writes it; nothing while both boxes hold the full
// range. blanks: objects without a value pass too ("or isnull").
void AddRange(std::string& sql, bool& where, const RangeField& range, const std::string& lowBox,
              const std::string& highBox, bool blanks = false)
{
    const double low = BoxValue(lowBox, range.lowDefault);
    const double high = BoxValue(highBox, range.highDefault);
    if (low == range.lowDefault && high == range.highDefault)
        return;
    const std::string field = range.field;
    std::string text;
    if (!(range.open == OpenEnd::Low && low == range.lowDefault))
        text = field + " >= " + NumberText(low);
    if (!(range.open == OpenEnd::High && high == range.highDefault))
        text += (text.empty() ? "" : " and ") + field + " <= " + NumberText(high);
    if (blanks)
        text = "((" + text + (field == "ObjectSize" ? " )" : ")") + " or isnull(" + field + "))";
    sql += (where ? " and " : " WHERE ") + text + " ";
    where = true;
}

// A list clause: "(Field = 'a' or Field = 'b') ".
void AddList(std::string& sql, bool& where, const char* field,
             const std::vector<std::string>& values)
{
    if (values.empty())
        return;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i == 0)
            sql += std::string(where ? " and (" : " WHERE (") + field + " = '";
        else
            sql += std::string(" or ") + field + " = '";
        sql += vb::QuoteForSql(values[i]) + "' ";
    }
    sql += ") ";
    where = true;
}

bool BeginsAll(const std::string& label)
{
    return label.starts_with("All");
}

std::string TwoDigits(double value)
{
    return vb::Format(std::fabs(value), "00");
}

// A record's stored minutes as whole minutes and seconds.
void SplitMinutes(double minutes, double& whole, double& seconds)
{
    whole = vb::Int(minutes);
    seconds = (minutes - whole) * 60;
}

} // namespace

std::string SearchLocation(SearchWindow window, const char* routine)
{
    return std::string(FormName(window)) + "." + routine;
}

std::string BorderingSql(const std::string& constellation)
{
    return "Select Const, BConst from BConst Where Const = '" + vb::QuoteForSql(constellation) +
           "'";
}

std::vector<std::string> ReadBorderingConstellations(data::Database& logbook,
                                                     const std::string& constellation)
{
    std::vector<std::string> bordering;
    data::Recordset rs = logbook.OpenRecordset(BorderingSql(constellation), data::Snapshot);
    const data::Field field = rs.Fields("BConst");
    for (; !rs.Eof(); rs.MoveNext())
        bordering.push_back(vb::Trim(field.Text()));
    return bordering;
}

std::string BuildSQLSelectString2(const data::ObjectFilter& filter,
                                  const data::FilterLookups& lookups,
                                  const std::string& constellation,
                                  const std::vector<std::string>& bordering)
{
    std::string sql = "Select * From SelvaneTable ";
    bool where = false;

    if (!vb::Trim(filter.ObCat).empty() && !BeginsAll(filter.ObCat)) {
        std::vector<std::string> ids;
        for (const std::string& entry : data::DecodeDesc(filter.ObCat, data::DescTag::Catalogs))
            ids.push_back(data::GetCatalogID(lookups, entry));
        AddList(sql, where, "Catalog", ids);
    }

    std::vector<std::string> constellations{constellation};
    constellations.insert(constellations.end(), bordering.begin(), bordering.end());
    AddList(sql, where, "Constellation", constellations);

    if (!vb::Trim(filter.Obtod).empty() && !BeginsAll(filter.Obtod)) {
        std::vector<std::string> codes;
        for (const std::string& entry : data::DecodeDesc(filter.Obtod, data::DescTag::Types))
            codes.push_back(data::GetTypeID(lookups, entry));
        AddList(sql, where, "ObjectType", codes);
    }

    AddRange(sql, where, {"Magnitude", -1, 999, OpenEnd::High}, filter.gMagL, filter.gMagU,
             filter.PIB == "Y");
    AddRange(sql, where, {"Magnitude2", -1, 999, OpenEnd::High}, filter.gMagL2, filter.gMagU2,
             filter.PIB2 == "Y");
    AddRange(sql, where, {"ObjectSize", 0, 9999, OpenEnd::High}, filter.gSizeL, filter.gSizeU,
             filter.PIB3 == "Y");
    AddRange(sql, where, {"Separation", 0, 9999, OpenEnd::None}, filter.gSepL, filter.gSepH);
    AddRange(sql, where, {"PositionAngle", 0, 360, OpenEnd::High}, filter.gPAL, filter.gPAH);
    AddRange(sql, where, {"RAHours", 0, 24, OpenEnd::None}, filter.gFRAH, filter.gTRAH);
    AddRange(sql, where, {"DeclinationDegrees", -90, 90, OpenEnd::Low}, filter.gFDECD,
             filter.gTDECD);
    if (!vb::Trim(filter.gObjID).empty()) {
        sql += std::string(where ? " and " : " WHERE ") + "ObjectID Like '" +
               vb::QuoteForSql(vb::Trim(filter.gObjID)) + "' ";
        where = true;
    }
    if (!vb::Trim(filter.gOther).empty())
        sql += std::string(where ? " and " : " WHERE ") + "OtherID Like '" +
               vb::QuoteForSql(vb::Trim(filter.gOther)) + "' ";
    return sql;
}

SearchCentre CentreOfScope(double raHours, double decDeg)
{
    const spread::TargetCentre centre = spread::CentreOfDecimal(raHours, decDeg);
    return {centre.ra, centre.dec};
}

SearchCentre CentreOfTarget(const spread::Targeting& target)
{
    return {spread::SplitRaText(target.TargetRA), spread::SplitDecText(target.TargetDec)};
}

double CentreRaHours(const SearchCentre& centre)
{
    return astro::ConvertToDecimal(centre.ra.seconds, centre.ra.minutes, centre.ra.hours);
}

double CentreDecDeg(const SearchCentre& centre)
{
    return astro::ConvertToDecimal(centre.dec.seconds, centre.dec.minutes, centre.dec.degrees);
}

SearchStatus StatusTexts(SearchWindow window, const SearchCentre& centre,
                         const std::string& constellation)
{
    const std::string who = window == SearchWindow::Identify ? "Scope" : "Target";
    const bool south = centre.dec.degrees < 0 || centre.dec.minutes < 0 || centre.dec.seconds < 0;
    SearchStatus status;
    status.RAtext = who + " RA: " + TwoDigits(centre.ra.hours) + "h " +
                    TwoDigits(centre.ra.minutes) + "m " + TwoDigits(centre.ra.seconds) + "s";
    status.DECtext = who + " DEC: " + (south ? "-" : "") + TwoDigits(centre.dec.degrees) + "d " +
                     TwoDigits(centre.dec.minutes) + "m " + TwoDigits(centre.dec.seconds) + "s";
    status.Consttext = "Const: " + constellation;
    return status;
}

NearbySearch IdentifyObjects(spread::AppState& TMM, const SearchRequest& request)
{
    NearbySearch search;
    services::UiPort& ui = TMM.ui;
    const std::string location = SearchLocation(request.window, "IdentifyObjects");

    if (request.window == SearchWindow::NTOS) {
        if (TMM.target.TargetRA.empty()) {
            ui.ShowMessage(kNoTargetText, kNoTargetTitle, "I");
            return search;
        }
        search.centre = CentreOfTarget(TMM.target);
    } else {
        const std::optional<std::pair<double, double>> mount =
            request.ReadScope ? request.ReadScope() : std::nullopt;
        if (!mount)
            return search;
        search.centre = CentreOfScope(mount->first, mount->second);
    }

    spread::PortFaults faults(ui);
    const SearchStatus texts = StatusTexts(request.window, search.centre, "");
    // GetCon reads the status texts' digits: whole seconds are close enough for a boundary.
    const auto digits = [](const std::string& text) { return text.substr(text.find(':') + 2); };
    search.constellation =
        astro::GetCon(digits(texts.RAtext), digits(texts.DECtext), "2000", TMM.dir.path, faults)
            .abbreviation;
    search.status = StatusTexts(request.window, search.centre, search.constellation);

    std::string sql;
    const bool built =
        services::Trap(ui, SearchLocation(request.window, "BuildSQLSelectString2"), [&] {
            if (!TMM.objectDb)
                throw services::Fault("The database is not open.", location);
            std::vector<std::string> bordering;
            if (request.checkAdjacent && TMM.logbookDb)
                bordering = ReadBorderingConstellations(*TMM.logbookDb, search.constellation);
            sql = BuildSQLSelectString2(data::FilterFromPreferences(TMM.prefs),
                                        data::LoadFilterLookups(*TMM.objectDb),
                                        search.constellation, bordering);
        });
    if (!built)
        return search;

    const int tab = TMM.CurrTab >= 0 && TMM.CurrTab < spread::kSpreadTabs ? TMM.CurrTab : 0;
    const spread::TabPlan& plan = TMM.plans[static_cast<std::size_t>(tab)];
    std::vector<NearbyRow> rows;
    search.ran = services::Trap(ui, location, [&] {
        data::Recordset rs = TMM.objectDb->OpenRecordset(sql, data::Snapshot);
        const data::Field ra = rs.Fields("RAhours"), raMinutes = rs.Fields("RAminutes"),
                          dec = rs.Fields("DeclinationDegrees"),
                          decMinutes = rs.Fields("DeclinationMinutes"),
                          objectId = rs.Fields("ObjectID"), otherId = rs.Fields("OtherID"),
                          catalog = rs.Fields("Catalog"), magnitude = rs.Fields("Magnitude"),
                          constellation = rs.Fields("Constellation"),
                          type = rs.Fields("ObjectType"), id = rs.Fields("ID");
        for (; !rs.Eof(); rs.MoveNext()) {
            if (ra.IsNull())
                continue;
            astro::Hms objectRa{ra.Double(), 0, 0};
            SplitMinutes(raMinutes.Double(), objectRa.minutes, objectRa.seconds);
            astro::Dms objectDec{dec.Double(), 0, 0};
            SplitMinutes(decMinutes.Double(), objectDec.minutes, objectDec.seconds);
            const double separation = spread::SeparationFrom({search.centre.ra, search.centre.dec},
                                                             objectRa, objectDec, faults);
            if (separation > request.degrees)
                continue;
            NearbyRow row;
            row.ID = id.Long();
            const std::string_view mark = spread::PlanMark(plan, static_cast<double>(row.ID));
            row.pln = vb::Trim(mark);
            row.ObjectID = std::string(objectId.Text());
            row.OtherID = std::string(otherId.Text());
            row.separation = separation;
            row.raHours =
                astro::ConvertToDecimal(objectRa.seconds, objectRa.minutes, objectRa.hours);
            row.decDeg =
                astro::ConvertToDecimal(objectDec.seconds, objectDec.minutes, objectDec.degrees);
            row.AngSep = vb::Format(separation, "###.0");
            row.Catalog = std::string(catalog.Text());
            row.Mag = magnitude.IsNull() ? std::string() : vb::Format(magnitude.Double(), "##.0");
            row.Const = std::string(constellation.Text());
            row.Type = std::string(type.Text());
            rows.push_back(std::move(row));
        }
    });
    std::stable_sort(rows.begin(), rows.end(), [](const NearbyRow& a, const NearbyRow& b) {
        return a.separation < b.separation;
    });
    search.rows = std::move(rows);
    return search;
}

bool UpdatePlan(spread::AppState& TMM, SearchWindow window, NearbyRow& row)
{
    bool changed = false;
    services::Trap(TMM.ui, SearchLocation(window, "UpdatePlan"), [&] {
        if (TMM.CurrTab < 0 || TMM.CurrTab >= spread::kSpreadTabs || row.ID == 0)
            return;
        spread::TabPlan& plan = TMM.plans[static_cast<std::size_t>(TMM.CurrTab)];
        const double recordId = static_cast<double>(row.ID);
        const auto found =
            std::find_if(plan.entries.begin(), plan.entries.end(),
                         [&](const spread::PlanEntry& e) { return e.PlanRecordID == recordId; });
        if (found != plan.entries.end()) {
            *found = spread::PlanEntry{};
            spread::CompactPlan(plan);
            row.pln.clear();
            changed = true;
            return;
        }
        if (plan.PlanCount() >= spread::kMaxPlanEntries) {
            TMM.ui.ShowMessage(spread::MaxObjectsText, spread::MaxObjectsTitle, "I");
            return;
        }
        plan.PlanActive = true;
        plan.entries.push_back({row.ObjectID, row.Catalog, recordId, ""});
        row.pln = "X";
        changed = true;
    });
    return changed;
}

void SortRows(std::vector<NearbyRow>& rows, int column, bool ascending)
{
    const auto text = [column](const NearbyRow& r) -> const std::string& {
        switch (column) {
        case 0:
            return r.pln;
        case 1:
            return r.ObjectID;
        case 2:
            return r.OtherID;
        case 4:
            return r.Catalog;
        case 6:
            return r.Const;
        default:
            return r.Type;
        }
    };
    const auto less = [&](const NearbyRow& a, const NearbyRow& b) {
        if (column == 3)
            return a.separation < b.separation;
        if (column == 5) {
            if (a.Mag.empty() || b.Mag.empty())
                return a.Mag.empty() && !b.Mag.empty();
            return vb::Val(a.Mag) < vb::Val(b.Mag);
        }
        return text(a) < text(b);
    };
    std::stable_sort(rows.begin(), rows.end(), [&](const NearbyRow& a, const NearbyRow& b) {
        return ascending ? less(a, b) : less(b, a);
    });
}

} // namespace scope
