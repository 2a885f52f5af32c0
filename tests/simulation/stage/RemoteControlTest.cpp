#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/stage/MacSession.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

TEST(RemoteControl, ThePhoneArmsTheMacWhichThenSpendsAQuietHour)
{
    const TemporaryFolder disk;
    MacSession session{{}, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
    CloudLink& link = session.mac().iCloud.link;
    const auto published = [&] { return session.log().named("presence.published").size(); };
    session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    session.launch();
    session.clock().advance(1min);
    CompanionPhone phone{link.server(), session.mac().wallClock, "owner"};
    ASSERT_EQ(phone.macs().size(), 1U);
    phone.send(phone.macs().front().deviceID, {.arm = true});
    session.clock().advance(1s);
    EXPECT_TRUE(session.app()->coordinator().isArmed);
    EXPECT_TRUE(phone.macs().front().isArmed);

    session.clock().advance(1min);
    const auto polls = link.requests(CloudOperation::fetch);
    const auto publications = published();
    session.clock().advance(1h);
    EXPECT_LE(link.requests(CloudOperation::fetch) - polls, 12U);
    EXPECT_LE(published() - publications, 120U);
    EXPECT_EQ(link.mostAtATime(CloudOperation::fetch), 1U);
    EXPECT_EQ(link.mostAtATime(CloudOperation::modify), 1U);

    session.sleep();
    session.clock().advance(3min);
    const auto asleep = link.requests(CloudOperation::fetch);
    session.wake();
    session.clock().advance(1s);
    EXPECT_EQ(link.requests(CloudOperation::fetch), asleep + 1);
}

} // namespace
} // namespace sentrel::simulation
