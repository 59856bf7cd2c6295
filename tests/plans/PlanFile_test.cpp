#include "spread/PlanFile.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "PlanTestSupport.h"

namespace spread {
namespace {

PlanEntry Entry(std::string id, std::string catalog, double recordId, std::string note = "")
{
    return {std::move(id), std::move(catalog), recordId, std::move(note)};
}

TEST(DetectPlanFormat, CountsTheCommasOfTheFirstLine)
{
    const struct
    {
        const char* line;
        PlanFormat format;
    } rows[] = {
        {R"("NGC 224","2000",234,"")", PlanFormat::New},
        {R"("224","2000",47)", PlanFormat::Old},
        // A comma inside the first note makes four commas: the file reads as the older format.
        {R"("NGC 224","2000",234,"seen, faint")", PlanFormat::Old},
        // A comma inside a three-field record's id makes three: read as the present format.
        {R"("Stock 2, Cas","OPEN",88)", PlanFormat::New},
        {"", PlanFormat::Old},
        {",,,", PlanFormat::New},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(DetectPlanFormat(row.line), row.format);
    }
}

TEST(ReadPlanText, RecordsOfBothFormats)
{
    const struct
    {
        const char* name;
        std::string text;
        std::vector<PlanEntry> entries;
        double largest;
    } rows[] = {
        {"three fields load with empty notes",
         "\"40\",\"2000\",47\r\n\"129\",\"2000\",142\r\n",
         {Entry("40", "2000", 47), Entry("129", "2000", 142)}, 142},
        {"four fields keep their notes",
         "\"M 31\",\"2000\",234,\"\"\r\n\"M 33\",\"2000\",598,\"low, 30x\"\r\n",
         {Entry("M 31", "2000", 234), Entry("M 33", "2000", 598, "low, 30x")}, 598},
        // A first note holding a comma turns the whole file into the older format: the notes are
        // lost, the ids stay in place.
        {"first note with a comma",
         "\"M 31\",\"2000\",234,\"a, b\"\r\n\"M 33\",\"2000\",598,\"kept?\"\r\n",
         {Entry("M 31", "2000", 234), Entry("M 33", "2000", 598)}, 598},
        {"LF and CR line ends, blank lines, no final line end",
         "\"a\",\"X\",1,\"n\"\n\n\"b\",\"X\",2,\"\"\r   \r\"c\",\"X\",3,\"\"",
         {Entry("a", "X", 1, "n"), Entry("b", "X", 2), Entry("c", "X", 3)}, 3},
        {"missing and empty ids read as 0",
         "\"a\",\"X\",,\"\"\r\n\"b\"\r\n\"c\",\"X\",\" 7 \",\"\"\r\n",
         {Entry("a", "X", 0), Entry("b", "", 0), Entry("c", "X", 7)}, 7},
        {"the last id above 0, not the greatest",
         "\"a\",\"X\",9,\"\"\r\n\"b\",\"X\",3,\"\"\r\n\"c\",\"X\",0,\"\"\r\n",
         {Entry("a", "X", 9), Entry("b", "X", 3), Entry("c", "X", 0)}, 3},
        {"a note with a line break and quotes reads back whole",
         "\"a\",\"X\",1,\"two\r\nlines \"\"q\"\"\"\r\n\"b\",\"X\",2,\"\"\r\n",
         {Entry("a", "X", 1, "two\r\nlines \"q\""), Entry("b", "X", 2)}, 2},
        {"empty text", "", {}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const PlanRead read = ReadPlanText(row.text);
        EXPECT_EQ(read.entries, row.entries);
        EXPECT_EQ(read.largestRecordId, row.largest);
        EXPECT_TRUE(read.fault.empty());
        EXPECT_FALSE(read.truncated);
    }
}

TEST(ReadPlanText, AnIdThatIsNoNumberEndsTheReadingAndKeepsTheRecordsBefore)
{
    for (const char* badId : {"\"abc\"", "12abc", "1e999", "#TRUE#"}) {
        SCOPED_TRACE(badId);
        const std::string text = "\"a\",\"X\",5,\"\"\r\n\"b\",\"X\"," + std::string(badId) +
                                 ",\"\"\r\n\"c\",\"X\",6,\"\"\r\n";
        const PlanRead read = ReadPlanText(text);
        EXPECT_EQ(read.fault, TypeMismatchText);
        EXPECT_EQ(read.entries, std::vector<PlanEntry>{Entry("a", "X", 5)});
    }
}

TEST(ReadPlanText, RefusesRecordsBeyondFiveHundred)
{
    for (int records : {499, 500, 501, 2000}) {
        SCOPED_TRACE(records);
        std::string text;
        for (int i = 1; i <= records; ++i)
            text += "\"NGC " + std::to_string(i) + "\",\"2000\"," + std::to_string(i) + ",\"\"\r\n";
        const PlanRead read = ReadPlanText(text);
        ASSERT_EQ(read.entries.size(), static_cast<size_t>(std::min(records, 500)));
        EXPECT_EQ(read.entries.back().PlanRecordID, std::min(records, 500));
        EXPECT_EQ(read.truncated, records > 500);
        EXPECT_EQ(read.largestRecordId, std::min(records, 500));
    }
}

TEST(WritePlanText, FourFieldsPerEntryWithAnIdCrLfEnded)
{
    const std::vector<PlanEntry> entries = {
        Entry("NGC 224", "2000", 234), Entry("free", "2000", 0),
        Entry("Say \"hi\"", "2000", 1e6, "note, with comma"), Entry("PLUTO", "PLANETS", 13.5)};
    EXPECT_EQ(WritePlanText(entries), "\"NGC 224\",\"2000\",234,\"\"\r\n"
                                      "\"Say \"\"hi\"\"\",\"2000\",1000000,\"note, with comma\"\r\n"
                                      "\"PLUTO\",\"PLANETS\",13.5,\"\"\r\n");
}

TEST(WritePlanText, ThreeFieldFileIsSavedWithFour)
{
    const PlanRead old = ReadPlanText("\"40\",\"2000\",47\r\n\"129\",\"2000\",142\r\n");
    ASSERT_EQ(old.format, PlanFormat::Old);
    const std::string saved = WritePlanText(old.entries);
    EXPECT_EQ(saved, "\"40\",\"2000\",47,\"\"\r\n\"129\",\"2000\",142,\"\"\r\n");
    const PlanRead again = ReadPlanText(saved);
    EXPECT_EQ(again.format, PlanFormat::New);
    EXPECT_EQ(again.entries, old.entries);
}

TEST(PlanFile, SavedPlanReadsBackTheSameEntries)
{
    QTemporaryDir dir;
    const std::filesystem::path path = dir.filePath("round.PLN").toStdString();
    const std::vector<PlanEntry> entries = {
        Entry("NGC 7331", "2000", 7800, "first"), Entry("C 14", "CALDWELL", 13974),
        Entry("M 42", "2000", 1976, "Trapezium, 4 stars; \"E\" and \"F\" at 200x"),
        Entry("Östlich 1", "ÜBER", 708000, "multi\nline"), Entry("  blanks  ", "", 3.25, " ")};
    WritePlanFile(path, entries);
    const PlanRead read = ReadPlanText(ReadPlanBytes(path));
    EXPECT_EQ(read.format, PlanFormat::New);
    EXPECT_EQ(read.entries, entries);
}

TEST(IsShippedPlan, ComparesTheEndOfTheUpperCasedPath)
{
    const struct
    {
        const char* path;
        bool shipped;
    } rows[] = {
        {"/home/u/.local/share/selvane/HCLUB1.PLN", true},
        {"/x/hclub2.pln", true},
        {"C:\\Selvane\\Caldwell.Pln", true},
        {"123096.PLN", true},
        // Deliberate in the system: only the end of the name is compared.
        {"/x/MYHCLUB1.PLN", true},
        {"/x/HCLUB1.PLN.bak", false},
        {"/x/23096.PLN", false},
        {"/x/HCLUB3.PLN", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(IsShippedPlan(row.path), row.shipped);
    }
}

TEST(RepairShippedIds, LooksEachEntryUpInTheOpenDatabase)
{
    QTemporaryDir dir;
    auto db = plans_test::MakeObjectDb(dir.filePath("objects.mdb").toStdString(),
                                       {{234, "NGC 224", "2000"},
                                        {7800, "NGC 7331", "2000"},
                                        {13974, "C 14", "CALDWELL"},
                                        {555, "NGC O'Neil", "2000"}});
    EXPECT_EQ(ShippedIdSql("O'Neil", "2000"),
              "Select ID From SelvaneTable Where ObjectID = 'NGC O''Neil' and Catalog = '2000'");

    std::vector<PlanEntry> entries = {
        Entry("224", "2000", 241),           // found: takes today's id
        Entry("7331", "2000", 7807, "n"),    // found, note kept
        Entry("C 14", "CALDWELL", 13974),    // looked up as "NGC C 14": no match, id kept
        Entry("9999", "2000", 17),           // no such object: id kept
        Entry("O'Neil", "2000", 1),          // a quote in the stored id
        Entry("224", "Cat'x", 3),            // a quote in the stored catalogue
    };
    // The lookup the program uses, over the real file.
    RepairShippedIds(entries, [&](const std::string& id, const std::string& cat) {
        data::Recordset rs = db->OpenRecordset(ShippedIdSql(id, cat), data::Snapshot);
        return rs.Eof() ? std::nullopt : std::optional<double>(rs.Fields("ID").Double());
    });
    EXPECT_EQ(entries, (std::vector<PlanEntry>{Entry("224", "2000", 234),
                                               Entry("7331", "2000", 7800, "n"),
                                               Entry("C 14", "CALDWELL", 13974),
                                               Entry("9999", "2000", 17),
                                               Entry("O'Neil", "2000", 555),
                                               Entry("224", "Cat'x", 3)}));
}

} // namespace
} // namespace spread
