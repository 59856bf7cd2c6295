#pragma once
// What the logbook windows' tests share: a program folder with a copy of the small edition and
// a new logbook seeded by the test's statements, the exposure modes beside it; and a settling
// of the events a window posted.

#include "GuiApp.h"
#include "data/Database.h"
#include "data/DatabaseFiles.h"
#include "data/ProgramDir.h"

#include <QApplication>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>

// Lets the window finish what it posted (the focus given back, the text selected on entry).
inline void Settle()
{
    for (int i = 0; i < 5; ++i)
        QApplication::processEvents();
}

struct LogbookFolder
{
    bool appReady = (App(), true);
    QTemporaryDir temp;
    data::ProgramDir dir{temp.path().toStdString()};
    std::unique_ptr<data::Database> logbookDb;
    std::unique_ptr<data::Database> objectDb;

    explicit LogbookFolder(std::initializer_list<const char*> seed)
    {
        const std::filesystem::path objectPath = dir.File(data::ObjectDatabaseName);
        std::filesystem::copy_file(std::filesystem::path(SELVANE_RESOURCE_DIR) / "SelvPro13000.mdb",
                                   objectPath);
        objectDb = data::Database::Open(objectPath, data::OpenOptions{});
        std::string logbookPath;
        data::OpenTheDatabase(dir, logbookDb, logbookPath);
        for (const char* sql : seed)
            logbookDb->Execute(sql);
        std::ofstream(dir.File("exp.dat")) << "Binning 1x1\nBinning 2x2\n";
    }
};
