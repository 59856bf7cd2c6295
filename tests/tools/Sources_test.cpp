#include "tools/Sources.h"

#include "services/Fault.h"
#include "tests/TestFiles.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <tuple>

namespace {

std::string WriteFile(const QTemporaryDir& dir, const std::string& name, const std::string& text)
{
    const std::string path = dir.filePath(QString::fromStdString(name)).toStdString();
    test_files::WriteText(path, text);
    return path;
}

TEST(ParseDegreesText, PlacesListTexts)
{
    struct Row
    {
        const char* text;
        std::optional<double> value;
    };
    const Row rows[] = {
        {" 51° 39' 00\"", 51.65},
        {"-121° 17' 00\"", -(121 + 17.0 / 60)},
        // The sign sits on a zero degrees field: it must not be lost.
        {"-0° 30' 00\"", -0.5},
        {" 0° 30' 36\"", 0.51},
        {"-0° 00' 01\"", -1.0 / 3600},
        {"", std::nullopt},
        {"east", std::nullopt},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.text);
        const auto v = tools::ParseDegreesText(r.text);
        ASSERT_EQ(v.has_value(), r.value.has_value());
        if (v) {
            EXPECT_NEAR(*v, *r.value, 1e-9);
        }
    }
}

TEST(SplitAsteroidName, NumberedNamedAndProvisional)
{
    struct Row
    {
        const char* full;
        int number;
        const char* name;
    };
    const Row rows[] = {
        {"     1 Ceres (A801 AA)", 1, "Ceres"}, {"   433 Eros (A898 PA)", 433, "Eros"},
        {"       (2022 LV2)", 0, "2022 LV2"},   {"  3200 Phaethon (1983 TB)", 3200, "Phaethon"},
        {"  4179 Toutatis", 4179, "Toutatis"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.full);
        const auto [number, name] = tools::SplitAsteroidName(r.full);
        EXPECT_EQ(number, r.number);
        EXPECT_EQ(name, r.name);
    }
}

TEST(DesignationFromIdentifier, ZeroPaddedIdentifiers)
{
    const std::pair<const char*, const char*> rows[] = {
        {"NGC0224", "NGC 224"},  {"IC0434", "IC 434"}, {"IC0186A", "IC 186A"},
        {"NGC7840", "NGC 7840"}, {"IC0001", "IC 1"},   {"M 40", "M 40"},
        {"NGC0061A", "NGC 61A"},
    };
    for (const auto& [in, out] : rows) {
        SCOPED_TRACE(in);
        EXPECT_EQ(tools::DesignationFromIdentifier(in), out);
    }
}

TEST(ReadHipToHd, FindsTheHdColumnByItsHeader)
{
    // Regression: the list has an empty column between HIP and SAO; reading the third field
    // took SAO numbers for HD numbers and lost two thirds of the variable stars.
    QTemporaryDir dir;
    const auto path =
        WriteFile(dir, "cross-id.dat",
                  "# HIP\t\tSAO\tHD\tHR\n1\t\t128522\t224700\t\n32349\t\t151881\t48915\t2491\n"
                  "77\t\t\t\t\n");
    const auto map = tools::ReadHipToHd(path);
    ASSERT_EQ(map.size(), 2u);
    EXPECT_EQ(map.at(1), 224700);
    EXPECT_EQ(map.at(32349), 48915);
}

TEST(ReadVariableStars, AmplitudeFlagGivesTheMinimum)
{
    QTemporaryDir dir;
    const auto path = WriteFile(dir, "gcvs.dat",
                                "1901\tR And\tM\t5.8\t0\t15.2\t\tV\t53820.\t409.2\t38\tS3,5e\n"
                                "8\tX Psc\tEA\t7.1\t1\t0.45\t\tV\t\t2.5\t\tA0\n"
                                "9\tY Psc\tL\t8.0\t0\t\t\tV\t\t\t\t\n");
    const auto stars = tools::ReadVariableStars(path);
    ASSERT_EQ(stars.size(), 3u);
    EXPECT_EQ(std::tie(stars[0].name, *stars[0].minMagnitude, *stars[0].periodDays),
              std::tuple("R And", 15.2, 409.2));
    EXPECT_NEAR(*stars[1].minMagnitude, 7.55, 1e-12);
    EXPECT_FALSE(stars[1].epochOfMaximum.has_value());
    EXPECT_FALSE(stars[2].minMagnitude.has_value());
}

