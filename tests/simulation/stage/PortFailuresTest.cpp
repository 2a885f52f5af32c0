#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using Fate = PortCalls::Fate;

struct Call {
    std::string port;
    std::string operation;
    friend bool operator==(const Call&, const Call&) = default;
};

MacDescription macWithMusic()
{
    MacDescription mac;
    mac.music = MacDescription::Music::playing;
    mac.automationConsent = MacDescription::Consent::granted;
    return mac;
}

/// Spares the drawing of a large one.
const Bytes& smallPhoto(const SimulatedCamera& camera)
{
    static const Bytes photo = *camera.view().jpeg;
    return photo;
}

/// A theft on an armed Mac with iCloud, some of whose calls raise or hang.
class StruckTheft {
public:
    StruckTheft()
    {
        mac().camera.setDevices({{}});
        mac().camera.setPhotoFile(smallPhoto(mac().camera));
        mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
        session_.launch();
        session_.clock().advance(10s);
        session_.changeSettings([](AlarmSettings& settings) { settings.isArmed = true; });
        session_.clock().advance(5s);
    }

    SimulatedMac& mac() { return session_.mac(); }
    void advance(Duration span) { session_.clock().advance(span); }

    void trigger(TriggerReason reason)
    {
        session_.onMain([reason](SentrelApp& app) { app.coordinator().trigger(reason); });
    }

    /// From now on the call of this number, from 0, meets this fate, and all others pass.
    void strike(std::size_t number, Fate fate)
    {
        if (fate == Fate::hangs) {
            mac().calls().prepareToHang();
        }
        mac().calls().decideBy([this, number, fate](std::string_view port, std::string_view operation) {
            calls.push_back({std::string{port}, std::string{operation}});
            return calls.size() == number + 1 ? fate : Fate::passes;
        });
    }

    bool isHeard()
    {
        const auto sounding = mac().speaker.sounding();
        return std::ranges::any_of(sounding, [](const auto& sound) { return sound.gain > 0.0F; });
    }

    /// A call that hangs on the main thread holds the whole application but for the sound.
    bool isMainThreadAlive()
    {
        bool isAlive = false;
        session_.onMain([&isAlive](SentrelApp&) { isAlive = true; });
        return isAlive;
    }

    std::uint64_t onDisk() { return stateOf(session_)["alerts"].get<std::uint64_t>(); }
    std::uint64_t inCloud()
    {
        auto& link = mac().iCloud.link;
        return link.server().count(link.device().user, "AlertEvent");
    }
    std::int64_t processingCount() { return session_.app()->coordinator().processingCount(); }
    std::vector<std::string> assertions() { return mac().assertions.held(); }

    std::vector<Call> calls;

private:
    TemporaryFolder disk_;
    MacSession session_{macWithMusic(), disk_.path(), SENTREL_SOURCE_DIR "/resources", 1};
};

/// Every call of the alert's way, from the trigger until the alert has reached the cloud.
std::vector<Call> callsOfTheAlertsWay()
{
    StruckTheft theft;
    theft.strike(0, Fate::passes);
    theft.trigger(TriggerReason::unplugged);
    for (Duration passed{}; passed < 20s && (theft.inCloud() == 0 || theft.onDisk() > 0); passed += 10ms) {
        theft.advance(10ms);
    }
    EXPECT_EQ(theft.inCloud(), 1U);
    return theft.calls;
}

void expectTheAlarmToDoItsWork(std::size_t number, Fate fate)
{
    StruckTheft theft;
    theft.strike(number, fate);
    theft.trigger(TriggerReason::unplugged);
    theft.advance(1s);
    EXPECT_TRUE(theft.isHeard());
    theft.advance(34s);
    if (!theft.isMainThreadAlive()) {
        return;
    }
    EXPECT_GE(theft.onDisk() + theft.inCloud(), 1U) << "the alert is lost";
    theft.trigger(TriggerReason::motion);
    theft.advance(35s);
    EXPECT_GE(theft.onDisk() + theft.inCloud(), 2U) << "the second alert is lost";
    EXPECT_LE(theft.inCloud(), 2U) << "doubled";
    EXPECT_EQ(theft.processingCount(), 0);
    EXPECT_THAT(theft.assertions(), testing::ElementsAre("Sentrel is armed and monitoring"));
}

void expectTheAlarmToDoItsWorkWhicheverCallMeets(Fate fate)
{
    const auto calls = callsOfTheAlertsWay();
    for (const std::string port : {"audio", "audio-engine", "camera", "files", "icloud", "music", "user-defaults"}) {
        EXPECT_THAT(calls, testing::Contains(testing::Field(&Call::port, port))) << "the way passes there";
    }
    for (std::size_t number = 0; number < calls.size(); ++number) {
        SCOPED_TRACE("call " + std::to_string(number) + ": " + calls[number].port + "." + calls[number].operation);
        // The first of a row of equal calls tells enough.
        if (number == 0 || calls[number] != calls[number - 1]) {
            expectTheAlarmToDoItsWork(number, fate);
        }
    }
}

TEST(PortFailures, NoCallThatRaisesSilencesTheAlarmOrLosesAnAlert)
{
    expectTheAlarmToDoItsWorkWhicheverCallMeets(Fate::raises);
}

TEST(PortFailures, NoCallThatHangsSilencesTheAlarmOrOffTheMainThreadLosesAnAlert)
{
    expectTheAlarmToDoItsWorkWhicheverCallMeets(Fate::hangs);
}

TEST(PortFailures, OnceAPortHasCeasedToRaiseTheAlertReachesTheCloudUnasked)
{
    const std::size_t ports = StruckTheft{}.mac().faults().size();
    for (std::size_t number = 0; number < ports; ++number) {
        StruckTheft theft;
        const auto [port, faults] = theft.mac().faults()[number];
        faults->set("raises");
        theft.trigger(TriggerReason::unplugged);
        theft.advance(10s);
        faults->clear();
        theft.advance(2min);
        EXPECT_EQ(theft.inCloud(), 1U) << port;
        EXPECT_EQ(theft.onDisk(), 0U) << port;
    }
}

TEST(PortFailures, ACameraThatHangsCostsThirtySecondsOnce)
{
    StruckTheft theft;
    theft.mac().camera.faults().set("hangs", 1);
    theft.trigger(TriggerReason::unplugged);
    theft.trigger(TriggerReason::motion);
    theft.advance(30s - 1ms);
    EXPECT_EQ(theft.onDisk() + theft.inCloud(), 0U);
    theft.advance(1ms);
    EXPECT_EQ(theft.onDisk(), 2U) << "the second does not wait for the same camera";
    theft.advance(10s);
    EXPECT_EQ(theft.inCloud(), 2U);
}

} // namespace
} // namespace sentrel::simulation
