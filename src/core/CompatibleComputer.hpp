#pragma once

namespace sentrel {

namespace platform {
class HostInfo;
}

/// Whether this computer is a MacBook, by its hardware model. The composition root asks once.
[[nodiscard]] bool isCompatibleComputer(platform::HostInfo& host);

} // namespace sentrel
