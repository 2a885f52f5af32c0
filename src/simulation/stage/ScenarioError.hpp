#pragma once

#include <stdexcept>
#include <string>

namespace sentrel::simulation {

/// Thrown if a scenario, or a file that it names, can't be used. `what()` is one line: file, line and problem.
class ScenarioError : public std::runtime_error {
public:
    /// `line` counts from 1; 0 stands for the file as a whole.
    ScenarioError(const std::string& file, int line, const std::string& message)
        : std::runtime_error(file + (line > 0 ? ":" + std::to_string(line) : std::string{}) + ": " + message),
          line_(line)
    {
    }

    [[nodiscard]] int line() const { return line_; }

private:
    int line_;
};

/// A fault at a line of the file being read. Callers that know the file's name turn it into a `ScenarioError`.
class SourceFault : public std::runtime_error {
public:
    SourceFault(int line, const std::string& message) : std::runtime_error(message), line_(line) {}

    [[nodiscard]] int line() const { return line_; }

private:
    int line_;
};

} // namespace sentrel::simulation
