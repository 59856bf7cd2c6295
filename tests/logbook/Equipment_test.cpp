#include "logbook/Equipment.h"

#include "../data/TestDatabases.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "tests/TestFiles.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using logbook::EquipmentKind;
using services::vb::Regional;

struct Port : services::ScriptedUiPort
{
    Port() { echo = false; }
    // Each shown message as "title|text|kind".
    std::vector<std::string> Messages() const
    {
        std::vector<std::string> out;
        for (const Shown& s : shown)
            out.push_back(s.message.ShortMessage + "|" + s.Text() + "|" + s.message.kind);
        return out;
    }
};

using test_files::ReadText;
using test_files::WriteText;

const Regional Comma{"dd.mm.yyyy", ".", ","};

std::string Pad(const std::string& name)
{
    return name + std::string(33 - name.size(), ' ');
}

TEST(MakeScopeRecord, ColumnsValuesAndWarnings)
{
    const std::string name40 = "Forty character telescope name, exactly.";
    ASSERT_EQ(name40.size(), 40u);
    const std::string truncName = "Scope name will be truncated to 33 characters";
    struct Row
    {
        const char* what;
        logbook::ScopeBoxes typed;
        Regional regional;
        std::string record;
        std::vector<std::string> warnings;
    };
    const Row rows[] = {
        {"a plain add", {"8 inch f/10 Schmidt-Cassegrain", "203", "10"}, {},
         Pad("8 inch f/10 Schmidt-Cassegrain") + "10.0 203", {}},
        {"blanks around the boxes", {"  Dob  ", " 254 ", " 4.7 "}, {}, Pad("Dob") + "04.7 254", {}},
        {"F-ratio rounded half away from zero", {"A", "100", "6.35"}, {}, Pad("A") + "06.4 100",
         {}},
        {"a 40 character name keeps its first 33 after one warning", {name40, "150", "8"}, {},
         name40.substr(0, 33) + "08.0 150", {"Truncation has occurred|" + truncName + "|U"}},
        {"exactly 33 characters is no truncation", {name40.substr(0, 33), "150", "8"}, {},
         name40.substr(0, 33) + "08.0 150", {}},
        {"all three too long, warned in box order",
         {name40, "1200", "12.55"},
         {},
         name40.substr(0, 33) + "12.5 120",
         {"Truncation has occurred|" + truncName + "|U",
          "Truncation has occurred|Aperature will be truncated to 3 characters|U",
          "Truncation has occurred|F-Ratio will be truncated to 4 characters|U"}},
        {"a comma decimal sign still writes a full stop", {"C8", "203", "8"}, Comma,
         Pad("C8") + "08.0 203", {}},
        {"a typed comma is the decimal sign there", {"Fast Newtonian", "254", "4,5"}, Comma,
         Pad("Fast Newtonian") + "04.5 254", {}},
        {"boxes that are not numbers count as 0", {"Unknown", "n/a", "?"}, {},
         Pad("Unknown") + "00.0 000", {}},
        // U+00D8 is two bytes: the columns count it once.
        {"names pad by characters", {"\xC3\x98 80 refractor", "80", "5"}, {},
         "\xC3\x98 80 refractor" + std::string(33 - 14, ' ') + "05.0 080", {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        Port ui;
        logbook::ScopeBoxes boxes = row.typed;
        EXPECT_EQ(logbook::MakeScopeRecord(ui, boxes, row.regional), row.record);
        EXPECT_EQ(ui.Messages(), row.warnings);
    }
}

TEST(MakeScopeRecord, BoxesAsTheAddLeavesThem)
{
    Port ui;
    logbook::ScopeBoxes boxes{"Refractor", "1024", "6,35"};
    logbook::MakeScopeRecord(ui, boxes, Comma);
    // The F-ratio is the value, shown with the regional sign.
    EXPECT_EQ(boxes.name + "|" + boxes.aperture + "|" + boxes.fratio,
              Pad("Refractor") + "|102|6,35");
}

TEST(SplitScopeRecord, RoundTripsThroughTheBoxes)
{
    for (const Regional& regional : {Regional{}, Comma}) {
        SCOPED_TRACE(regional.decimalchar);
        Port ui;
        logbook::ScopeBoxes typed{"10 inch f/4.7 Dobsonian", "254", "4.7"};
        if (regional.decimalchar == ",")
            typed.fratio = "4,7";
        const std::string record = logbook::MakeScopeRecord(ui, typed, regional);
        logbook::ScopeBoxes split = logbook::SplitScopeRecord(record);
        EXPECT_EQ(split.name + "|" + split.fratio + "|" + split.aperture,
                  Pad("10 inch f/4.7 Dobsonian") + "|04.7| 254");
        // The aperture's blank and the file's full stop read back as they were written.
        EXPECT_EQ(logbook::MakeScopeRecord(ui, split, regional), record);
        EXPECT_TRUE(ui.shown.empty());
    }
    // Short or empty rows give short or empty boxes, never a failure.
    const logbook::ScopeBoxes empty = logbook::SplitScopeRecord("");
    EXPECT_EQ(empty.name + empty.fratio + empty.aperture, "");
    const logbook::ScopeBoxes shortRow = logbook::SplitScopeRecord(Pad("Binoculars") + "05");
    EXPECT_EQ(shortRow.fratio + "|" + shortRow.aperture, "05|");
}

TEST(MakeEyepieceRecord, ColumnsAndWarnings)
{
    Port ui;
    logbook::EyepieceBoxes boxes{"25 mm Plossl", "25", "52"};
    EXPECT_EQ(logbook::MakeEyepieceRecord(ui, boxes, {}), Pad("25 mm Plossl") + "25.0 52");
    EXPECT_EQ(logbook::MakeEyepieceRecord(ui, boxes = {"6 mm", "6,5", "82"}, Comma),
              Pad("6 mm") + "06.5 82");
    EXPECT_TRUE(ui.shown.empty());

    boxes = {std::string(34, 'E'), "12.55", "1000"};
    EXPECT_EQ(logbook::MakeEyepieceRecord(ui, boxes, {}), std::string(33, 'E') + "12.5 100");
    EXPECT_EQ(ui.Messages(),
              (std::vector<std::string>{
                  "Truncation has occurred|Eyepiece name will be truncated to 33 characters|U",
                  "Truncation has occurred|Eyepiece Size will be truncated to 4 characters|U",
                  "Truncation has occurred|Apparent Field will be truncated to 3 characters|U"}));
}

TEST(MakeTextRecord, WarnsOverAHundredCharactersAndAddsAllTheSame)
{
    const std::string hundred(100, 'x');
    // Multi-byte characters: 100 of them are 200 bytes, and still allowed.
    std::string hundredWide;
    for (int i = 0; i < 100; ++i)
        hundredWide += "\xC3\xA9";
    struct Row
    {
        EquipmentKind kind;
        std::string text;
        std::string record;
        std::vector<std::string> warnings;
    };
    const Row rows[] = {
        {EquipmentKind::Ccd, "  " + hundred + "  ", hundred, {}},
        {EquipmentKind::Ccd, hundredWide, hundredWide, {}},
        {EquipmentKind::Ccd, hundred + "y", hundred + "y",
         {"Maximum Length Exceeded|Up to 100 characters are allowed.|U"}},
        {EquipmentKind::Exp, hundred + "y", hundred + "y",
         {"Maximum length exceeded|Up to 100 characters are allowed.|U"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.record.size());
        Port ui;
        EXPECT_EQ(logbook::MakeTextRecord(ui, row.kind, row.text), row.record);
        EXPECT_EQ(ui.Messages(), row.warnings);
    }
}

TEST(EquipmentFiles, ReadWriteAddDelete)
{
    testing_data::TestFolder f;
    Port ui;
    const fs::path scope = f.dir.File("scope.dat");

    // Any line end is read; trailing blanks stay; a last line without an end counts.
    WriteText(scope, "A   \r\nB\rC\n\nD");
    std::vector<std::string> rows = logbook::ReadEquipmentList(ui, f.dir, EquipmentKind::Scope);
    EXPECT_EQ(rows, (std::vector<std::string>{"A   ", "B", "C", "", "D"}));

    ASSERT_TRUE(logbook::DeleteEquipmentRow(ui, f.dir, EquipmentKind::Scope, rows, 3));
    EXPECT_EQ(ReadText(scope), "A   \nB\nC\nD\n");
    ASSERT_TRUE(logbook::AddEquipmentRow(ui, f.dir, EquipmentKind::Scope, rows, "E "));
    EXPECT_EQ(ReadText(scope), "A   \nB\nC\nD\nE \n");
    EXPECT_EQ(logbook::ReadEquipmentFile(f.dir, EquipmentKind::Scope), rows);

    // A row that is not there changes nothing.
    for (int index : {-1, 5}) {
        EXPECT_FALSE(logbook::DeleteEquipmentRow(ui, f.dir, EquipmentKind::Scope, rows, index));
        EXPECT_EQ(rows.size(), 5u);
    }
    EXPECT_EQ(ReadText(scope), "A   \nB\nC\nD\nE \n");

    // The last row deleted leaves an empty file, which reads as an empty list.
    std::vector<std::string> one{"only"};
    ASSERT_TRUE(logbook::UpdateExp(ui, f.dir, one));
    ASSERT_TRUE(logbook::DeleteEquipmentRow(ui, f.dir, EquipmentKind::Exp, one, 0));
    EXPECT_EQ(ReadText(f.dir.File("exp.dat")), "");
    EXPECT_TRUE(logbook::ReadEquipmentList(ui, f.dir, EquipmentKind::Exp).empty());

    EXPECT_TRUE(ui.shown.empty());
    // No temporary file is left beside the lists.
    for (const auto& entry : fs::directory_iterator(f.dir.path))
        EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
}

TEST(EquipmentFiles, FaultsAreReportedAtTheirRoutine)
{
    testing_data::TestFolder f;
    Port ui;
    ui.SetErrorLog(f.dir.File("errorlog.txt"));

    // A missing file: the error at the tab, and an empty list.
    EXPECT_TRUE(logbook::ReadEquipmentList(ui, f.dir, EquipmentKind::Ccd).empty());
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].Text(), "File not found\nOccurred in : frmEditEquipment.sstab1_Click");
    EXPECT_NE(ReadText(f.dir.File("errorlog.txt")).find("frmEditEquipment.sstab1_Click"),
              std::string::npos);

    // A folder that is not there cannot be written; each rewrite reports at its own name.
    const data::ProgramDir gone{f.dir.File("gone")};
    const std::vector<std::string> rows{"x"};
    const std::pair<const char*, decltype(&logbook::UpdateScope)> updates[] = {
        {"UpdateScope", logbook::UpdateScope},
        {"UpdateEye", logbook::UpdateEye},
        {"UpdateCCD", logbook::UpdateCCD},
        {"UpdateExp", logbook::UpdateExp}};
    for (const auto& [routine, update] : updates) {
        EXPECT_FALSE(update(ui, gone, rows));
        EXPECT_EQ(ui.shown.back().Text(),
                  std::string("Path not found\nOccurred in : frmEditEquipment.") + routine);
    }
    ASSERT_EQ(ui.shown.size(), 5u);

    // A rename that fails (a folder stands under the file's name) leaves no temporary file.
    fs::create_directory(f.dir.File("eyepiece.dat"));
    std::vector<std::string> list;
    EXPECT_FALSE(logbook::AddEquipmentRow(ui, f.dir, EquipmentKind::Eyepiece, list, "new"));
    EXPECT_EQ(list, std::vector<std::string>{"new"}); // the row stays in the list
    ASSERT_EQ(ui.shown.size(), 6u);
    EXPECT_NE(ui.shown[5].Text().find("frmEditEquipment.UpdateEye"), std::string::npos);
    for (const auto& entry : fs::directory_iterator(f.dir.path))
        EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
}

TEST(SyncEquipmentTable, HoldsTheNamesOfTheThreeListsOnce)
{
    testing_data::TestFolder f;
    const fs::path logPath = f.dir.File("Logbook2003-1.mdb");
    testing_data::MakeLogbook(logPath);
    auto logbook = data::Database::Open(logPath);
    logbook->Execute("Insert Into Equipment (Equipment) Values ('Old pick')");
    logbook->Execute("Insert Into Equipment (Equipment) Values (Null)");
    EXPECT_EQ(logbook::LoadEquipmentTable(*logbook), std::vector<std::string>{"Old pick"});

    WriteText(f.dir.File("scope.dat"),
              Pad("8 inch SCT") + "10.0 203\n" + Pad("O'Neil's 4\" refractor") + "08.0 102\n" +
                  Pad("") + "00.0 000\n" + Pad("8 INCH sct") + "10.0 203\n");
    WriteText(f.dir.File("eyepiece.dat"), Pad("25 mm Plossl") + "25.0 52\r\n");
    WriteText(f.dir.File("exp.dat"), "Stack of 10 x 60 s\n"); // modes are no pick
    // ccd.dat is missing: no cameras.
    logbook::SyncEquipmentTable(*logbook, f.dir);
    const std::vector<std::string> expected{"8 inch SCT", "O'Neil's 4\" refractor",
                                            "25 mm Plossl"};
    EXPECT_EQ(logbook::LoadEquipmentTable(*logbook), expected);
    EXPECT_EQ(testing_data::CountRows(*logbook, "Equipment"), 3);

    WriteText(f.dir.File("ccd.dat"), "  Mono CCD 1.3 MP  \n25 MM PLOSSL\n");
    logbook::SyncEquipmentTable(*logbook, f.dir);
    logbook::SyncEquipmentTable(*logbook, f.dir);
    EXPECT_EQ(logbook::LoadEquipmentTable(*logbook),
              (std::vector<std::string>{"8 inch SCT", "O'Neil's 4\" refractor", "25 mm Plossl",
                                        "Mono CCD 1.3 MP"}));

    // A list that cannot be read stops the sync before the table is touched.
    fs::remove(f.dir.File("eyepiece.dat"));
    fs::create_directory(f.dir.File("eyepiece.dat"));
    EXPECT_THROW(logbook::SyncEquipmentTable(*logbook, f.dir), services::Fault);
    EXPECT_EQ(testing_data::CountRows(*logbook, "Equipment"), 4);
}

TEST(SyncEquipmentTable, AFailedWriteLeavesTheTableAsItWas)
{
    testing_data::TestFolder f;
    const fs::path logPath = f.dir.File("Logbook2003-1.mdb");
    testing_data::MakeLogbook(logPath);
    auto logbook = data::Database::Open(logPath);
    logbook->Execute("Insert Into Equipment (Equipment) Values ('Kept')");
    WriteText(f.dir.File("ccd.dat"), "First\nSecond\n");
    // The second insert is refused half way through the rewrite.
    ASSERT_EQ(sqlite3_exec(logbook->Handle(),
                           "CREATE TRIGGER NoSecond BEFORE INSERT ON Equipment WHEN "
                           "new.Equipment = 'Second' BEGIN SELECT RAISE(ABORT, 'refused'); END",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    try {
        logbook::SyncEquipmentTable(*logbook, f.dir);
        ADD_FAILURE() << "no fault";
    } catch (const services::Fault& fault) {
        EXPECT_STREQ(fault.what(), "refused");
    }
    EXPECT_EQ(logbook::LoadEquipmentTable(*logbook), std::vector<std::string>{"Kept"});
}

// The shipped lists are in the fixed columns the window writes: each scope and eyepiece row
// comes back unchanged through its boxes, and no mode is longer than the entry form keeps.
TEST(ShippedEquipment, RowsAreInTheirColumns)
{
    const data::ProgramDir resources{fs::path(SELVANE_SHIPPED_RESOURCES)};
    Port ui;
    const auto scopes = logbook::ReadEquipmentList(ui, resources, EquipmentKind::Scope);
    ASSERT_GE(scopes.size(), 3u);
    for (const std::string& row : scopes) {
        SCOPED_TRACE(row);
        EXPECT_EQ(row.size(), 41u);
        logbook::ScopeBoxes boxes = logbook::SplitScopeRecord(row);
        EXPECT_EQ(logbook::MakeScopeRecord(ui, boxes, {}), row);
    }
    for (const std::string& row :
         logbook::ReadEquipmentList(ui, resources, EquipmentKind::Eyepiece)) {
        SCOPED_TRACE(row);
        ASSERT_EQ(row.size(), 40u);
        logbook::EyepieceBoxes boxes{row.substr(0, 33), row.substr(33, 4), row.substr(37)};
        EXPECT_EQ(logbook::MakeEyepieceRecord(ui, boxes, {}), row);
    }
    for (const std::string& row : logbook::ReadEquipmentList(ui, resources, EquipmentKind::Ccd))
        EXPECT_LE(row.size(), 100u) << row;
    const auto modes = logbook::ReadEquipmentList(ui, resources, EquipmentKind::Exp);
    EXPECT_FALSE(modes.empty());
    for (const std::string& row : modes)
        EXPECT_LE(row.size(), 32u) << row;
    EXPECT_TRUE(ui.shown.empty());
}

} // namespace
