#pragma once

#include <string_view>

namespace sentrel::ports {

/// The program's standard output. Any thread.
class StandardOutput {
public:
    virtual ~StandardOutput() = default;

    /// Prints the text and a line break.
    virtual void printLine(std::string_view text) = 0;
};

} // namespace sentrel::ports
