#pragma once

#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// How far apart two numbers may be and still count as equal.
inline constexpr double numberTolerance = 1e-6;

/// In the place of a list: the items that must be in it, in this order, and those that must not.
inline constexpr const char* containedItems = "contains";
inline constexpr const char* absentItems = "lacks";

/// What must hold of one part of the state, as a scenario says it.
struct Expectation {
    std::string key; ///< for example `lastAlert`
    Json expected;
    int line = 0; ///< of the key, counted from 1
    double tolerance = numberTolerance;
};

/// One difference between what was expected and what is.
struct Mismatch {
    std::string path; ///< for example `devices.73.volume`
    std::string expected;
    std::string actual;
    int line = 0;
};

/// A step that can't be done counts like an expectation that doesn't hold: the scenario relied on it.
[[nodiscard]] Mismatch impossibleStep(const std::string& why, int line);

/// Every difference, in the order of the expectation. Numbers match within its tolerance; of an object only the
/// members that are expected count, and one that isn't there matches an expected null; lists match whole, unless just
/// some items are expected. `state`
/// holds a member for each key that can be expected; one without it is a mismatch.
[[nodiscard]] std::vector<Mismatch> mismatches(const Expectation& expectation, const Json& state);

/// "expected PATH to be EXPECTED, but it is ACTUAL"
[[nodiscard]] std::string sentence(const Mismatch& mismatch);

} // namespace sentrel::simulation
