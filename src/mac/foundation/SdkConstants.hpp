#pragma once

#include <string>
#include <vector>

namespace sentrel::mac {

/// The texts of the frameworks that the product holds as texts of its own and that differ from the system's, each as
/// "name: ours, theirs"; empty when all are right. Its numbers are compared when this is compiled.
[[nodiscard]] std::vector<std::string> differingSdkTexts();

} // namespace sentrel::mac
