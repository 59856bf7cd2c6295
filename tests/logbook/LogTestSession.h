#pragma once
// A program folder with the test object database and a fresh logbook, opened as the program
// opens them, and a log entry form on them.

#include "../data/TestDatabases.h"
#include "data/DatabaseFiles.h"
#include "data/SettingsStore.h"
#include "logbook/LogEntryForm.h"
#include "services/ScriptedUiPort.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace logtest {

// A mountinfo line that makes a folder a read-only disc.
inline std::string DiscMount(const std::string& point)
{
    return "36 25 11:0 / " + point + " ro,relatime shared:1 - iso9660 /dev/sr0 ro\n";
}

struct LogSession
{
    testing_data::TestFolder f;
    services::ScriptedUiPort ui;
    data::SettingsStore store{f.dir.File("settings.ini")};
    data::Preferences prefs;
    std::unique_ptr<data::Database> objectDb;
    std::unique_ptr<data::Database> logbook;
    std::string logbookPath;
    data::CurrentObject current;
    astro::FixedClock clock{{2026, 11, 24, 21, 30, 5}};
    logbook::LogContext context{ui, nullptr, nullptr, prefs, f.dir, current, clock};

    // onDisc: the object database is opened from read-only media.
    explicit LogSession(bool onDisc = false)
    {
        ui.echo = false;
        ui.unansweredYes = false;
        prefs.cdDrive = f.objectPath.string();
        testing_data::MakeObjectDatabase(f.objectPath);
        const std::string folder = f.dir.path.string();
        std::string failure;
        EXPECT_TRUE(data::OpenObjectDatabase(ui, prefs, store, objectDb, &failure, [&] {
            return onDisc ? DiscMount(folder) : std::string();
        })) << failure;
        data::OpenTheDatabase(f.dir, logbook, logbookPath);
        logbook->Execute(
            "Insert Into PerLogType (LogType, LogTypeDesc) Values ('Default', 'Default')");
        logbook->Execute(
            "Insert Into PerLogType (LogType, LogTypeDesc) Values ('Galaxies', 'Galaxies')");
        context.logbook = logbook.get();
        context.objectDb = objectDb.get();
    }

    std::unique_ptr<logbook::LogEntryForm> Open(const std::string& mode = "N")
    {
        auto form = std::make_unique<logbook::LogEntryForm>(context);
        form->mode = mode;
        form->Form_Load();
        return form;
    }

    // One value of the first row a query gives; "<null>" for null, "<none>" without a row.
    std::string Value(data::Database& db, const std::string& sql)
    {
        auto rs = db.OpenRecordset(sql, data::Snapshot);
        if (rs.Eof())
            return "<none>";
        auto field = rs.Fields(0);
        return field.IsNull() ? "<null>" : field.Value();
    }
    std::string Log(const std::string& sql) { return Value(*logbook, sql); }
    std::string Obj(const std::string& sql) { return Value(*objectDb, sql); }
    long Count(const std::string& table) { return testing_data::CountRows(*logbook, table); }
    // The row counts of the logbook's tables, as "Logbook 1, CCDLog 0".
    std::string Counts(std::initializer_list<const char*> tables)
    {
        std::string out;
        for (const char* table : tables)
            out +=
                (out.empty() ? "" : ", ") + std::string(table) + " " + std::to_string(Count(table));
        return out;
    }

    // "title|text|kind" of each message shown, then cleared.
    std::vector<std::string> TakeShown()
    {
        std::vector<std::string> out;
        for (const auto& s : ui.shown)
            out.push_back(s.message.ShortMessage + "|" + s.message.LongMessage + "|" +
                          s.message.kind);
        ui.shown.clear();
        return out;
    }
};

// Types a value into a field as the window does: focus, text, leaving.
inline bool Type(logbook::LogEntryForm& form, logbook::LogField field, const std::string& value)
{
    form.GotFocus(field);
    form.SetValue(field, value);
    return form.LostFocus(field);
}

// The fields of a complete entry of M 31 in the NGC 2000 list.
inline void FillEntry(logbook::LogEntryForm& form, const std::string& id = "M31")
{
    using logbook::LogField;
    Type(form, LogField::txtObjectID, id);
    Type(form, LogField::cboCatalog, "NGC 2000");
    Type(form, LogField::mskDate, "11/24/2026");
    Type(form, LogField::mskTime, "21:30");
}

} // namespace logtest
