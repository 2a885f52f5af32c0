#pragma once

#include "platform/HostInfo.hpp"

namespace sentrel::macos {

/// Facts from the kernel and from Foundation.
class MacHostInfo final : public platform::HostInfo {
public:
    [[nodiscard]] std::optional<std::string> systemControlText(const std::string& name) override;
    [[nodiscard]] std::optional<std::string> localizedName() override;
    [[nodiscard]] std::optional<std::string> bundleIdentifier() override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() override;
    [[nodiscard]] std::filesystem::path temporaryDirectory() override;
};

} // namespace sentrel::macos
