#pragma once

#include "ports/LoginItem.hpp"

namespace sentrel::mac {

/// The main application's login item.
class MacLoginItem final : public ports::LoginItem {
public:
    [[nodiscard]] std::int64_t status() override;
    [[nodiscard]] std::optional<std::string> registerItem() override;
    [[nodiscard]] std::optional<std::string> unregisterItem() override;
};

} // namespace sentrel::mac
