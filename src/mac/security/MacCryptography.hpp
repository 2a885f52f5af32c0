#pragma once

#include "ports/Cryptography.hpp"

namespace sentrel::mac {

/// Key derivation and digests by CommonCrypto.
class MacCryptography final : public ports::Cryptography {
public:
    [[nodiscard]] std::int32_t deriveKey(std::uint32_t algorithm, BytesView password, BytesView salt,
                                         std::uint32_t pseudoRandomFunction, std::uint32_t rounds,
                                         std::span<std::uint8_t> key) override;
    [[nodiscard]] std::unique_ptr<ports::Sha256Context> makeSha256Context() override;
};

} // namespace sentrel::mac
