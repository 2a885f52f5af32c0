#pragma once

#include "lock/UnlockPasscodeStore.hpp"
#include "ports/Cryptography.hpp"
#include "ports/Random.hpp"
#include "posix/PosixFileSystem.hpp"
#include "simulation/mac/security/OpenSslCryptography.hpp"
#include "simulation/mac/security/SeededRandom.hpp"
#include "simulation/mac/security/SimulatedKeychain.hpp"
#include "support/TemporaryFolder.hpp"

#include <algorithm>
#include <functional>

namespace sentrel {

/// Real cryptography that counts derivations, can fail them, and lets a story go on in the middle of one.
class WatchedCryptography final : public ports::Cryptography {
public:
    [[nodiscard]] std::int32_t deriveKey(std::uint32_t algorithm, BytesView password, BytesView salt,
                                         std::uint32_t pseudoRandomFunction, std::uint32_t rounds,
                                         std::span<std::uint8_t> key) override
    {
        roundsAsked.push_back(rounds);
        if (meanwhile) {
            std::exchange(meanwhile, nullptr)();
        }
        if (roundsAsked.size() > derivationsThatSucceed) {
            std::ranges::fill(key, std::uint8_t{0xAA});
            return -4308;
        }
        return real_.deriveKey(algorithm, password, salt, pseudoRandomFunction, rounds, key);
    }
    [[nodiscard]] std::unique_ptr<ports::Sha256Context> makeSha256Context() override
    {
        if (meanwhile) {
            std::exchange(meanwhile, nullptr)();
        }
        return real_.makeSha256Context();
    }

    std::vector<std::uint32_t> roundsAsked;
    std::size_t derivationsThatSucceed = 1000;
    std::function<void()> meanwhile;

private:
    simulation::OpenSslCryptography real_;
};

/// The part of a simulated MacBook that a passcode touches.
struct PasscodeMac {
    using Store = simulation::KeychainStore;
    static constexpr auto current = Store::dataProtection;
    static constexpr auto legacy = Store::legacy;

    /// The item in the keychain, or none.
    [[nodiscard]] std::optional<Bytes> stored(Store where) const
    {
        const auto item = keychain.item(where, "pelmadev.Sentrel.unlock-passcode", "arm-screen-cover");
        return item ? std::optional{item->data} : std::nullopt;
    }
    void put(Store where, Bytes record)
    {
        if (!keychain.setItem(where, {"pelmadev.Sentrel.unlock-passcode", "arm-screen-cover", "", std::move(record)})) {
            throw std::runtime_error{"the keychain can't be written"};
        }
    }

    /// Saves a passcode as the setup sheet does.
    bool setPasscode(std::string_view passcode)
    {
        const auto record = store.makeRecord(bytesOf(passcode), store.makeSalt(), 210'000);
        return record && store.save(record->view());
    }
    bool unlocks(std::string_view passcode) { return store.verifyStoredPasscode(bytesOf(passcode)); }

    TemporaryFolder disk;
    posix::PosixFileSystem files;
    simulation::SimulatedKeychain keychain{files, disk.path() / "Keychain.json"};
    WatchedCryptography cryptography;
    simulation::SeededRandom random{1};
    simulation::SeededRandom generalRandom{2};
    UnlockPasscodeStore store{keychain, cryptography, random, generalRandom};
};

} // namespace sentrel
