#include "tools/ChartData.h"

#include "services/Fault.h"
#include "tests/TestFiles.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

template <typename T> void Put(std::string& out, T value)
{
    char bytes[sizeof(T)];
    std::memcpy(bytes, &value, sizeof(T));
    out.append(bytes, sizeof(T));
}

template <typename T> T Get(const std::string& bytes, std::size_t at)
{
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof(T));
    return value;
}

struct BinaryStar
{
    int hd;
    double raHours;
    double decDeg;
};

// A binary star file of one trixel, laid out as the kstars-data files are.
std::string BinaryStarFile(const std::vector<BinaryStar>& stars)
{
    std::string out(124, ' ');
    out += "SK";
    out += '\1';
    Put<std::uint16_t>(out, 11);
    out += std::string(11 * 16, '\0');
    Put<std::uint32_t>(out, 1);
    const std::size_t records = out.size() + 12;
    Put<std::uint32_t>(out, 0);
    Put<std::uint32_t>(out, static_cast<std::uint32_t>(records));
    Put<std::uint32_t>(out, static_cast<std::uint32_t>(stars.size()));
    for (const auto& s : stars) {
        Put<std::int32_t>(out, static_cast<std::int32_t>(s.raHours * 1e6));
        Put<std::int32_t>(out, static_cast<std::int32_t>(s.decDeg * 1e5));
        Put<std::int32_t>(out, 0);
        Put<std::int32_t>(out, 0);
        Put<std::int32_t>(out, 0);
        Put<std::int32_t>(out, s.hd);
        Put<std::int16_t>(out, 300);
        Put<std::int16_t>(out, 0);
        out += "A0";
        out += std::string(2, '\0');
    }
    return out;
}

// Rows in the column layout of the kstars-data star list; V sits in columns 45..50.
std::string StarRow(const std::string& ra, const std::string& dec, const std::string& v,
                    const std::string& names)
{
    return ra + " " + dec + " +000000.0+000000.000000.0 " + v + "00.00A0 0            " + names +
           "\n";
}

class BuildChartData : public ::testing::Test
{
protected:
    void SetUp() override
    {
        auto write = [&](const char* name, const std::string& text) {
            test_files::WriteText(in.filePath(name).toStdString(), text);
        };
        write("stars.dat", "# a note\n" +
                               StarRow("055510.31", "+072425.4", "00.45", ", alp Ori, Betelgeuse") +
                               StarRow("064508.92", "-164258.0", "-1.44", ", alp CMa, Sirius") +
                               StarRow("045253.67", "-052709.7", "04.36", ", ome Eri") +
                               StarRow("010000.00", "+100000.0", "09.50", ", too faint") +
                               StarRow("020000.00", "-000030.0", "02.00", ""));
        write("namedstars.dat", BinaryStarFile({{39801, 5.919, 7.407}, {48915, 6.752, -16.716}}));
        write("unnamedstars.dat", BinaryStarFile({{100, 1.0, 1.0}}));
        // Another culture first, then the Western figures: one unknown star breaks its line.
        write("clines.dat", "C Other\nM 39801\nD 48915\nC Western\n# Orion\nM 39801\nD 48915\n"
                            "D 777\nD 100\nD 39801\nC Later\nM 100\n");
        write("cnames.dat", "C Western\n053000+050000Ori ORION\n130000+423000CVn CANES VENATICI\n"
                            "C Other\n010000+000000Xyz XYZ\n");
        write("cbounds.dat", ":Andromeda\n  -0.5  53.0 1\n  1.0  53.0 0\n  1.0  35.0 1\n");
        write("milkyway.dat", "M 6.0 36.0\nD 6.1 36.5\nS 4.9 36.4\nD 4.95 36.0\n");
    }

    std::string Read(const char* name) const
    {
        return test_files::ReadText(out.filePath(name).toStdString());
    }

    QTemporaryDir in;
    QTemporaryDir out;
};

TEST_F(BuildChartData, ConvertsEveryFile)
{
    const auto counts = tools::BuildChartData(in.path().toStdString(), out.path().toStdString());
    EXPECT_EQ(counts.stars, 4);
    EXPECT_EQ(counts.linePoints, 4);
    EXPECT_EQ(counts.unresolvedLinePoints, 1);
    EXPECT_EQ(counts.names, 2);
    EXPECT_EQ(counts.milkyWayPoints, 4);

    // Stars brightest first, each keeping the line number of its row as the id; the proper
    // name wins over the designation; V 9.5 is left out.
    const std::string stars = Read("stars.dat");
    ASSERT_EQ(stars.compare(0, 8, "SLVSTARS"), 0);
    ASSERT_EQ(Get<std::uint32_t>(stars, 12), 4u);
    const std::uint32_t ids[] = {3, 2, 6, 4};
    const double mags[] = {-1.44, 0.45, 2.00, 4.36};
    for (int k = 0; k < 4; ++k) {
        SCOPED_TRACE(k);
        EXPECT_EQ(Get<std::uint32_t>(stars, 16 + 16 * k), ids[k]);
        EXPECT_EQ(Get<std::int16_t>(stars, 16 + 16 * k + 12), static_cast<int>(mags[k] * 100));
    }
    // Betelgeuse: 05 55 10.31 +07 24 25.4, to float precision.
    EXPECT_NEAR(Get<float>(stars, 32 + 4), 5 + 55 / 60.0 + 10.31 / 3600, 1e-6);
    EXPECT_NEAR(Get<float>(stars, 32 + 8), 7 + 24 / 60.0 + 25.4 / 3600, 1e-5);
    // A sign on zero degrees survives: -00 00 30.
    EXPECT_NEAR(Get<float>(stars, 16 + 16 * 2 + 8), -30 / 3600.0, 1e-6);
    EXPECT_EQ(stars.substr(16 + 16 * 4), "SiriusBetelgeuseome Eri");

    // Western figures only; the line restarts after the unknown HD 777.
    EXPECT_EQ(Read("clines.dat"),
              "# Constellation figures: M starts a figure line, D continues it.\n"
              "M 5.919 7.407\nD 6.752 -16.716\nM 1 1\nD 5.919 7.407\n");
    EXPECT_EQ(Read("cnames.dat"), "5.5 5 Ori Orion\n13 42.5 CVn Canes Venatici\n");
    // Boundaries wrap negative right ascensions and close their outline.
    EXPECT_EQ(Read("cbounds.dat"),
              "# Constellation boundaries, one closed outline per constellation.\n"
              "# Andromeda\nM 23.5 53\nD 1 53\nD 1 35\nD 23.5 53\n");
    EXPECT_EQ(Read("milkyway.dat"),
              "# Milky Way outline.\nM 6 36\nD 6.1 36.5\nM 4.9 36.4\nD 4.95 36\n");
}

TEST_F(BuildChartData, MissingSourceFails)
{
    QFile::remove(in.filePath("cbounds.dat"));
    const std::string path = in.path().toStdString() + "/cbounds.dat";
    try {
        tools::BuildChartData(in.path().toStdString(), out.path().toStdString());
        FAIL() << "no fault";
    } catch (const services::Fault& fault) {
        EXPECT_EQ(std::string(fault.what()), "Cannot read " + path);
        EXPECT_EQ(fault.Location(), "tools.BuildChartData");
    }
}

} // namespace
