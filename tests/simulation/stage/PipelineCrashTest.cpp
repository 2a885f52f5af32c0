#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

/// One theft on a Mac with iCloud, cut short somewhere, and what comes after.
class Theft {
public:
    Theft()
    {
        session_.mac().camera.setDevices({{}});
        iCloud().account.setStatus(ports::CloudAccountStatus::available);
        session_.launch();
        session_.clock().advance(10s);
        session_.changeSettings([](AlarmSettings& settings) { settings.isArmed = true; });
        session_.clock().advance(5s);
    }

    SimulatedICloud& iCloud() { return session_.mac().iCloud; }
    SimulatedFileSystem& files() { return session_.mac().files; }

    /// The charger goes, and time passes until the alert is through or the power is cut.
    void happens()
    {
        session_.mac().power.setAC(false);
        for (Duration passed{}; passed < 20s && !files().isPowerCut(); passed += 10ms) {
            session_.clock().advance(10ms);
        }
    }

    /// The process is lost at this moment, and the disk holds what it held.
    void crashes()
    {
        session_.crash();
        files().restorePower();
        // A request that is under way comes to its end without the process.
        session_.clock().advance(1s);
    }

    void isRelaunched()
    {
        session_.launch();
        session_.clock().advance(2min);
    }

    bool wasSaved() { return !session_.log().named("alert.saved").empty(); }
    std::uint64_t onDisk() { return stateOf(session_)["alerts"].get<std::uint64_t>(); }
    std::uint64_t inCloud()
    {
        auto& link = iCloud().link;
        return link.server().count(link.device().user, "AlertEvent");
    }
    bool leftPhotosBehind()
    {
        const auto folder = session_.mac().host.temporaryDirectory();
        return std::filesystem::exists(folder) && !std::filesystem::is_empty(folder);
    }

private:
    TemporaryFolder disk_;
    MacSession session_{{}, disk_.path(), SENTREL_SOURCE_DIR "/resources", 1};
};

/// An alert that was saved is on this Mac or in the cloud; later it is in the cloud, once, and nothing is left over.
void expectNothingLost(Theft& theft)
{
    theft.crashes();
    const bool wasSaved = theft.wasSaved();
    if (wasSaved) {
        EXPECT_GE(theft.onDisk() + theft.inCloud(), 1U) << "lost at the crash";
    }
    theft.isRelaunched();
    EXPECT_LE(theft.inCloud(), 1U) << "doubled";
    if (wasSaved) {
        EXPECT_EQ(theft.inCloud(), 1U) << "never uploaded";
    }
    EXPECT_EQ(theft.onDisk(), 0U) << "the uploaded alert stays on the disk";
    EXPECT_FALSE(theft.leftPhotosBehind());
}

TEST(PipelineCrashTest, LosesNoAlertWhereverTheDiskStopsBetweenTriggerAndUpload)
{
    // The calls of the whole pipeline at the disk.
    std::uint64_t calls = 0;
    {
        Theft theft;
        const auto before = theft.files().counts().calls;
        theft.happens();
        ASSERT_EQ(theft.inCloud(), 1U);
        ASSERT_EQ(theft.onDisk(), 0U);
        calls = theft.files().counts().calls - before;
    }
    ASSERT_GT(calls, 10U);
    for (std::uint64_t call = 0; call < calls; ++call) {
        SCOPED_TRACE("the power fails after " + std::to_string(call) + " calls");
        Theft theft;
        theft.files().cutPowerAfter(call);
        theft.happens();
        expectNothingLost(theft);
    }
}

TEST(PipelineCrashTest, LosesAndDoublesNoAlertWhicheverCloudRequestIsTheProcesssLast)
{
    int requests = 0;
    {
        Theft theft;
        theft.iCloud().link.onRequest([&](auto, auto) { ++requests; });
        theft.happens();
    }
    ASSERT_GT(requests, 4) << "before and after each of the upload's requests";
    for (int last = 1; last <= requests; ++last) {
        SCOPED_TRACE("the process ends at moment " + std::to_string(last));
        Theft theft;
        int seen = 0;
        theft.iCloud().link.onRequest([&](auto, auto) {
            if (++seen == last) {
                theft.files().cutPowerAfter(0);
            }
        });
        theft.happens();
        theft.iCloud().link.onRequest({});
        expectNothingLost(theft);
    }
}

} // namespace
} // namespace sentrel::simulation
