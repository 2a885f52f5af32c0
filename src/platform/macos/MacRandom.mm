#include "platform/macos/MacRandom.hpp"

#import <Security/Security.h>

namespace sentrel::macos {

bool MacRandom::fill(std::span<std::uint8_t> bytes)
{
    return SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()) == errSecSuccess;
}

} // namespace sentrel::macos
