#include "simulation/icloud/CloudScene.hpp"

#include <gtest/gtest.h>

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
    const auto saved = startSaving("one");
    runTo(39ms);
    EXPECT_FALSE(isThere("one"));
    runTo(40ms);
    EXPECT_TRUE(isThere("one"));
    runTo(79ms);
    EXPECT_EQ(saved->index(), 0U);
    runTo(80ms);
    EXPECT_EQ(saved->index(), 1U);
}

TEST_F(CloudLinkTest, ALostNetworkCostsTheRequestOrItsAnswer)
{
    mac.network.setUp(false);
    auto saved = startSaving("one");
    runTo(10ms);
    EXPECT_EQ(codeOf(*saved), CKError::networkUnavailable) << "at once, and not after the latency";
    EXPECT_EQ(code(mac.account.userRecordName()), CKError::networkUnavailable);
    EXPECT_EQ(code(mac.account.accountStatus()), 0) << "the Mac knows that by itself";

    for (const bool hasReachedTheServer : {false, true}) {
        mac.network.setUp(true);
        saved = startSaving("one");
        runTo(hasReachedTheServer ? 60ms : 20ms);
        mac.network.setUp(false);
        runTo(80ms);
        EXPECT_EQ(codeOf(*saved), CKError::networkFailure);
        EXPECT_EQ(isThere("one"), hasReachedTheServer);
    }
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
