#pragma once

#include "foundation/SecretBytes.hpp"
#include "lock/PasscodeRecord.hpp"
#include "runtime/Observable.hpp"

#include <array>
#include <cstdint>
#include <mutex>
#include <optional>

namespace sentrel::ports {
class Cryptography;
class GeneralRandom;
class Keychain;
class Random;
} // namespace sentrel::ports

namespace sentrel {

/// The passcode that removes the screen cover: kept in the user's keychain as a salted, slow hash, checked, brought up
/// to date after a successful check, and removed. Passcodes are compared byte for byte, as UTF-8. Main actor, except
/// where noted.
class UnlockPasscodeStore {
public:
    using Salt = std::array<std::uint8_t, passcodeSaltLength>;

    /// PBKDF2 iterations of the records that this version writes.
    static constexpr std::uint32_t currentIterations = 210'000;

    struct Verification {
        bool matches = false;
        bool needsUpgrade = false; ///< the record is weaker than what this version writes
    };

    UnlockPasscodeStore(ports::Keychain& keychain, ports::Cryptography& cryptography, ports::Random& random,
                        ports::GeneralRandom& generalRandom);
    UnlockPasscodeStore(const UnlockPasscodeStore&) = delete;
    UnlockPasscodeStore& operator=(const UnlockPasscodeStore&) = delete;

    /// Whether a passcode was set when last asked or changed here; for views.
    Observable<bool> isPasscodeSet{false};

    /// Whether the keychain holds a record, whatever it contains. Moves a record of an older version over.
    [[nodiscard]] bool hasPasscode();

    /// Derives a key and makes a record of it; none when the derivation fails. Slow. Any thread.
    [[nodiscard]] std::optional<SecretBytes> makeRecord(BytesView passcode, const Salt& salt, std::uint32_t iterations);

    /// 16 random bytes. Any thread.
    [[nodiscard]] Salt makeSalt();

    /// Puts the record in place of the present one; false when the keychain refuses, which leaves things as they were.
    [[nodiscard]] bool save(BytesView record);

    /// Checks a passcode against a record of either form; anything else never matches. Slow. Any thread.
    [[nodiscard]] Verification verify(BytesView passcode, BytesView record);

    /// Whether the passcode unlocks. A match with an old or weak record replaces that by a new one. Slow: any thread
    /// but the main one, while the other operations may go on there.
    [[nodiscard]] bool verifyStoredPasscode(BytesView passcode);

    /// Removes the passcode from both keychains.
    void remove();

private:
    std::optional<SecretBytes> readWithMigration();
    bool write(BytesView record);
    void upgrade(BytesView passcode, std::uint64_t changesSeen);
    bool deriveKey(BytesView passcode, BytesView salt, std::uint32_t iterations, std::span<std::uint8_t> key);
    SecretBytes legacyDigest(BytesView passcode, BytesView salt);

    ports::Keychain& keychain_;
    ports::Cryptography& cryptography_;
    ports::Random& random_;
    ports::GeneralRandom& generalRandom_;

    // Guards each sequence of keychain calls, and the count of the changes that were asked for on the main actor.
    std::mutex keychainMutex_;
    std::uint64_t changes_ = 0;
};

} // namespace sentrel