// Writer of the deep-sky stream: big-endian numbers, UTF-16BE texts with a byte length.
struct Stream
{
    std::string bytes;
    void U32(std::uint32_t v)
    {
        for (int s = 24; s >= 0; s -= 8)
            bytes += static_cast<char>((v >> s) & 0xFF);
    }
    void F64(double d)
    {
        std::uint64_t v = 0;
        std::memcpy(&v, &d, sizeof v);
        for (int s = 56; s >= 0; s -= 8)
            bytes += static_cast<char>((v >> s) & 0xFF);
    }
    void Text(const std::u16string& s)
    {
        U32(static_cast<std::uint32_t>(2 * s.size()));
        for (char16_t c : s) {
            bytes += static_cast<char>(c >> 8);
            bytes += static_cast<char>(c & 0xFF);
        }
    }
    void Record(std::uint32_t ngc, const std::u16string& pk)
    {
        U32(255);
        F64(0.1864);
        F64(0.7203);
        F64(4.36);
        F64(3.4);
        U32(0);
        Text(u"SA(s)b");
        F64(3.15);
        F64(1.03);
        U32(45);
        for (int k = 0; k < 6; ++k)
            F64(0);
        for (int k = 0; k < 14; ++k)
            U32(k == 0 ? ngc : k == 2 ? 31 : 0);
        U32(0xFFFFFFFFu); // Ced: null text
        U32(0);
        U32(0);
        Text(pk);
        for (int k = 0; k < 6; ++k)
            Text(u"");
        for (int k = 0; k < 5; ++k)
            U32(0);
    }
};

TEST(ParseDeepSkyCatalog, ReadsRecordsAndRefusesATruncatedStream)
{
    Stream s;
    s.Text(u"3.16");
    s.Text(u"standard");
    s.Record(224, u"120+09.1");
    s.Record(7662, u"");
    const auto records = tools::ParseDeepSkyCatalog(s.bytes, "catalog.dat");
    ASSERT_EQ(records.size(), 2u);
    const auto& m31 = records[0];
    EXPECT_EQ(
        std::tie(m31.NGC, m31.M, m31.morphology, m31.positionAngle, m31.PK, m31.Ced, m31.vMag),
        std::tuple(224u, 31u, "SA(s)b", 45u, "120+09.1", "", 3.4));
    EXPECT_EQ(records[1].NGC, 7662u);

    const std::string truncated = s.bytes.substr(0, s.bytes.size() - 3);
    try {
        tools::ParseDeepSkyCatalog(truncated, "catalog.dat");
        FAIL() << "a truncated stream was accepted";
    } catch (const services::Fault& f) {
        EXPECT_STREQ(f.what(), "catalog.dat: the deep-sky catalogue ends inside a record");
    }
}

TEST(ReadCsv, CommentsQuotesAndMissingColumns)
{
    QTemporaryDir dir;
    const auto path = WriteFile(dir, "t.csv",
                                "# source line\r\ncode,description\r\nGx,Galaxy\r\n"
                                "\"C+N\",\"Cluster, with nebulosity\"\r\nPl\r\n");
    const auto t = tools::ReadCsv(path);
    ASSERT_EQ(t.rows.size(), 3u);
    EXPECT_EQ(t.rows[1][t.Column("description")], "Cluster, with nebulosity");
    EXPECT_EQ(t.rows[2][t.Column("description")], "");
    EXPECT_THROW(t.Column("chart_code"), services::Fault);
}

} // namespace
