#include "simulation/mac/security/SimulatedKeychain.hpp"

#include "posix/PosixFileSystem.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using ports::KeychainConstant;
using ports::KeychainDictionary;
using ports::KeychainKey;
using testing::ElementsAre;

constexpr std::int32_t inputOutputError = -36;
constexpr std::int32_t parameterError = -50;
constexpr std::int32_t invalidKeychain = -25295;
constexpr std::int32_t duplicateItem = -25299;
constexpr std::int32_t itemNotFound = -25300;

/// The item "a" of service "s" in one of the keychains.
KeychainDictionary query(KeychainStore store)
{
    using namespace std::string_view_literals;
    KeychainDictionary dictionary{{KeychainKey::itemClass, KeychainConstant::genericPassword},
                                  {KeychainKey::service, "s"sv},
                                  {KeychainKey::account, "a"sv}};
    if (store == KeychainStore::dataProtection) {
        dictionary.emplace(KeychainKey::useDataProtectionKeychain, true);
    }
    return dictionary;
}

KeychainDictionary with(KeychainDictionary dictionary, BytesView value)
{
    dictionary.emplace(KeychainKey::valueData, value);
    return dictionary;
}

KeychainDictionary reading(KeychainDictionary dictionary)
{
    dictionary.emplace(KeychainKey::returnData, true);
    return dictionary;
}

constexpr auto current = KeychainStore::dataProtection;
constexpr auto legacy = KeychainStore::legacy;

class SimulatedKeychainTest : public testing::Test {
protected:
    /// The keychain as the next launch finds it.
    std::unique_ptr<SimulatedKeychain> launch() { return std::make_unique<SimulatedKeychain>(files_, file_); }

    void writeFile(std::string_view text)
    {
        int error = 0;
        const auto open = files_.create(file_, 0600, error);
        ASSERT_NE(open, nullptr);
        ASSERT_EQ(open->write(bytesOf(text)), 0);
    }

    TemporaryFolder disk_;
    posix::PosixFileSystem files_;
    std::filesystem::path file_ = disk_.path() / "Library" / "Keychain.json";
    const Bytes one_{1, 0, 255};
    const Bytes two_{2};
};

TEST_F(SimulatedKeychainTest, TheTwoKeychainsAreApartAndOutliveALaunch)
{
    {
        const auto keychain = launch();
        EXPECT_EQ(keychain->copyMatching(reading(query(current))).status, itemNotFound);
        EXPECT_EQ(keychain->update(query(current), {{KeychainKey::valueData, BytesView{one_}}}), itemNotFound);
        EXPECT_EQ(keychain->remove(query(current)), itemNotFound);
        EXPECT_EQ(keychain->add(with(query(current), one_)), 0);
        EXPECT_EQ(keychain->add(with(query(legacy), two_)), 0);
        EXPECT_EQ(keychain->add(with(query(current), two_)), duplicateItem);
    }
    {
        const auto keychain = launch();
        const auto copied = keychain->copyMatching(reading(query(current)));
        EXPECT_EQ(copied.status, 0);
        EXPECT_THAT(copied.data.value().view(), ElementsAre(1, 0, 255));
        EXPECT_FALSE(keychain->copyMatching(query(current)).data); // found, but its data isn't asked for
        EXPECT_EQ(keychain->update(query(legacy), {{KeychainKey::valueData, BytesView{}}}), 0);
        EXPECT_EQ(keychain->remove(query(current)), 0);
    }
    const auto keychain = launch();
    EXPECT_EQ(keychain->item(current, "s", "a"), std::nullopt);
    EXPECT_EQ(keychain->item(legacy, "s", "a")->data, Bytes{});
    EXPECT_EQ(keychain->copyMatching({{KeychainKey::returnData, true}}).status, parameterError);
}

TEST_F(SimulatedKeychainTest, WhatCanNotBeWrittenHasNotHappened)
{
    const auto keychain = launch();
    ASSERT_EQ(keychain->add(with(query(current), one_)), 0);
    std::filesystem::create_directories(file_.string() + ".tmp/in the way");
    EXPECT_EQ(keychain->update(query(current), {{KeychainKey::valueData, BytesView{two_}}}), inputOutputError);
    EXPECT_EQ(keychain->item(current, "s", "a")->data, one_);
    EXPECT_EQ(launch()->item(current, "s", "a")->data, one_);
}

TEST_F(SimulatedKeychainTest, ADamagedFileIsReportedAndLeftAsItIs)
{
    std::filesystem::create_directories(file_.parent_path());
    for (const std::string_view text :
         {"", "{", "[]", "{}", R"({"dataProtection": [], "legacy": {}})", "\xFF\xFE",
          R"({"dataProtection": [{"service": "s", "account": "a", "accessible": "", "data": "AQ="}], "legacy": []})",
          R"({"dataProtection": [{"service": "s", "account": 1, "accessible": "", "data": ""}], "legacy": []})"}) {
        writeFile(text);
        const auto keychain = launch();
        EXPECT_EQ(keychain->copyMatching(reading(query(current))).status, invalidKeychain) << text;
        EXPECT_EQ(keychain->add(with(query(current), one_)), invalidKeychain) << text;
        EXPECT_FALSE(keychain->setItem(current, {"s", "a", "", one_})) << text;
        EXPECT_EQ(textOf(files_.read(file_).value()), text);
    }
}

} // namespace
} // namespace sentrel::simulation
