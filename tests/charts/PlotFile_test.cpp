// Plot files: the fixed-column entries of both input rows, the field checks, the file's round
// trip and its reading field by field, and the plot window's buttons on a scripted port.

#include "charts/PlotFile.h"

#include "services/Fault.h"
#include "services/ScriptedUiPort.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using charts::PlotField;

std::string ReadBytes(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(PlotEntry, ColumnsSignsAndRounding)
{
    const struct
    {
        std::vector<std::string> row; // six fields for row 1, four for row 2
        std::string name;
        std::string entry;
    } cases[] = {
        {{"0", "42", "44.3", "41", "16", "9"}, "M 31", "00 42 44 | +41 16 09 | M 31"},
        // "-00" keeps its sign; no name gives "n/a".
        {{"5", "35", "17", "-00", "5", "30"}, "", "05 35 17 | -00 05 30 | n/a"},
        {{"5", "35", "17", "-0", "5", "30"}, "  ", "05 35 17 | -00 05 30 | n/a"},
        {{"12", "0", "0", "+7", "0", "0"}, "x", "12 00 00 | +07 00 00 | x"},
        // Seconds that round to 60 carry; RA wraps at 24 hours.
        {{"23", "59", "59.7", "-89", "59", "59.6"}, "", "00 00 00 | -90 00 00 | n/a"},
        {{"1", "30.5", "10", "2", "0.25", "0"}, "", "01 30 40 | +02 00 15 | n/a"},
        // Row 2: decimal minutes become minutes and rounded seconds.
        {{"5", "35.3", "-0", "5.5"}, "M 42", "05 35 18 | -00 05 30 | M 42"},
        {{"23", "59.9999", "89", "59.9999"}, "", "00 00 00 | +90 00 00 | n/a"},
        {{"0", "0.0", "0", "0.0"}, "", "00 00 00 | +00 00 00 | n/a"},
        {{"10", "12.34", "-45", "0.01"}, "", "10 12 20 | -45 00 01 | n/a"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.entry);
        const auto& r = c.row;
        const std::string entry =
            r.size() == 6 ? charts::PlotEntry(r[0], r[1], r[2], r[3], r[4], r[5], c.name)
                          : charts::PlotEntry2(r[0], r[1], r[2], r[3], c.name);
        EXPECT_EQ(entry, c.entry);
        // The entry read back by its columns gives the position it was built from.
        const charts::PlotPosition p = charts::ReadPlotEntry(entry);
        const charts::PlotPosition q = charts::ReadPlotEntry(c.entry);
        EXPECT_EQ(p.north, c.entry[11] == '+');
        EXPECT_EQ(p.name, q.name);
        EXPECT_DOUBLE_EQ(p.decMinutes, q.decMinutes);
    }
}

TEST(ReadPlotEntry, ByPositionEvenWhenShifted)
{
    const charts::PlotPosition m42 = charts::ReadPlotEntry("05 35 18 | -00 05 30 | M 42");
    EXPECT_EQ(m42.raHours, 5);
    EXPECT_DOUBLE_EQ(m42.raMinutes, 35.3);
    EXPECT_EQ(m42.decDegrees, 0);
    EXPECT_DOUBLE_EQ(m42.decMinutes, 5.5);
    EXPECT_FALSE(m42.north);
    EXPECT_EQ(m42.name, "M 42");

    // A digit short at the front: every column is read one place off, without a word.
    const charts::PlotPosition shifted = charts::ReadPlotEntry("5 35 18 | -00 05 30 | M 42");
    EXPECT_EQ(shifted.raHours, 5);                     // "5 "
    EXPECT_DOUBLE_EQ(shifted.raMinutes, 5 + 8.0 / 60); // "5 " and "8 "
    EXPECT_EQ(shifted.decDegrees, 0);                  // "00 "
    EXPECT_TRUE(shifted.north);                        // column 12 is now a digit
    EXPECT_EQ(shifted.decMinutes, 5);                  // "5 " and "0 "
    EXPECT_EQ(shifted.name, "42");

    const charts::PlotPosition shortOne = charts::ReadPlotEntry("12 3");
    EXPECT_EQ(shortOne.raHours, 12);
    EXPECT_EQ(shortOne.raMinutes, 3);
    EXPECT_EQ(shortOne.decDegrees, 0);
    EXPECT_TRUE(shortOne.north);
    EXPECT_EQ(shortOne.name, "n/a");
}

TEST(CheckPlotField, RangesAndMessages)
{
    const struct
    {
        PlotField field;
        const char* text;
        const char* message; // empty: passes
    } cases[] = {
        {PlotField::txtRah, "0", ""},
        {PlotField::txtRah, "23", ""},
        {PlotField::txtRah, "24", "Enter between 0 and 23"},
        {PlotField::txtrah2, "-1", "Enter between 0 and 23"},
        {PlotField::txtRah, "", ""},
        {PlotField::txtRah, "  ", ""},
        {PlotField::txtRah, "abc", "Enter between 0 and 23"},
        {PlotField::txtram, "59.9999", ""},
        {PlotField::txtram, "60", "Enter between 0 and 59.9999"},
        {PlotField::txtras, "59.99991", "Enter between 0 and 59.9999"},
        {PlotField::txtdecs, "-0.5", "Enter between 0 and 59.9999"},
        {PlotField::txtram2, "12.5", ""},
        {PlotField::txtdecm2, "59.95", ""},
        {PlotField::txtdecm2, "60", "Enter between 0 and 59.9999"},
        {PlotField::txtdecm, "59", ""},
        {PlotField::txtdecm, "59.5", "Enter between 0 and 59"},
        {PlotField::txtdecd, "-89", ""},
        {PlotField::txtdecd, "-00", ""},
        {PlotField::txtdecd2, "89", ""},
        {PlotField::txtdecd, "90", "Enter between -89 and 89"},
        {PlotField::txtdecd2, "-90", "Enter between -89 and 89"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " in field " + std::to_string(int(c.field)));
        EXPECT_EQ(charts::CheckPlotField(c.field, c.text), c.message);
    }
}

TEST(PlotFile, RoundTripsAndFieldReading)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("list.plt").toStdString();

    // An empty list is a file of two lines.
    charts::WritePlotFile(path, {"5", "Orion", {}});
    EXPECT_EQ(ReadBytes(path), "5\r\nOrion\r\n");
    const charts::PlotFileContents empty = charts::ReadPlotFile(path);
    EXPECT_EQ(empty.txtFov, "5");
    EXPECT_EQ(empty.txtObjName, "Orion");
    EXPECT_TRUE(empty.entries.empty());

    const std::vector<std::string> entries = {"05 35 17 | -00 05 30 | n/a",
                                              "00 42 44 | +41 16 09 | M 31"};
    charts::WritePlotFile(path, {"2.5", "Two", entries});
    const charts::PlotFileContents back = charts::ReadPlotFile(path);
    EXPECT_EQ(back.txtFov, "2.5");
    EXPECT_EQ(back.txtObjName, "Two");
    EXPECT_EQ(back.entries, entries);
    EXPECT_FALSE(charts::ReadPlotEntry(back.entries[0]).north);

    // LF alone ends a line too; a comma ends a field, so a name with one splits, and the
    // fields run on across lines as Input # reads them.
    const charts::PlotFileContents lf =
        charts::ReadPlotText("5\nA, B\n00 42 44 | +41 16 09 | M 31, Andromeda\n\"quoted, kept\"\n");
    EXPECT_EQ(lf.txtFov, "5");
    EXPECT_EQ(lf.txtObjName, "A");
    EXPECT_EQ(lf.entries, (std::vector<std::string>{"B", "00 42 44 | +41 16 09 | M 31", "Andromeda",
                                                    "quoted, kept"}));

    // A blank first line is an empty field of view, and blank lines among entries are skipped.
    const charts::PlotFileContents blank = charts::ReadPlotText("\r\nName\r\n\r\nx\r\n");
    EXPECT_EQ(blank.txtFov, "");
    EXPECT_EQ(blank.txtObjName, "Name");
    EXPECT_EQ(blank.entries, std::vector<std::string>{"x"});

    EXPECT_TRUE(charts::ReadPlotText("").entries.empty());
    try {
        charts::ReadPlotFile(dir.filePath("none.plt").toStdString());
        ADD_FAILURE() << "a missing file was read";
    } catch (const services::Fault& fault) {
        EXPECT_STREQ(fault.what(), "File not found");
    }
}

