#pragma once

#include <cstddef>

namespace sentrel::test {

/// Counts the calling thread's allocations through `operator new` from its construction on.
class AllocationCounter {
public:
    AllocationCounter() : atStart_(total()) {}

    /// False where a sanitizer keeps the operators to itself.
    static bool isAvailable();

    [[nodiscard]] std::size_t count() const { return total() - atStart_; }

private:
    static std::size_t total();
    std::size_t atStart_;
};

} // namespace sentrel::test
