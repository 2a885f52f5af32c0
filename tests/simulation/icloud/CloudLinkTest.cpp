#include "simulation/icloud/CloudScene.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using ports::CloudRecord;

class CloudLinkTest : public testing::Test, protected CloudScene {
protected:
    bool isThere(const std::string& name)
    {
        return codeOf(server.fetch({"owner", "test"}, {name}, std::nullopt).at(name)) == 0;
    }

    /// Moves the clock to a moment since the last start of a request.
    void runTo(Duration moment) { clock.runUntil(begin + moment); }

    std::shared_ptr<Outcome<CloudRecord>> startSaving(const std::string& name)
    {
        begin = clock.now();
        return start(mac.database.save(thing(name)));
    }

    CloudLink& link = mac.link;
    Instant begin{};
};

TEST_F(CloudLinkTest, TheServerActsHalfwayAndTheAnswerComesAfterTheLatency)
{
    auto saved = startSaving("one");
    runTo(39ms);
    EXPECT_FALSE(isThere("one"));
    runTo(40ms);
    EXPECT_TRUE(isThere("one"));
    runTo(79ms);
    EXPECT_EQ(saved->index(), 0U);
    runTo(80ms);
    EXPECT_EQ(saved->index(), 1U);

    link.setLatency(20s);
    saved = startSaving("two");
    runTo(19999ms);
    EXPECT_TRUE(isThere("two"));
    EXPECT_EQ(saved->index(), 0U);
    runTo(20s);
    EXPECT_EQ(saved->index(), 1U);
}

TEST_F(CloudLinkTest, EachOperationFailsAsItIsTold)
{
    using Request = std::function<int()>;
    const std::vector<std::pair<CloudOperation, Request>> requests{
        {CloudOperation::accountStatus, [this] { return code(mac.account.accountStatus()); }},
        {CloudOperation::userRecord, [this] { return code(mac.account.userRecordName()); }},
        {CloudOperation::query, [this] { return code(mac.database.query({"Thing", {}, "", true}, {}, 1)); }},
        {CloudOperation::continueQuery, [this] { return code(mac.database.continueQuery(nullptr, {}, 1)); }},
        {CloudOperation::fetch, [this] { return code(mac.database.records({"one"}, {})); }},
        {CloudOperation::modify, [this] { return code(mac.database.modify({}, {"one"}, {}, false)); }},
        {CloudOperation::fetchOne, [this] { return code(mac.database.record("one")); }},
        {CloudOperation::saveSubscription, [this] { return code(done(mac.database.saveSubscription({}))); }},
        {CloudOperation::save, [this] { return code(mac.database.save(thing("one"))); }},
    };
    for (const auto& [operation, request] : requests) {
        const std::uint64_t before = link.requests(operation);
        link.faults().add({.error = cloudError(23), .operation = operation, .times = 1});
        EXPECT_EQ(code(mac.database.record("other")), operation == CloudOperation::fetchOne ? 23 : CKError::unknownItem)
            << "only that operation fails: " << nameOf(operation);
        link.faults().clear();
        link.faults().add({.error = cloudError(23), .operation = operation, .times = 2});
        EXPECT_EQ(request(), 23) << nameOf(operation);
        EXPECT_EQ(request(), 23) << nameOf(operation);
        EXPECT_NE(request(), 23) << nameOf(operation);
        EXPECT_EQ(log.events().back().text("operation"), nameOf(operation));
        EXPECT_GE(link.requests(operation), before + 3);
    }
}

TEST_F(CloudLinkTest, ChanceIsTheSameForTheSameSeed)
{
    const auto strikes = [](std::uint64_t seed) {
        CloudFaults faults{seed};
        faults.add({.error = cloudError(6), .probability = 0.25});
        std::string pattern;
        for (int request = 0; request < 1000; ++request) {
            pattern += faults.strike(CloudOperation::save) ? 'x' : '.';
        }
        return pattern;
    };
    const std::string pattern = strikes(1);
    EXPECT_EQ(pattern, strikes(1));
    EXPECT_NE(pattern, strikes(2));
    EXPECT_NEAR(static_cast<double>(std::ranges::count(pattern, 'x')), 250.0, 60.0);
}

TEST_F(CloudLinkTest, ALostAnswerLeavesWhatWasDone)
{
    link.faults().loseAnswers(1, CloudOperation::save);
    EXPECT_EQ(code(mac.database.save(thing("one"))), CKError::networkFailure);
    EXPECT_TRUE(isThere("one"));
    EXPECT_EQ(code(mac.database.save(thing("one"))), CKError::serverRecordChanged);
}

TEST_F(CloudLinkTest, OneRecordOfARequestFailsAlone)
{
    answer(mac.database.modify({thing("one"), thing("two")}, {}, {}, false));
    link.faults().add({.error = cloudError(23), .record = "one"});
    const auto both = answer(mac.database.records({"one", "two"}, {}));
    EXPECT_EQ(codeOf(both.at("one")), 23);
    EXPECT_EQ(codeOf(both.at("two")), 0);
    const auto page = answer(mac.database.query({"Thing", {}, "", true}, {}, 0));
    EXPECT_EQ(codeOf(page.results[0].second), 23);
    EXPECT_EQ(codeOf(page.results[1].second), 0);
    const auto deleted = answer(mac.database.modify({}, {"one", "two"}, {}, false)).deleted;
    EXPECT_EQ(deleted.at("one")->code, 23);
    EXPECT_FALSE(deleted.at("two"));
    EXPECT_TRUE(isThere("one"));
}

TEST_F(CloudLinkTest, ALostNetworkCostsTheRequestOrItsAnswer)
{
    mac.network.setUp(false);
    auto saved = startSaving("one");
    runTo(10ms);
    EXPECT_EQ(codeOf(*saved), CKError::networkUnavailable) << "at once, and not after the latency";
    EXPECT_EQ(code(mac.account.userRecordName()), CKError::networkUnavailable);
    EXPECT_EQ(code(mac.account.accountStatus()), 0) << "the Mac knows that by itself";

    mac.network.setUp(true);
    saved = startSaving("one");
    runTo(20ms);
    mac.network.setUp(false);
    runTo(80ms);
    EXPECT_EQ(codeOf(*saved), CKError::networkFailure);
    EXPECT_FALSE(isThere("one"));

    mac.network.setUp(true);
    saved = startSaving("one");
    runTo(60ms);
    mac.network.setUp(false);
    runTo(80ms);
    EXPECT_EQ(codeOf(*saved), CKError::networkFailure);
    EXPECT_TRUE(isThere("one"));
}

TEST_F(CloudLinkTest, ARequestOutlivesTheProcessThatMadeIt)
{
    std::string phases;
    link.onRequest([&](CloudOperation operation, CloudRequestPhase phase) {
        const bool isBefore = phase == CloudRequestPhase::beforeEffect;
        phases += std::string{nameOf(operation)} + (isBefore ? " before " : " after ");
        EXPECT_EQ(isThere("one"), !isBefore);
        if (isBefore) {
            process.setAsleep(true); // not one more turn of the process
        }
    });
    const auto saved = startSaving("one");
    runTo(50ms);
    process.endProcess();
    process.setAsleep(false);
    clock.runUntilIdle();
    EXPECT_EQ(phases, "save before save after ");
    EXPECT_TRUE(isThere("one"));
    EXPECT_EQ(saved->index(), 0U) << "nobody is left to hear the answer";
    EXPECT_EQ(story, "cloud.request ");
}

} // namespace
} // namespace sentrel::simulation
