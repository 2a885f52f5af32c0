#include "BesideFloor.hpp"

#include "lock/UnlockPasscodeStore.hpp"
#include "ports/Keychain.hpp"
#include "runtime/Detached.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "simulation/mac/security/OpenSslCryptography.hpp"
#include "simulation/mac/security/SeededRandom.hpp"

#include <openssl/evp.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>

namespace sentrel {
namespace {

/// A keychain that holds one record, in memory.
class MemoryKeychain final : public ports::Keychain {
public:
    [[nodiscard]] Copied copyMatching(const ports::KeychainDictionary& /*query*/) override
    {
        return {0, SecretBytes{BytesView{record}}};
    }
    [[nodiscard]] std::int32_t add(const ports::KeychainDictionary& /*attributes*/) override { return -25299; }
    [[nodiscard]] std::int32_t update(const ports::KeychainDictionary& /*query*/,
                                      const ports::KeychainDictionary& /*attributesToUpdate*/) override
    {
        return 0;
    }
    std::int32_t remove(const ports::KeychainDictionary& /*query*/) override { return 0; }

    Bytes record;
};

struct Lock {
    Lock()
    {
        const auto record = store.makeRecord(passcode, store.makeSalt(), UnlockPasscodeStore::currentIterations);
        keychain.record.assign(record->view().begin(), record->view().end());
    }

    const Bytes passcode = bytesOf("246810");
    MemoryKeychain keychain;
    simulation::OpenSslCryptography cryptography;
    simulation::SeededRandom random{1};
    UnlockPasscodeStore store{keychain, cryptography, random, random};
};

void passcodeCheckBesideTheLibrarysDerivation(benchmark::State& state)
{
    Lock lock;
    const auto salt = lock.store.makeSalt();
    std::array<std::uint8_t, 32> key{};
    const auto floor = [&] {
        PKCS5_PBKDF2_HMAC("246810", 6, salt.data(), static_cast<int>(salt.size()), 210'000, EVP_sha256(),
                          static_cast<int>(key.size()), key.data());
        benchmark::DoNotOptimize(key);
    };
    const auto work = [&] {
        if (!lock.store.verifyStoredPasscode(lock.passcode)) {
            state.SkipWithError("the right passcode is refused");
        }
    };
    measureBesideFloor(state, 1.0, 1.02, floor, work, processorSeconds);
}
BENCHMARK(passcodeCheckBesideTheLibrarysDerivation)->UseManualTime();

/// The digest of older versions, with one call of the library for each round.
std::array<std::uint8_t, 32> digestByOneShotCalls(BytesView salt, BytesView passcode)
{
    Bytes message{salt.begin(), salt.end()};
    message.insert(message.end(), passcode.begin(), passcode.end());
    std::array<std::uint8_t, 32> digest{};
    SHA256(message.data(), message.size(), digest.data());
    for (int round = 1; round < 100'000; ++round) {
        SHA256(digest.data(), digest.size(), digest.data());
    }
    return digest;
}

void legacyCheckBesideOneShotDigests(benchmark::State& state)
{
    Lock lock;
    const auto salt = lock.store.makeSalt();
    Bytes record{salt.begin(), salt.end()};
    const auto digest = digestByOneShotCalls(salt, lock.passcode);
    record.insert(record.end(), digest.begin(), digest.end());
    const auto floor = [&] { benchmark::DoNotOptimize(digestByOneShotCalls(salt, lock.passcode)); };
    const auto work = [&] {
        if (!lock.store.verify(lock.passcode, record).matches) {
            state.SkipWithError("the right passcode is refused");
        }
    };
    measureBesideFloor(state, 1.0, 1.0 / 3.0, floor, work, processorSeconds);
}
BENCHMARK(legacyCheckBesideOneShotDigests)->UseManualTime();

/// A check off the main thread, which meanwhile takes turn after turn and watches for a long one between its own.
struct WatchedCheck {
    Async<void> check()
    {
        auto verify = [this] { return lock.store.verifyStoredPasscode(lock.passcode); };
        const auto task = detached(scheduler, QualityOfService::userInitiated, std::move(verify));
        unlocked = co_await task;
        scheduler.stopMain();
    }

    void watch()
    {
        const double now = processorSeconds();
        longestTurn = std::max(longestTurn, now - lastTurn);
        lastTurn = processorSeconds();
        post(scheduler.mainExecutor(), [this] { watch(); });
    }

    void run()
    {
        lastTurn = processorSeconds();
        post(scheduler.mainExecutor(), [this] { watch(); });
        MainActor{scheduler}.spawn(check());
        scheduler.runMain();
    }

    Lock lock;
    bool unlocked = false;
    double longestTurn = 0.0;
    double lastTurn = 0.0;
    ThreadScheduler scheduler;
};

void longestMainTurnDuringACheck(benchmark::State& state)
{
    constexpr double mostSeconds = 0.001;
    double longest = 0.0;
    for (auto _ : state) {
        WatchedCheck watched;
        watched.run();
        if (!watched.unlocked) {
            state.SkipWithError("the right passcode is refused");
        }
        longest = std::max(longest, watched.longestTurn);
    }
    state.counters["longest_turn_s"] = longest;
    state.counters["limit"] = mostSeconds;
    if (longest > mostSeconds) {
        state.SkipWithError("the main thread was held up");
    }
}
BENCHMARK(longestMainTurnDuringACheck)->Iterations(10);

} // namespace
} // namespace sentrel
