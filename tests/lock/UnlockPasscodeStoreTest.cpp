#include "lock/PasscodeMac.hpp"
#include "support/Hex.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel {
namespace {

using simulation::SimulatedKeychain;
using testing::ElementsAre;
using testing::Optional;
using namespace std::string_view_literals;

constexpr auto current = PasscodeMac::current;
constexpr auto legacy = PasscodeMac::legacy;

/// "1234" under the salt 0123456789abcdef0123456789abcdef.
Bytes recordOf1234()
{
    return bytesOfHex("01"
                      "00033450"
                      "0123456789abcdef0123456789abcdef"
                      "3c326ef0be9fd8041b7e25b829c08a4f62ddac69b6731ff23b516e0c61934de3");
}

Bytes legacyRecordOf1234()
{
    return bytesOfHex("0123456789abcdef0123456789abcdef"
                      "5385a23174a6127985c51f2ba168dfaff4a9c9a8be9fbdbd9fabd5bb3c753914");
}

/// A record of any iteration count, made by the store itself.
Bytes weakRecord(PasscodeMac& mac, std::string_view passcode, std::uint32_t iterations)
{
    const auto record = mac.store.makeRecord(bytesOf(passcode), mac.store.makeSalt(), iterations);
    return Bytes{record->view().begin(), record->view().end()};
}

Bytes withCount(Bytes record, std::uint32_t iterations)
{
    for (std::size_t i = 0; i < 4; ++i) {
        record.at(1 + i) = static_cast<std::uint8_t>(iterations >> (24 - 8 * i));
    }
    return record;
}

TEST(UnlockPasscodeStore, KeepsAPasscodeAsVersionCountSaltAndKeyUnderItsNames)
{
    PasscodeMac mac;
    const Bytes salt = bytesOfHex("0123456789abcdef0123456789abcdef");
    UnlockPasscodeStore::Salt fixed{};
    std::ranges::copy(salt, fixed.begin());
    EXPECT_FALSE(mac.store.hasPasscode());

    const auto record = mac.store.makeRecord(bytesOf("1234"), fixed, UnlockPasscodeStore::currentIterations);
    ASSERT_TRUE(record);
    ASSERT_TRUE(mac.store.save(record->view()));

    const auto item = mac.keychain.item(current, "pelmadev.Sentrel.unlock-passcode", "arm-screen-cover");
    ASSERT_TRUE(item);
    EXPECT_EQ(item->accessible, "whenUnlocked");
    EXPECT_EQ(item->data, recordOf1234());
    EXPECT_EQ(mac.stored(legacy), std::nullopt);
    EXPECT_TRUE(mac.store.hasPasscode());
    EXPECT_TRUE(mac.unlocks("1234"));
    EXPECT_FALSE(mac.unlocks("1235"));
    EXPECT_THAT(mac.stored(current), Optional(recordOf1234())); // strong already: not rewritten
}

TEST(UnlockPasscodeStore, AnyPasscodeIsItsBytesAndNothingElse)
{
    // NULs stand inside: HMAC itself pads with them at the end.
    const std::string megabyte(1'000'000, 'p');
    const std::vector<std::string_view> passcodes{"",         "12",        "1\0002"sv, "12\0034"sv,
                                                  "\xC3\xA9", "e\xCC\x81", "\xFF\xFE", megabyte};
    PasscodeMac mac;
    for (const std::string_view right : passcodes) {
        const Bytes record = weakRecord(mac, right, 1); // one iteration keeps this short
        for (const std::string_view typed : passcodes) {
            EXPECT_EQ(mac.store.verify(bytesOf(typed), record).matches, right == typed);
        }
    }
}

TEST(UnlockPasscodeStore, AMalformedRecordCountsAsSetNeverMatchesAndIsLeftAlone)
{
    PasscodeMac mac;
    Bytes otherVersion = recordOf1234();
    otherVersion[0] = 2;
    Bytes longer = recordOf1234();
    longer.push_back(0);
    Bytes shorter = recordOf1234();
    shorter.pop_back();
    const std::vector<Bytes> malformed{
        {},
        {1},
        Bytes(47, 0),
        Bytes(48, 0),
        Bytes(49, 0),
        Bytes(53, 0),
        Bytes(53, 1),
        withCount(recordOf1234(), 0),
        withCount(recordOf1234(), 2'100'001),
        withCount(recordOf1234(), 0xFFFFFFFF),
        otherVersion,
        longer,
        shorter,
        Bytes(1'000'000, 1),
    };
    for (const Bytes& record : malformed) {
        mac.put(current, record);
        EXPECT_TRUE(mac.store.hasPasscode());
        EXPECT_FALSE(mac.unlocks("1234"));
        EXPECT_FALSE(mac.unlocks(""));
        EXPECT_THAT(mac.stored(current), Optional(record));
    }
    EXPECT_THAT(mac.cryptography.roundsAsked, ElementsAre()); // no count was believed
    EXPECT_EQ(PasscodeRecord::parse(withCount(recordOf1234(), 2'100'000))->iterations, 2'100'000U) << "the largest";
}

TEST(UnlockPasscodeStore, AWeakRecordIsRewrittenOnceItsPasscodeWasTyped)
{
    PasscodeMac mac;
    const Bytes weak = weakRecord(mac, "1234", 209'999);
    mac.put(current, weak);
    EXPECT_FALSE(mac.unlocks("4321"));
    EXPECT_THAT(mac.stored(current), Optional(weak));

    EXPECT_TRUE(mac.unlocks("1234"));
    const Bytes upgraded = mac.stored(current).value();
    const auto record = PasscodeRecord::parse(upgraded);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->iterations, 210'000U);
    EXPECT_FALSE(std::ranges::equal(record->salt, PasscodeRecord::parse(weak)->salt));
    EXPECT_TRUE(mac.unlocks("1234"));
    EXPECT_THAT(mac.stored(current), Optional(upgraded));
    EXPECT_FALSE(mac.store.verify(bytesOf("1234"), weakRecord(mac, "1234", 210'001)).needsUpgrade);
}

TEST(UnlockPasscodeStore, ALegacyRecordUnlocksAndBecomesACurrentOneInTheOtherKeychain)
{
    PasscodeMac mac;
    mac.put(legacy, legacyRecordOf1234());
    EXPECT_TRUE(mac.store.hasPasscode()); // which is enough to move it
    EXPECT_EQ(mac.stored(legacy), std::nullopt);
    EXPECT_FALSE(mac.unlocks("12345"));
    EXPECT_THAT(mac.stored(current), Optional(legacyRecordOf1234())); // but not yet upgraded

    EXPECT_TRUE(mac.unlocks("1234"));
    EXPECT_EQ(mac.stored(current)->size(), 53U);
    EXPECT_TRUE(mac.unlocks("1234"));
}

TEST(UnlockPasscodeStore, TheCurrentKeychainCountsWhenBothHaveAPasscode)
{
    PasscodeMac mac;
    mac.put(current, recordOf1234());
    mac.put(legacy, weakRecord(mac, "old", 1));
    EXPECT_TRUE(mac.unlocks("1234"));
    EXPECT_FALSE(mac.unlocks("old"));
    EXPECT_NE(mac.stored(legacy), std::nullopt);
}

TEST(UnlockPasscodeStore, APasscodeThatCanNotBeMovedStillUnlocksFromWhereItIs)
{
    for (const std::string_view fault : {"add", "update"}) {
        PasscodeMac mac;
        mac.put(legacy, recordOf1234());
        ASSERT_TRUE(mac.keychain.faults().set(fault));
        EXPECT_TRUE(mac.store.hasPasscode());
        EXPECT_TRUE(mac.unlocks("1234"));
        EXPECT_EQ(mac.stored(current), std::nullopt);
        EXPECT_THAT(mac.stored(legacy), Optional(recordOf1234()));
    }
    PasscodeMac mac;
    mac.put(legacy, recordOf1234());
    ASSERT_TRUE(mac.keychain.faults().set("delete"));
    EXPECT_TRUE(mac.unlocks("1234"));
    EXPECT_THAT(mac.stored(current), Optional(recordOf1234()));
    EXPECT_THAT(mac.stored(legacy), Optional(recordOf1234()));
}

TEST(UnlockPasscodeStore, AKeychainThatDoesNotAnswerCountsAsNoPasscodeAndKeepsWhatItHas)
{
    for (const auto access : {SimulatedKeychain::Access::locked, SimulatedKeychain::Access::denied}) {
        PasscodeMac mac;
        mac.put(current, recordOf1234());
        mac.keychain.setAccess(current, access);
        EXPECT_FALSE(mac.store.hasPasscode());
        EXPECT_FALSE(mac.unlocks("1234"));
        EXPECT_FALSE(mac.setPasscode("2468"));
        mac.keychain.setAccess(current, SimulatedKeychain::Access::open);
        EXPECT_THAT(mac.stored(current), Optional(recordOf1234()));
        EXPECT_TRUE(mac.unlocks("1234"));
    }
}

TEST(UnlockPasscodeStore, AnOldPasscodeNeverReplacesANewerOneThatJustCanNotBeRead)
{
    PasscodeMac mac;
    const Bytes old = weakRecord(mac, "old", 1);
    mac.put(current, recordOf1234());
    mac.put(legacy, old);
    ASSERT_TRUE(mac.keychain.faults().set("copy", 1));
    EXPECT_TRUE(mac.store.hasPasscode());
    EXPECT_THAT(mac.stored(current), Optional(recordOf1234()));
    EXPECT_THAT(mac.stored(legacy), Optional(old));
}

TEST(UnlockPasscodeStore, AFailedUpgradeDoesNotSpoilTheUnlock)
{
    PasscodeMac unsaved;
    unsaved.put(current, legacyRecordOf1234());
    ASSERT_TRUE(unsaved.keychain.faults().set("update"));
    EXPECT_TRUE(unsaved.unlocks("1234"));
    EXPECT_THAT(unsaved.stored(current), Optional(legacyRecordOf1234()));

    PasscodeMac underived;
    underived.put(current, legacyRecordOf1234());
    underived.cryptography.derivationsThatSucceed = 0;
    EXPECT_TRUE(underived.unlocks("1234"));
    EXPECT_THAT(underived.stored(current), Optional(legacyRecordOf1234()));
}

TEST(UnlockPasscodeStore, AFailedDerivationMakesNoRecordAndMatchesNothing)
{
    PasscodeMac mac;
    mac.cryptography.derivationsThatSucceed = 0;
    EXPECT_FALSE(mac.setPasscode("1234"));
    Bytes filledByTheFailure = recordOf1234();
    std::fill(filledByTheFailure.begin() + 21, filledByTheFailure.end(), std::uint8_t{0xAA});
    EXPECT_FALSE(mac.store.verify(bytesOf("1234"), filledByTheFailure).matches);

    PasscodeMac other;
    EXPECT_FALSE(other.store.makeRecord(bytesOf("1234"), {}, 0)); // the library refuses to do nothing
}

TEST(UnlockPasscodeStore, ASaltComesFromTheGeneralGeneratorWhenTheSystemHasNoRandomBytes)
{
    const auto sixteenBytesOf = [](std::uint64_t seed) {
        simulation::SeededRandom random{seed};
        UnlockPasscodeStore::Salt bytes{};
        std::ranges::generate(bytes, [&random] { return random.nextByte(); });
        return bytes;
    };
    PasscodeMac mac;
    EXPECT_EQ(mac.store.makeSalt(), sixteenBytesOf(1));
    ASSERT_TRUE(mac.random.faults().set("fill"));
    EXPECT_EQ(mac.store.makeSalt(), sixteenBytesOf(2));
    EXPECT_NE(mac.store.makeSalt(), sixteenBytesOf(2));
}

TEST(UnlockPasscodeStore, RemovingForgetsThePasscodeInBothKeychainsAndTellsObservers)
{
    PasscodeMac mac;
    std::vector<bool> told;
    const auto observation = mac.store.isPasscodeSet.observe([&told](bool isSet) { told.push_back(isSet); });
    EXPECT_TRUE(mac.setPasscode("1234"));
    mac.put(legacy, recordOf1234());
    mac.store.remove();
    EXPECT_EQ(mac.stored(current), std::nullopt);
    EXPECT_EQ(mac.stored(legacy), std::nullopt);
    EXPECT_FALSE(mac.unlocks("1234"));
    mac.store.remove(); // nothing there: nothing happens
    EXPECT_THAT(told, ElementsAre(true, false));
}

TEST(UnlockPasscodeStore, APasscodeThatIsChangedOrRemovedDuringACheckStaysSo)
{
    PasscodeMac changed;
    changed.put(current, legacyRecordOf1234());
    changed.cryptography.meanwhile = [&] { EXPECT_TRUE(changed.setPasscode("2468")); };
    EXPECT_TRUE(changed.unlocks("1234"));
    EXPECT_TRUE(changed.unlocks("2468"));
    EXPECT_FALSE(changed.unlocks("1234"));

    PasscodeMac removed;
    removed.put(current, legacyRecordOf1234());
    removed.cryptography.meanwhile = [&] { removed.store.remove(); };
    EXPECT_TRUE(removed.unlocks("1234"));
    EXPECT_EQ(removed.stored(current), std::nullopt);
}

} // namespace
} // namespace sentrel
