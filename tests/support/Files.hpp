#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace sentrel::test {

/// The bytes of a file; empty when it can't be read.
inline std::string contentOf(const std::filesystem::path& file)
{
    std::ifstream stream{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{stream}, {}};
}

/// Replaces a file's content; returns the file. Its folder is made if it is missing.
inline std::filesystem::path put(const std::filesystem::path& file, std::string_view content)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream{file, std::ios::binary} << content;
    return file;
}

} // namespace sentrel::test
