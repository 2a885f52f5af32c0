#pragma once

#include "foundation/Bytes.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace sentrel::ports {

/// Length of a SHA-256 digest in bytes.
inline constexpr std::size_t sha256Length = 32;

/// Receives one SHA-256 digest.
using Sha256Digest = std::span<std::uint8_t, sha256Length>;

/// Incremental SHA-256. Ready for the next message after each `finish`, so that many digests need one context. The
/// destructor wipes the state. Used by one thread at a time.
class Sha256Context {
public:
    virtual ~Sha256Context() = default;

    /// Adds bytes to the message.
    virtual void update(BytesView bytes) = 0;

    /// Ends the message and starts an empty one. The digest may overwrite the message's memory.
    virtual void finish(Sha256Digest digest) = 0;
};

/// Key derivation and digests. The calls block the calling thread while they compute. Any thread.
class Cryptography {
public:
    virtual ~Cryptography() = default;

    /// `CCKeyDerivationPBKDF`: fills the whole key. Returns a `CCCryptorStatus`, 0 on success; an empty key, no rounds,
    /// or an unknown algorithm or pseudo-random function give a parameter error.
    [[nodiscard]] virtual std::int32_t deriveKey(std::uint32_t algorithm, BytesView password, BytesView salt,
                                                 std::uint32_t pseudoRandomFunction, std::uint32_t rounds,
                                                 std::span<std::uint8_t> key) = 0;

    [[nodiscard]] virtual std::unique_ptr<Sha256Context> makeSha256Context() = 0;
};

} // namespace sentrel::ports
