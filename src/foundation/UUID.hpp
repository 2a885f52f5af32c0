#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel {

/// A universally unique identifier (RFC 4122).
class UUID {
public:
    using Octets = std::array<std::uint8_t, 16>;

    UUID() = default;
    explicit UUID(const Octets& octets) : octets_(octets) {}

    /// A version 4 identifier of 16 random octets: the version and variant bits are set here.
    static UUID fromRandom(Octets random);

    /// Reads the standard form (36 characters, digits of either case); anything else gives none.
    static std::optional<UUID> parse(std::string_view text);

    /// The standard form in upper case.
    [[nodiscard]] std::string text() const;

    [[nodiscard]] const Octets& octets() const { return octets_; }

    friend bool operator==(const UUID&, const UUID&) = default;
    friend auto operator<=>(const UUID&, const UUID&) = default;

private:
    Octets octets_{};
};

} // namespace sentrel

template <> struct std::hash<sentrel::UUID> {
    std::size_t operator()(const sentrel::UUID& uuid) const noexcept
    {
        // Random octets need no mixing; the factor makes the halves' order count.
        std::array<std::uint64_t, 2> halves{};
        std::memcpy(halves.data(), uuid.octets().data(), sizeof halves);
        constexpr std::uint64_t odd = 0x9E3779B97F4A7C15U;
        const std::uint64_t mixed = halves[0] ^ (halves[1] * odd);
        return static_cast<std::size_t>(mixed);
    }
};
