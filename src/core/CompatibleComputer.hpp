#pragma once

namespace sentrel {

namespace platform {
class HostInfo;
}

/// Whether this computer is a MacBook: by its hardware model, or by the product name in its firmware where the model
/// names no family ("Mac14,2"), as on Macs since 2022. The composition root asks once.
[[nodiscard]] bool isCompatibleComputer(platform::HostInfo& host);

} // namespace sentrel
