#pragma once

#include "platform/Cryptography.hpp"

namespace sentrel::macos {

/// Key derivation and digests by CommonCrypto.
class MacCryptography final : public platform::Cryptography {
public:
    [[nodiscard]] std::int32_t deriveKey(std::uint32_t algorithm, BytesView password, BytesView salt,
                                         std::uint32_t pseudoRandomFunction, std::uint32_t rounds,
                                         std::span<std::uint8_t> key) override;
    [[nodiscard]] std::unique_ptr<platform::Sha256Context> makeSha256Context() override;
};

} // namespace sentrel::macos
