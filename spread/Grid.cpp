#include "spread/Grid.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <numeric>
#include <stdexcept>

namespace spread {
namespace {

// Rows are packed into chunks of this size; a longer row gets a chunk of its own.
constexpr std::uint32_t kChunkBytes = 4u << 20;

// Field col (1-based) of a tab-separated row.
std::string_view Field(std::string_view row, int col)
{
    std::size_t start = 0;
    for (int c = 1; c < col; ++c) {
        const std::size_t tab = row.find('\t', start);
        if (tab == std::string_view::npos)
            return {};
        start = tab + 1;
    }
    const std::size_t end = row.find('\t', start);
    return row.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
}

// Rows are read eight bytes at a time where that helps: a word holds eight characters, the
// first in its lowest byte.
constexpr bool kWordsInOrder = std::endian::native == std::endian::little;
constexpr std::uint64_t kLowSevenBits = 0x7F7F7F7F7F7F7F7FULL;
constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
constexpr std::uint64_t kTabs = 0x0909090909090909ULL;

// Eight characters from p, with zero bytes past end.
std::uint64_t WordAt(const char* p, const char* end)
{
    std::uint64_t word = 0;
    std::memcpy(&word, p, std::min<std::size_t>(8, static_cast<std::size_t>(end - p)));
    return word;
}

// 0x80 in each byte of word that is a tab, 0 in the others.
std::uint64_t TabBytes(std::uint64_t word)
{
    const std::uint64_t x = word ^ kTabs;
    return ~(((x & kLowSevenBits) + kLowSevenBits) | x | kLowSevenBits);
}

std::size_t CountTabs(std::string_view text)
{
    if (!kWordsInOrder)
        return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\t'));
    std::size_t tabs = 0;
    const char* end = text.data() + text.size();
    for (const char* p = text.data(); p < end; p += 8) {
        // One bit per tab; the multiplication adds the eight bytes up into the top one.
        const std::uint64_t ones = TabBytes(WordAt(p, end)) >> 7;
        tabs += static_cast<std::size_t>((ones * 0x0101010101010101ULL) >> 56);
    }
    return tabs;
}

// The text up to the end of field 31: cells beyond the grid's columns are dropped.
std::string_view FirstColumns(std::string_view text)
{
    // A row as the loads write it has 31 cells; one count of its tabs settles that.
    if (CountTabs(text) < kGridCols)
        return text;
    std::size_t pos = 0;
    for (int c = 1; c < kGridCols; ++c) {
        pos = text.find('\t', pos);
        if (pos == std::string_view::npos)
            return text;
        ++pos;
    }
    const std::size_t end = text.find('\t', pos);
    return end == std::string_view::npos ? text : text.substr(0, end);
}

std::size_t CodePoints(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char ch) {
        return (static_cast<unsigned char>(ch) & 0xC0) != 0x80;
    }));
}

void CheckCol(int col)
{
    if (col < 0 || col > kGridCols)
        throw std::out_of_range("grid column out of range");
}

} // namespace

double CellValue(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t'))
        ++i;
    if (i < text.size() && text[i] == '+')
        ++i;
    char buffer[64];
    std::size_t n = 0;
    for (; i < text.size() && n < sizeof buffer; ++i, ++n)
        buffer[n] = text[i] == ',' ? '.' : text[i];
    double value = 0;
    const auto result = std::from_chars(buffer, buffer + n, value);
    return result.ec == std::errc{} ? value : 0.0;
}

Grid::Grid()
{
    widths_.fill(8.0);
    aligns_.fill(HAlign::General);
    types_.fill(CellType::StaticText);
    decimals_.fill(0);
}

Grid::Grid(Grid&&) noexcept = default;
Grid& Grid::operator=(Grid&&) noexcept = default;
Grid::~Grid() = default;

void Grid::SetMaxRows(int rows)
{
    if (rows <= 0) {
        rows_.clear();
        rows_.shrink_to_fit();
        chunks_.clear();
        chunkSizes_.clear();
        chunkUsed_ = 0;
        return;
    }
    rows_.resize(static_cast<std::size_t>(rows));
}

std::string_view Grid::View(const RowRef& ref) const
{
    if (ref.length == 0)
        return {};
    return {chunks_[ref.chunk].get() + ref.offset, ref.length};
}

