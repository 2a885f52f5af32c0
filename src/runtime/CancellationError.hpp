#pragma once

#include <exception>

namespace sentrel {

/// Thrown by a wait whose task was cancelled.
class CancellationError : public std::exception {
public:
    [[nodiscard]] const char* what() const noexcept override { return "cancelled"; }
};

} // namespace sentrel
