#pragma once

#include "ports/ApplicationActivation.hpp"

namespace sentrel::mac {

/// The shared application object.
class MacApplicationActivation final : public ports::ApplicationActivation {
public:
    void activate(bool ignoringOtherApplications) override;
    void setPresentationOptions(std::uint64_t options) override;
};

} // namespace sentrel::mac
