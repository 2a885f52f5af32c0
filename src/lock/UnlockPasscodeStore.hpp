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

/// The passcode that removes the screen cover: kept in the user's keychain as a salted, slow hash, and upgraded after a
/// successful check if the record is old. Passcodes are compared byte for byte, as UTF-8. Main actor, except where
/// noted.
class UnlockPasscodeStore {
public:
    using Salt = std::array<std::uint8_t, passcodeSaltLength>;

    /// PBKDF2 iterations of the records that this version writes.
    static constexpr std::uint32_t currentIterations = 210'000;

    struct Verification {
        bool matches = false;
        bool needsUpgrade = false; ///< on a match: the record is weaker than the ones written now
    };

    UnlockPasscodeStore(ports::Keychain& keychain, ports::Cryptography& cryptography, ports::Random& random,
                        ports::GeneralRandom& generalRandom);
    UnlockPasscodeStore(const UnlockPasscodeStore&) = delete;
    UnlockPasscodeStore& operator=(const UnlockPasscodeStore&) = delete;

    /// Whether a passcode was set when last asked or changed here; for views.
    Observable<bool> isPasscodeSet{false};

    /// True when a record can be read from the keychain, valid or not. Migrates a record of an older version.
    [[nodiscard]] bool hasPasscode();

    /// Derives a key and makes a record from it; none when the derivation fails. Slow. Any thread.
    [[nodiscard]] std::optional<SecretBytes> makeRecord(BytesView passcode, const Salt& salt, std::uint32_t iterations);

    /// 16 random bytes. Any thread.
    [[nodiscard]] Salt makeSalt();

    /// Replaces the present record; false when the keychain refuses, which leaves the present record in place.
    [[nodiscard]] bool save(BytesView record);

    /// Checks a passcode against a record of either form; a malformed record never matches. Slow. Any thread.
    [[nodiscard]] Verification verify(BytesView passcode, BytesView record);

    /// True when the passcode matches the stored record. A match replaces an old or weak record. Slow: any thread but
    /// the main one, where the other operations may run meanwhile.
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

    // Guards each sequence of keychain calls, and `changes_`, the number of calls to `save` and `remove`.
    std::mutex keychainMutex_;
    std::uint64_t changes_ = 0;
};

} // namespace sentrel
