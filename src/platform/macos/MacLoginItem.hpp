#pragma once

#include "platform/LoginItem.hpp"

namespace sentrel::macos {

/// The main application's login item.
class MacLoginItem final : public platform::LoginItem {
public:
    [[nodiscard]] std::int64_t status() override;
    [[nodiscard]] std::optional<std::string> registerItem() override;
    [[nodiscard]] std::optional<std::string> unregisterItem() override;
};

} // namespace sentrel::macos
