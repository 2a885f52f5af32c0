#pragma once

#include "platform/Keychain.hpp"

namespace sentrel::macos {

/// The user's keychains through the Security framework's item functions.
class MacKeychain final : public platform::Keychain {
public:
    [[nodiscard]] Copied copyMatching(const platform::KeychainDictionary& query) override;
    [[nodiscard]] std::int32_t add(const platform::KeychainDictionary& attributes) override;
    [[nodiscard]] std::int32_t update(const platform::KeychainDictionary& query,
                                      const platform::KeychainDictionary& attributesToUpdate) override;
    std::int32_t remove(const platform::KeychainDictionary& query) override;
};

} // namespace sentrel::macos
