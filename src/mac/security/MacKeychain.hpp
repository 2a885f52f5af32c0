#pragma once

#include "ports/Keychain.hpp"

namespace sentrel::mac {

/// The user's keychains through the Security framework's item functions.
class MacKeychain final : public ports::Keychain {
public:
    [[nodiscard]] Copied copyMatching(const ports::KeychainDictionary& query) override;
    [[nodiscard]] std::int32_t add(const ports::KeychainDictionary& attributes) override;
    [[nodiscard]] std::int32_t update(const ports::KeychainDictionary& query,
                                      const ports::KeychainDictionary& attributesToUpdate) override;
    std::int32_t remove(const ports::KeychainDictionary& query) override;
};

} // namespace sentrel::mac
