#pragma once
// The program folder: where the user's logbook, plans, error log and data files live. Every
// file path of the system is made from one ProgramDir value, so tests point it at a temporary
// folder.

#include <filesystem>
#include <string>
#include <vector>

namespace data {

struct ProgramDir
{
    std::filesystem::path path;

    // A file in the folder: File("errorlog.txt").
    std::filesystem::path File(const std::string& name) const { return path / name; }
    // The folder and a name joined as the settings hold them ("<folder>/SelvPro708000.mdb").
    std::string Text(const std::string& name) const { return (path / name).string(); }
};

// $SELVANE_HOME, else the --home argument, else $XDG_DATA_HOME/selvane (XDG_DATA_HOME
// defaulting to ~/.local/share).
ProgramDir ResolveProgramDir(const std::string& homeArgument);

// The resources folder beside the running executable (<exe dir>/resources).
std::filesystem::path ResourcesBesideExecutable();

// Creates the folder when missing and copies in, recursively, every file of resources that is
// not there yet; files already present are never replaced.
// Returns: the names copied, relative to the folder.
// Status: throws services::Fault when the folder cannot be created or a file cannot be copied.
std::vector<std::string> SeedProgramDir(const ProgramDir& dir,
                                        const std::filesystem::path& resources);

} // namespace data
