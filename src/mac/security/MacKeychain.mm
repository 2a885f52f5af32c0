#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/security/Signature.hpp"

#import <Foundation/Foundation.h>
#import <Security/Security.h>

namespace sentrel::mac {

using ports::KeychainConstant;
using ports::KeychainDictionary;
using ports::KeychainKey;

namespace {

CFStringRef nativeKey(KeychainKey key)
{
    switch (key) {
    case KeychainKey::itemClass:
        return kSecClass;
    case KeychainKey::service:
        return kSecAttrService;
    case KeychainKey::account:
        return kSecAttrAccount;
    case KeychainKey::accessible:
        return kSecAttrAccessible;
    case KeychainKey::valueData:
        return kSecValueData;
    case KeychainKey::useDataProtectionKeychain:
        return kSecUseDataProtectionKeychain;
    case KeychainKey::returnData:
        return kSecReturnData;
    case KeychainKey::matchLimit:
        break;
    }
    return kSecMatchLimit;
}

/// The framework's object for each kind of value.
struct NativeValue {
    id operator()(bool flag) const { return flag ? @YES : @NO; }
    id operator()(KeychainConstant constant) const
    {
        switch (constant) {
        case KeychainConstant::genericPassword:
            return (__bridge id)kSecClassGenericPassword;
        case KeychainConstant::accessibleWhenUnlocked:
            return (__bridge id)kSecAttrAccessibleWhenUnlocked;
        case KeychainConstant::matchLimitOne:
            break;
        }
        return (__bridge id)kSecMatchLimitOne;
    }
    id operator()(std::string_view text) const { return stringObject(text); }
    id operator()(BytesView bytes) const
    {
        // A copy of a secret would stay in memory. The object lives as long as the call at most.
        return unownedData(bytes);
    }
};

/// The data-protection keychain serves only signatures with an application identifier. Other builds use the login
/// keychain, with the same items.
bool hasDataProtectionKeychain()
{
    static const bool isSigned = isSignedWith(@"com.apple.application-identifier");
    return isSigned;
}

NSDictionary* nativeDictionary(const KeychainDictionary& dictionary)
{
    NSMutableDictionary* const native = [NSMutableDictionary dictionaryWithCapacity:dictionary.size()];
    for (const auto& [key, value] : dictionary) {
        if (key == KeychainKey::useDataProtectionKeychain && !hasDataProtectionKeychain()) {
            continue;
        }
        native[(__bridge NSString*)nativeKey(key)] = std::visit(NativeValue{}, value);
    }
    return native;
}

/// The user's keychains through the Security framework's item functions.
class MacKeychain final : public ports::Keychain {
public:
    [[nodiscard]] Copied copyMatching(const KeychainDictionary& query) override
    {
        @autoreleasepool {
            CFTypeRef result = nullptr;
            const OSStatus status = SecItemCopyMatching((__bridge CFDictionaryRef)nativeDictionary(query), &result);
            NSData* const data = as<NSData>(CFBridgingRelease(result));
            if (status != errSecSuccess || data == nil) {
                return {status, std::nullopt};
            }
            return {status, SecretBytes{BytesView{static_cast<const std::uint8_t*>(data.bytes), data.length}}};
        }
    }

    [[nodiscard]] std::int32_t add(const KeychainDictionary& attributes) override
    {
        @autoreleasepool {
            return SecItemAdd((__bridge CFDictionaryRef)nativeDictionary(attributes), nullptr);
        }
    }

    [[nodiscard]] std::int32_t update(const KeychainDictionary& query,
                                      const KeychainDictionary& attributesToUpdate) override
    {
        @autoreleasepool {
            return SecItemUpdate((__bridge CFDictionaryRef)nativeDictionary(query),
                                 (__bridge CFDictionaryRef)nativeDictionary(attributesToUpdate));
        }
    }

    std::int32_t remove(const KeychainDictionary& query) override
    {
        @autoreleasepool {
            return SecItemDelete((__bridge CFDictionaryRef)nativeDictionary(query));
        }
    }
};

} // namespace

std::unique_ptr<ports::Keychain> makeKeychain()
{
    return std::make_unique<MacKeychain>();
}

} // namespace sentrel::mac
