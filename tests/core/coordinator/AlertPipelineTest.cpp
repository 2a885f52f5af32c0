#include "core/coordinator/AlertPipeline.hpp"

#include "alerts/AlertsMac.hpp"
#include "core/SettingsStore.hpp"
#include "outputs/CameraCapture.hpp"
#include "sensors/LidMonitor.hpp"
#include "simulation/mac/camera/SimulatedCamera.hpp"
#include "simulation/mac/camera/TurboImageCodec.hpp"
#include "simulation/mac/display/SimulatedWorkspace.hpp"
#include "simulation/mac/power/SimulatedAssertions.hpp"
#include "simulation/mac/power/SimulatedLid.hpp"

#include <gmock/gmock.h>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;
using ports::CloudAccountStatus;
using testing::ElementsAre;
using testing::IsEmpty;

struct NoLines final : ports::StandardOutput {
    void printLine(std::string_view) override {}
};

/// A pipeline on a Mac whose only camera is missing, so that its photos cost no time.
class AlertPipelineTest : public AlertsMac, private UploadNotices {
protected:
    AlertPipelineTest() { mac.await(mac.cloud->refreshAvailability(true)); }

    void showLocalSaveNotice() override { notices += "shown "; }
    void clearLocalSaveNoticeIfResolved() override { notices += "resolved "; }
    void clearNotices() override { notices += "cleared "; }

    /// The notices of the next trigger, whose alert has gone all its way.
    std::string noticesOfATrigger()
    {
        notices.clear();
        pipeline.add(TriggerReason::motion);
        world.clock.advance(20s);
        return notices;
    }
    std::vector<TriggerReason> reasonsHere()
    {
        std::vector<TriggerReason> reasons;
        for (const StoredAlert& stored : store->alerts()) {
            reasons.push_back(stored.alert.reason);
        }
        return reasons;
    }

    std::string notices;
    MainActor actor{mac.process};
    SettingsStore settings{actor, mac.defaults};
    simulation::SimulatedLid lidSensor{world.log};
    simulation::SimulatedWorkspace workspace{mac.process, world.log};
    LidMonitor lid{actor, lidSensor, workspace};
    simulation::SimulatedCamera cameras{mac.process, mac.wallClock};
    simulation::TurboImageCodec codec;
    NoLines output;
    CameraCapture camera{mac.process, cameras, codec, output, world.log};
    simulation::SimulatedAssertions assertions{world.log};
    AlertPipeline pipeline{actor,
                           {settings, lid, camera, *store, *service, *mac.cloud, *uploader, *this},
                           {assertions, mac.wallClock, mac.random, mac.host, world.log}};
};

TEST_F(AlertPipelineTest, AnUploadHoldsUpNoFurtherTrigger)
{
    mac.icloud.link.setLatency(CloudOperation::save, 10s);
    pipeline.add(TriggerReason::unplugged);
    pipeline.add(TriggerReason::unplugged);
    EXPECT_EQ(pipeline.processingCount(), 1);
    EXPECT_THAT(assertions.held(), ElementsAre("Sentrel is processing an alarm event"));
    world.clock.advance(1s);
    EXPECT_EQ(pipeline.processingCount(), 0);
    EXPECT_THAT(assertions.held(), IsEmpty());

    pipeline.add(TriggerReason::motion);
    world.clock.advance(1s);
    EXPECT_THAT(reasonsHere(), ElementsAre(TriggerReason::motion, TriggerReason::unplugged));
    EXPECT_EQ(countInCloud(), 0U);
    world.clock.advance(20s);
    EXPECT_THAT(reasonsHere(), IsEmpty());
    EXPECT_EQ(countInCloud(), 2U);
}

TEST_F(AlertPipelineTest, TheAlertIsHereBeforeTheCloudHearsOfIt)
{
    std::vector<TriggerReason> hereAtFirst;
    mac.icloud.link.onRequest([&](CloudOperation, simulation::CloudRequestPhase) {
        if (hereAtFirst.empty()) {
            hereAtFirst = reasonsHere();
            ASSERT_FALSE(hereAtFirst.empty());
        }
    });
    pipeline.add(TriggerReason::lidClosed);
    world.clock.advance(20s);
    EXPECT_THAT(hereAtFirst, ElementsAre(TriggerReason::lidClosed));
    EXPECT_EQ(countInCloud(), 1U);
}

TEST_F(AlertPipelineTest, TheNoticesTellWhereTheAlertIs)
{
    EXPECT_EQ(noticesOfATrigger(), "cleared ") << "uploaded";
    fail(25, CloudOperation::save);
    EXPECT_EQ(noticesOfATrigger(), "") << "the list says that the storage is full";
    fail(15, CloudOperation::save);
    EXPECT_EQ(noticesOfATrigger(), "shown ") << "refused";

    mac.icloud.link.setLatency(CloudOperation::save, 60s);
    EXPECT_EQ(noticesOfATrigger(), "shown ") << "no answer";
    mac.icloud.link.setLatency(CloudOperation::save, std::nullopt);
    world.clock.advance(61s);
    mac.icloud.account.setStatus(CloudAccountStatus::noAccount);
    EXPECT_EQ(noticesOfATrigger(), "shown ") << "the account has gone since";
    mac.await(mac.cloud->refreshAvailability(true));
    EXPECT_EQ(noticesOfATrigger(), "cleared ") << "known to be on this Mac only";

    ASSERT_TRUE(mac.files.faults().set("write"));
    mac.icloud.account.setStatus(CloudAccountStatus::available);
    mac.await(mac.cloud->refreshAvailability(true));
    fail(15, CloudOperation::save);
    EXPECT_EQ(noticesOfATrigger(), "") << "no notice claims that it is saved";
}

} // namespace
} // namespace sentrel::test
