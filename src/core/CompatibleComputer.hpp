#pragma once

namespace sentrel {

namespace ports {
class HostInfo;
}

/// Whether this computer is a MacBook: by its hardware model, or by the product name in its firmware where the model
/// names no family ("Mac14,2"), as on Macs since 2022. The composition root asks once.
[[nodiscard]] bool isCompatibleComputer(ports::HostInfo& host);

} // namespace sentrel