TEST(frmStPlot, AddSaveOpenAndChart)
{
    QTemporaryDir dir;
    services::ScriptedUiPort ui;
    ui.echo = false;
    charts::frmStPlot form(ui);

    // A row with a field missing is refused with the focus on its first field.
    form.txtrah2 = "5";
    form.txtram2 = "35.3";
    form.txtdecd2 = "-0";
    EXPECT_FALSE(form.Command1_Click());
    ASSERT_EQ(ui.shown.size(), 1u);
    EXPECT_EQ(ui.shown[0].message.ShortMessage, "Input Required");
    EXPECT_EQ(ui.shown[0].Text(), "Please entire entire coordinates");
    EXPECT_EQ(ui.shown[0].message.kind, "U");
    EXPECT_EQ(form.focus, &form.txtrah2);
    form.txtdecm2 = "5.5";
    form.txtName = "M 42";
    EXPECT_TRUE(form.Command1_Click());
    EXPECT_TRUE(form.txtrah2.empty());

    // A refused field is shown, emptied and keeps the focus.
    form.txtRah = "24";
    EXPECT_FALSE(form.LeaveField(PlotField::txtRah));
    EXPECT_EQ(ui.shown.back().message.ShortMessage, "Invalid Input");
    EXPECT_EQ(ui.shown.back().Text(), "Enter between 0 and 23");
    EXPECT_EQ(form.txtRah, "");
    EXPECT_EQ(form.focus, &form.txtRah);
    for (auto [field, text] : {std::pair{PlotField::txtRah, "0"},
                               {PlotField::txtram, "42"},
                               {PlotField::txtras, "44.3"},
                               {PlotField::txtdecd, "41"},
                               {PlotField::txtdecm, "16"},
                               {PlotField::txtdecs, "9"}}) {
        form.Field(field) = text;
        EXPECT_TRUE(form.LeaveField(field));
    }
    EXPECT_TRUE(form.Command1_Click());
    EXPECT_EQ(form.List1, (std::vector<std::string>{"05 35 18 | -00 05 30 | M 42",
                                                    "00 42 44 | +41 16 09 | n/a"}));

    // Saving needs both defaults; then the dialog, whose cancel does nothing.
    const std::size_t before = ui.shown.size();
    EXPECT_FALSE(form.SSCommand2_Click());
    EXPECT_EQ(ui.shown.size(), before + 1);
    EXPECT_EQ(ui.shown.back().message.ShortMessage, "Default Required");
    EXPECT_EQ(ui.shown.back().Text(), "Please specify a default field of view and an object name");
    form.txtFov = "3";
    form.txtObjName = "Orion";
    ui.fileAnswers = {"*.plt"};
    EXPECT_FALSE(form.SSCommand2_Click());
    const std::string base = dir.filePath("night").toStdString();
    ui.fileAnswers = {base};
    EXPECT_TRUE(form.SSCommand2_Click());
    EXPECT_EQ(ReadBytes(base + ".PLT"),
              "3\r\nOrion\r\n05 35 18 | -00 05 30 | M 42\r\n00 42 44 | +41 16 09 | n/a\r\n");
    ui.fileAnswers = {dir.filePath("no/such/folder/x.plt").toStdString()};
    EXPECT_FALSE(form.SSCommand2_Click());
    EXPECT_EQ(ui.shown.back().Text(), "Path not found\nOccurred in : frmStPlot.SSCommand2_Click");

    // Opening replaces the fields and the list; a missing file leaves them as they stood.
    charts::frmStPlot other(ui);
    ui.fileAnswers = {base + ".PLT"};
    EXPECT_TRUE(other.SSCommand3_Click());
    EXPECT_EQ(other.txtFov, "3");
    EXPECT_EQ(other.txtObjName, "Orion");
    EXPECT_EQ(other.List1, form.List1);
    ui.fileAnswers = {dir.filePath("missing.plt").toStdString()};
    EXPECT_FALSE(other.SSCommand3_Click());
    EXPECT_EQ(ui.shown.back().Text(), "File not found\nOccurred in : frmStPlot.SSCommand3_Click");
    EXPECT_EQ(other.List1.size(), 2u);

    // A click in the list fills row 1 and the name.
    other.List1_Click(0);
    EXPECT_EQ(other.txtRah, "05");
    EXPECT_EQ(other.txtdecd, "-00");
    EXPECT_EQ(other.txtdecs, "30");
    EXPECT_EQ(other.txtName, "M 42");
    other.List1_Click(1);
    EXPECT_EQ(other.txtdecd, "41");
    EXPECT_EQ(other.txtName, "");
    other.List1_Click(9); // no such entry: nothing changes
    EXPECT_EQ(other.txtdecd, "41");

    // Chart: the first entry is the centre, then every entry is marked with the type's code.
    std::vector<charts::PlotDrawChart> drawn;
    std::vector<charts::PlotDso> marked;
    const charts::PlotChartCalls calls{[&](const charts::PlotDrawChart& d) { drawn.push_back(d); },
                                       [&](const charts::PlotDso& d) { marked.push_back(d); }};
    other.cboType = 8; // "12 - Venus"
    other.ChartTarget = "C";
    EXPECT_TRUE(other.SSCommand4_Click(calls));
    ASSERT_EQ(drawn.size(), 1u);
    EXPECT_EQ(drawn[0].ChartTarget, "C");
    EXPECT_EQ(drawn[0].raHours, 5);
    EXPECT_DOUBLE_EQ(drawn[0].raMinutes, 35.3);
    EXPECT_DOUBLE_EQ(drawn[0].decMinutes, 5.5);
    EXPECT_EQ(drawn[0].fieldDeg, 3);
    EXPECT_EQ(drawn[0].heading, "Orion");
    ASSERT_EQ(marked.size(), 2u);
    EXPECT_FALSE(marked[0].position.north);
    EXPECT_EQ(marked[0].typeCode, 12);
    EXPECT_EQ(marked[0].position.name, "M 42");
    EXPECT_EQ(marked[1].position.name, "n/a");
    EXPECT_EQ(marked[1].label, "Orion");

    charts::frmStPlot empty(ui);
    EXPECT_FALSE(empty.SSCommand4_Click(calls));
    EXPECT_EQ(drawn.size(), 1u);
}

} // namespace
