#include "simulation/story/html/StoryRecorder.hpp"

#include "ports/CloudError.hpp"
#include "posix/PosixFileSystem.hpp"
#include "simulation/mac/camera/TurboImageCodec.hpp"
#include "simulation/mac/sound/SoundRecorder.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "simulation/story/StoryText.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::size_t mostPhotos = 12;
constexpr std::size_t mostOnPhone = 12;
constexpr std::uint32_t photoSide = 720;
constexpr std::uint32_t thumbnailSide = 96;
constexpr double mostSound = 90.0; // seconds in all, about a megabyte

/// The image with neither side longer than `side`; empty for data that is no image.
Bytes scaled(BytesView jpeg, std::uint32_t side)
{
    constexpr double quality = 0.7;
    TurboImageCodec codec;
    const auto image = codec.createThumbnail(jpeg, side, true);
    return image ? codec.encode(*image, "public.jpeg", quality).value_or(Bytes{}) : Bytes{};
}

} // namespace

StoryRecorder::StoryRecorder(const Scenario& scenario)
    : story_(unseen_, {},
             [this](std::optional<double> at, StoryTone tone, std::string_view text) {
                 record_.lines.push_back({at, tone, std::string{text}});
             }),
      audience_(story_, scenario)
{
    record_.title = scenario.title;
    record_.scene = describe(scenario.mac);
}

void StoryRecorder::begins(MacSession& session)
{
    session_ = &session;
    launch_ = session.mac().wallClock.now();
    audience_.begins(session);
    session.mac().accelerometer.observe([this](const Acceleration& sample) {
        const auto threshold = record_.thresholds.empty() ? std::optional<double>{} : record_.thresholds.back().value;
        record_.motion.add(session_->seconds(), meter_.distanceOf(sample, threshold));
    });
}

void StoryRecorder::reached(double at)
{
    noteThreshold(at);
    unseen_.str({});
}

void StoryRecorder::happened(const Event& event)
{
    audience_.happened(event);
    if (const auto saved = as<events::AlertSaved>(event); saved && saved->photo) {
        keepPhoto(event.at, *saved);
    }
}

void StoryRecorder::willPerform(double at, const Step& step, const Action& action)
{
    audience_.willPerform(at, step, action);
}

void StoryRecorder::checked(double at, const Step& step, const std::vector<Mismatch>& mismatches)
{
    audience_.checked(at, step, mismatches);
}

void StoryRecorder::ends(MacSession& session, const std::filesystem::path& sound)
{
    record_.seconds = session.seconds();
    record_.sounds = soundClips(sound, mostSound);
    constexpr double longest =
        static_cast<double>(SoundRecorder::maximumFrames) / static_cast<double>(SoundRecorder::sampleRate);
    record_.isSoundCut = record_.seconds > longest;
    readPhone();
    session.mac().accelerometer.observe({});
    session_ = nullptr;
}

StoryRecord StoryRecorder::finish(const StorySummary& summary)
{
    story_.finish(summary);
    return std::move(record_);
}

/// From the disk, where the photo is until its upload.
void StoryRecorder::keepPhoto(double at, const events::AlertSaved& saved)
{
    if (record_.photos.size() == mostPhotos) {
        ++record_.photosLeftOut;
        return;
    }
    posix::PosixFileSystem files;
    const auto file = files.read(alertsFolder(session_->mac()) / (std::string{saved.id} + ".jpg"));
    Bytes photo = file ? scaled(*file, photoSide) : Bytes{};
    if (!photo.empty()) {
        record_.photos.push_back({at, reasonTitle(saved.reason), std::move(photo)});
    }
}

void StoryRecorder::noteThreshold(double at)
{
    const auto value = motionThreshold(*session_);
    if (record_.thresholds.empty() || record_.thresholds.back().value != value) {
        record_.thresholds.push_back({record_.thresholds.empty() ? 0.0 : at, value});
    }
}

void StoryRecorder::readPhone()
{
    const auto since = [this](Date date) { return std::max(date.secondsSince(launch_), 0.0); };
    CompanionPhone& phone = session_->phone();
    StoryRecord::Phone shown;
    for (const auto& notification : phone.notifications()) {
        shown.notifications.push_back({since(notification.date), notification.text});
    }
    try {
        for (const auto& alert : phone.alerts()) {
            const bool hasRoom = shown.alerts.size() < mostOnPhone;
            shown.alerts.push_back({since(alert.timestamp), alert.triggerName, alert.deviceName,
                                    alert.photo && hasRoom ? scaled(*alert.photo, thumbnailSide) : Bytes{}});
        }
        for (const auto& mac : phone.macs()) {
            shown.macs.push_back({mac.deviceName, mac.isArmed});
        }
    } catch (const ports::CloudError&) {
        // An account that refuses the phone leaves its lists as they are.
    }
    if (!shown.notifications.empty() || !shown.alerts.empty() || !shown.macs.empty()) {
        record_.phone = std::move(shown);
    }
}

} // namespace sentrel::simulation