Grid::RowRef Grid::Store(std::string_view text)
{
    RowRef ref;
    if (text.empty())
        return ref;
    if (text.size() > UINT32_MAX)
        throw std::length_error("grid row too long");
    const auto length = static_cast<std::uint32_t>(text.size());
    if (chunks_.empty() || chunkSizes_.back() - chunkUsed_ < length) {
        const std::uint32_t size = std::max(kChunkBytes, length);
        chunks_.push_back(std::make_unique_for_overwrite<char[]>(size));
        chunkSizes_.push_back(size);
        chunkUsed_ = 0;
    }
    ref.chunk = static_cast<std::uint32_t>(chunks_.size() - 1);
    ref.offset = chunkUsed_;
    ref.length = length;
    std::memcpy(chunks_.back().get() + chunkUsed_, text.data(), length);
    chunkUsed_ += length;
    return ref;
}

void Grid::Clip(int row, std::string_view tabSeparated)
{
    if (row < 1 || row > MaxRows())
        throw std::out_of_range("grid row out of range");
    RowRef& ref = rows_[static_cast<std::size_t>(row - 1)];
    const std::uint32_t hidden = ref.hidden;
    ref = Store(FirstColumns(tabSeparated));
    ref.hidden = hidden;
}

int Grid::AppendRow(std::string_view tabSeparated)
{
    RowRef ref = Store(FirstColumns(tabSeparated));
    rows_.push_back(ref);
    return MaxRows();
}

std::string_view Grid::RowText(int row) const
{
    if (row < 1 || row > MaxRows())
        return {};
    return View(rows_[static_cast<std::size_t>(row - 1)]);
}

std::string_view Grid::Text(int row, int col) const
{
    if (col < 0 || col > kGridCols)
        return {};
    if (row == 0)
        return headers_[static_cast<std::size_t>(col)];
    if (col == 0)
        return {};
    return Field(RowText(row), col);
}

void Grid::SetText(int row, int col, std::string_view text)
{
    if (col < 1 || col > kGridCols)
        throw std::out_of_range("grid column out of range");
    const std::string_view old = RowText(row);
    std::string rebuilt;
    rebuilt.reserve(old.size() + text.size() + kGridCols);
    for (int c = 1; c <= kGridCols; ++c) {
        if (c > 1)
            rebuilt += '\t';
        rebuilt += c == col ? text : Field(old, c);
    }
    // Trailing blank cells need no tabs.
    while (!rebuilt.empty() && rebuilt.back() == '\t')
        rebuilt.pop_back();
    Clip(row, rebuilt);
}

void Grid::SetHeader(int col, std::string_view text)
{
    CheckCol(col);
    headers_[static_cast<std::size_t>(col)] = text;
}

bool Grid::RowHidden(int row) const
{
    if (row < 1 || row > MaxRows())
        return false;
    return rows_[static_cast<std::size_t>(row - 1)].hidden != 0;
}

void Grid::SetRowHidden(int row, bool hidden)
{
    if (row < 1 || row > MaxRows())
        throw std::out_of_range("grid row out of range");
    rows_[static_cast<std::size_t>(row - 1)].hidden = hidden ? 1 : 0;
}

double Grid::MaxTextColWidth(int col) const
{
    CheckCol(col);
    std::size_t widest = CodePoints(headers_[static_cast<std::size_t>(col)]);
    if (col > 0) {
        for (int row = 1; row <= MaxRows(); ++row)
            widest = std::max(widest, CodePoints(Text(row, col)));
    }
    return static_cast<double>(widest);
}

std::array<double, kGridCols + 1> Grid::MaxTextColWidths() const
{
    CellWidths widest{};
    for (const RowRef& ref : rows_)
        WidenCellWidths(View(ref), widest);
    return MaxTextColWidths(widest);
}

std::array<double, kGridCols + 1> Grid::MaxTextColWidths(const CellWidths& rows) const
{
    std::array<double, kGridCols + 1> widths{};
    for (std::size_t col = 0; col <= kGridCols; ++col)
        widths[col] = static_cast<double>(std::max(CodePoints(headers_[col]), rows[col]));
    return widths;
}

