#pragma once

#include "foundation/Bytes.hpp"

#include <filesystem>
#include <optional>
#include <string>

namespace sentrel::ports {

/// Facts about this computer, this user and this application. Any thread.
class HostInfo {
public:
    virtual ~HostInfo() = default;

    /// A text of `sysctlbyname`; none when the system doesn't know the name.
    [[nodiscard]] virtual std::optional<std::string> systemControlText(const std::string& name) = 0;

    /// A data property of the entry at a path of the I/O registry: `IORegistryEntryCopyFromPath`,
    /// `IORegistryEntryCreateCFProperty`. None when there is no such entry or property, or when it isn't data.
    [[nodiscard]] virtual std::optional<Bytes> registryData(const std::string& path, const std::string& property) = 0;

    /// The computer's localised name, as shown in the system's settings.
    [[nodiscard]] virtual std::optional<std::string> localizedName() = 0;

    /// Identifier of the main bundle; none for a bare executable.
    [[nodiscard]] virtual std::optional<std::string> bundleIdentifier() = 0;

    /// The first Application Support folder of the user domain.
    [[nodiscard]] virtual std::optional<std::filesystem::path> applicationSupportDirectory() = 0;
    [[nodiscard]] virtual std::filesystem::path temporaryDirectory() = 0;
};

} // namespace sentrel::ports
