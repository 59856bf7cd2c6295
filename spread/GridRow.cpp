#include "spread/GridRow.h"

#include <charconv>
#include <cmath>
#include <cstring>

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

// Writes a row into the caller's string through a buffer of its own, so that the many short
// pieces of a row cost a store each and the string grows a few times per row at most.
class RowWriter
{
public:
    explicit RowWriter(std::string& row) : row_(row) { row_.clear(); }
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;

    void Put(char c)
    {
        if (used_ == sizeof buffer_)
            Flush();
        buffer_[used_++] = c;
    }
    void Put(std::string_view text)
    {
        if (text.size() > sizeof buffer_ - used_) {
            Flush();
            if (text.size() > sizeof buffer_) {
                row_.append(text);
                return;
            }
        }
        if (!text.empty())
            std::memcpy(buffer_ + used_, text.data(), text.size());
        used_ += text.size();
    }
    // Room for n characters written directly; Wrote(n) then keeps them.
    char* Room(std::size_t n)
    {
        if (n > sizeof buffer_ - used_)
            Flush();
        return buffer_ + used_;
    }
    void Wrote(std::size_t n) { used_ += n; }
    void Tab() { Put('\t'); }

    void Put(const FixedFormat& format, double value, char point)
    {
        char* out = Room(FixedFormat::kMaxText);
        Wrote(format.Write(value, out, point));
    }
    void PutNumber(const FixedFormat& format, const NumberField& field, char point)
    {
        if (!field.null)
            Put(format, field.value, point);
    }
    // Text with each ";" shown as a blank.
    void PutWithoutSemicolons(std::string_view text)
    {
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t semicolon = text.find(';', start);
            if (semicolon == std::string_view::npos) {
                Put(text.substr(start));
                return;
            }
            Put(text.substr(start, semicolon - start));
            Put(' ');
            start = semicolon + 1;
        }
    }
    void PutInteger(long long value)
    {
        char* out = Room(24);
        Wrote(static_cast<std::size_t>(std::to_chars(out, out + 24, value).ptr - out));
    }

    // Hands what the buffer holds to the row; the row is complete after the last call.
    void Flush()
    {
        row_.append(buffer_, used_);
        used_ = 0;
    }

private:

    std::string& row_;
    char buffer_[512];
    std::size_t used_ = 0;
};

// EPOCH as its plain number ("2000", "1950.5").
void PutEpoch(RowWriter& row, const NumberField& epoch)
{
    if (epoch.null)
        return;
    const double value = epoch.value;
    if (value == std::floor(value) && std::fabs(value) < 1e9) {
        row.PutInteger(static_cast<long long>(value));
        return;
    }
    row.Put(services::vb::Format(value, "General Number"));
}

void PutRa(RowWriter& row, const Position& p, char point)
{
    row.Put(kTwo, p.raHours, point);
    row.Put(' ');
    row.Put(kTwo, p.raMinutes, point);
    row.Put(' ');
    row.Put(kSeconds, p.raSeconds, point);
}

// "sDD MM SS.S", at least 11 characters.
void PutDec(RowWriter& row, const Position& p, char point)
{
    // Deliberate: only the degrees and minutes decide the sign, so a position whose sign sits
    // on the seconds alone shows as north. A stored -0 degrees counts as south.
    const bool south = p.decDegrees < 0 || std::signbit(p.decDegrees) || p.decMinutes < 0;
    char text[3 * FixedFormat::kMaxText + 4];
    std::size_t n = 0;
    text[n++] = south ? '-' : '+';
    n += kTwo.Write(std::fabs(p.decDegrees), text + n, point);
    text[n++] = ' ';
    n += kTwo.Write(std::fabs(p.decMinutes), text + n, point);
    text[n++] = ' ';
    n += kSeconds.Write(std::fabs(p.decSeconds), text + n, point);
    while (n < 11)
        text[n++] = ' ';
    row.Put(std::string_view(text, n));
}

// Altitude: "##0.00" first, then "#00.00" with "+" in front above the horizon.
void PutAltitude(RowWriter& row, double alt, char point)
{
    if (alt > 0)
        row.Put('+');
    row.Put(kAltitude, alt, point);
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
    RowWriter out(row);
    out.Put(record.planMark);
    out.Tab();
    out.Put(IsBlank(record.ImageFile) ? ' ' : 'X');
    out.Tab();
    out.Put(record.Observed ? 'X' : ' ');
    out.Tab();
    out.Put(record.ObjectID);
    out.Tab();
    out.PutWithoutSemicolons(record.OtherID);
    out.Tab();
    out.Put(record.ObjectType);
    out.Tab();
    if (noPosition)
        out.Put("n/a");
    else
        PutRa(out, shown, point);
    out.Tab();
    if (noPosition)
        out.Put("n/a");
    else
        PutDec(out, shown, point);
    out.Tab();
    if (computed.precessed) {
        out.Put(options.ppreYear);
        out.Put(" p");
    } else {
        PutEpoch(out, record.EPOCH);
    }
    out.Tab();
    // Turbo mode leaves the computed columns empty; otherwise Alt and Azm always show, unless a
    // fault cut the row's computing short.
    const bool showAltAzm = !options.speed1 && !computed.cutShort;
    if (showAltAzm)
        PutAltitude(out, computed.alt, point);
    out.Tab();
    if (showAltAzm)
        out.Put(kHundredths, computed.azm, point);
    out.Tab();
    out.Put(computed.rise.View());
    out.Tab();
    out.Put(computed.transit.View());
    out.Tab();
    out.Put(computed.set.View());
    out.Tab();
    out.Put(record.constellation);
    out.Tab();
    out.PutNumber(kHundredths, record.ObjectSize, point);
    out.Tab();
    out.PutNumber(kMagnitude, record.Magnitude, point);
    out.Tab();
    out.PutNumber(kMagnitude, record.Magnitude2, point);
    out.Tab();
    out.Put(record.MCode);
    out.Tab();
    out.PutNumber(kTenths, record.GalacticLongitude, point);
    out.Tab();
    out.PutNumber(kTenths, record.GalacticLatitude, point);
    out.Tab();
    out.PutNumber(kTenths, record.PositionAngle, point);
    out.Tab();
    out.PutNumber(kTenths, record.targetSeparation.null ? record.Separation
                                                         : record.targetSeparation,
              point);
    out.Tab();
    out.Put(record.Catalog);
    out.Tab();
    out.Put(record.ImageFile);
    out.Tab();
    out.Put(record.HObject);
    out.Tab();
    out.PutInteger(record.ID);
    out.Tab();
    out.Put(computed.skyAtlas.View());
    out.Tab();
    out.Put(computed.uranometria.View());
    out.Tab();
    out.Put(computed.millennium.View());
    out.Tab();
    out.PutWithoutSemicolons(record.Description);
    out.Flush();
    return verdict;
}

} // namespace spread
