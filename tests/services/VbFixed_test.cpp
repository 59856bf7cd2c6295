#include "services/VbFixed.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "services/Vb.h"

namespace {

constexpr const char* kPatterns[] = {"00", "00.0", "#00.00", "##0.00", "#0.00", "##0.0", "0000"};

std::string Fast(double value, const char* pattern)
{
    char buffer[services::vb::FixedFormat::kMaxText];
    const std::size_t n = services::vb::FixedFormat(pattern).Write(value, buffer);
    return std::string(buffer, n);
}

// Values where rounding, carries and signs go wrong most easily.
TEST(FixedFormat, AgreesWithVbFormatOnEdges)
{
    const double values[] = {0,     -0.0,   0.004,      -0.004,  0.005,   -0.005, 0.05,
                             0.95,  0.995,  9.995,      99.995,  999.995, 2.675,  1.005,
                             59.95, 59.96,  59.999,     23.9999, -89.999, 359.99, 360,
                             1e-20, -1e-20, 123456.789, 1e15,    1e16,    1e18,   -1e18,
                             0.5,   1.5,    2.5,        -2.5,    7,       10,     100};
    for (const char* pattern : kPatterns) {
        for (double value : values) {
            SCOPED_TRACE(std::string(pattern) + " " + std::to_string(value));
            EXPECT_EQ(Fast(value, pattern), services::vb::Format(value, pattern));
        }
    }
}

TEST(FixedFormat, AgreesWithVbFormatOnASweep)
{
    std::mt19937_64 random(20031);
    std::uniform_real_distribution<double> wide(-400.0, 400.0);
    for (int i = 0; i < 20000; ++i) {
        // Half the values sit on a 0.005 grid, where half-way rounding is decided.
        const double value = i % 2 ? wide(random) : std::round(wide(random) * 200) / 200;
        for (const char* pattern : kPatterns) {
            const std::string fast = Fast(value, pattern);
            const std::string reference = services::vb::Format(value, pattern);
            if (fast != reference) {
                ADD_FAILURE() << pattern << " " << value << ": " << fast << " vs " << reference;
                return;
            }
        }
    }
}

// The rounded number must be the one the text reads back as, bit for bit and sign included:
// the grid's filters and sorts compare those numbers.
TEST(FixedFormat, RoundedValueReadsAsTheText)
{
    std::mt19937_64 random(4711);
    std::uniform_real_distribution<double> wide(-400.0, 400.0);
    int shortcuts = 0;
    for (int i = 0; i < 20000; ++i) {
        const double value = i % 2 ? wide(random) : std::round(wide(random) * 200) / 200;
        for (const char* pattern : kPatterns) {
            const services::vb::FixedFormat format(pattern);
            const std::optional<double> rounded = format.RoundedValue(value);
            if (!rounded)
                continue;
            ++shortcuts;
            const std::string text = Fast(value, pattern);
            const double read = std::strtod(text.c_str(), nullptr);
            if (*rounded != read || std::signbit(*rounded) != std::signbit(read)) {
                ADD_FAILURE() << pattern << " " << value << ": " << *rounded << " vs " << text;
                return;
            }
        }
    }
    EXPECT_GT(shortcuts, 100000);
    // Half-way and out-of-range values take the text.
    EXPECT_FALSE(services::vb::FixedFormat("#0.00").RoundedValue(0.125));
    EXPECT_FALSE(services::vb::FixedFormat("#0.00").RoundedValue(1e300));
    EXPECT_FALSE(services::vb::FixedFormat("#0.00").RoundedValue(std::nan("")));
    EXPECT_TRUE(std::signbit(*services::vb::FixedFormat("#0.00").RoundedValue(-0.001)));
}

TEST(FixedFormat, DecimalSignAndRefusedPatterns)
{
    char buffer[services::vb::FixedFormat::kMaxText];
    const std::size_t n = services::vb::FixedFormat("##0.00").Write(12.345, buffer, ',');
    EXPECT_EQ(std::string(buffer, n), "12,35");
    EXPECT_THROW(services::vb::FixedFormat("0.0#"), std::invalid_argument);
    EXPECT_THROW(services::vb::FixedFormat("hh:mm"), std::invalid_argument);
    EXPECT_THROW(services::vb::FixedFormat(""), std::invalid_argument);
}

} // namespace
