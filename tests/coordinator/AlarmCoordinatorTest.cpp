#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// The product on a simulated MacBook, launched.
class AlarmCoordinatorTest : public testing::Test {
protected:
    void SetUp() override { session.launch(); }

    void arm()
    {
        session.changeSettings([](AlarmSettings& settings) { settings.isArmed = true; });
    }

    template <class Field> void set(Field AlarmSettings::* field, Field value)
    {
        session.changeSettings([&](AlarmSettings& settings) { settings.*field = value; });
    }

    void trigger(std::initializer_list<TriggerReason> reasons)
    {
        session.onMain([&](SentrelApp& app) {
            for (const TriggerReason reason : reasons) {
                app.coordinator().trigger(reason);
            }
        });
    }

    void unplug()
    {
        session.mac().power.setAC(false);
        session.clock().runReady();
    }

    Json state(const char* key) { return stateOf(session)[key]; }
    AlarmCoordinator& coordinator() { return session.app()->coordinator(); }
    std::vector<std::string> assertions() { return session.mac().assertions.held(); }

    const std::string armedName = "Sentrel is armed and monitoring";
    const std::string skipped = "Lock screen skipped: no unlock passcode is set.";
    const std::string alarmName = "Sentrel is processing an alarm event";
    TemporaryFolder disk;
    MacSession session{{}, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
};

TEST_F(AlarmCoordinatorTest, WatchesNothingDisarmedOrWithEveryTriggerOff)
{
    session.changeSettings([](AlarmSettings& settings) {
        settings.triggerOnUnplugged = settings.triggerOnLidClosed = settings.triggerOnMotion = false;
        settings.isArmed = true;
    });
    unplug();
    session.closeLid();
    session.clock().advance(10s);
    const auto turnsInAnHour = [this] {
        const auto before = session.clock().turns();
        session.clock().advance(1h);
        return static_cast<double>(session.clock().turns() - before);
    };
    const double armed = turnsInAnHour();
    EXPECT_EQ(coordinator().statusMessage.get(), "Armed");
    EXPECT_EQ(state("alerts"), 0);

    session.openLid();
    session.mac().power.setAC(true);
    session.changeSettings([](AlarmSettings& settings) { settings = {.isArmed = true}; });
    session.clock().advance(1min);
    set(&AlarmSettings::isArmed, false);
    EXPECT_EQ(coordinator().statusMessage.get(), "Disarmed");
    unplug();
    session.closeLid();
    EXPECT_NEAR(turnsInAnHour(), armed, 200.0) << "no monitor runs: the least eager would take 1440 turns";
    EXPECT_EQ(state("alerts"), 0);
}

TEST_F(AlarmCoordinatorTest, TheSameReasonWaitsOnceAndAnotherHasItsOwnAlert)
{
    arm();
    trigger({TriggerReason::unplugged, TriggerReason::unplugged, TriggerReason::motion});
    EXPECT_EQ(state("alertReasons"), Json::parse(R"(["unplugged","motion"])"));
    EXPECT_EQ(session.log().named("trigger").size(), 3U);
    trigger({TriggerReason::unplugged});
    EXPECT_EQ(state("alerts"), 3) << "once processed, the reason counts anew";
}

TEST_F(AlarmCoordinatorTest, ATriggerDuringAPhotoOfItsOwnReasonHasItsOwnAlertOfItsOwnTime)
{
    session.mac().camera.setDevices({{}});
    arm();
    const Date first = session.mac().wallClock.now();
    trigger({TriggerReason::unplugged});
    session.clock().advance(500ms);
    trigger({TriggerReason::unplugged, TriggerReason::unplugged});
    session.clock().advance(10s);
    const auto alerts = session.app()->alertStore().alerts();
    ASSERT_EQ(alerts.size(), 2U);
    EXPECT_EQ(alerts[1].alert.timestamp, first) << "of the trigger, not of the photo";
    EXPECT_EQ(alerts[0].alert.timestamp, first.addingSeconds(0.5));
}

TEST_F(AlarmCoordinatorTest, TriggersOfOneInstantKeepTheirOwnAlertsWhenTheSystemHasNoRandomBytes)
{
    arm();
    ASSERT_TRUE(session.mac().random.faults().set("fill"));
    trigger({TriggerReason::unplugged, TriggerReason::motion});
    EXPECT_EQ(state("alerts"), 2);
}

TEST_F(AlarmCoordinatorTest, TheLastAlertReleasesItsAssertionWhileTheAlarmGoesOn)
{
    session.mac().camera.setDevices({{}});
    session.mac().camera.setPhotoDelay(1s);
    arm();
    trigger({TriggerReason::unplugged, TriggerReason::motion});
    EXPECT_EQ(coordinator().processingCount(), 2);
    EXPECT_THAT(assertions(), ElementsAre(armedName, alarmName));
    EXPECT_NE(session.sound(), std::nullopt) << "the sound waits for no photo";
    EXPECT_EQ(state("alerts"), 0);

    while (coordinator().processingCount() == 2) {
        session.clock().advance(100ms);
    }
    EXPECT_THAT(assertions(), ElementsAre(armedName, alarmName));
    session.clock().advance(10s);
    EXPECT_EQ(coordinator().processingCount(), 0);
    EXPECT_THAT(assertions(), ElementsAre(armedName));
    EXPECT_TRUE(coordinator().isAlarmActive.get());
    EXPECT_EQ(state("lastAlert")["photo"], true);
}

TEST_F(AlarmCoordinatorTest, DisarmingSeesATriggerUnderWayThrough)
{
    session.mac().camera.setDevices({{}});
    arm();
    trigger({TriggerReason::unplugged});
    set(&AlarmSettings::isArmed, false);
    EXPECT_EQ(session.sound(), std::nullopt);
    EXPECT_THAT(assertions(), ElementsAre(alarmName));
    session.clock().advance(10s);
    EXPECT_EQ(state("alertReasons"), Json::parse(R"(["unplugged"])"));
    EXPECT_THAT(assertions(), IsEmpty());
}

TEST_F(AlarmCoordinatorTest, NoPhotoIsTakenBehindAClosedLidAndNoneWhenUnwanted)
{
    session.mac().camera.setDevices({{}});
    arm();
    session.closeLid();
    set(&AlarmSettings::capturePhoto, false);
    session.openLid();
    trigger({TriggerReason::motion});
    session.clock().advance(10s);
    EXPECT_EQ(state("alertReasons"), Json::parse(R"(["lidClosed","motion"])"));
    EXPECT_EQ(session.mac().camera.photosRequested(), 0);
}

TEST_F(AlarmCoordinatorTest, AMacWithoutAccelerometerSaysSoWhileArmed)
{
    session.mac().accelerometer.setPresent(false);
    arm();
    EXPECT_EQ(coordinator().motionWarning.get(), "Motion detection is unavailable on this Mac.");
    set(&AlarmSettings::triggerOnMotion, false);
    EXPECT_EQ(coordinator().motionWarning.get(), std::nullopt);
    EXPECT_TRUE(coordinator().isArmed.get());
}

TEST_F(AlarmCoordinatorTest, ARefusedCameraWarnsOnlyWhileArmedAndOnlyOfPhotosThatAreWanted)
{
    const auto refuseAfter = [this](auto change) {
        set(&AlarmSettings::isArmed, false);
        session.mac().camera.setAuthorization(ports::CaptureAuthorization::notDetermined);
        arm();
        change();
        EXPECT_TRUE(session.mac().camera.answerPrompt(false));
        session.clock().advance(1s);
        return coordinator().cameraWarning.get();
    };
    session.mac().camera.setAnswer(std::nullopt);
    EXPECT_EQ(refuseAfter([] {}), "Camera access is denied. Alert photos can't be captured.");
    set(&AlarmSettings::isArmed, false);
    EXPECT_EQ(coordinator().cameraWarning.get(), std::nullopt);
    arm();
    EXPECT_NE(coordinator().cameraWarning.get(), std::nullopt) << "at once, since it is known by now";
    EXPECT_EQ(refuseAfter([this] { set(&AlarmSettings::isArmed, false); }), std::nullopt);
    EXPECT_EQ(refuseAfter([this] { set(&AlarmSettings::capturePhoto, false); }), std::nullopt);
}

TEST_F(AlarmCoordinatorTest, TheLockScreenWaitsTenSecondsForTheMusicsConsentAndNoLonger)
{
    session.mac().music.setPlayback(simulation::SimulatedMusic::Playback::playing);
    session.mac().music.setConsentDelay(1h);
    set(&AlarmSettings::lockScreenOnArm, true);
    arm();
    session.clock().advance(9999ms);
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt);
    session.clock().advance(1ms);
    EXPECT_EQ(coordinator().lastError.get(), skipped);
}

