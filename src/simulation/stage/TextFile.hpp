#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace sentrel::simulation {

/// The whole file. Throws `ScenarioError` when it doesn't exist, is a folder, can't be read, or holds more than `most`
/// bytes (no more than these are read, so that an endless device does no harm).
[[nodiscard]] std::string readTextFile(const std::filesystem::path& file, std::size_t most);

} // namespace sentrel::simulation
