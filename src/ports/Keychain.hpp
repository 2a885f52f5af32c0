#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/SecretBytes.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <variant>

namespace sentrel::ports {

/// Keys of a keychain dictionary, each standing for the framework's constant of that name.
enum class KeychainKey {
    itemClass,                 ///< `kSecClass`
    service,                   ///< `kSecAttrService`
    account,                   ///< `kSecAttrAccount`
    accessible,                ///< `kSecAttrAccessible`
    valueData,                 ///< `kSecValueData`
    useDataProtectionKeychain, ///< `kSecUseDataProtectionKeychain`
    returnData,                ///< `kSecReturnData`
    matchLimit,                ///< `kSecMatchLimit`
};

/// Constants that are values of a keychain dictionary.
enum class KeychainConstant {
    genericPassword,        ///< `kSecClassGenericPassword`
    accessibleWhenUnlocked, ///< `kSecAttrAccessibleWhenUnlocked`
    matchLimitOne,          ///< `kSecMatchLimitOne`
};

/// One value. Texts and bytes are used during the call only.
using KeychainValue = std::variant<bool, KeychainConstant, std::string_view, BytesView>;

/// A query or a set of attributes.
using KeychainDictionary = std::map<KeychainKey, KeychainValue>;

/// The user's keychains. Each call returns an `OSStatus`, 0 on success, and may take a while: the system may ask the
/// user. Any thread.
class Keychain {
public:
    virtual ~Keychain() = default;

    struct Copied {
        std::int32_t status = 0;
        std::optional<SecretBytes> data; ///< none on failure, or when the result isn't data
    };

    /// `SecItemCopyMatching`, for a query whose result is data.
    [[nodiscard]] virtual Copied copyMatching(const KeychainDictionary& query) = 0;

    /// `SecItemAdd` without a result.
    [[nodiscard]] virtual std::int32_t add(const KeychainDictionary& attributes) = 0;

    /// `SecItemUpdate`.
    [[nodiscard]] virtual std::int32_t update(const KeychainDictionary& query,
                                              const KeychainDictionary& attributesToUpdate) = 0;

    /// `SecItemDelete`.
    virtual std::int32_t remove(const KeychainDictionary& query) = 0;
};

} // namespace sentrel::ports
