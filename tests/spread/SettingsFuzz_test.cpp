// Random settings files, made from the settings' own keys with good, impossible, empty, huge
// and non-ASCII values, each loaded and then used for a list with every computed column on: no
// file may end the program, crash it or hang it. Each case is made from its number, so a
// failing one can be made again; SELVANE_SETTINGS_FUZZ_CASES sets how many run (2,000 by
// default) and SELVANE_SETTINGS_FUZZ_FIRST the first case's number.

#include "data/Preferences.h"
#include "data/Schema.h"
#include "data/SettingsStore.h"
#include "services/Fault.h"
#include "services/ScriptedUiPort.h"
#include "spread/LoadTheGrid.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

const std::vector<std::string> kGood = {
    "0",          "1",         "-1",         "10",         "46.5",    "-89.99",
    "89.99",      "180",       "-180",       "14",         "-14",     "1440",
    "86400",      "True",      "False",      "Y",          "N",       "S",
    "D",          "22:00",     "00:00",      "23:59",      "9:30 PM", "11/21/2026",
    "02/29/2024", "1/1/100",   "12/31/9999", "2026-11-21", "",        "Courier New",
    "All Types",  "NGC 2000;", "__/__/____", "Ori-Orion;", "360",     "0.5",
};
const std::vector<std::string> kImpossible = {
    "90",
    "-90",
    "-91",
    "400",
    "-400",
    "30",
    "1e308",
    "-1e308",
    "1e309",
    "nan",
    "inf",
    "-inf",
    "25:99",
    "24:00",
    "ten",
    "tomorrow",
    "02/29/2025",
    "13/45/2026",
    "0/0/0",
    "1/1/10000",
    "abc",
    " ",
    "99999999999999999999",
    "-0",
    "0x10",
    "&H10",
    "1,5",
    "12:",
    ":30",
};
const std::vector<std::string> kNonAscii = {"é", "日本語", "Ω∑", "\xC3\x28", "\xFF\xFE", "ø 12"};

std::string RandomValue(std::mt19937& rng)
{
    auto pick = [&](const std::vector<std::string>& pool) {
        return pool[std::uniform_int_distribution<std::size_t>(0, pool.size() - 1)(rng)];
    };
    switch (std::uniform_int_distribution<int>(0, 9)(rng)) {
    case 0:
    case 1:
    case 2:
        return pick(kGood);
    case 3:
    case 4:
    case 5:
        return pick(kImpossible);
    case 6:
        return pick(kNonAscii);
    case 7: { // huge
        const std::size_t size = std::uniform_int_distribution<std::size_t>(300, 70000)(rng);
        const char fill = "9a:/. "[std::uniform_int_distribution<int>(0, 5)(rng)];
        return std::string(size, fill);
    }
    case 8: { // random bytes, line breaks aside
        std::string text(std::uniform_int_distribution<std::size_t>(1, 24)(rng), ' ');
        for (char& c : text) {
            do
                c = static_cast<char>(std::uniform_int_distribution<int>(1, 255)(rng));
            while (c == '\n' || c == '\r');
        }
        return text;
    }
    default: { // a number of any size and sign
        std::uniform_real_distribution<double> exponent(-5, 12);
        const double value = std::pow(10.0, exponent(rng)) *
                             (std::uniform_int_distribution<int>(0, 1)(rng) ? 1 : -1);
        return std::to_string(value);
    }
    }
}

std::string RandomKeyCase(std::string key, std::mt19937& rng)
{
    if (std::uniform_int_distribution<int>(0, 4)(rng) == 0)
        for (char& c : key)
            c = static_cast<char>(std::uniform_int_distribution<int>(0, 1)(rng) ? std::toupper(c)
                                                                                : std::tolower(c));
    return key;
}

// The settings file of case n.
std::string MakeFile(unsigned n, const std::vector<std::string>& keys)
{
    std::mt19937 rng(n);
    std::string text = "[Preferences]\nFIRST=False\n";
    const int count = std::uniform_int_distribution<int>(1, 14)(rng);
    // The keys of the clock and site come often: they are what the computing depends on.
    static const std::vector<std::string> clock = {
        "PDate", "Ptime",       "Plat",    "PLon",  "PTz",   "PStd",  "PInterval",
        "PPre",  "UseRealTime", "Pminalt", "PAzm1", "PAzm4", "rowret"};
    for (int i = 0; i < count; ++i) {
        const auto& pool = std::uniform_int_distribution<int>(0, 1)(rng) ? clock : keys;
        const std::string key =
            pool[std::uniform_int_distribution<std::size_t>(0, pool.size() - 1)(rng)];
        text += RandomKeyCase(key, rng) + "=" + RandomValue(rng) + "\n";
    }
    return text;
}

