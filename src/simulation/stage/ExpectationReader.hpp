#pragma once

#include "simulation/stage/Expectation.hpp"
#include "simulation/stage/ValueType.hpp"

#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The `expect` of a step, in the order of the file; each value is of the type that its key has. `none` and null are
/// the same.
[[nodiscard]] ValueType<std::vector<Expectation>> expectationsType();

/// Every key that can be expected.
[[nodiscard]] std::vector<std::string_view> expectationNames();

} // namespace sentrel::simulation
