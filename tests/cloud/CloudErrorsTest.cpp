#include "cloud/CloudErrors.hpp"

#include "cloud/AsyncTimeout.hpp"
#include "cloud/CloudKitServiceError.hpp"
#include "ports/CloudError.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace sentrel {
namespace {

using ports::CloudError;
using Status = std::optional<ports::CloudAccountStatus>;
using ports::CloudAccountStatus;

constexpr const char* password =
    "iCloud needs your Apple ID password.\nOpen Settings → Apple ID, sign in, then try again.";
constexpr const char* network = "Could not reach iCloud.\nCheck your connection and try again.";
constexpr const char* bothDevices = "Sign in to iCloud on both devices with the same Apple ID.";
constexpr const char* onIPhone = "Sign in to iCloud on your iPhone (Settings → Apple ID).";
constexpr const char* busy = "iCloud is temporarily unavailable. Try again shortly.";
constexpr const char* container =
    "This app cannot access its iCloud container.\nCheck iCloud is enabled for Sentrel in Developer Portal.";
constexpr const char* schema =
    "iCloud database is not ready.\nDeploy the CloudKit schema to Production in CloudKit Console.";
constexpr const char* unknown = "Something went wrong with iCloud. Try again.";
constexpr const char* full = "Your iCloud storage is full.";

CloudError code(int number)
{
    return CloudError{"CKErrorDomain", number, "the system's own words about a password"};
}

CloudError partial(std::vector<CloudError> items)
{
    CloudError error = code(2);
    for (CloudError& item : items) {
        error.itemErrors.emplace(std::string(1, static_cast<char>('a' + error.itemErrors.size())), std::move(item));
    }
    return error;
}

class CloudErrors : public testing::Test {
protected:
    std::string messageOf(const std::exception& error, Status status = std::nullopt)
    {
        return userFacingMessage(error, status, language);
    }

    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::EventLog log{scheduler};
    simulation::IcuLanguage language{SENTREL_SOURCE_DIR "/resources", log};
};

TEST_F(CloudErrors, EachCodeHasItsMessage)
{
    const std::vector<std::pair<std::vector<int>, const char*>> table{
        {{1, 6, 7, 23, 34}, busy},
        {{3, 4}, network},
        {{5, 8}, container},
        {{9, 10, 36}, password},
        {{12, 15}, schema},
        {{20}, "The iCloud request was cancelled."},
        {{25}, full},
        {{2, 11, 14, 22, 35, 0, -1, 4711}, unknown},
    };
    for (const auto& [codes, message] : table) {
        for (const int number : codes) {
            EXPECT_EQ(messageOf(code(number)), message) << number;
            EXPECT_EQ(messageOf(code(number), CloudAccountStatus::available), message) << number;
        }
    }
}

TEST_F(CloudErrors, AnAccountThatIsWrongExplainsMostErrors)
{
    const std::vector<std::pair<CloudAccountStatus, const char*>> table{
        {CloudAccountStatus::couldNotDetermine,
         "Could not verify iCloud.\nOpen Settings → Apple ID and confirm your account."},
        {CloudAccountStatus::restricted, "iCloud access is restricted on this device."},
        {CloudAccountStatus::noAccount, onIPhone},
        {CloudAccountStatus::temporarilyUnavailable, password},
    };
    for (const auto& [status, message] : table) {
        EXPECT_EQ(messageOf(code(25), status), message);
        EXPECT_EQ(messageOf(std::runtime_error{"the disk is full"}, status), message);
        EXPECT_EQ(messageOf(code(4), status), network) << "first of all the network";
    }
    EXPECT_EQ(messageOf(code(9), CloudAccountStatus::noAccount), bothDevices);
    EXPECT_EQ(messageOf(code(10), CloudAccountStatus::noAccount), bothDevices);
    EXPECT_EQ(messageOf(code(9), CloudAccountStatus::restricted), "iCloud access is restricted on this device.");
}

TEST_F(CloudErrors, APartialFailureSpeaksThroughItsItems)
{
    EXPECT_EQ(messageOf(partial({code(11), code(7)})), busy);
    EXPECT_EQ(messageOf(partial({code(4711), partial({code(11), code(25)})})), full);
    EXPECT_EQ(messageOf(partial({code(11), code(14)})), unknown);
}

TEST_F(CloudErrors, WhatTheSystemSaysElsewhereIsToldAndDevelopersWordsAreNot)
{
    for (const char* const text : {"Enter your APPLE ID to go on", "wrong Password", "could not Authenticate"}) {
        EXPECT_EQ(messageOf(std::runtime_error{text}), password);
    }
    EXPECT_EQ(messageOf(CloudError{"NSCocoaErrorDomain", 9, "The disk is full."}), "The disk is full.");
    EXPECT_EQ(messageOf(AsyncTimeout::TimedOut{}), network);
    EXPECT_EQ(messageOf(std::runtime_error{"a developer's words"}), unknown);

    using Kind = CloudKitServiceError::Kind;
    EXPECT_EQ(messageOf(CloudKitServiceError{Kind::notSignedIn}, CloudAccountStatus::restricted), bothDevices);
    EXPECT_EQ(messageOf(CloudKitServiceError{Kind::networkUnavailable}), network);
    EXPECT_EQ(messageOf(CloudKitServiceError::uploadFailed("no password")), "no password");
}

TEST_F(CloudErrors, NetworkAndThrottlingAreToldApart)
{
    for (int number = 0; number < 40; ++number) {
        EXPECT_EQ(isNetworkError(code(number)), number == 3 || number == 4) << number;
        EXPECT_EQ(isThrottlingError(code(number)), number == 6 || number == 7 || number == 23) << number;
    }
    EXPECT_FALSE(isNetworkError(CloudError{"NSURLErrorDomain", 3, ""}));
    EXPECT_TRUE(isNetworkError(AsyncTimeout::TimedOut{}));
}

} // namespace
} // namespace sentrel
