#include "astro/DataTables.h"

#include "astro/Text.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace astro {

namespace {

// Reads count numbers from the file into out; the fault's description, or empty.
template <typename Convert>
std::string_view ReadSequential(const std::filesystem::path& file, int count, Convert convert)
{
    const std::optional<std::string> text = ReadTextFile(file);
    if (!text)
        return kFileNotFound;
    std::size_t pos = 0;
    for (int i = 0; i < count; ++i) {
        const std::optional<std::string_view> field = NextSequentialField(*text, pos);
        if (!field)
            return kInputPastEndOfFile;
        const std::optional<double> value = ParseNumber(*field);
        if (!value)
            return kTypeMismatch;
        if (const std::string_view fault = convert(i, *value); !fault.empty())
            return fault;
    }
    return {};
}

bool IsSeparator(char c)
{
    return c == ',' || c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

std::optional<std::string> ReadTextFile(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
        return std::nullopt;
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::optional<std::string_view> NextSequentialField(std::string_view text, std::size_t& pos)
{
    while (pos < text.size() && IsSeparator(text[pos]))
        ++pos;
    if (pos >= text.size())
        return std::nullopt;
    const std::size_t start = pos;
    while (pos < text.size() && !IsSeparator(text[pos]))
        ++pos;
    return text.substr(start, pos - start);
}

const DeltaTTable* DataTables::DeltaT(const std::filesystem::path& folder, FaultSink& faults,
                                      std::string_view location)
{
    if (deltaTLoaded_.load(std::memory_order_acquire))
        return &deltaT_;
    std::string_view fault;
    {
        std::lock_guard lock(mutex_);
        if (deltaTLoaded_.load(std::memory_order_relaxed))
            return &deltaT_;
        DeltaTTable table{};
        fault = ReadSequential(folder / kDeltaTFileName, kDeltaTCount, [&](int i, double value) {
            // Stored as 16-bit integers, rounded half to even as the run-time converts.
            const double rounded = std::nearbyint(value);
            if (!(rounded >= -32768.0 && rounded <= 32767.0))
                return kOverflow;
            table[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(rounded);
            return std::string_view();
        });
        if (fault.empty()) {
            deltaT_ = table;
            deltaTLoaded_.store(true, std::memory_order_release);
            return &deltaT_;
        }
    }
    // Reported outside the lock: the report may show a window that lets other work run.
    faults.ReportFault(fault, location);
    return nullptr;
}

const RoundingOffsets* DataTables::Offsets(const std::filesystem::path& folder, FaultSink& faults,
                                           std::string_view location)
{
    if (offsetsLoaded_.load(std::memory_order_acquire))
        return &offsets_;
    std::string_view fault;
    {
        std::lock_guard lock(mutex_);
        if (offsetsLoaded_.load(std::memory_order_relaxed))
            return &offsets_;
        RoundingOffsets offsets{};
        fault = ReadSequential(folder / kRoundingOffsetsFileName, kRoundingOffsetCount,
                               [&](int i, double value) {
                                   offsets[static_cast<std::size_t>(i)] = value;
                                   return std::string_view();
                               });
        if (fault.empty()) {
            offsets_ = offsets;
            offsetsLoaded_.store(true, std::memory_order_release);
            return &offsets_;
        }
    }
    faults.ReportFault(fault, location);
    return nullptr;
}

DataTables& ProcessDataTables()
{
    static DataTables tables;
    return tables;
}

} // namespace astro
