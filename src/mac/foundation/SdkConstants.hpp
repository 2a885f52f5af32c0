#pragma once

#include <string>
#include <vector>

namespace sentrel::mac {

/// The product's copies of framework strings that differ from the system's, each as "name: ours, theirs"; empty if all
/// agree. Copies of numbers are compared at compile time.
[[nodiscard]] std::vector<std::string> differingSdkTexts();

} // namespace sentrel::mac
