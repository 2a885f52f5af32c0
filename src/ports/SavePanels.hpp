#pragma once

#include "runtime/Async.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::ports {

/// The set-up of an `NSSavePanel`.
struct SavePanelContent {
    std::string title;
    std::vector<std::string> allowedContentTypes; ///< uniform type identifiers
    std::string nameFieldStringValue;             ///< the suggested name
};

/// The system's panel for choosing where to save. Main thread.
class SavePanels {
public:
    virtual ~SavePanels() = default;

    /// Runs a panel; gives the file that the user chose, or none when the user cancelled.
    [[nodiscard]] virtual Async<std::optional<std::filesystem::path>> run(SavePanelContent content) = 0;
};

} // namespace sentrel::ports
