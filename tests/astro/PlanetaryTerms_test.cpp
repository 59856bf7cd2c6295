#include "astro/PlanetaryTerms.h"

#include "RecordingFaults.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

using astro_test::RecordingFaults;

const std::filesystem::path kShipped = SELVANE_SHIPPED_RESOURCES;

struct RecordingBoxes : astro::MessageBoxSink
{
    void ShowMessageBox(std::string_view text) override { shown.emplace_back(text); }
    std::vector<std::string> shown;
};

class TempFolder
{
public:
    TempFolder()
    {
        path_ = std::filesystem::temp_directory_path() /
                ("selvane-terms-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

void Append16(std::string& out, std::int16_t v)
{
    out += static_cast<char>(v & 0xff);
    out += static_cast<char>((v >> 8) & 0xff);
}

void AppendDouble(std::string& out, double v)
{
    unsigned char bytes[8];
    std::memcpy(bytes, &v, 8); // the test machine is little-endian, as the files are
    out.append(reinterpret_cast<const char*>(bytes), 8);
}

// Writes planets.ndx and planets.dat holding, for planet 0, one longitude block of n terms
// 1e-3 cos(0 + 0 tau) and nothing else. dataTerms: the records actually written.
void WriteSeries(const std::filesystem::path& folder, int n, int dataTerms)
{
    std::string index;
    for (int i = 0; i < 18 * 9; ++i) {
        Append16(index, 0);
        Append16(index, static_cast<std::int16_t>(i == 0 ? n : 0));
    }
    std::string data;
    for (int i = 0; i < dataTerms; ++i) {
        AppendDouble(data, 1e-3);
        AppendDouble(data, 0);
        AppendDouble(data, 0);
    }
    std::ofstream(folder / "planets.ndx", std::ios::binary) << index;
    std::ofstream(folder / "planets.dat", std::ios::binary) << data;
}

TEST(PlPosHi, ShippedEarthAgreesWithTheFullSeries)
{
    // VSOP87B's check values at JD 2451545.0 (L 1.7519238681, B -0.0000039656, R 0.9833276819),
    // and at 1992 October 13.0 TD the full 2,564-term series of kstars-data evaluated in double
    // precision (L 0.3492078152089, B 0.0000033750781, R 0.9976085216576). The shipped series
    // drops the terms below 2.4e-10: its error there is 3e-12 rad.
    auto table = std::make_unique<astro::PlanetaryTerms>();
    RecordingFaults faults;
    RecordingBoxes boxes;
    astro::ReadPlanetaryTerms(0, kShipped, faults, boxes, *table);
    ASSERT_TRUE(faults.reports.empty());
    EXPECT_EQ(table->counter, 2422); // 2,421 terms in slots 1 to 2421
    const astro::HelioPlace j2000 = astro::PlPosHi(0, 0, faults, *table);
    EXPECT_NEAR(j2000.L, 1.7519238681, 1e-8);
    EXPECT_NEAR(j2000.B, -0.0000039656, 1e-10);
    EXPECT_NEAR(j2000.R, 0.9833276819, 1e-9);
    const astro::HelioPlace earth =
        astro::PlPosHi(0, (2448908.5 - 2451545.0) / 36525, faults, *table);
    EXPECT_NEAR(earth.L, 0.3492078152089, 1e-11);
    EXPECT_NEAR(earth.B, 0.0000033750781, 1e-11);
    EXPECT_NEAR(earth.R, 0.9976085216576, 1e-11);
    EXPECT_TRUE(faults.reports.empty());
}

TEST(ReadPlanetaryTerms, LoadsOncePerProcessAndOnlyTheFirstPlanet)
{
    auto table = std::make_unique<astro::PlanetaryTerms>();
    RecordingFaults faults;
    RecordingBoxes boxes;
    const double T = 0.25;

    // Planet 9 and above are refused without loading anything.
    astro::ReadPlanetaryTerms(9, kShipped, faults, boxes, *table);
    EXPECT_EQ(table->counter, 1);

    astro::ReadPlanetaryTerms(0, kShipped, faults, boxes, *table);
    const astro::HelioPlace first = astro::PlPosHi(0, T, faults, *table);
    // The second planet asked for finds the counter above 1: the Earth's terms stay and planet
    // 1's blocks stay empty.
    astro::ReadPlanetaryTerms(1, kShipped, faults, boxes, *table);
    EXPECT_EQ(table->counter, 2422);
    const astro::HelioPlace again = astro::PlPosHi(0, T, faults, *table);
    EXPECT_EQ(again.L, first.L);
    EXPECT_EQ(again.R, first.R);
    const astro::HelioPlace other = astro::PlPosHi(1, T, faults, *table);
    EXPECT_EQ(other.L, 0);
    EXPECT_EQ(other.B, 0);
    EXPECT_EQ(other.R, 0);
    EXPECT_TRUE(faults.reports.empty());
    EXPECT_TRUE(boxes.shown.empty());

    // A negative T (before J2000) runs the same series.
    const astro::HelioPlace before = astro::PlPosHi(0, -3.5, faults, *table);
    EXPECT_GT(before.R, 0.98);
    EXPECT_LT(before.R, 1.02);
    EXPECT_GE(before.L, 0);

    astro::PlPosHi(9, T, faults, *table);
    ASSERT_EQ(faults.reports.size(), 1u);
    EXPECT_EQ(faults.reports[0].message, "Subscript out of range");
    EXPECT_EQ(faults.reports[0].location, "Module2.PlPosHi");
}

TEST(ReadPlanetaryTerms, FileFaults)
{
    struct Case
    {
        const char* name;
        int indexTerms; // what planets.ndx says (-1: no files at all)
        int dataTerms;  // records in planets.dat
        std::int16_t p;
        const char* message; // the fault, "" for none
        std::vector<std::string> boxes;
        int counterAfter;
    };
    const Case cases[] = {
        {"missing files", -1, 0, 0, "File not found", {}, 1},
        {"negative planet", 5, 5, -1, "Bad record number", {}, 1},
        {"data shorter than the index", 10, 7, 0, "Input past end of file", {}, 8},
        {"all the memory holds", 2430, 2430, 0, "", {}, 2431},
        {"one term too many", 2431, 2431, 0, "Subscript out of range", {"ERROR"}, 2432},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TempFolder folder;
        if (c.indexTerms >= 0)
            WriteSeries(folder.path(), c.indexTerms, c.dataTerms);
        auto table = std::make_unique<astro::PlanetaryTerms>();
        RecordingFaults faults;
        RecordingBoxes boxes;
        astro::ReadPlanetaryTerms(c.p, folder.path(), faults, boxes, *table);
        EXPECT_EQ(boxes.shown, c.boxes);
        if (*c.message == '\0') {
            EXPECT_TRUE(faults.reports.empty());
            // 2430 terms of 1e-3 at any T.
            EXPECT_NEAR(astro::PlPosHi(0, 0.1, faults, *table).L, 2.430, 1e-9);
        } else {
            ASSERT_EQ(faults.reports.size(), 1u);
            EXPECT_EQ(faults.reports[0].message, c.message);
            EXPECT_EQ(faults.reports[0].location, "Module2.ReadPlanetaryTerms");
        }
        EXPECT_EQ(table->counter, c.counterAfter);
    }

    // After a missing file the next call tries again.
    TempFolder folder;
    auto table = std::make_unique<astro::PlanetaryTerms>();
    RecordingFaults faults;
    RecordingBoxes boxes;
    astro::ReadPlanetaryTerms(0, folder.path(), faults, boxes, *table);
    WriteSeries(folder.path(), 3, 3);
    astro::ReadPlanetaryTerms(0, folder.path(), faults, boxes, *table);
    EXPECT_EQ(faults.reports.size(), 1u);
    EXPECT_EQ(table->counter, 4);
}

} // namespace