TEST_F(AlarmCoordinatorTest, TheLockScreenWaitsForItsDelayUnlessItIsCalledOff)
{
    set(&AlarmSettings::lockScreenOnArm, true);
    set(&AlarmSettings::lockScreenSleepDelay, 5.0);
    arm();
    session.clock().advance(4999ms);
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt);
    session.clock().advance(1ms);
    EXPECT_EQ(coordinator().lastError.get(), skipped);

    set(&AlarmSettings::isArmed, false);
    EXPECT_EQ(coordinator().lastError.get(), skipped) << "disarming leaves it";
    arm();
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt) << "arming clears it";
    session.clock().advance(2s);
    set(&AlarmSettings::isArmed, false);
    session.clock().advance(1min);
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt) << "disarming cancels it";

    arm();
    session.clock().advance(2s);
    set(&AlarmSettings::lockScreenOnArm, false);
    set(&AlarmSettings::lockScreenOnArm, true);
    session.clock().advance(4999ms);
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt) << "the earlier wait is over";
    session.clock().advance(1ms);
    EXPECT_EQ(coordinator().lastError.get(), skipped);
}

TEST_F(AlarmCoordinatorTest, TheLockScreenReadsTheStoredSettingWhenItsDelayIsOver)
{
    session.onMain([](SentrelApp& app) { app.coordinator().arm({.lockScreenOnArm = true}); });
    session.clock().advance(1min);
    EXPECT_TRUE(coordinator().isArmed.get());
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt) << "the stored settings want none";
}

