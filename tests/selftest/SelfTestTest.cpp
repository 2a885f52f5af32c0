#include "selftest/SelfTest.hpp"
#include "simulation/stage/MacSession.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::selftest {
namespace {

using namespace std::chrono_literals;
using simulation::MacDescription;
using simulation::MacSession;
using testing::HasSubstr;

MacDescription healthy()
{
    MacDescription description;
    description.accelerometer = MacDescription::Accelerometer::resting;
    description.music = MacDescription::Music::playing;
    description.automationConsent = MacDescription::Consent::granted;
    description.iCloud.account = ports::CloudAccountStatus::available;
    description.camera.authorization = ports::CaptureAuthorization::authorized;
    description.camera.devices = {simulation::CameraModel{}};
    return description;
}

/// The same, but nobody allows the camera, whose photos take the most time.
MacDescription withoutCamera()
{
    MacDescription description = healthy();
    description.camera.authorization = ports::CaptureAuthorization::denied;
    return description;
}

void allowCamera(MacDescription& description)
{
    description.camera.authorization = ports::CaptureAuthorization::authorized;
}

/// A MacBook on which somebody runs the self-test.
struct Bench {
    explicit Bench(const MacDescription& description = healthy())
        : session(description, disk.path(), SENTREL_SOURCE_DIR "/resources", 1), platform(session.mac().startProcess())
    {
    }

    /// Runs the test until it has ended, at most the time that all its limits allow.
    std::vector<Finding> run(std::vector<std::string> differingTexts = {})
    {
        SelfTest test{platform, std::move(differingTexts)};
        std::vector<Finding> findings;
        session.mainActor().spawn(test.run([&](const Finding& finding) { findings.push_back(finding); }));
        session.clock().advance(10min);
        return findings;
    }

