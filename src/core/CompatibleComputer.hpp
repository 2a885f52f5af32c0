#pragma once

namespace sentrel {

namespace ports {
class HostInfo;
}

/// True when this computer is a MacBook, by its hardware model or, where the model names no family ("Mac14,2", Macs
/// since 2022), by the product name in its firmware. The composition root asks once.
[[nodiscard]] bool isCompatibleComputer(ports::HostInfo& host);

} // namespace sentrel
