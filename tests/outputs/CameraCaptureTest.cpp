#include "outputs/CameraCapture.hpp"
#include "outputs/PhotoProcessing.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "simulation/mac/camera/SimulatedCamera.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using ports::CaptureAuthorization;
using simulation::CameraModel;
using simulation::PortCalls;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

using Rgba = ports::ImageCodec::Rgba;
constexpr Rgba dark{10, 10, 10, 255};
constexpr Rgba bright{120, 120, 120, 255};

/// Sees in each photo the next of the given colours, then bright ones; its thumbnails encode to what a test says.
class ScriptedCodec final : public ports::ImageCodec {
public:
    std::deque<std::optional<Rgba>> averages;
    std::optional<Bytes> encoded = Bytes{1};
    bool hasThumbnail = true;
    std::optional<std::uint32_t> maxPixelSize;

    std::optional<Rgba> areaAverage(BytesView) override
    {
        auto average = averages.empty() ? bright : averages.front();
        if (!averages.empty()) {
            averages.pop_front();
        }
        return average;
    }
    std::optional<ports::PixelSize> pixelSize(BytesView) override { return ports::PixelSize{1600, 900}; }
    std::unique_ptr<ports::Image> createThumbnail(BytesView, std::uint32_t size, bool transform) override
    {
        maxPixelSize = size;
        return hasThumbnail && transform ? std::make_unique<ports::Image>() : nullptr;
    }
    std::optional<Bytes> encode(const ports::Image&, const std::string& type, double quality) override
    {
        return type == "public.jpeg" && quality == 0.7 ? encoded : std::nullopt;
    }
    std::optional<Bytes> jpegRepresentation(BytesView) override { return std::nullopt; }
};

class PrintedLines final : public ports::StandardOutput {
public:
    std::vector<std::string> lines;
    void printLine(std::string_view text) override { lines.emplace_back(text); }
};

/// A Mac with one built-in camera whose every photo is the same small file.
class CameraCaptureTest : public testing::Test {
protected:
    CameraCaptureTest()
    {
        camera.setDevices({CameraModel{}});
        camera.setPhotoFile(photo);
    }

    /// Asks for a photo now; the answer is noted with the time at which it came.
    void capture()
    {
        service->capture([this](std::optional<Bytes> jpeg) {
            results.push_back(std::move(jpeg));
            finishedAt.push_back(clock.now().time_since_epoch());
        });
    }

    void captureAndWait()
    {
        capture();
        clock.advance(15s - 1ns);
    }

    [[nodiscard]] std::string whyNone() const { return std::string{log.named("photo.none").back().text("why")}; }

    const Bytes photo{1, 2, 3};
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::SimulatedWallClock wallClock{scheduler, Date{0}};
    simulation::SimulatedCamera camera{scheduler, wallClock};
    simulation::EventLog log{scheduler};
    ScriptedCodec codec;
    PrintedLines output;
    std::vector<std::optional<Bytes>> results;
    std::vector<Duration> finishedAt;
    std::unique_ptr<CameraCapture> service = std::make_unique<CameraCapture>(scheduler, camera, codec, output, log);
};

TEST_F(CameraCaptureTest, ExposureAndWhiteBalanceGetUpToThreeSecondsToSettle)
{
    struct Case {
        Duration exposure, whiteBalance, photoAt;
    };
    const std::vector<Case> cases{{0s, 0s, 1s}, {1050ms, 0s, 1100ms}, {1200ms, 1710ms, 1800ms}, {10s, 0s, 3s}};
    for (const auto& [exposure, whiteBalance, photoAt] : cases) {
        camera.setDevices({{.adjustsExposureFor = exposure, .adjustsWhiteBalanceFor = whiteBalance}});
        const Duration start = clock.now().time_since_epoch();
        capture();
        clock.advance(1min); // long enough that the next case starts with the camera off
        EXPECT_EQ(finishedAt.back() - start, photoAt);
    }
    EXPECT_THAT(results, Each(Bytes{1}));
    EXPECT_EQ(codec.maxPixelSize, 1600);
    EXPECT_EQ(jsonLine(log.named("photo.taken").at(0)),
              R"({"at": 1, "event": "photo.taken", "bytes": 1, "width": 1600, "height": 900, "attempts": 1})");
}

