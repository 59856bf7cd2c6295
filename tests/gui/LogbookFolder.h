#pragma once
// What the logbook windows' tests share: a program folder with a copy of the small edition and
// a new logbook seeded by the test's statements, the exposure modes beside it; the main window
// over it with the logbook's commands wired; a settling of the events a window posted, and the
// screenshots.

#include "GuiApp.h"
#include "app/LogbookWiring.h"
#include "data/Database.h"
#include "data/DatabaseFiles.h"
#include "data/ProgramDir.h"
#include "spread/AppState.h"
#include "spread/ui/frmMainScreen.h"

#include <QApplication>
#include <QTemporaryDir>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

// Lets the window finish what it posted (the focus given back, the text selected on entry).
inline void Settle()
{
    for (int i = 0; i < 5; ++i)
        QApplication::processEvents();
}

// With SELVANE_SCREENSHOTS naming a folder, saves the window there as name, with the focus in
// focus when one is given.
inline void SaveShot(QWidget& window, const char* name, QWidget* focus = nullptr)
{
    if (const char* folder = std::getenv("SELVANE_SCREENSHOTS")) {
        if (focus)
            focus->setFocus(Qt::OtherFocusReason);
        Settle();
        window.grab().save(QString(folder) + "/" + name);
    }
}

// The first column of the first row of a query; "<none>" when it finds nothing.
inline std::string Value(data::Database& db, const std::string& sql)
{
    auto rs = db.OpenRecordset(sql, data::Snapshot);
    return rs.Eof() ? "<none>" : rs.Fields(0).Value();
}

struct LogbookFolder
{
    bool appReady = (App(), true);
    QTemporaryDir temp;
    data::ProgramDir dir{temp.path().toStdString()};
    std::unique_ptr<data::Database> logbookDb;
    std::unique_ptr<data::Database> objectDb;
    std::string logbookPath;

    explicit LogbookFolder(const std::vector<std::string>& seed)
    {
        const std::filesystem::path objectPath = dir.File(data::ObjectDatabaseName);
        std::filesystem::copy_file(std::filesystem::path(SELVANE_RESOURCE_DIR) / "SelvPro13000.mdb",
                                   objectPath);
        objectDb = data::Database::Open(objectPath, data::OpenOptions{});
        data::OpenTheDatabase(dir, logbookDb, logbookPath);
        for (const std::string& sql : seed)
            logbookDb->Execute(sql);
        std::ofstream(dir.File("exp.dat")) << "Binning 1x1\nBinning 2x2\n";
    }
};

// The main window over such a folder, shown, with the logbook's commands wired as at start.
struct LogbookScreen : LogbookFolder
{
    TestPort ui;
    spread::AppState state{ui, dir, data::SettingsStore(dir.File("Selvane2000.ini"))};
    astro::FixedClock clock{{2024, 3, 15, 22, 0, 0}};
    std::unique_ptr<spread::frmMainScreen> window;

    explicit LogbookScreen(const std::vector<std::string>& seed, QSize size = {1300, 850})
        : LogbookFolder(seed)
    {
        state.objectDb = std::move(objectDb);
        state.logbookDb = std::move(logbookDb);
        state.logbookPath = logbookPath;
        state.NoLoadYet = false;
        spread::MainScreenHooks hooks;
        hooks.computerClock = &clock;
        window = std::make_unique<spread::frmMainScreen>(state, ui, hooks);
        app::WireLogbook(*window, state, ui, clock, state.current);
        window->resize(size);
        window->show();
    }
    ~LogbookScreen() { window.reset(); }
};
