// selvane: the program with its windows.

#include "app/StartUp.h"
#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/Fault.h"
#include "services/ui/QtUiPort.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMainWindow>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName("Selvane");

    QCommandLineParser parser;
    QCommandLineOption home("home", "Program folder.", "DIR");
    QCommandLineOption settings("settings", "Settings file.", "FILE");
    parser.addOption(home);
    parser.addOption(settings);
    parser.addHelpOption();
    parser.process(application);

    services::QtUiPort ui;
    spread::AppState state(
        ui, data::ResolveProgramDir(parser.value(home).toStdString()),
        data::SettingsStore(data::SettingsStore::DefaultPath(parser.value(settings).toStdString())));
    // The window comes first, so that a message of the start (a missing object database)
    // stands over it and the window stays open after it.
    QMainWindow window;
    window.setWindowTitle("Selvane");
    window.resize(1024, 700);
    ui.SetParent(&window);
    window.show();
    app::StartUp(state, data::ResourcesBesideExecutable());
    const int status = application.exec();

    services::TrapSilently(ui, "frmMainScreen.Unload",
                           [&] { data::SavePreferences(state.prefs, state.settings); });
    return status;
}