TEST_F(AlarmCoordinatorTest, AFullDiskCostsNoAlertAndNobodyIsToldThatItIsSaved)
{
    set(&AlarmSettings::alarmSound, false); // which would write to the disk first
    session.mac().camera.setDevices({{}});
    session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    session.clock().advance(5s);
    arm();
    session.mac().iCloud.link.faults().add({simulation::cloudError(15), CloudOperation::save});
    simulation::FaultSwitches& writing = session.mac().files.faults();
    ASSERT_TRUE(writing.set("write"));
    trigger({TriggerReason::unplugged});
    session.clock().advance(10s);
    EXPECT_EQ(state("alerts"), 0);
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt);
    EXPECT_EQ(state("alertRows").size(), 1U) << "but it is shown";

    ASSERT_TRUE(writing.set("write", 0));
    session.clock().advance(40s);
    EXPECT_EQ(state("alerts"), 1) << "as soon as there is room";
    EXPECT_FALSE(coordinator().isAlarmActive.get() || session.sound()) << "an alert needs no sound";
    session.mac().iCloud.link.faults().clear();
    session.clock().advance(2min);
    const auto uploaded = session.phone().alerts();
    ASSERT_EQ(uploaded.size(), 1U);
    EXPECT_TRUE(uploaded.front().photo);

    ASSERT_TRUE(writing.set("write", 1));
    session.mac().iCloud.network.setUp(false);
    trigger({TriggerReason::motion});
    session.clock().advance(20s);
    EXPECT_EQ(state("alertReasons"), Json::parse(R"(["motion"])")) << "without the photo there was room";
    EXPECT_NE(coordinator().lastError.get(), std::nullopt);
    EXPECT_EQ(coordinator().processingCount(), 0);
    session.mac().iCloud.network.setUp(true);
    session.clock().advance(2min);
    ASSERT_EQ(session.phone().alerts().size(), 2U);
    EXPECT_TRUE(session.phone().alerts().front().photo) << "it was held, and is not lost";
}

