#pragma once

#include <cstdint>
#include <string>

namespace sentrel::ports {

/// Power-management assertions. Any thread.
class PowerAssertions {
public:
    virtual ~PowerAssertions() = default;

    struct Created {
        std::int32_t status = 0; ///< an `IOReturn`; 0 is success
        std::uint32_t id = 0;    ///< meaningful on success only
    };

    /// Takes an assertion (`IOPMAssertionCreateWithName`).
    [[nodiscard]] virtual Created create(const std::string& type, std::uint32_t level, const std::string& name) = 0;

    /// Releases an assertion (`IOPMAssertionRelease`); returns an `IOReturn`.
    virtual std::int32_t release(std::uint32_t id) = 0;
};

} // namespace sentrel::ports
