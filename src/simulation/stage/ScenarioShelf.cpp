#include "simulation/stage/ScenarioShelf.hpp"

#include "simulation/stage/ExitStatus.hpp"
#include "simulation/stage/NearestWord.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"

#include <algorithm>
#include <ostream>
#include <string_view>
#include <system_error>

namespace sentrel::simulation {

namespace {

constexpr std::string_view suffix = ".yaml";

/// The title, or the error of a scenario that can't be read.
std::string titleOf(const std::filesystem::path& file)
{
    try {
        return readScenario(file).title;
    } catch (const ScenarioError& error) {
        return std::string{"can't be read: "} + error.what();
    }
}

} // namespace

std::vector<std::string> ScenarioShelf::names() const
{
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator{folder_, error}) {
        if (entry.path().extension() == suffix) {
            names.push_back(entry.path().stem().string());
        }
    }
    std::ranges::sort(names);
    return names;
}

std::filesystem::path ScenarioShelf::find(const std::string& wanted) const
{
    std::error_code error;
    const bool isBareName = wanted.find('/') == std::string::npos && !wanted.ends_with(suffix);
    if (!isBareName || std::filesystem::exists(wanted, error)) {
        return wanted;
    }
    const auto known = names();
    if (std::ranges::find(known, wanted) != known.end()) {
        return folder_ / (wanted + std::string{suffix});
    }
    const std::vector<std::string_view> words{known.begin(), known.end()};
    throw ScenarioError(wanted, 0, unknownWord("scenario", wanted, words));
}

int listScenarios(const ScenarioShelf& shelf, std::ostream& out)
{
    const auto names = shelf.names();
    std::size_t width = 0;
    for (const std::string& name : names) {
        width = std::max(width, name.size());
    }
    for (const std::string& name : names) {
        out << name << std::string(width - name.size() + 2, ' ') << titleOf(shelf.find(name)) << '\n';
    }
    return names.empty() ? exitUnreadable : exitAllHeld;
}

int checkScenarios(const ScenarioShelf& shelf, const std::vector<std::string>& wanted, std::ostream& out,
                   std::ostream& err)
{
    std::size_t good = 0;
    for (const std::string& each : wanted) {
        try {
            static_cast<void>(readScenario(shelf.find(each)));
            ++good;
        } catch (const ScenarioError& error) {
            err << error.what() << '\n';
        }
    }
    if (good == wanted.size()) {
        out << (good == 1 ? "1 scenario can be played." : std::to_string(good) + " scenarios can be played.") << '\n';
    }
    return good == wanted.size() ? exitAllHeld : exitUnreadable;
}

} // namespace sentrel::simulation