TEST_F(CameraCaptureTest, ADarkPhotoIsRetakenAfterAPauseAndOneAtTheLimitIsKept)
{
    struct Case {
        std::deque<std::optional<Rgba>> seen;
        int photos;
        Duration finished;
    };
    const Rgba justTooDark{55, 10, 18, 255}; // 0.078998
    const Rgba atTheLimit{30, 19, 6, 255};   // 0.08 exactly
    const std::vector<Case> cases{
        {{justTooDark, bright}, 2, 1s + 1200ms}, {{atTheLimit}, 1, 1s},   {{dark, dark, dark}, 3, 1s + 2400ms},
        {{dark, atTheLimit}, 2, 1s + 1200ms},    {{std::nullopt}, 1, 1s}, // what is no image can't be too dark
    };
    for (const auto& [seen, photos, finished] : cases) {
        const int before = camera.photosRequested();
        const Duration start = clock.now().time_since_epoch();
        codec.averages = seen;
        capture();
        clock.advance(1min);
        EXPECT_EQ(camera.photosRequested() - before, photos);
        EXPECT_EQ(finishedAt.back() - start, finished);
        EXPECT_TRUE(results.back());
        codec.averages.clear();
    }
}

TEST_F(CameraCaptureTest, OfDarkPhotosTheLastThatSucceedsIsReturned)
{
    for (const std::uint8_t successes : Bytes{3, 1}) {
        codec.averages = {dark, dark, dark};
        codec.encoded = std::nullopt;
        capture();
        for (const std::uint8_t number : Bytes{1, 2, 3}) {
            camera.setPhotoFile(Bytes{number});
            camera.faults().set("photo", number > successes ? -1 : 0);
            clock.advance(number == 1 ? 1s : 1200ms);
        }
        clock.advance(1min);
        EXPECT_EQ(results.back(), Bytes{successes});
    }
    EXPECT_EQ(camera.photosRequested(), 5) << "a retake that fails is the last";
    EXPECT_THAT(output.lines, ElementsAre("Photo capture error: Cannot Complete Action"));
}

TEST_F(CameraCaptureTest, ASecondCaptureSoonReusesTheSessionAndALateOneBuildsANewOne)
{
    capture();
    clock.advance(11s);
    capture();
    clock.advance(0s);
    EXPECT_THAT(finishedAt, ElementsAre(1s, 11s));
    clock.advance(14s);
    EXPECT_TRUE(camera.isSessionRunning()); // the first shutdown was called off
    clock.advance(6s);
    capture();
    clock.advance(1s);

    EXPECT_THAT(finishedAt, ElementsAre(1s, 11s, 32s));
    EXPECT_EQ(camera.sessionsStarted(), 2);
}

TEST_F(CameraCaptureTest, CapturesNeverOverlap)
{
    codec.averages = {dark};
    capture();
    capture();
    clock.advance(1min);

    EXPECT_THAT(finishedAt, ElementsAre(2200ms, 2200ms));
    EXPECT_EQ(camera.sessionsStarted(), 1);
}

TEST_F(CameraCaptureTest, ASessionThatTheSystemInterruptedIsReplaced)
{
    capture();
    clock.advance(2s);
    camera.interruptSession();
    captureAndWait();

    EXPECT_THAT(finishedAt, ElementsAre(1s, 3s));
    EXPECT_EQ(camera.sessionsStarted(), 2);
}

