#pragma once
// Whole files read and written as bytes, for the tests of every folder.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace test_files {

// The bytes of a file; empty when it cannot be read.
inline std::string ReadText(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteText(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

} // namespace test_files