void WidenCellWidths(std::string_view tabSeparated, CellWidths& widest)
{
    // A row of plain ASCII, as most are, goes from tab to tab, a cell's width its bytes; at the
    // first byte of another character the row starts over character by character, which only
    // widens the cells measured already to the same widths.
    const char* begin = tabSeparated.data();
    const char* end = begin + tabSeparated.size();
    if (kWordsInOrder) {
        std::size_t col = 1;
        const char* cell = begin;
        bool ascii = true;
        for (const char* p = begin; p < end && ascii; p += 8) {
            const std::uint64_t word = WordAt(p, end);
            if (word & kHighBits) {
                ascii = false;
                break;
            }
            for (std::uint64_t tabs = TabBytes(word); tabs != 0; tabs &= tabs - 1) {
                const char* tab = p + std::countr_zero(tabs) / 8;
                widest[col] = std::max(widest[col], static_cast<std::size_t>(tab - cell));
                cell = tab + 1;
                if (++col > kGridCols)
                    return;
            }
        }
        if (ascii) {
            widest[col] = std::max(widest[col], static_cast<std::size_t>(end - cell));
            return;
        }
    }
    // One pass over the row's characters: a tab ends a cell.
    std::size_t col = 1;
    std::size_t width = 0;
    for (const char ch : tabSeparated) {
        if (ch == '\t') {
            widest[col] = std::max(widest[col], width);
            width = 0;
            if (++col > kGridCols)
                return;
        } else if ((static_cast<unsigned char>(ch) & 0xC0) != 0x80) {
            ++width;
        }
    }
    widest[col] = std::max(widest[col], width);
}

void Grid::SetCellType(int col, CellType type, int decimalPlaces)
{
    CheckCol(col);
    types_[static_cast<std::size_t>(col)] = type;
    decimals_[static_cast<std::size_t>(col)] = decimalPlaces;
}

void Grid::Sort(const std::array<SortKey, 3>& keys)
{
    struct Level
    {
        int col;
        bool descending;
        bool numeric;
        std::vector<double> values;
        std::vector<std::string_view> texts;
    };
    std::vector<Level> levels;
    const std::size_t n = rows_.size();
    for (const SortKey& key : keys) {
        if (key.col < 1 || key.col > kGridCols)
            continue;
        Level level{key.col, key.descending,
                    types_[static_cast<std::size_t>(key.col)] == CellType::Float, {}, {}};
        if (level.numeric) {
            level.values.resize(n);
            for (std::size_t i = 0; i < n; ++i)
                level.values[i] = CellValue(Field(View(rows_[i]), key.col));
        } else {
            level.texts.resize(n);
            for (std::size_t i = 0; i < n; ++i)
                level.texts[i] = Field(View(rows_[i]), key.col);
        }
        levels.push_back(std::move(level));
    }
    if (levels.empty() || n < 2)
        return;

    std::vector<std::uint32_t> order(n);
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        for (const Level& level : levels) {
            int cmp = 0;
            if (level.numeric) {
                const double x = level.values[a];
                const double y = level.values[b];
                cmp = x < y ? -1 : (y < x ? 1 : 0);
            } else {
                const int c = level.texts[a].compare(level.texts[b]);
                cmp = c < 0 ? -1 : (c > 0 ? 1 : 0);
            }
            if (cmp != 0)
                return level.descending ? cmp > 0 : cmp < 0;
        }
        return false;
    });

    std::vector<RowRef> sorted(n);
    for (std::size_t i = 0; i < n; ++i)
        sorted[i] = rows_[order[i]];
    rows_.swap(sorted);
}

bool Grid::CellSuppressed(int row, int col) const
{
    if (col < 1 || col > kGridCols || (zeroSuppressed_ & ColumnBit(col)) == 0)
        return false;
    const std::string_view text = Text(row, col);
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return false;
    // Only a number can be zero: "n/a" stays visible.
    const char lead = text[first];
    const bool numeric = (lead >= '0' && lead <= '9') || lead == '+' || lead == '-' ||
                         lead == '.' || lead == ',';
    return numeric && CellValue(text) == 0.0;
}

std::size_t Grid::MemoryBytes() const
{
    std::size_t bytes = rows_.capacity() * sizeof(RowRef);
    for (std::uint32_t size : chunkSizes_)
        bytes += size;
    return bytes;
}

} // namespace spread
