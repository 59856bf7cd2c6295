#include "spread/GridRow.h"

#include <charconv>
#include <cmath>

#include "services/VbFixed.h"

namespace spread {
namespace {

using services::vb::FixedFormat;

const FixedFormat kTwo("00");
const FixedFormat kSeconds("00.0");
const FixedFormat kAltitude("#00.00");
const FixedFormat kHundredths("##0.00"); // azimuth, size, and altitude's first rounding
const FixedFormat kMagnitude("#0.00");
const FixedFormat kTenths("##0.0");

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(' ') == std::string_view::npos;
}

void Put(std::string& row, const FixedFormat& format, double value, char point)
{
    char buffer[FixedFormat::kMaxText];
    row.append(buffer, format.Write(value, buffer, point));
}

void PutNumber(std::string& row, const FixedFormat& format, const NumberField& field, char point)
{
    if (!field.null)
        Put(row, format, field.value, point);
}

// Text with each ";" shown as a blank.
void PutWithoutSemicolons(std::string& row, std::string_view text)
{
    const std::size_t start = row.size();
    row.append(text);
    for (std::size_t i = start; i < row.size(); ++i)
        if (row[i] == ';')
            row[i] = ' ';
}

void PutInteger(std::string& row, long long value)
{
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    row.append(buffer, result.ptr);
}

// EPOCH as its plain number ("2000", "1950.5").
void PutEpoch(std::string& row, const NumberField& epoch)
{
    if (epoch.null)
        return;
    const double value = epoch.value;
    if (value == std::floor(value) && std::fabs(value) < 1e9) {
        PutInteger(row, static_cast<long long>(value));
        return;
    }
    row += services::vb::Format(value, "General Number");
}

void PutRa(std::string& row, const Position& p, char point)
{
    Put(row, kTwo, p.raHours, point);
    row += ' ';
    Put(row, kTwo, p.raMinutes, point);
    row += ' ';
    Put(row, kSeconds, p.raSeconds, point);
}

// "sDD MM SS.S", at least 11 characters.
void PutDec(std::string& row, const Position& p, char point)
{
    const std::size_t start = row.size();
    // Deliberate: only the degrees and minutes decide the sign, so a position whose sign sits
    // on the seconds alone shows as north. A stored -0 degrees counts as south.
    const bool south = p.decDegrees < 0 || std::signbit(p.decDegrees) || p.decMinutes < 0;
    row += south ? '-' : '+';
    Put(row, kTwo, std::fabs(p.decDegrees), point);
    row += ' ';
    Put(row, kTwo, std::fabs(p.decMinutes), point);
    row += ' ';
    Put(row, kSeconds, std::fabs(p.decSeconds), point);
    while (row.size() - start < 11)
        row += ' ';
}

// Altitude: "##0.00" first, then "#00.00" with "+" in front above the horizon.
void PutAltitude(std::string& row, double alt, char point)
{
    if (alt > 0)
        row += '+';
    Put(row, kAltitude, alt, point);
}

// The filters that SQL cannot make; true when the row stays.
bool PassesFilters(const ObjectRecord& record, bool noPosition, const ComputedColumns& computed,
                   const RowOptions& options)
{
    if (options.PlanLoad)
        return true;
    if (options.hasMinAlt && !options.speed1 && !noPosition && computed.alt < options.Pminalt)
        return false;
    if (!(options.PAzm1 == 0 && options.PAzm2 == 0) && computed.azm >= options.PAzm1 &&
        computed.azm <= options.PAzm2)
        return false;
    if (!(options.PAzm3 == 0 && options.PAzm4 == 0) &&
        (computed.azm < options.PAzm3 || computed.azm > options.PAzm4))
        return false;
    if (options.Psupo && record.Observed)
        return false;
    if (options.Shers && IsBlank(record.HObject))
        return false;
    return true;
}

} // namespace