TEST_F(CameraCaptureTest, ALatePhotoIsDiscardedAndItsDelegateFreed)
{
    camera.setPhotoDelay(6s);
    capture();
    clock.advance(6s);
    EXPECT_THAT(results, ElementsAre(std::nullopt));
    EXPECT_EQ(whyNone(), "timed out");

    camera.faults().set("photo"); // shows that the delegate is called at all: its error would be printed
    capture();
    clock.advance(1min);
    EXPECT_THAT(output.lines, ElementsAre("Photo capture error: Cannot Complete Action"));
    EXPECT_THAT(results, ElementsAre(std::nullopt, std::nullopt));
    EXPECT_FALSE(camera.isSessionRunning());
}

TEST_F(CameraCaptureTest, ADelegateWhosePhotoNeverComesIsFreedThirtySecondsAfterTheTimeout)
{
    camera.faults().set("photo"); // a delegate that is still there prints the error
    for (const auto& [delay, printed] : std::vector<std::pair<Duration, std::size_t>>{{35s - 1ns, 1}, {36s, 1}}) {
        camera.setPhotoDelay(delay);
        capture();
        clock.advance(2min);
        EXPECT_EQ(output.lines.size(), printed);
    }
}

TEST_F(CameraCaptureTest, ThePhotoMayComeWhenTheServiceIsGone)
{
    camera.setPhotoDelay(4s);
    capture();
    clock.advance(3s);
    service.reset();
    EXPECT_FALSE(camera.isSessionRunning());
    clock.advance(1min);

    EXPECT_THAT(results, IsEmpty());
}

TEST_F(CameraCaptureTest, EveryFailureEndsWithoutDataAndSaysWhy)
{
    for (const auto& [fault, why] : std::vector<std::pair<std::string, std::string>>{{"input", "no input"},
                                                                                     {"add-input", "input refused"},
                                                                                     {"add-output", "output refused"},
                                                                                     {"start", "photo failed"},
                                                                                     {"photo", "photo failed"},
                                                                                     {"photo-data", "photo failed"}}) {
        camera.faults().clear();
        camera.faults().set(fault);
        capture();
        clock.advance(1min);
        EXPECT_EQ(results.back(), std::nullopt) << fault;
        EXPECT_EQ(whyNone(), why);
        EXPECT_FALSE(camera.isSessionRunning()) << "the camera's light would stay on";
    }
    camera.faults().clear();
    camera.setDevices({});
    captureAndWait();
    EXPECT_EQ(whyNone(), "no camera");
    EXPECT_EQ(results.size(), 7U);
}

TEST_F(CameraCaptureTest, WhicheverCallRaisesTheCompletionIsCalledOnceAndTheCameraGoesOff)
{
    std::size_t number = 0;
    std::size_t seen = 0;
    simulation::PortCalls calls;
    camera.faults().connect(calls, "camera");
    calls.decideBy([&](auto, auto) { return seen++ == number ? PortCalls::Fate::raises : PortCalls::Fate::passes; });
    for (bool isStruck = true; isStruck; ++number) {
        seen = 0;
        capture();
        clock.advance(1min);
        EXPECT_EQ(results.size(), number + 1) << "at call " << number;
        EXPECT_FALSE(camera.isSessionRunning()) << "at call " << number;
        isStruck = seen > number;
    }
    EXPECT_GT(number, 10U);
    EXPECT_TRUE(results.back()) << "the last time nothing is struck";
}

TEST_F(CameraCaptureTest, APhotoThatComesTwiceCountsOnce)
{
    codec.averages = {dark};
    camera.faults().set("photo-twice");
    captureAndWait();
    EXPECT_EQ(results.size(), 1U);
    EXPECT_EQ(camera.photosRequested(), 2);
}

TEST_F(CameraCaptureTest, WithoutPermissionACaptureNeverPrompts)
{
    camera.setAnswer(true);
    for (const auto status :
         {CaptureAuthorization::notDetermined, CaptureAuthorization::denied, CaptureAuthorization::restricted}) {
        camera.setAuthorization(status);
        captureAndWait();
        EXPECT_EQ(results.back(), std::nullopt);
        EXPECT_EQ(whyNone(), "not authorized");
    }
    EXPECT_EQ(camera.promptsShown(), 0);
    EXPECT_EQ(camera.sessionsStarted(), 0);
}

