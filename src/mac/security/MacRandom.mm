#include "mac/security/MacRandom.hpp"

#import <Security/Security.h>

#include <cstdlib>

namespace sentrel::mac {

bool MacRandom::fill(std::span<std::uint8_t> bytes)
{
    return SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()) == errSecSuccess;
}

std::uint8_t MacRandom::nextByte()
{
    return static_cast<std::uint8_t>(arc4random_uniform(256));
}

} // namespace sentrel::mac
