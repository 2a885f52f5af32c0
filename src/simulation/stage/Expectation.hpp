#pragma once

#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// Largest difference of two numbers that count as equal.
inline constexpr double numberTolerance = 1e-6;

/// Keys of an expected list's replacement: items it must contain, in this order, and items it must not.
inline constexpr const char* containedItems = "contains";
inline constexpr const char* absentItems = "lacks";

/// The expectation of one part of the state.
struct Expectation {
    std::string key; ///< for example `lastAlert`
    Json expected;
    int line = 0; ///< of the key, counted from 1
    double tolerance = numberTolerance;
};

/// One difference between the expected and the actual state.
struct Mismatch {
    std::string path; ///< for example `devices.73.volume`
    std::string expected;
    std::string actual;
    int line = 0;
};

/// The mismatch for a step that can't be done. It counts as a failed expectation, since the scenario relied on it.
[[nodiscard]] Mismatch impossibleStep(const std::string& why, int line);

/// Every difference, in the order of the expectation. Numbers match within the tolerance. In objects only the expected
/// members count, and a missing one matches null. Lists match as a whole unless some items are expected. A key missing
/// in `state` is a mismatch.
[[nodiscard]] std::vector<Mismatch> mismatches(const Expectation& expectation, const Json& state);

/// "expected PATH to be EXPECTED, but it is ACTUAL"
[[nodiscard]] std::string sentence(const Mismatch& mismatch);

} // namespace sentrel::simulation
