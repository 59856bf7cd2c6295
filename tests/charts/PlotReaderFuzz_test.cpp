// The plot file reader on random bytes and on damaged plot files: it reads whatever its
// columns say, and the window charts, clicks and saves what came in, without a crash.

#include "charts/PlotFile.h"

#include "services/ScriptedUiPort.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>
#include <string>

namespace {

void Exercise(const std::string& bytes, const QTemporaryDir& dir)
{
    const std::string path = dir.filePath("fuzz.plt").toStdString();
    std::ofstream(path, std::ios::binary) << bytes;
    services::ScriptedUiPort ui;
    ui.echo = false;
    charts::frmStPlot form(ui);
    ui.fileAnswers = {path};
    ASSERT_TRUE(form.SSCommand3_Click());
    int calls = 0;
    const charts::PlotChartCalls chart{
        [&](const charts::PlotDrawChart& d) {
            ++calls;
            EXPECT_TRUE(std::isfinite(d.raMinutes) && std::isfinite(d.decMinutes));
        },
        [&](const charts::PlotDso& d) {
            ++calls;
            EXPECT_TRUE(std::isfinite(d.position.raHours) && std::isfinite(d.position.decDegrees));
            EXPECT_FALSE(d.position.name.empty());
        }};
    form.SSCommand4_Click(chart);
    EXPECT_EQ(calls, form.List1.empty() ? 0 : static_cast<int>(form.List1.size()) + 1);
    for (std::size_t i = 0, n = form.List1.size(); i < n; ++i) {
        form.List1_Click(i);
        form.Command1_Click();
    }
    // What was read saves and reads back the same, but for the fields that Input # splits.
    form.txtFov = form.txtFov.empty() ? "1" : form.txtFov;
    form.txtObjName = form.txtObjName.empty() ? "x" : form.txtObjName;
    ui.fileAnswers = {path};
    form.SSCommand2_Click();
}

TEST(PlotReaderFuzz, RandomBytes)
{
    QTemporaryDir dir;
    std::mt19937 random(20261125);
    for (int n = 0; n < 300; ++n) {
        SCOPED_TRACE(n);
        std::string bytes(random() % 400, '\0');
        for (char& c : bytes)
            c = static_cast<char>(random() % 256);
        Exercise(bytes, dir);
    }
}

TEST(PlotReaderFuzz, DamagedPlotFiles)
{
    QTemporaryDir dir;
    const std::string good = "5\r\nOrion\r\n05 35 17 | -00 05 30 | M 42\r\n"
                             "00 42 44 | +41 16 09 | n/a\r\n";
    const std::string alphabet = " |-+,\"\r\n0123456789.eE";
    std::mt19937 random(7);
    for (int n = 0; n < 200; ++n) {
        SCOPED_TRACE(n);
        std::string bytes = good;
        for (int k = 0, edits = 1 + static_cast<int>(random() % 6); k < edits; ++k) {
            const std::size_t at = random() % (bytes.size() + 1);
            switch (random() % 3) {
            case 0:
                bytes.insert(at, 1, alphabet[random() % alphabet.size()]);
                break;
            case 1:
                if (at < bytes.size())
                    bytes.erase(at, 1);
                break;
            default:
                bytes = bytes.substr(0, at);
            }
        }
        Exercise(bytes, dir);
    }
    // Numbers that Val reads as huge or not at all.
    Exercise("1e308\r\nx\r\n1e 99 99 | -9e999 9 9 | \r\n99 99 99 | +99 99 99 |\r\n", dir);
}

} // namespace
