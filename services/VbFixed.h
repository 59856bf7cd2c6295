#pragma once
// Format for the fixed numeric patterns of the object lists ("00", "00.0", "#00.00", "##0.00",
// "#0.00", "##0.0"), compiled once and written into a caller's buffer without allocating, for
// the per-row hot path of a grid load. The text is exactly Format's for the same value and
// pattern: the value to 15 significant digits, then halves away from zero at the pattern's
// decimals, "-" kept on a negative value that rounds to 0.

#include <cstddef>
#include <optional>
#include <string_view>

namespace services::vb {

class FixedFormat
{
public:
    // Longest text Write produces; larger magnitudes are cut to it.
    static constexpr std::size_t kMaxText = 48;

    // pattern: "#" and "0" integer placeholders, then optionally "." and "0" fraction
    // placeholders. Anything else throws std::invalid_argument. The pattern's text must outlive
    // the object.
    explicit FixedFormat(std::string_view pattern);

    // Writes the value into out (kMaxText characters at least) with the decimal sign given;
    // returns the length.
    std::size_t Write(double value, char* out, char point = '.') const;

    // The number Write's text reads back as (the value rounded to the pattern's decimals), when
    // that is found without the text; nothing otherwise (then read the text).
    std::optional<double> RoundedValue(double value) const;

private:
    // The rounded value scaled to a whole number of the last decimal, when the shortcut holds.
    bool Scaled(double magnitude, unsigned long long& n) const;
    std::size_t WriteDigits(double value, char* out, char point) const;

    std::string_view pattern_;
    int minIntegerDigits_ = 0;
    int decimals_ = 0;
    bool hasPoint_ = false;
};

} // namespace services::vb
