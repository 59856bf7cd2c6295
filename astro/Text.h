#pragma once
// The few text forms the astronomy routines read and write, without allocating: the observing
// date and time, numbers read leniently or strictly, numbers written with 15 significant
// digits, two-digit fields and two-decimal rounding. The application's general-purpose
// versions live in services; this core cannot use them (standard library only), so it keeps
// exactly the forms its routines need and no more.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace astro {

struct CivilDate
{
    int year = 0;
    int month = 0; // 1-12
    int day = 0;
};

// The observing date text: month/day/year (the program's own regional form; a two-digit year
// 00-29 is 20xx, 30-99 is 19xx) or ISO YYYY-MM-DD. Surrounding blanks are ignored. Nothing
// for any other text or a day that the month does not have (February 29 only in leap years
// of the Gregorian calendar).
std::optional<CivilDate> ParseObservingDate(std::string_view text);

// The leading number of a text, blanks anywhere skipped, 0 when there is none ("9:" is 9,
// "" is 0, "1 2" is 12).
double LeadingNumber(std::string_view text);

// The whole text (surrounding blanks ignored) as a number; nothing when it is empty or
// anything but a plain decimal number.
std::optional<double> ParseNumber(std::string_view text);

// Writes x with at most 15 significant digits and no trailing zeros ("1.0000001", "0.5",
// "-2", "1E-20"), -0 as "0". Returns the length; the buffer holds at least 32 characters.
inline constexpr std::size_t kNumberTextSize = 32;
std::size_t NumberText(double x, char* buffer);

// x written by NumberText and read back: what survives a round trip through text.
double ThroughText(double x);

// x rounded to a number of decimal places, halves away from zero, decided on its 15-digit
// decimal form (so 1.005 rounds to 1.01 as it reads, not as it is stored).
double RoundPlaces(double x, int places);

// x as the fixed number patterns write it: intDigits "0" placeholders before the point and
// decimals after it ("00", "00.00", "0.0000"): rounded as RoundPlaces rounds, padded with
// zeros to intDigits integer digits, "-" kept on a negative value that rounds to 0.
std::string FixedText(double x, int intDigits, int decimals);

// x as the patterns of "#" placeholders write it ("###.#", "###.####"): no leading zero,
// decimals rounded as RoundPlaces rounds and then their trailing zeros dropped, the point kept
// (5 reads "5.", 0.5 ".5", -1.35114 "-1.3511").
std::string OptionalDigitsText(double x, int decimals);

// Writes the whole number n (0-99 expected) as at least two digits; returns the length.
std::size_t TwoDigits(int n, char* buffer);

} // namespace astro
