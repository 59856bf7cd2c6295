#include "services/VbFixed.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>

#include "services/Vb.h"

namespace services::vb {

FixedFormat::FixedFormat(std::string_view pattern) : pattern_(pattern)
{
    std::size_t i = 0;
    int placeholders = 0;
    int zeroFromLeft = -1;
    for (; i < pattern.size() && (pattern[i] == '#' || pattern[i] == '0'); ++i) {
        if (pattern[i] == '0' && zeroFromLeft < 0)
            zeroFromLeft = placeholders;
        ++placeholders;
    }
    minIntegerDigits_ = zeroFromLeft < 0 ? 0 : placeholders - zeroFromLeft;
    if (i < pattern.size() && pattern[i] == '.') {
        hasPoint_ = true;
        for (++i; i < pattern.size() && pattern[i] == '0'; ++i)
            ++decimals_;
    }
    if (i != pattern.size() || placeholders == 0)
        throw std::invalid_argument("not a fixed numeric pattern: " + std::string(pattern));
}

namespace {

constexpr int kFastDecimals = 9;
constexpr double kPowersOfTen[kFastDecimals + 1] = {1e0, 1e1, 1e2, 1e3, 1e4,
                                                    1e5, 1e6, 1e7, 1e8, 1e9};

} // namespace

bool FixedFormat::Scaled(double magnitude, unsigned long long& n) const
{
    // The value scaled to the pattern's last decimal differs from its 15-digit text, scaled
    // alike, by less than 1e-14 of itself; so unless its fraction lies that close to one half,
    // both round to the same whole number. Below 1e14 the 15 digits reach past the last
    // decimal.
    if (decimals_ > kFastDecimals || !(magnitude < 1e14))
        return false;
    const double scaled = magnitude * kPowersOfTen[decimals_];
    const double whole = std::floor(scaled);
    const double fraction = scaled - whole;
    if (!(scaled < 1e14) || !(std::fabs(fraction - 0.5) > scaled * 1e-14))
        return false;
    n = static_cast<unsigned long long>(whole) + (fraction > 0.5 ? 1 : 0);
    return true;
}

std::size_t FixedFormat::Write(double value, char* out, char point) const
{
    unsigned long long n = 0;
    if (!Scaled(std::fabs(value), n))
        return WriteDigits(value, out, point);
    char digits[24]; // least significant first
    int count = 0;
    for (; n != 0; n /= 10)
        digits[count++] = static_cast<char>('0' + n % 10);
    std::size_t length = 0;
    if (value < 0)
        out[length++] = '-';
    const int integerDigits = count > decimals_ ? count - decimals_ : 0;
    for (int pad = integerDigits; pad < minIntegerDigits_; ++pad)
        out[length++] = '0';
    for (int i = count - 1; i >= decimals_; --i)
        out[length++] = digits[i];
    if (hasPoint_)
        out[length++] = point;
    for (int i = decimals_ - 1; i >= 0; --i)
        out[length++] = i < count ? digits[i] : '0';
    return length;
}

std::optional<double> FixedFormat::RoundedValue(double value) const
{
    unsigned long long n = 0;
    if (!Scaled(std::fabs(value), n))
        return std::nullopt;
    // A whole number below 1e14 over a power of ten up to 1e9, both exact, rounds once: to
    // the double nearest the decimal text, which is what reading the text gives.
    const double magnitude = static_cast<double>(n) / kPowersOfTen[decimals_];
    return value < 0 ? -magnitude : magnitude;
}

// The general path: the 15 significant digits, rounded to the pattern's decimals.
std::size_t FixedFormat::WriteDigits(double value, char* out, char point) const
{
    if (std::isnan(value)) {
        std::memcpy(out, "NaN", 3);
        return 3;
    }
    const bool negative = value < 0;
    const double magnitude = std::fabs(value);
    if (std::isfinite(magnitude) && magnitude >= 1e17) {
        Regional regional;
        regional.decimalchar = std::string(1, point);
        const std::string text = Format(value, pattern_, regional);
        const std::size_t n = std::min(text.size(), kMaxText);
        std::memcpy(out, text.data(), n);
        return n;
    }

    // 15 significant digits: digits[0..count) with the first digit at 10^exponent.
    char digits[24];
    int count = 0;
    int exponent = 0;
    if (magnitude != 0 && std::isfinite(magnitude)) {
        // The shortest text that reads back as the value is, when it has at most 15 digits,
        // also the value rounded to 15 digits; it is much cheaper to make.
        char sci[40];
        auto result =
            std::to_chars(sci, sci + sizeof sci, magnitude, std::chars_format::scientific);
        const char* e = std::find(sci, result.ptr, 'e');
        const long shortestDigits = e - sci - (e - sci > 1 ? 1 : 0);
        if (shortestDigits > 15) {
            result =
                std::to_chars(sci, sci + sizeof sci, magnitude, std::chars_format::scientific, 14);
            e = std::find(sci, result.ptr, 'e');
        }
        digits[count++] = sci[0];
        for (const char* p = sci + 2; p < e && count < 15; ++p)
            digits[count++] = *p;
        std::from_chars(e + (e[1] == '+' ? 2 : 1), result.ptr, exponent);
        while (count > 0 && digits[count - 1] == '0')
            --count;
    }

    // Round to the pattern's decimals, halves away from zero.
    const int kept = exponent + 1 + decimals_;
    if (count > 0 && kept < 0) {
        count = 0;
    } else if (count > kept) {
        const bool up = digits[kept] >= '5';
        count = kept;
        if (up) {
            int i = kept - 1;
            while (i >= 0 && digits[i] == '9')
                digits[i--] = '0';
            if (i >= 0) {
                ++digits[i];
            } else {
                std::memmove(digits + 1, digits, static_cast<std::size_t>(count));
                digits[0] = '1';
                ++count;
                ++exponent;
            }
        }
        while (count > 0 && digits[count - 1] == '0')
            --count;
    }

    std::size_t n = 0;
    if (negative)
        out[n++] = '-';
    // Integer digits: those at 10^0 and above, padded on the left to the pattern's minimum.
    const int integerDigits = count > 0 && exponent >= 0 ? exponent + 1 : 0;
    for (int pad = integerDigits; pad < minIntegerDigits_; ++pad)
        out[n++] = '0';
    for (int power = exponent, i = 0; power >= 0 && count > 0; --power, ++i)
        out[n++] = i < count ? digits[i] : '0';
    if (hasPoint_)
        out[n++] = point;
    for (int place = 1; place <= decimals_; ++place) {
        const int i = exponent + place; // index of the digit at 10^-place
        out[n++] = count > 0 && i >= 0 && i < count ? digits[i] : '0';
    }
    return n;
}

} // namespace services::vb