    TemporaryFolder disk;
    MacSession session;
    ports::Platform& platform;
};

std::string pageOf(const std::vector<Finding>& findings)
{
    std::string page;
    for (const Finding& finding : findings) {
        page += textOf(finding);
    }
    return page + summary(findings);
}

TEST(SelfTest, TheHealthyMacBookGivesThisPageAndIsLeftAsItWas)
{
    Bench bench;
    const auto findings = bench.run();
    EXPECT_EQ(pageOf(findings), R"(PASS  Computer        MacBookPro18,3, macOS of an unknown version
PASS  System texts    as the product has them
PASS  Power           AC Power
PASS  Lid             open
PASS  Motion          49 samples in a second, the last of 1.00 g
PASS  Audio devices   MacBook Pro Speakers (built in; main volume: element 0, volume: none, mute: element 0)
ASK   Tone            played
      Did you hear a tone of a second?
PASS  Screens         1, shielded at level 2147483628
PASS  Keychain        an item there and back
PASS  Login item      not registered
PASS  Network         there
PASS  iCloud account  available
PASS  iCloud record   saved, read and deleted
PASS  Music           may be paused
PASS  Photo           1920 by 1080 pixels, 231 kB
PASS  Login panel     answered

15 passed, 0 failed, 1 to answer
)");
    EXPECT_FALSE(hasFailed(findings));
    EXPECT_EQ(bench.session.mac().speaker.sounding().size(), 0U);
    EXPECT_EQ(bench.session.mac().music.playback(), simulation::SimulatedMusic::Playback::playing);
    EXPECT_EQ(bench.session.phone().alerts().size(), 0U);
}

TEST(SelfTest, EachMissingDeviceAndEachRefusalIsToldInItsLineAlone)
{
    struct Row {
        const char* what;
        std::function<void(MacDescription&)> describe;
        std::function<void(MacSession&)> change;
        const char* line;
    };
    const auto nothing = [](MacSession&) {};
    const auto as = [](MacDescription&) {};
    const Row rows[] = {
        {"a desktop", [](MacDescription& mac) { mac.model = "Macmini9,1"; }, nothing,
         "FAIL  Computer        Macmini9,1, macOS"},
        {"no power state", [](MacDescription& mac) { mac.power = MacDescription::Power::unknown; }, nothing,
         "ASK   Power           no source"},
        {"no lid", [](MacDescription& mac) { mac.lid = MacDescription::Lid::absent; }, nothing,
         "FAIL  Lid             the system knows of no lid\n      Closing the lid"},
        {"a closed lid", [](MacDescription& mac) { mac.lid = MacDescription::Lid::closed; }, nothing,
         "ASK   Lid             closed\n      Is the lid closed"},
        {"no accelerometer", [](MacDescription& mac) { mac.accelerometer = MacDescription::Accelerometer::absent; },
         nothing, "FAIL  Motion          no accelerometer can be read\n      Moving this Mac is not noticed."},
        {"a silent one", [](MacDescription& mac) { mac.accelerometer = MacDescription::Accelerometer::present; },
         nothing, "FAIL  Motion          an accelerometer is there, but gives no sample"},
        {"no speaker",
         [](MacDescription& mac) {
             mac.audio.clear();
             mac.defaultOutput.reset();
         },
         nothing, "FAIL  Audio devices   no output"},
        {"no engine", as, [](MacSession& mac) { mac.mac().audioEngines.faults().set("start"); },
         "FAIL  Tone            the engine doesn't start\n      The alarm falls back"},
        {"an engine that stops", as, [](MacSession& mac) { mac.mac().audioEngines.faults().set("engine-stops"); },
         "FAIL  Tone            the engine stopped by itself"},
        {"no screen", as, [](MacSession& mac) { mac.mac().displays.faults().set("no-screens"); },
         "FAIL  Screens         no screen"},
        {"a full keychain", as, [](MacSession& mac) { mac.mac().keychain.faults().set("add"); },
         "FAIL  Keychain        an item is refused with status -"},
        {"a forgetful keychain", as, [](MacSession& mac) { mac.mac().keychain.faults().set("copy"); },
         "FAIL  Keychain        the item isn't found again, with status -"},
        {"no network", [](MacDescription& mac) { mac.iCloud.isNetworkUp = false; }, nothing,
         "ASK   Network         not there\n      Is this Mac offline?"},
        {"no account", [](MacDescription& mac) { mac.iCloud.account = ports::CloudAccountStatus::noAccount; }, nothing,
         "ASK   iCloud account  no account"},
        {"no Music", [](MacDescription& mac) { mac.music = MacDescription::Music::absent; }, nothing,
         "ASK   Music           Music doesn't run"},
        {"no consent", [](MacDescription& mac) { mac.automationConsent = MacDescription::Consent::denied; }, nothing,
         "ASK   Music           events are refused with status -1743"},
        {"no camera",
         [](MacDescription& mac) {
             allowCamera(mac);
             mac.camera.devices = std::vector<simulation::CameraModel>{};
         },
         nothing, "FAIL  Photo           no camera\n      Alerts have no photo."},
        {"a question that nobody answers", allowCamera,
         [](MacSession& mac) { mac.mac().camera.setAuthorization(ports::CaptureAuthorization::notDetermined); },
         "FAIL  Photo           no answer within 90 s"},
        {"a photo that fails",
         [](MacDescription& mac) {
             allowCamera(mac);
             mac.camera.fails = true;
         },
         nothing, "FAIL  Photo           "},
        {"a refused login", [](MacDescription& mac) { mac.login = simulation::LoginAnswer::fail; }, nothing,
         "ASK   Login panel     the login was refused"},
        {"no login", [](MacDescription& mac) { mac.login = simulation::LoginAnswer::unavailable; }, nothing,
         "FAIL  Login panel     "},
    };
    const auto sound = Bench{withoutCamera()}.run();
    EXPECT_THAT(pageOf(sound), HasSubstr("ASK   Photo           the camera is not allowed"));
    for (const Row& row : rows) {
        MacDescription description = withoutCamera();
        row.describe(description);
        Bench bench{description};
        row.change(bench.session);
        const auto findings = bench.run();
        EXPECT_THAT(pageOf(findings), HasSubstr(row.line)) << row.what;
        std::size_t different = 0;
        ASSERT_EQ(findings.size(), sound.size()) << row.what;
        for (std::size_t index = 0; index < findings.size(); ++index) {
            different += textOf(findings[index]) == textOf(sound[index]) ? 0U : 1U;
        }
        const bool isShared = std::string_view{row.what} == "no network" ||
                              std::string_view{row.what} == "no account" || std::string_view{row.what} == "no speaker";
        EXPECT_TRUE(isShared ? different >= 1 : different == 1) << row.what << "\n" << pageOf(findings);
    }
    EXPECT_THAT(pageOf(Bench{withoutCamera()}.run({"AVMediaTypeVideo: vide, video"})),
                HasSubstr("FAIL  System texts    AVMediaTypeVideo: vide, video"));
}

TEST(SelfTest, ADeviceThatRaisesOrHangsFailsAloneAndInTime)
{
    const std::pair<const char*, const char*> ports[] = {
        {"host", "Computer"},         {"power-sources", "Power"}, {"lid", "Lid"},          {"accelerometer", "Motion"},
        {"audio", "Audio devices"},   {"audio-engine", "Tone"},   {"displays", "Screens"}, {"keychain", "Keychain"},
        {"login-item", "Login item"}, {"network", "Network"},     {"music", "Music"},      {"camera", "Photo"},
        {"login", "Login panel"},
    };
    for (const auto& [port, title] : ports) {
        for (const char* const fault : {"raises", "hangs"}) {
            const std::string name{port};
            const bool isOnMain = name == "power-sources" || name == "displays" || name == "login-item" ||
                                  name == "network" || name == "login";
            if (isOnMain && fault == std::string_view{"hangs"}) {
                continue; // a main thread that hangs tells nothing any more
            }
            Bench bench{name == "camera" ? healthy() : withoutCamera()};
            bench.session.mac().calls().prepareToHang();
            for (const auto& [itsName, switches] : bench.session.mac().faults()) {
                if (itsName == name) {
                    switches->set(fault);
                }
            }
            const auto findings = bench.run();
            ASSERT_EQ(findings.size(), 16U) << name << " " << fault;
            std::string failed;
            for (const Finding& finding : findings) {
                failed += finding.verdict == Verdict::fail ? finding.title + " " : "";
            }
            EXPECT_THAT(failed, HasSubstr(title)) << name << " " << fault;
            EXPECT_EQ(failed, std::string{title} + " ") << name << " " << fault;
        }
    }
}

} // namespace
} // namespace sentrel::selftest
