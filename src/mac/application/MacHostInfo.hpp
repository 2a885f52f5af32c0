#pragma once

#include "ports/HostInfo.hpp"

namespace sentrel::mac {

/// Facts from the kernel, from the I/O registry and from Foundation.
class MacHostInfo final : public ports::HostInfo {
public:
    [[nodiscard]] std::optional<std::string> systemControlText(const std::string& name) override;
    [[nodiscard]] std::optional<Bytes> registryData(const std::string& path, const std::string& property) override;
    [[nodiscard]] std::optional<std::string> localizedName() override;
    [[nodiscard]] std::optional<std::string> bundleIdentifier() override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() override;
    [[nodiscard]] std::filesystem::path temporaryDirectory() override;
};

} // namespace sentrel::mac