TEST_F(CameraCaptureTest, TheBuiltInCameraIsPreferredToAPhone)
{
    const CameraModel phone{.name = "Phone", .isContinuityCamera = true};
    const CameraModel builtIn{.name = "Built-in"};
    const CameraModel webcam{.name = "Webcam", .type = "AVCaptureDeviceTypeExternal"};
    for (const auto& [devices, chosen] : std::vector<std::pair<std::vector<CameraModel>, std::string>>{
             {{webcam, phone, builtIn}, "Built-in"}, {{webcam, phone}, "Phone"}, {{webcam}, "Webcam"}}) {
        camera.setDevices(devices);
        capture();
        clock.advance(1min);
        EXPECT_EQ(camera.openedDevice(), chosen);
    }
}

TEST_F(CameraCaptureTest, ThePhotoIsReencodedOnlyIfThatMakesItSmaller)
{
    for (const auto& encoded :
         {std::optional{Bytes{7, 8, 9, 10}}, std::optional{Bytes{7, 8, 9}}, std::optional<Bytes>{}}) {
        codec.encoded = encoded;
        EXPECT_EQ(reencodedPhoto(codec, photo), photo);
    }
    codec.encoded = Bytes{7, 8};
    EXPECT_EQ(reencodedPhoto(codec, photo), (Bytes{7, 8}));
    codec.hasThumbnail = false;
    EXPECT_EQ(reencodedPhoto(codec, photo), photo);
}

Async<void> askForAccess(CameraCapture& service, std::optional<bool>& granted)
{
    granted = co_await service.requestAccess();
}

TEST_F(CameraCaptureTest, OnlyAnOpenQuestionIsAsked)
{
    for (const auto& [status, expected] :
         {std::pair{CaptureAuthorization::authorized, true}, std::pair{CaptureAuthorization::denied, false},
          std::pair{CaptureAuthorization::restricted, false}}) {
        std::optional<bool> granted;
        camera.setAuthorization(status);
        MainActor{scheduler}.spawn(askForAccess(*service, granted));
        clock.runReady();
        EXPECT_EQ(granted, expected);
    }
    EXPECT_EQ(camera.promptsShown(), 0);

    for (const bool answer : {true, false}) {
        std::optional<bool> granted;
        camera.setAuthorization(CaptureAuthorization::notDetermined);
        MainActor{scheduler}.spawn(askForAccess(*service, granted));
        clock.advance(1h);
        EXPECT_EQ(granted, std::nullopt) << "the prompt is still open";
        camera.answerPrompt(answer);
        clock.runReady();
        EXPECT_EQ(granted, answer);
    }
    EXPECT_EQ(camera.promptsShown(), 2);
}

Async<void> takePhotoThenStop(CameraCapture& service, std::optional<Bytes>& jpeg, ThreadScheduler& scheduler)
{
    jpeg = co_await service.capturePhoto();
    scheduler.stopMain();
}

TEST(CameraCaptureOnThreads, APhotoComesBackToTheMainThread)
{
    ThreadScheduler scheduler;
    simulation::SimulatedWallClock wallClock{scheduler, Date{0}};
    simulation::SimulatedCamera camera{scheduler, wallClock};
    camera.setDevices({CameraModel{}});
    camera.setPhotoFile(Bytes{1, 2});
    simulation::EventLog log{scheduler};
    ScriptedCodec codec;
    PrintedLines output;
    std::optional<Bytes> jpeg;
    {
        CameraCapture service{scheduler, camera, codec, output, log};
        MainActor{scheduler}.spawn(takePhotoThenStop(service, jpeg, scheduler));
        scheduler.runMain();
    }
    EXPECT_EQ(jpeg, Bytes{1});
    EXPECT_FALSE(camera.isSessionRunning());
}

} // namespace
} // namespace sentrel
