#pragma once
// The two small data files of the time routines, read on first use and then kept:
// "DeltaTTableLabel.txt" (187 values of delta T in tenths of a second, 1620 to 1992 at steps
// of two years) and "DeltaLabel.txt" (8 rounding offsets, one per number of shown decimal
// places). Both are sequential files: numbers separated by commas or line breaks; anything
// after the last value needed is not read.
//
// The routines use one set of tables per process (ProcessDataTables); tests make their own.
// Loading is thread-safe; a table that failed to load stays unloaded and the next use tries
// again.

#include "astro/FaultSink.h"
#include "astro/constants.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace astro {

inline constexpr std::string_view kDeltaTFileName = "DeltaTTableLabel.txt";
inline constexpr std::string_view kRoundingOffsetsFileName = "DeltaLabel.txt";

using DeltaTTable = std::array<std::int16_t, kDeltaTCount>;
using RoundingOffsets = std::array<double, kRoundingOffsetCount>;

class DataTables
{
public:
    // The delta T table, read from folder on first use. On a fault (missing file: "File not
    // found"; too few values: "Input past end of file"; a value that is not a number: "Type
    // mismatch"; one outside 16 bits: "Overflow") it is reported at location and nullptr
    // returned.
    const DeltaTTable* DeltaT(const std::filesystem::path& folder, FaultSink& faults,
                              std::string_view location);
    // The rounding offsets, likewise.
    const RoundingOffsets* Offsets(const std::filesystem::path& folder, FaultSink& faults,
                                   std::string_view location);

private:
    std::mutex mutex_;
    std::atomic<bool> deltaTLoaded_{false};
    std::atomic<bool> offsetsLoaded_{false};
    DeltaTTable deltaT_{};
    RoundingOffsets offsets_{};
};

// The whole of a file; nothing when it cannot be opened.
std::optional<std::string> ReadTextFile(const std::filesystem::path& file);

// The next field of a sequential file's text from pos (commas, blanks, tabs and line breaks
// separate fields), pos moved past it; nothing at the end of the text.
std::optional<std::string_view> NextSequentialField(std::string_view text, std::size_t& pos);

// The tables of this process.
DataTables& ProcessDataTables();

} // namespace astro
