#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// The folder of the scenarios that come with the program.
class ScenarioShelf {
public:
    explicit ScenarioShelf(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// The scenarios' names in alphabetical order, without `.yaml`. Empty if the folder can't be read.
    [[nodiscard]] std::vector<std::string> names() const;

    /// The file at the path `wanted`, or else the scenario of that name. Throws a `ScenarioError` that names the
    /// nearest scenario if `wanted` is a bare name and neither exists.
    [[nodiscard]] std::filesystem::path find(const std::string& wanted) const;

private:
    std::filesystem::path folder_;
};

/// Prints the name and the title of each scenario, one a line. Returns the exit status.
int listScenarios(const ScenarioShelf& shelf, std::ostream& out);

/// Reads each scenario without playing it; prints each mistake as `file:line: text`. Returns the exit status.
int checkScenarios(const ScenarioShelf& shelf, const std::vector<std::string>& wanted, std::ostream& out,
                   std::ostream& err);

} // namespace sentrel::simulation
