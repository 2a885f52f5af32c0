#include "lock/UnlockPasscodeStore.hpp"

#include "ports/Cryptography.hpp"
#include "ports/Keychain.hpp"
#include "ports/Random.hpp"
#include "ports/SystemConstants.hpp"

#include <utility>

namespace sentrel {

using ports::algorithmPbkdf2;
using ports::KeychainConstant;
using ports::KeychainDictionary;
using ports::KeychainKey;
using ports::pseudoRandomFunctionHmacSha256;

namespace {

constexpr std::int32_t success = ports::securitySuccess;
constexpr std::int32_t itemNotFound = ports::keychainItemNotFound;

/// Rounds of SHA-256 after the first one, in the digest of older versions.
constexpr int furtherLegacyRounds = 99'999;

/// The item in the login keychain, where older versions kept it.
KeychainDictionary legacyQuery()
{
    using namespace std::string_view_literals;
    return {{KeychainKey::itemClass, KeychainConstant::genericPassword},
            {KeychainKey::service, "pelmadev.Sentrel.unlock-passcode"sv},
            {KeychainKey::account, "arm-screen-cover"sv}};
}

/// The item in the data-protection keychain.
KeychainDictionary currentQuery()
{
    KeychainDictionary query = legacyQuery();
    query.emplace(KeychainKey::useDataProtectionKeychain, true);
    return query;
}

ports::Keychain::Copied read(ports::Keychain& keychain, KeychainDictionary query)
{
    query.emplace(KeychainKey::returnData, true);
    query.emplace(KeychainKey::matchLimit, KeychainConstant::matchLimitOne);
    return keychain.copyMatching(query);
}

} // namespace

UnlockPasscodeStore::UnlockPasscodeStore(ports::Keychain& keychain, ports::Cryptography& cryptography,
                                         ports::Random& random, ports::GeneralRandom& generalRandom)
    : keychain_(keychain), cryptography_(cryptography), random_(random), generalRandom_(generalRandom)
{
}

bool UnlockPasscodeStore::hasPasscode()
{
    bool found = false;
    {
        const std::lock_guard guard{keychainMutex_};
        found = readWithMigration().has_value();
    }
    isPasscodeSet = found;
    return found;
}

std::optional<SecretBytes> UnlockPasscodeStore::makeRecord(BytesView passcode, const Salt& salt,
                                                           std::uint32_t iterations)
{
    SecretBytes record{passcodeRecordLength};
    const auto key = PasscodeRecord::writeHeader(record.writable().first<passcodeRecordLength>(), iterations, salt);
    if (!deriveKey(passcode, salt, iterations, key)) {
        return std::nullopt;
    }
    return record;
}

UnlockPasscodeStore::Salt UnlockPasscodeStore::makeSalt()
{
    Salt salt{};
    if (!random_.fill(salt)) {
        for (std::uint8_t& byte : salt) {
            byte = generalRandom_.nextByte();
        }
    }
    return salt;
}

bool UnlockPasscodeStore::save(BytesView record)
{
    bool saved = false;
    {
        const std::lock_guard guard{keychainMutex_};
        ++changes_;
        saved = write(record);
    }
    if (saved) {
        isPasscodeSet = true;
    }
    return saved;
}

UnlockPasscodeStore::Verification UnlockPasscodeStore::verify(BytesView passcode, BytesView record)
{
    if (const auto current = PasscodeRecord::parse(record)) {
        SecretBytes key{passcodeKeyLength};
        const bool matches = deriveKey(passcode, current->salt, current->iterations, key.writable()) &&
                             equalInConstantTime(key.view(), current->key);
        return {matches, matches && current->iterations < currentIterations};
    }
    if (const auto legacy = LegacyPasscodeRecord::parse(record)) {
        const bool matches = equalInConstantTime(legacyDigest(passcode, legacy->salt).view(), legacy->digest);
        return {matches, matches};
    }
    return {};
}

bool UnlockPasscodeStore::verifyStoredPasscode(BytesView passcode)
{
    std::optional<SecretBytes> record;
    std::uint64_t changesSeen = 0;
    {
        const std::lock_guard guard{keychainMutex_};
        record = readWithMigration();
        changesSeen = changes_;
    }
    if (!record) {
        return false;
    }
    const Verification verification = verify(passcode, record->view());
    if (verification.needsUpgrade) {
        upgrade(passcode, changesSeen);
    }
    return verification.matches;
}

void UnlockPasscodeStore::remove()
{
    {
        const std::lock_guard guard{keychainMutex_};
        ++changes_;
        keychain_.remove(currentQuery());
        keychain_.remove(legacyQuery());
    }
    static_cast<void>(hasPasscode()); // for the observers
}

std::optional<SecretBytes> UnlockPasscodeStore::readWithMigration()
{
    auto current = read(keychain_, currentQuery());
    if (current.data) {
        return std::move(current.data);
    }
    auto legacy = read(keychain_, legacyQuery());
    // A current item that can't be read (the keychain is locked) is not replaced: it may be the newer one.
    if (legacy.data && current.status == itemNotFound && write(legacy.data->view())) {
        keychain_.remove(legacyQuery());
    }
    return std::move(legacy.data);
}

bool UnlockPasscodeStore::write(BytesView record)
{
    const KeychainDictionary value{{KeychainKey::valueData, record}};
    const std::int32_t updated = keychain_.update(currentQuery(), value);
    if (updated != itemNotFound) {
        return updated == success;
    }
    KeychainDictionary item = currentQuery();
    item.emplace(KeychainKey::valueData, record);
    item.emplace(KeychainKey::accessible, KeychainConstant::accessibleWhenUnlocked);
    return keychain_.add(item) == success;
}

void UnlockPasscodeStore::upgrade(BytesView passcode, std::uint64_t changesSeen)
{
    const auto record = makeRecord(passcode, makeSalt(), currentIterations);
    if (!record) {
        return;
    }
    const std::lock_guard guard{keychainMutex_};
    // A passcode that was set or removed during the derivation stays as the user left it.
    if (changes_ == changesSeen) {
        write(record->view());
    }
}

bool UnlockPasscodeStore::deriveKey(BytesView passcode, BytesView salt, std::uint32_t iterations,
                                    std::span<std::uint8_t> key)
{
    return cryptography_.deriveKey(algorithmPbkdf2, passcode, salt, pseudoRandomFunctionHmacSha256, iterations, key) ==
           success;
}

SecretBytes UnlockPasscodeStore::legacyDigest(BytesView passcode, BytesView salt)
{
    SecretBytes digest{ports::sha256Length};
    const auto bytes = digest.writable().first<ports::sha256Length>();
    // One context for all rounds: making one costs more than a round.
    const auto context = cryptography_.makeSha256Context();
    context->update(salt);
    context->update(passcode);
    context->finish(bytes);
    for (int round = 0; round < furtherLegacyRounds; ++round) {
        context->update(bytes);
        context->finish(bytes);
    }
    return digest;
}

} // namespace sentrel
