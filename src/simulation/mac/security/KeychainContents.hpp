#pragma once

#include "foundation/Bytes.hpp"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The two keychains of a Mac user: the data protection keychain, and the older login keychain.
enum class KeychainStore { dataProtection, legacy };

/// A generic-password item.
struct KeychainItem {
    std::string service;
    std::string account;
    std::string accessible; ///< empty for an item without the attribute
    Bytes data;

    friend bool operator==(const KeychainItem&, const KeychainItem&) = default;
};

/// The items of both keychains.
class KeychainContents {
public:
    /// Reads the output of `encode`; none for anything else.
    static std::optional<KeychainContents> decode(BytesView text);

    /// As JSON: one list of items for each keychain, their data as base64.
    [[nodiscard]] std::string encode() const;

    [[nodiscard]] std::vector<KeychainItem>& items(KeychainStore store) { return items_[index(store)]; }
    [[nodiscard]] const std::vector<KeychainItem>& items(KeychainStore store) const { return items_[index(store)]; }

private:
    static std::size_t index(KeychainStore store) { return static_cast<std::size_t>(store); }
    std::array<std::vector<KeychainItem>, 2> items_;
};

} // namespace sentrel::simulation
