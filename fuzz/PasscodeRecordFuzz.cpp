#include "foundation/Fatal.hpp"
#include "lock/UnlockPasscodeStore.hpp"
#include "ports/Cryptography.hpp"
#include "ports/Keychain.hpp"
#include "ports/Random.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

// Any keychain record, checked with any passcode. The input is one byte with the passcode's length, the passcode, and
// the record.

namespace sentrel {
namespace {

/// Arithmetic that costs nothing and that a fuzzer can see through, so that it finds records that match.
class PlainCryptography final : public ports::Cryptography {
public:
    class Context final : public ports::Sha256Context {
    public:
        void update(BytesView bytes) override
        {
            if (next_ == 0 && bytes.size() == state_.size()) { // as in the hundred thousand rounds
                std::ranges::copy(bytes, state_.begin());
                next_ = state_.size();
                return;
            }
            for (const std::uint8_t byte : bytes) {
                std::uint8_t& place = state_.at(next_++ % state_.size());
                place = static_cast<std::uint8_t>(place ^ byte);
            }
        }
        void finish(ports::Sha256Digest digest) override
        {
            std::ranges::copy(state_, digest.begin());
            state_.fill(0);
            next_ = 0;
        }

    private:
        std::array<std::uint8_t, ports::sha256Length> state_{};
        std::size_t next_ = 0;
    };

    [[nodiscard]] std::int32_t deriveKey(std::uint32_t /*algorithm*/, BytesView password, BytesView salt,
                                         std::uint32_t /*pseudoRandomFunction*/, std::uint32_t rounds,
                                         std::span<std::uint8_t> key) override
    {
        if (rounds < 1 || rounds > 2'100'000) {
            fatalError("a count was believed that must not be");
        }
        for (std::size_t i = 0; i < key.size(); ++i) {
            const unsigned typed = password.empty() ? 0U : password[i % password.size()];
            key[i] = static_cast<std::uint8_t>(salt[i % salt.size()] ^ typed);
        }
        return 0;
    }
    [[nodiscard]] std::unique_ptr<ports::Sha256Context> makeSha256Context() override
    {
        return std::make_unique<Context>();
    }
};

/// One item, in memory.
class OneItemKeychain final : public ports::Keychain {
public:
    explicit OneItemKeychain(BytesView content) : record(content.begin(), content.end()) {}

    [[nodiscard]] Copied copyMatching(const ports::KeychainDictionary& /*query*/) override
    {
        return {0, SecretBytes{BytesView{record}}};
    }
    [[nodiscard]] std::int32_t add(const ports::KeychainDictionary& /*attributes*/) override
    {
        fatalError("an item is added though there is one");
    }
    [[nodiscard]] std::int32_t update(const ports::KeychainDictionary& /*query*/,
                                      const ports::KeychainDictionary& attributesToUpdate) override
    {
        const auto value = std::get<BytesView>(attributesToUpdate.at(ports::KeychainKey::valueData));
        record.assign(value.begin(), value.end());
        return 0;
    }
    std::int32_t remove(const ports::KeychainDictionary& /*query*/) override
    {
        fatalError("a record is removed by a check");
    }

    Bytes record;
};

class FixedRandom final : public ports::Random, public ports::GeneralRandom {
public:
    [[nodiscard]] bool fill(std::span<std::uint8_t> bytes) override
    {
        std::ranges::fill(bytes, std::uint8_t{7});
        return true;
    }
    [[nodiscard]] std::uint8_t nextByte() override { return 7; }
};

void check(BytesView passcode, BytesView record)
{
    OneItemKeychain keychain{record};
    PlainCryptography cryptography;
    FixedRandom random;
    UnlockPasscodeStore store{keychain, cryptography, random, random};

    const auto verification = store.verify(passcode, record);
    const bool unlocks = store.verifyStoredPasscode(passcode);
    if (unlocks != verification.matches || (verification.needsUpgrade && !verification.matches)) {
        fatalError("the two checks disagree");
    }
    if (!verification.needsUpgrade) {
        if (!std::ranges::equal(keychain.record, record)) {
            fatalError("a record was overwritten that is wrong or strong");
        }
        return;
    }
    const auto upgraded = PasscodeRecord::parse(keychain.record);
    if (!upgraded || upgraded->iterations != UnlockPasscodeStore::currentIterations ||
        !store.verifyStoredPasscode(passcode)) {
        fatalError("an upgraded record doesn't unlock");
    }
}

} // namespace
} // namespace sentrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const sentrel::BytesView input{data, size};
    if (input.empty()) {
        return 0;
    }
    const sentrel::BytesView rest = input.subspan(1);
    const std::size_t passcodeLength = std::min<std::size_t>(input[0], rest.size());
    sentrel::check(rest.first(passcodeLength), rest.subspan(passcodeLength));
    return 0;
}
