// The plan reader against arbitrary bytes: random texts and mutations of real plan files must
// never crash it, hang it or give more than 500 entries. Run it in a build with
// SELVANE_SANITIZE=ON to have memory and undefined-behaviour faults caught too.

#include "spread/PlanFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <random>

namespace spread {
namespace {

constexpr unsigned kSeed = 20031230;
constexpr int kRandomTexts = 20000;
constexpr int kMutations = 20000;

// The entries with an id, which are what a save keeps.
std::vector<PlanEntry> Saved(const std::vector<PlanEntry>& entries)
{
    std::vector<PlanEntry> out;
    for (const PlanEntry& e : entries)
        if (e.PlanRecordID != 0)
            out.push_back(e);
    return out;
}

// Ids are written with 15 significant digits, as a sequential file writes a number, so an id
// of more digits comes back rounded.
bool SameEntry(const PlanEntry& a, const PlanEntry& b)
{
    const double scale = std::max(std::fabs(a.PlanRecordID), std::fabs(b.PlanRecordID));
    return a.PlanObjectID == b.PlanObjectID && a.PlanCatalog == b.PlanCatalog &&
           a.PlanNote == b.PlanNote &&
           std::fabs(a.PlanRecordID - b.PlanRecordID) <= scale * 1e-14;
}

// Whatever was read saves and reads back to the same entries, unless the saved first record
// holds a comma or line break of its own, which the format detection misreads by design.
void CheckRead(const std::string& text)
{
    const PlanRead read = ReadPlanText(text);
    ASSERT_LE(read.entries.size(), static_cast<size_t>(kMaxPlanEntries));
    if (read.truncated) {
        ASSERT_EQ(read.entries.size(), static_cast<size_t>(kMaxPlanEntries));
    }
    const std::vector<PlanEntry> kept = Saved(read.entries);
    const PlanRead again = ReadPlanText(WritePlanText(read.entries));
    if (again.format != PlanFormat::New)
        return;
    ASSERT_TRUE(again.fault.empty()) << ::testing::PrintToString(text);
    ASSERT_EQ(again.entries.size(), kept.size()) << ::testing::PrintToString(text);
    for (size_t i = 0; i < kept.size(); ++i)
        ASSERT_TRUE(SameEntry(again.entries[i], kept[i])) << i << ": "
                                                           << ::testing::PrintToString(text);
}

// Bytes drawn mostly from what plan files are made of, so that the parser's states are reached.
std::string RandomText(std::mt19937& rng)
{
    static const std::string alphabet = "\",\r\n 0123456789.-+eE#TRUEabcNGC\t'";
    std::uniform_int_distribution<int> length(0, 400);
    std::uniform_int_distribution<int> pick(0, static_cast<int>(alphabet.size()) - 1);
    std::uniform_int_distribution<int> byte(0, 255);
    std::bernoulli_distribution anyByte(0.1);
    std::string text(static_cast<size_t>(length(rng)), '\0');
    for (char& c : text)
        c = static_cast<char>(anyByte(rng) ? byte(rng) : alphabet[static_cast<size_t>(pick(rng))]);
    return text;
}

std::string Mutate(std::string text, std::mt19937& rng)
{
    std::uniform_int_distribution<int> edits(1, 8);
    std::uniform_int_distribution<int> kind(0, 3);
    std::uniform_int_distribution<int> byte(0, 255);
    const int n = edits(rng);
    for (int i = 0; i < n; ++i) {
        std::uniform_int_distribution<size_t> at(0, text.size());
        const size_t pos = at(rng);
        switch (kind(rng)) {
        case 0: // replace a byte
            if (pos < text.size())
                text[pos] = static_cast<char>(byte(rng));
            break;
        case 1: // insert a structural byte
            text.insert(pos, 1, "\",\r\n"[byte(rng) % 4]);
            break;
        case 2: // delete a run
            text.erase(pos, static_cast<size_t>(byte(rng) % 16));
            break;
        default: // duplicate a run, which also grows files past 500 records
            text.insert(pos, text.substr(pos, static_cast<size_t>(byte(rng)) * 8));
            break;
        }
    }
    return text;
}

std::vector<std::string> Seeds()
{
    std::vector<std::string> seeds;
    // Plans as Selvane writes them, with notes that hold commas, quotes and line breaks.
    std::vector<PlanEntry> entries;
    for (int i = 1; i <= 40; ++i)
        entries.push_back({"NGC " + std::to_string(i), i % 3 ? "2000" : "CALDWELL",
                           static_cast<double>(i * 37), i % 4 ? "" : "x, \"y\"\r\nz"});
    seeds.push_back(WritePlanText(entries));
    seeds.push_back("\"40\",\"2000\",47\r\n\"129\",\"2000\",142\r\n");
    // The shipped plans, when the databases have been built into this build folder.
    const std::filesystem::path resources = SELVANE_RESOURCE_DIR;
    for (const char* name : {"HCLUB1.PLN", "HCLUB2.PLN", "CALDWELL.PLN", "123096.PLN"}) {
        std::error_code ec;
        if (std::filesystem::is_regular_file(resources / name, ec))
            seeds.push_back(ReadPlanBytes(resources / name));
    }
    return seeds;
}

TEST(PlanReaderFuzz, RandomBytes)
{
    std::mt19937 rng(kSeed);
    for (int i = 0; i < kRandomTexts; ++i) {
        const std::string text = RandomText(rng);
        CheckRead(text);
        if (HasFatalFailure())
            return;
    }
}

TEST(PlanReaderFuzz, MutatedPlanFiles)
{
    std::mt19937 rng(kSeed + 1);
    const std::vector<std::string> seeds = Seeds();
    for (int i = 0; i < kMutations; ++i) {
        CheckRead(Mutate(seeds[static_cast<size_t>(i) % seeds.size()], rng));
        if (HasFatalFailure())
            return;
    }
}

TEST(PlanReaderFuzz, LongAndDegenerateTexts)
{
    const std::string texts[] = {
        std::string(1 << 20, '"'),          // one endless quoted record
        std::string(1 << 20, ','),          // one record of a million empty fields
        std::string(1 << 20, '\n'),         // only blank lines
        std::string(1 << 16, '\0'),         // NUL bytes
        [] {                                // 100,000 valid records
            std::string t;
            for (int i = 0; i < 100000; ++i)
                t += "\"a\",\"b\"," + std::to_string(i + 1) + ",\"\"\r\n";
            return t;
        }(),
    };
    for (const std::string& text : texts) {
        SCOPED_TRACE(text.size());
        CheckRead(text);
    }
}

} // namespace
} // namespace spread