struct Ended
{
    int exitCode;
};

TEST(SettingsFuzz, NoSettingsFileEndsTheProgram)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    const std::filesystem::path dir = folder.path().toStdString();
    services::ScriptedUiPort ui;
    ui.echo = false;
    spread::AppState TMM(ui, data::ProgramDir{dir}, data::SettingsStore(dir / "s.ini"));
    data::OpenOptions create;
    create.create = true;
    TMM.objectDb = data::Database::Open(dir / "SelvPro13000.mdb", create);
    data::CreateSchema(TMM.objectDb->Handle(), data::SchemaKind::ObjectDatabase);
    // Objects on both poles, the equator, and declinations where sites put them overhead.
    sqlite3_exec(TMM.objectDb->Handle(), "BEGIN", nullptr, nullptr, nullptr);
    int id = 0;
    for (double dec : {-89.99, -60.0, -46.5, -0.01, 0.0, 12.5, 40.5, 46.5, 70.0, 89.99}) {
        for (int ra : {0, 6, 13, 23}) {
            ++id;
            TMM.objectDb->Execute(
                "Insert Into SelvaneTable (ID, ObjectID, Catalog, ObjectType, RAhours, RAminutes, "
                "DeclinationDegrees, DeclinationMinutes, EPOCH, Observed, HObject) Values (" +
                std::to_string(id) + ", 'N" + std::to_string(id) + "', '2000', 'Gx', " +
                std::to_string(ra) + ", 43.8, " + std::to_string(static_cast<int>(dec)) + ", " +
                std::to_string((dec - static_cast<int>(dec)) * 60) + ", 2000, False, ' ')");
        }
    }
    TMM.objectDb->Execute("Insert Into SelvaneTable (ID, ObjectID, Catalog, RAhours) Values "
                          "(999, 'nopos', '2000', Null)");
    sqlite3_exec(TMM.objectDb->Handle(), "COMMIT", nullptr, nullptr, nullptr);

    const char* casesText = std::getenv("SELVANE_SETTINGS_FUZZ_CASES");
    const char* firstText = std::getenv("SELVANE_SETTINGS_FUZZ_FIRST");
    const unsigned cases = casesText ? static_cast<unsigned>(std::atol(casesText)) : 2000;
    const unsigned first = firstText ? static_cast<unsigned>(std::atol(firstText)) : 0;
    const std::vector<std::string> keys = data::PreferenceKeys();
    const astro::FixedClock computer({2026, 11, 24, 21, 30, 0});
    services::SetEndProcessHandler([](int exitCode) { throw Ended{exitCode}; });
    unsigned resets = 0;
    for (unsigned n = first; n < first + cases; ++n) {
        const std::string file = MakeFile(n, keys);
        std::ofstream(dir / "s.ini", std::ios::binary | std::ios::trunc) << file;
        TMM.settings = data::SettingsStore(dir / "s.ini");
        TMM.prefs = data::Preferences{};
        try {
            resets += data::LoadPreferences(TMM.prefs, TMM.settings, TMM.dir) ? 1 : 0;
            data::GetLocalization(TMM.prefs, QLocale::c());
            TMM.prefs.Palt = "Y";
            TMM.prefs.Prise = "Y";
            TMM.prefs.optimum = true;
            TMM.prefs.ShowCharts = true;
            TMM.prefs.speed1 = false;
            TMM.SQL = "Select * From SelvaneTable";
            spread::Grid grid;
            spread::GridLoad load;
            spread::LoadTheGrid(TMM, grid, spread::LoadMode::NoBuild, load, computer);
        } catch (const Ended&) {
            ADD_FAILURE() << "case " << n << " ended the program:\n"
                          << ui.shown.back().Text() << "\n"
                          << file.substr(0, 2000);
            break;
        } catch (const std::exception& e) {
            ADD_FAILURE() << "case " << n << " threw " << e.what() << "\n" << file.substr(0, 2000);
            break;
        }
        TMM.QueryRunning = false;
        ui.shown.clear();
    }
    services::SetEndProcessHandler(nullptr);
    // Most files hold a value that resets the preferences; some hold none.
    EXPECT_GT(resets, cases / 4);
    EXPECT_LT(resets, cases);
    std::printf("%u settings files loaded, %u reset the preferences\n", cases, resets);
}

} // namespace
