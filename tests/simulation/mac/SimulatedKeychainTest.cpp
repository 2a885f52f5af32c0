#include "simulation/mac/security/SimulatedKeychain.hpp"

#include "posix/PosixFileSystem.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using ports::KeychainConstant;
using ports::KeychainDictionary;
using ports::KeychainKey;

constexpr std::int32_t inputOutputError = -36;
constexpr std::int32_t invalidKeychain = -25295;
constexpr std::int32_t duplicateItem = -25299;

/// The item "a" of service "s" in the current keychain.
KeychainDictionary query()
{
    using namespace std::string_view_literals;
    return {{KeychainKey::itemClass, KeychainConstant::genericPassword},
            {KeychainKey::service, "s"sv},
            {KeychainKey::account, "a"sv},
            {KeychainKey::useDataProtectionKeychain, true}};
}

KeychainDictionary with(BytesView value)
{
    auto dictionary = query();
    dictionary.emplace(KeychainKey::valueData, value);
    return dictionary;
}

constexpr auto current = KeychainStore::dataProtection;

class SimulatedKeychainTest : public testing::Test {
protected:
    /// The keychain as the next launch finds it.
    std::unique_ptr<SimulatedKeychain> launch() { return std::make_unique<SimulatedKeychain>(files_, file_); }

    TemporaryFolder disk_;
    posix::PosixFileSystem files_;
    std::filesystem::path file_ = disk_.path() / "Library" / "Keychain.json";
    const Bytes one_{1, 0, 255};
    const Bytes two_{2};
};

TEST_F(SimulatedKeychainTest, WhatIsRefusedOrCanNotBeWrittenHasNotHappened)
{
    const auto keychain = launch();
    ASSERT_EQ(keychain->add(with(one_)), 0);
    EXPECT_EQ(keychain->add(with(two_)), duplicateItem);
    std::filesystem::create_directories(file_.string() + ".tmp/in the way");
    EXPECT_EQ(keychain->update(query(), {{KeychainKey::valueData, BytesView{two_}}}), inputOutputError);
    EXPECT_EQ(keychain->item(current, "s", "a")->data, one_);
    EXPECT_EQ(launch()->item(current, "s", "a")->data, one_);
}

TEST_F(SimulatedKeychainTest, ADamagedFileIsReportedAndLeftAsItIs)
{
    for (const std::string_view text :
         {"", "{", "[]", "{}", R"({"dataProtection": [], "legacy": {}})", "\xFF\xFE",
          R"({"dataProtection": [{"service": "s", "account": "a", "accessible": "", "data": "AQ="}], "legacy": []})",
          R"({"dataProtection": [{"service": "s", "account": 1, "accessible": "", "data": ""}], "legacy": []})"}) {
        test::put(file_, text);
        const auto keychain = launch();
        EXPECT_EQ(keychain->copyMatching(query()).status, invalidKeychain) << text;
        EXPECT_EQ(keychain->add(with(one_)), invalidKeychain) << text;
        EXPECT_FALSE(keychain->setItem(current, {"s", "a", "", one_})) << text;
        EXPECT_EQ(test::contentOf(file_), text);
    }
}

} // namespace
} // namespace sentrel::simulation
