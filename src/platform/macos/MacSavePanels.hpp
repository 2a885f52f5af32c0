#pragma once

#include "platform/SavePanels.hpp"

namespace sentrel::macos {

/// AppKit's save panels.
class MacSavePanels final : public platform::SavePanels {
public:
    [[nodiscard]] Async<std::optional<std::filesystem::path>> run(platform::SavePanelContent content) override;
};

} // namespace sentrel::macos
