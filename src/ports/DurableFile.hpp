#pragma once

#include "foundation/Bytes.hpp"

#include <cstdint>
#include <filesystem>

namespace sentrel::ports {

class FileSystem;

/// Appended to a file's name while its new content is being written. A power cut may leave such a file behind.
inline constexpr const char* temporaryExtension = ".tmp";

/// Replaces a file's content so that a power cut between any two system calls leaves the old or the new content
/// complete; after success, the new content is permanent. The file gets the given mode. Returns 0 or an `errno` value;
/// on failure the old file is unchanged, unless only the folder's synchronization failed.
[[nodiscard]] int writeDurably(FileSystem& files, const std::filesystem::path& file, BytesView content,
                               std::uint32_t mode);

} // namespace sentrel::ports
