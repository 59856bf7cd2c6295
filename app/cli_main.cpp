// selvane-cli: the program's routines without windows, for scripts and timing.
//
//   selvane-cli [--home DIR] [--settings FILE] [--set KEY=VALUE]... COMMAND [ARGS]
//
// Exit status: 0 when the command ran, 1 on an error, 2 on a usage error.

#include "app/StartUp.h"
#include "app/CliOptions.h"
#include "data/Preferences.h"
#include "data/ProgramDir.h"
#include "data/SettingsStore.h"
#include "services/ScriptedUiPort.h"

#include <QCoreApplication>

#include <iostream>
#include <map>

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    std::vector<std::string> args(argv + 1, argv + argc);
    const app::CliOptions options = app::ParseCliOptions(args);
    if (!options.error.empty()) {
        std::cerr << "selvane-cli: " << options.error << "\n" << app::CliUsage << "\n";
        return 2;
    }

    // Commands arrive with the subsystems; each maps its name to a routine over the state.
    using Command = int (*)(spread::AppState&, const std::vector<std::string>&);
    const std::map<std::string, Command> commands;
    const auto command = commands.find(options.command);
    if (command == commands.end()) {
        std::cerr << "selvane-cli: unknown command \"" << options.command << "\"\n"
                  << app::CliUsage << "\n";
        return 2;
    }

    services::ScriptedUiPort ui;
    spread::AppState state(ui, data::ResolveProgramDir(options.home),
                           data::SettingsStore(data::SettingsStore::DefaultPath(options.settings)));
    for (const auto& [key, value] : options.sets)
        state.settings.Override(key, value);
    app::StartUp(state, data::ResourcesBesideExecutable());
    return command->second(state, options.commandArgs);
}
