#pragma once
// The fixed numeric patterns of the grid's cells ("00", "00.0", "#00.00", "##0.00", "#0.00",
// "##0.0"), compiled once and written into a caller's buffer without allocating, for the
// per-row hot path of the grid load. The result is exactly services::vb::Format's for the same
// value and pattern (15 significant digits, then halves away from zero, "-" kept on a negative
// value that rounds to 0); the tests hold the two side by side.

#include <cstddef>
#include <string_view>

namespace spread {

class FixedFormat
{
public:
    // Longest text Write produces; larger magnitudes are written by services::vb::Format.
    static constexpr std::size_t kMaxText = 48;

    // pattern: "#" and "0" integer placeholders, then optionally "." and "0" fraction
    // placeholders. Anything else throws std::invalid_argument.
    explicit FixedFormat(std::string_view pattern);

    // Writes the value into out (kMaxText characters at least) with the decimal sign given;
    // returns the length.
    std::size_t Write(double value, char* out, char point = '.') const;

private:
    std::string_view pattern_;
    int minIntegerDigits_ = 0;
    int decimals_ = 0;
    bool hasPoint_ = false;
};

} // namespace spread
