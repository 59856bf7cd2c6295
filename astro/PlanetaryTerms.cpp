#include "astro/PlanetaryTerms.h"

#include "astro/Time.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>

namespace astro {

namespace {

constexpr std::string_view kReadLocation = "Module2.ReadPlanetaryTerms";
constexpr std::string_view kEvaluateLocation = "Module2.PlPosHi";
constexpr int kIndexRecordBytes = 4;
constexpr int kTermRecordBytes = 24;
constexpr int kBlocksPerPlanet = kSeriesCoordinates * kSeriesPowers;

std::uint64_t LittleEndian(const unsigned char* bytes, int count)
{
    std::uint64_t value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = (value << 8) | bytes[i];
    return value;
}

std::int16_t Int16At(const unsigned char* bytes)
{
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(LittleEndian(bytes, 2)));
}

double DoubleAt(const unsigned char* bytes)
{
    return std::bit_cast<double>(LittleEndian(bytes, 8));
}

// Reads the fixed-length record of a random-access file, numbered from 1.
bool ReadRecord(std::ifstream& file, long number, int length, unsigned char* record)
{
    file.seekg(static_cast<std::streamoff>(number - 1) * length);
    file.read(reinterpret_cast<char*>(record), length);
    return file.gcount() == length;
}

} // namespace

PlanetaryTerms& ProcessPlanetaryTerms()
{
    static PlanetaryTerms table;
    return table;
}

void ReadPlanetaryTerms(std::int16_t p, const std::filesystem::path& programDir, FaultSink& faults,
                        MessageBoxSink& messages, PlanetaryTerms& table)
{
    if (table.counter > 1 || p >= kSeriesPlanets)
        return;
    table.counter = 1;
    if (p < 0) {
        faults.ReportFault(kBadRecordNumber, kReadLocation);
        return;
    }
    std::ifstream index(programDir / kPlanetIndexFileName, std::ios::binary);
    std::ifstream data(programDir / kPlanetTermsFileName, std::ios::binary);
    if (!index || !data) {
        faults.ReportFault(kFileNotFound, kReadLocation);
        return;
    }

    auto& blocks = table.blocks[static_cast<std::size_t>(p)];
    unsigned char record[kTermRecordBytes];
    for (int i = 0; i < kBlocksPerPlanet; ++i) {
        if (!ReadRecord(index, kBlocksPerPlanet * p + 1 + i, kIndexRecordBytes, record)) {
            faults.ReportFault(kInputPastEndOfFile, kReadLocation);
            return;
        }
        TermBlock& block = blocks[static_cast<std::size_t>(i / kSeriesPowers)]
                                 [static_cast<std::size_t>(i % kSeriesPowers)];
        block.first = Int16At(record);
        block.count = Int16At(record + 2);
    }

    const long fileStart = blocks[0][0].first + 1L;
    data.seekg(static_cast<std::streamoff>(fileStart - 1) * kTermRecordBytes);
    for (const auto& coordinate : blocks) {
        for (const TermBlock& block : coordinate) {
            for (int n = 0; n < block.count; ++n) {
                data.read(reinterpret_cast<char*>(record), kTermRecordBytes);
                if (data.gcount() != kTermRecordBytes) {
                    faults.ReportFault(kInputPastEndOfFile, kReadLocation);
                    return;
                }
                const int slot = table.counter++;
                if (slot > kMaxPlanetaryTerms) {
                    // Deliberate: the box comes first and the store then fails; what was read
                    // stays, and the counter keeps later calls from loading again.
                    messages.ShowMessageBox(kTooManyTermsText);
                    faults.ReportFault(kSubscriptOutOfRange, kReadLocation);
                    return;
                }
                table.terms[static_cast<std::size_t>(slot)] = {
                    DoubleAt(record), DoubleAt(record + 8), DoubleAt(record + 16)};
            }
        }
    }
    // The stored numbers now point into memory: slot 1 holds the record fileStart.
    const long shift = 1 - fileStart;
    for (auto& coordinate : blocks)
        for (TermBlock& block : coordinate)
            block.first = static_cast<std::int16_t>(block.first + shift);
}

HelioPlace PlPosHi(std::int16_t p, double T, FaultSink& faults, const PlanetaryTerms& table)
{
    HelioPlace place;
    if (p < 0 || p >= kSeriesPlanets) {
        faults.ReportFault(kSubscriptOutOfRange, kEvaluateLocation);
        return place;
    }
    const double tau = T / 10;
    double* const values[kSeriesCoordinates] = {&place.L, &place.B, &place.R};
    const auto& blocks = table.blocks[static_cast<std::size_t>(p)];
    for (int c = 0; c < kSeriesCoordinates; ++c) {
        double value = 0;
        double factor = 1;
        for (const TermBlock& block : blocks[static_cast<std::size_t>(c)]) {
            if (block.count > 0 &&
                (block.first < 0 || block.first + block.count > kMaxPlanetaryTerms)) {
                faults.ReportFault(kSubscriptOutOfRange, kEvaluateLocation);
                return place;
            }
            double sum = 0;
            for (int n = 1; n <= block.count; ++n) {
                const PlanetaryTerm& term = table.terms[static_cast<std::size_t>(block.first + n)];
                sum += term.A * std::cos(term.B + term.C * tau);
            }
            value += sum * factor;
            factor *= tau;
        }
        *values[c] = value;
    }
    place.L = modpi2(place.L);
    return place;
}

} // namespace astro
