#pragma once

#include "ports/StandardOutput.hpp"

#include <mutex>

namespace sentrel::posix {

/// The standard output of this process.
class PosixStandardOutput final : public ports::StandardOutput {
public:
    void printLine(std::string_view text) override;

private:
    std::mutex mutex_; // keeps lines of several threads apart
};

} // namespace sentrel::posix
