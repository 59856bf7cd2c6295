#include "data/ProgramDir.h"

#include "services/Fault.h"

#include <cstdlib>
#include <system_error>

namespace data {

namespace {

std::string EnvOrEmpty(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

} // namespace

ProgramDir ResolveProgramDir(const std::string& homeArgument)
{
    if (std::string home = EnvOrEmpty("SELVANE_HOME"); !home.empty())
        return {home};
    if (!homeArgument.empty())
        return {homeArgument};
    std::filesystem::path dataHome = EnvOrEmpty("XDG_DATA_HOME");
    if (dataHome.empty())
        dataHome = std::filesystem::path(EnvOrEmpty("HOME")) / ".local" / "share";
    return {dataHome / "selvane"};
}

std::filesystem::path ResourcesBesideExecutable()
{
    std::error_code ec;
    const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec)
        return "resources";
    return exe.parent_path() / "resources";
}

std::vector<std::string> SeedProgramDir(const ProgramDir& dir,
                                        const std::filesystem::path& resources)
{
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::create_directories(dir.path, ec);
    if (ec)
        throw services::Fault("Cannot create the program folder '" + dir.path.string() +
                                  "': " + ec.message(),
                              "");
    std::vector<std::string> copied;
    if (!fs::is_directory(resources, ec))
        return copied;
    for (auto it = fs::recursive_directory_iterator(resources, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
        const fs::path relative = fs::relative(it->path(), resources, ec);
        const fs::path target = dir.path / relative;
        if (it->is_directory()) {
            fs::create_directories(target, ec);
            continue;
        }
        if (fs::exists(target))
            continue;
        // Copied under a temporary name and renamed, so that a break never leaves half a file
        // under the real name.
        const fs::path partial = target.string() + ".partial";
        std::error_code copyError;
        fs::copy_file(it->path(), partial, fs::copy_options::overwrite_existing, copyError);
        if (!copyError)
            fs::rename(partial, target, copyError);
        if (copyError) {
            fs::remove(partial, ec);
            throw services::Fault("Cannot copy '" + it->path().string() + "' to the program " +
                                      "folder: " + copyError.message(),
                                  "");
        }
        copied.push_back(relative.string());
    }
    return copied;
}

} // namespace data
