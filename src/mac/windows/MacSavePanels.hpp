#pragma once

#include "ports/SavePanels.hpp"

namespace sentrel::mac {

/// AppKit's save panels.
class MacSavePanels final : public ports::SavePanels {
public:
    [[nodiscard]] Async<std::optional<std::filesystem::path>> run(ports::SavePanelContent content) override;
};

} // namespace sentrel::mac
