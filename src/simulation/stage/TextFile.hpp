#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace sentrel::simulation {

/// The whole file. Throws `ScenarioError` if it doesn't exist, is a folder, can't be read, or holds more than `most`
/// bytes. Reading stops there, so that endless devices are harmless.
[[nodiscard]] std::string readTextFile(const std::filesystem::path& file, std::size_t most);

} // namespace sentrel::simulation
