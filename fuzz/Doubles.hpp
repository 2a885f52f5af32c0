#pragma once

#include "ports/HostInfo.hpp"
#include "ports/Journal.hpp"

// Ports that answer the same each time.

namespace sentrel::fuzz {

class SilentJournal final : public ports::Journal {
    void write(std::string_view /*event*/, std::initializer_list<Field> /*fields*/) override {}
};

class FixedHost final : public ports::HostInfo {
public:
    [[nodiscard]] std::optional<std::string> systemControlText(const std::string& /*name*/) override { return {}; }
    [[nodiscard]] std::optional<Bytes> registryData(const std::string& /*path*/,
                                                    const std::string& /*property*/) override
    {
        return {};
    }
    [[nodiscard]] std::optional<std::string> localizedName() override { return "MacBook"; }
    [[nodiscard]] std::optional<std::string> bundleIdentifier() override { return "app"; }
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportDirectory() override { return "/support"; }
    [[nodiscard]] std::filesystem::path temporaryDirectory() override { return "/temporary"; }
};

} // namespace sentrel::fuzz