TEST_F(AlarmCoordinatorTest, AnUploadHoldsUpNoFurtherTrigger)
{
    session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    session.clock().advance(5s);
    arm();
    session.mac().iCloud.link.setLatency(CloudOperation::save, 10s);
    trigger({TriggerReason::unplugged});
    session.clock().advance(1s);
    EXPECT_EQ(coordinator().processingCount(), 0);
    EXPECT_THAT(assertions(), ElementsAre(armedName));
    trigger({TriggerReason::motion});
    session.clock().advance(1s);
    EXPECT_EQ(state("alerts"), 2);
    EXPECT_TRUE(session.phone().alerts().empty());
    session.clock().advance(20s);
    EXPECT_EQ(state("alerts"), 0);
    EXPECT_EQ(session.phone().alerts().size(), 2U);
}

TEST_F(AlarmCoordinatorTest, TheNoticeTellsThatAnAlertIsOnThisMacOnly)
{
    auto& link = session.mac().iCloud.link;
    session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    session.clock().advance(5s);
    arm();
    const auto noticeOfATrigger = [&](Duration uploadTakes) {
        coordinator().lastError = "earlier";
        trigger({TriggerReason::motion});
        session.clock().advance(uploadTakes);
        return coordinator().lastError.get().value_or("none");
    };
    const auto refuse = [&](int code) {
        link.faults().add({simulation::cloudError(code), CloudOperation::save, {}, 1});
    };
    const std::string saved = "Alert saved on this Mac. It will upload when iCloud is available.";
    EXPECT_EQ(noticeOfATrigger(1s), "none") << "uploaded, and that is the news";
    refuse(25);
    EXPECT_EQ(noticeOfATrigger(1s), "earlier") << "the list says that the storage is full";
    refuse(15);
    EXPECT_EQ(noticeOfATrigger(1s), saved) << "refused";
    link.setLatency(CloudOperation::save, 60s);
    EXPECT_EQ(noticeOfATrigger(16s), saved) << "no answer";
    link.setLatency(CloudOperation::save, std::nullopt);
    session.clock().advance(61s);
    link.setAccountStatus(ports::CloudAccountStatus::noAccount);
    EXPECT_EQ(noticeOfATrigger(1s), saved) << "the account has gone since";
    session.clock().advance(61s);
    EXPECT_EQ(noticeOfATrigger(1s), "none") << "known to be on this Mac only";
}

TEST_F(AlarmCoordinatorTest, AnAccountThatHangsDelaysTheLocalSaveNoticeForFifteenSeconds)
{
    session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available);
    session.clock().advance(5s);
    arm();
    session.mac().iCloud.link.setLatency(24h);
    session.clock().advance(61s); // what the account has said counts no more
    trigger({TriggerReason::unplugged});
    session.clock().advance(14'999ms);
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt);
    session.clock().advance(1ms);
    EXPECT_TRUE(coordinator().showingLocalSaveNotice.get());

    session.mac().iCloud.link.setLatency(80ms);
    session.clock().advance(2min);
    EXPECT_EQ(coordinator().lastError.get(), std::nullopt);
    coordinator().lastError = "no speaker";
    coordinator().clearLocalSaveNoticeIfResolved();
    EXPECT_EQ(coordinator().lastError.get(), "no speaker") << "another notice";
}

TEST_F(AlarmCoordinatorTest, TheSameSeedMakesTheSameRunToTheByte)
{
    const auto run = [](std::uint64_t seed) {
        TemporaryFolder folder;
        MacSession mac{{}, folder.path(), SENTREL_SOURCE_DIR "/resources", seed};
        mac.mac().accelerometer.setResting(true);
        mac.launch();
        mac.changeSettings([](AlarmSettings& settings) {
            settings.isArmed = true;
            settings.motionSensitivity = 1.0;
        });
        mac.clock().advance(10s);
        mac.mac().power.setAC(false);
        mac.clock().advance(10s);
        std::string text;
        for (const simulation::Event& event : mac.log().events()) {
            text += simulation::jsonLine(event) + "\n";
        }
        return text;
    };
    EXPECT_EQ(run(7), run(7));
    EXPECT_NE(run(7), run(8)) << "identifiers come from the seed";
}

} // namespace
} // namespace sentrel::simulation
