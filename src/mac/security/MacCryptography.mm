#include "mac/Adapters.hpp"

#include "foundation/SecretBytes.hpp"

#import <Security/Security.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include <CommonCrypto/CommonDigest.h>
#include <CommonCrypto/CommonKeyDerivation.h>

namespace sentrel::mac {

namespace {

/// A pointer that is not null, even for no bytes: the library rejects null.
const std::uint8_t* pointerTo(BytesView bytes)
{
    static constexpr std::uint8_t nothing = 0;
    return bytes.empty() ? &nothing : bytes.data();
}

class MacSha256Context final : public ports::Sha256Context {
public:
    MacSha256Context() { CC_SHA256_Init(&context_); }
    ~MacSha256Context() override { wipe({reinterpret_cast<std::uint8_t*>(&context_), sizeof context_}); }
    MacSha256Context(const MacSha256Context&) = delete;
    MacSha256Context& operator=(const MacSha256Context&) = delete;

    void update(BytesView bytes) override
    {
        // The library counts in 32 bits.
        constexpr std::size_t most = std::numeric_limits<CC_LONG>::max();
        while (!bytes.empty()) {
            const BytesView part = bytes.first(std::min(bytes.size(), most));
            CC_SHA256_Update(&context_, part.data(), static_cast<CC_LONG>(part.size()));
            bytes = bytes.subspan(part.size());
        }
    }

    void finish(ports::Sha256Digest digest) override
    {
        CC_SHA256_Final(digest.data(), &context_);
        CC_SHA256_Init(&context_);
    }

private:
    CC_SHA256_CTX context_;
};

/// Key derivation and digests by CommonCrypto.
class MacCryptography final : public ports::Cryptography {
public:
    [[nodiscard]] std::int32_t deriveKey(std::uint32_t algorithm, BytesView password, BytesView salt,
                                         std::uint32_t pseudoRandomFunction, std::uint32_t rounds,
                                         std::span<std::uint8_t> key) override
    {
        return CCKeyDerivationPBKDF(algorithm, reinterpret_cast<const char*>(pointerTo(password)), password.size(),
                                    pointerTo(salt), salt.size(), pseudoRandomFunction, rounds, key.data(), key.size());
    }

    [[nodiscard]] std::unique_ptr<ports::Sha256Context> makeSha256Context() override
    {
        return std::make_unique<MacSha256Context>();
    }
};

/// The default random source of the Security framework.
class MacRandom final : public ports::Random {
public:
    [[nodiscard]] bool fill(std::span<std::uint8_t> bytes) override
    {
        return SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()) == errSecSuccess;
    }
};

/// The system's general generator.
class MacGeneralRandom final : public ports::GeneralRandom {
public:
    [[nodiscard]] std::uint8_t nextByte() override { return static_cast<std::uint8_t>(arc4random_uniform(256)); }
};

} // namespace

std::unique_ptr<ports::Cryptography> makeCryptography()
{
    return std::make_unique<MacCryptography>();
}

std::unique_ptr<ports::Random> makeRandom()
{
    return std::make_unique<MacRandom>();
}

std::unique_ptr<ports::GeneralRandom> makeGeneralRandom()
{
    return std::make_unique<MacGeneralRandom>();
}

} // namespace sentrel::mac
