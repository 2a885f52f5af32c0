#pragma once

#include <cstddef>
#include <functional>

namespace sentrel {

/// Builds the hash of a value from its fields; the order of the fields counts.
class Hasher {
public:
    template <class Field> void add(const Field& field)
    {
        constexpr std::size_t golden = 0x9E3779B97F4A7C15U; // 2^64 divided by the golden ratio
        hash_ ^= std::hash<Field>{}(field) + golden + (hash_ << 6) + (hash_ >> 2);
    }

    [[nodiscard]] std::size_t hash() const { return hash_; }

private:
    std::size_t hash_ = 0;
};

} // namespace sentrel
