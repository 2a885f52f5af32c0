#include "simulation/stage/TextFile.hpp"

#include "simulation/stage/ScenarioError.hpp"

#include <array>
#include <fstream>
#include <system_error>

namespace sentrel::simulation {

std::string readTextFile(const std::filesystem::path& file, std::size_t most)
{
    const std::string name = file.string();
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        throw ScenarioError(name, 0, "no such file");
    }
    if (std::filesystem::is_directory(status)) {
        throw ScenarioError(name, 0, "a folder, not a file");
    }
    std::ifstream stream{file, std::ios::binary};
    if (!stream) {
        throw ScenarioError(name, 0, "can't be opened");
    }
    std::string text;
    std::array<char, std::size_t{64} << 10> piece{};
    while (stream.read(piece.data(), piece.size()) || stream.gcount() > 0) {
        text.append(piece.data(), static_cast<std::size_t>(stream.gcount()));
        if (text.size() > most) {
            throw ScenarioError(name, 0, "larger than " + std::to_string(most >> 20) + " MB");
        }
    }
    if (stream.bad()) {
        throw ScenarioError(name, 0, "can't be read");
    }
    return text;
}

} // namespace sentrel::simulation
