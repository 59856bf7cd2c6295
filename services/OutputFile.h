#pragma once
// A file written front to back through a large buffer, as the exports stream their records.
// Failures throw services::Fault with the runtime's text of the cause ("Path not found",
// "Permission denied", "Disk full") and an empty location, for the caller's trap to place.

#include <cstdio>
#include <string>
#include <filesystem>
#include <string_view>

namespace services {

// The runtime's text of a file error (errno): "Path not found", "Permission denied", ...
std::string FileErrorText(int error);

class OutputFile
{
public:
    // Creates or empties the file.
    explicit OutputFile(const std::filesystem::path& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(std::string_view bytes);
    // Flushes and closes; a write that failed on the way throws here at the latest.
    void Close();

private:
    std::FILE* file_ = nullptr;
};

} // namespace services