bool StoredPosition(const ObjectRecord& record, Position& position)
{
    position = {};
    if (record.RAhours.null)
        return false;
    const double raMinutes = record.RAminutes.value;
    position.raHours = record.RAhours.value;
    position.raMinutes = std::floor(raMinutes);
    position.raSeconds = (raMinutes - std::floor(raMinutes)) * 60;

    // Deliberate: a negative minutes field (a stored -0 degrees) keeps its sign on the whole
    // minutes and gives positive seconds, so the triple reads as one signed value.
    const double decMinutes = record.DeclinationMinutes.value;
    const double whole = std::trunc(decMinutes);
    position.decDegrees = record.DeclinationDegrees.value;
    position.decMinutes = whole;
    position.decSeconds = std::fabs(decMinutes - whole) * 60;
    return true;
}

void SetPrecessionDate(RowOptions& options, std::string_view PPre,
                       const services::vb::Regional& regional)
{
    options.precess = false;
    options.ppreYear.clear();
    options.ppreMonth.clear();
    options.ppreDay.clear();
    options.precession = {};
    const std::string text = services::vb::Trim(PPre);
    if (text.empty() || text == "__/__/____" || text == "__.__.____")
        return;
    const std::optional<QDate> date = services::vb::ParseDate(text, regional);
    if (!date)
        return;
    options.precess = true;
    options.ppreYear = std::to_string(date->year());
    options.ppreMonth = std::to_string(date->month());
    options.ppreDay = std::to_string(date->day());
    options.precession =
        astro::MakePrecessionPlan(options.ppreYear, options.ppreMonth, options.ppreDay);
}

RowVerdict WriteGridRow(const ObjectRecord& record, bool noPosition, const Position& shown,
                        const ComputedColumns& computed, const RowOptions& options,
                        std::string& row)
{
    RowVerdict verdict;
    verdict.gcvs = record.Catalog == "GCVS";
    verdict.kept = PassesFilters(record, noPosition, computed, options);
    row.clear();
    if (!verdict.kept)
        return verdict;

    const char point = options.decimalPoint;
    row.append(record.planMark);
    row += '\t';
    row += IsBlank(record.ImageFile) ? ' ' : 'X';
    row += '\t';
    row += record.Observed ? 'X' : ' ';
    row += '\t';
    row.append(record.ObjectID);
    row += '\t';
    PutWithoutSemicolons(row, record.OtherID);
    row += '\t';
    row.append(record.ObjectType);
    row += '\t';
    if (noPosition)
        row += "n/a";
    else
        PutRa(row, shown, point);
    row += '\t';
    if (noPosition)
        row += "n/a";
    else
        PutDec(row, shown, point);
    row += '\t';
    if (computed.precessed) {
        row += options.ppreYear;
        row += " p";
    } else {
        PutEpoch(row, record.EPOCH);
    }
    row += '\t';
    // Turbo mode leaves the computed columns empty; otherwise Alt and Azm always show.
    if (!options.speed1)
        PutAltitude(row, computed.alt, point);
    row += '\t';
    if (!options.speed1)
        Put(row, kHundredths, computed.azm, point);
    row += '\t';
    row.append(computed.rise.View());
    row += '\t';
    row.append(computed.transit.View());
    row += '\t';
    row.append(computed.set.View());
    row += '\t';
    row.append(record.constellation);
    row += '\t';
    PutNumber(row, kHundredths, record.ObjectSize, point);
    row += '\t';
    PutNumber(row, kMagnitude, record.Magnitude, point);
    row += '\t';
    PutNumber(row, kMagnitude, record.Magnitude2, point);
    row += '\t';
    row.append(record.MCode);
    row += '\t';
    PutNumber(row, kTenths, record.GalacticLongitude, point);
    row += '\t';
    PutNumber(row, kTenths, record.GalacticLatitude, point);
    row += '\t';
    PutNumber(row, kTenths, record.PositionAngle, point);
    row += '\t';
    PutNumber(row, kTenths, record.targetSeparation.null ? record.Separation
                                                         : record.targetSeparation,
              point);
    row += '\t';
    row.append(record.Catalog);
    row += '\t';
    row.append(record.ImageFile);
    row += '\t';
    row.append(record.HObject);
    row += '\t';
    PutInteger(row, record.ID);
    row += '\t';
    row.append(computed.skyAtlas.View());
    row += '\t';
    row.append(computed.uranometria.View());
    row += '\t';
    row.append(computed.millennium.View());
    row += '\t';
    PutWithoutSemicolons(row, record.Description);
    return verdict;
}

} // namespace spread
