#pragma once

#include "conformance/Suite.hpp"

namespace sentrel::conformance {

/// Draws trees with AppKit in windows that are never shown. Keeps a picture of each in light and in dark in the folder,
/// and reports required constraints that the layout breaks. Main thread.
[[nodiscard]] Renderer offScreenRenderer(std::filesystem::path pictures);

} // namespace sentrel::conformance
