#include "services/OutputFile.h"

#include "services/Fault.h"

#include <cerrno>
#include <cstring>
#include <string>

namespace services {

namespace {

constexpr std::size_t kBuffer = 1 << 20;

[[noreturn]] void Throw(int error)
{
    throw Fault(FileErrorText(error), "");
}

} // namespace

std::string FileErrorText(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return "Path not found";
    case EACCES:
    case EPERM:
    case EROFS:
        return "Permission denied";
    case ENOSPC:
    case EDQUOT:
        return "Disk full";
    default:
        return std::strerror(error);
    }
}

OutputFile::OutputFile(const std::filesystem::path& path)
{
    file_ = std::fopen(path.c_str(), "wb");
    if (!file_)
        Throw(errno);
    std::setvbuf(file_, nullptr, _IOFBF, kBuffer);
}

OutputFile::~OutputFile()
{
    if (file_)
        std::fclose(file_);
}

void OutputFile::Write(std::string_view bytes)
{
    if (bytes.empty())
        return;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
        Throw(errno);
}

void OutputFile::Close()
{
    if (!file_)
        return;
    std::FILE* file = file_;
    file_ = nullptr;
    const bool flushed = std::fflush(file) == 0;
    const int error = errno;
    if (std::fclose(file) != 0 || !flushed)
        Throw(flushed ? errno : error);
}

} // namespace services
