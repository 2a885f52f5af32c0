#include "simulation/mac/sound/Speaker.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace sentrel::simulation {

namespace {

/// A decaying 1 kHz sine, easy to tell from an alarm tone by ear and by measurement.
Speaker::Samples makeBeep()
{
    constexpr double rate = SoundRecorder::sampleRate;
    constexpr double frequency = 1000.0;
    constexpr double level = 0.8;
    constexpr double decay = 0.04; // seconds to fall to 1/e
    const auto frames = static_cast<std::size_t>(toSeconds(Speaker::beepLength) * rate);
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const double time = static_cast<double>(i) / rate;
        samples[i] =
            static_cast<float>(level * std::exp(-time / decay) * std::sin(2.0 * std::numbers::pi * frequency * time));
    }
    return std::make_shared<const std::vector<float>>(std::move(samples));
}

} // namespace

Speaker::Speaker(Scheduler& hardware, SimulatedAudio& audio)
    : scheduler_(hardware), audio_(audio), beepSamples_(makeBeep())
{
    audio_.observeChanges([this] { change([] {}); });
}

Speaker::~Speaker()
{
    audio_.observeChanges({});
    finishRecording();
}

Speaker::SoundId Speaker::beginLoop(Samples samples, float volume, std::optional<ports::AudioObjectId> device)
{
    SoundId id = 0;
    change([&] {
        id = ++lastId_;
        Sound sound{.id = id, .samples = std::move(samples), .start = scheduler_.now(), .volume = volume};
        sound.followsDefault = !device;
        sound.device = device;
        sounds_.push_back(std::move(sound));
    });
    return id;
}

void Speaker::setVolume(SoundId sound, float volume)
{
    change([&] {
        if (Sound* const found = find(sound)) {
            found->volume = volume;
        }
    });
}

void Speaker::setDevice(SoundId sound, ports::AudioObjectId device)
{
    change([&] {
        if (Sound* const found = find(sound)) {
            found->followsDefault = false;
            found->device = device;
        }
    });
}

void Speaker::end(SoundId sound)
{
    change([&] { std::erase_if(sounds_, [sound](const Sound& other) { return other.id == sound; }); });
}

void Speaker::beep()
{
    change([&] {
        const Instant start = std::max(scheduler_.now(), beepsEnd_);
        beepsEnd_ = start + beepLength;
        Sound sound{.id = ++lastId_, .kind = Sounding::Kind::beep, .samples = beepSamples_, .start = start};
        sound.device = audio_.defaultOutput();
        sounds_.push_back(std::move(sound));
    });
}

void Speaker::setAsleep(bool isAsleep)
{
    change([&] { isAsleep_ = isAsleep; });
}

std::vector<Sounding> Speaker::sounding(Duration past) const
{
    const std::lock_guard guard{mutex_};
    const Instant now = scheduler_.now();
    std::vector<Sounding> result;
    for (const Sound& sound : sounds_) {
        if (sound.start <= now && !isOver(sound, now - past)) {
            result.push_back({sound.kind, sound.device, sound.gain, sound.id, sound.samples});
        }
    }
    return result;
}

bool Speaker::startRecording(const std::filesystem::path& file)
{
    const std::lock_guard guard{mutex_};
    recorder_ = std::make_unique<SoundRecorder>(file, scheduler_.now());
    if (!recorder_->isGood()) {
        recorder_.reset();
    }
    return recorder_ != nullptr;
}

bool Speaker::finishRecording()
{
    const std::lock_guard guard{mutex_};
    if (recorder_ == nullptr) {
        return false;
    }
    settle(scheduler_.now());
    return std::exchange(recorder_, nullptr)->finish();
}

/// Records the sound up to now, then applies the change.
template <class Change> void Speaker::change(Change apply)
{
    const std::lock_guard guard{mutex_};
    settle(scheduler_.now());
    apply();
    refreshGains();
}

void Speaker::settle(Instant now)
{
    if (recorder_ != nullptr) {
        audible_.clear();
        for (const Sound& sound : sounds_) {
            if (!sound.samples->empty()) { // a remembered beep lies before the frames that are still to be written
                audible_.push_back({*sound.samples, sound.start, sound.kind == Sounding::Kind::loop, sound.gain});
            }
        }
        recorder_->record(audible_, now);
    }
    std::erase_if(sounds_, [now](const Sound& sound) { return isOver(sound, now - memory); });
}

void Speaker::refreshGains()
{
    const auto defaultOutput = audio_.defaultOutput();
    const Instant now = scheduler_.now();
    for (Sound& sound : sounds_) {
        if (isOver(sound, now)) {
            continue; // a remembered beep stays as it was heard
        }
        if (sound.followsDefault) {
            sound.device = defaultOutput;
        }
        const float deviceGain = sound.device && !isAsleep_ ? audio_.audibleGain(*sound.device) : 0.0F;
        sound.gain = sound.volume * deviceGain;
    }
}

bool Speaker::isOver(const Sound& sound, Instant now)
{
    return sound.kind == Sounding::Kind::beep && now >= sound.start + beepLength;
}

Speaker::Sound* Speaker::find(SoundId id)
{
    const auto found = std::ranges::find(sounds_, id, &Sound::id);
    return found != sounds_.end() ? &*found : nullptr;
}

} // namespace sentrel::simulation
