#include "simulation/mac/sound/SimulatedAudioEngine.hpp"

#include <cmath>
#include <utility>
#include <vector>

namespace sentrel::simulation {

namespace {

// <AudioToolbox/AudioUnitProperties.h> and <AudioToolbox/AUComponent.h>
constexpr std::uint32_t currentDeviceProperty = 2000;
constexpr std::uint32_t globalUnitScope = 0;
constexpr std::int32_t invalidProperty = -10879;
constexpr std::int32_t invalidPropertyValue = -10851;

class Format final : public ports::AudioFormat {};

class Buffer final : public ports::AudioBuffer {
public:
    explicit Buffer(std::size_t frames) : samples_(std::make_shared<std::vector<float>>(frames)) {}
    [[nodiscard]] std::span<float> samples() override { return *samples_; }

    /// The samples, without a copy. They must not be written to afterwards.
    [[nodiscard]] Speaker::Samples share() const { return samples_; }

private:
    std::shared_ptr<std::vector<float>> samples_;
};

/// The samples of any buffer; those of this module's buffers are not copied.
Speaker::Samples samplesOf(ports::AudioBuffer& buffer)
{
    if (const auto* const own = dynamic_cast<const Buffer*>(&buffer)) {
        return own->share();
    }
    const auto samples = buffer.samples();
    return std::make_shared<const std::vector<float>>(samples.begin(), samples.end());
}

} // namespace

std::unique_ptr<ports::AudioEngine> SimulatedAudioEngines::makeEngine()
{
    faults_.call("makeEngine");
    return std::make_unique<SimulatedAudioEngine>(*this);
}

void SimulatedAudioEngines::stopPlaying()
{
    const std::lock_guard guard{mutex_};
    while (!playing_.empty() && faults_.strikes("engine-stops")) {
        playing_.back()->fallSilent();
        playing_.pop_back();
    }
}

SimulatedAudioEngine::SimulatedAudioEngine(SimulatedAudioEngines& engines)
    : engines_(engines), speaker_(engines.speaker_), audio_(engines.audio_), faults_(engines.faults_)
{
}

SimulatedAudioEngine::~SimulatedAudioEngine()
{
    end();
}

std::int32_t SimulatedAudioEngine::setOutputUnitProperty(std::uint32_t property, std::uint32_t scope,
                                                         std::uint32_t element, std::uint32_t value)
{
    faults_.call("setOutputUnitProperty");
    if (property != currentDeviceProperty || scope != globalUnitScope || element != 0) {
        return invalidProperty;
    }
    const auto device = audio_.device(value);
    if (!device || !device->hasOutput() || faults_.strikes("device")) {
        return invalidPropertyValue;
    }
    device_ = value;
    if (sound_) {
        speaker_.setDevice(*sound_, value);
    }
    return 0;
}

std::unique_ptr<ports::AudioFormat> SimulatedAudioEngine::makeStandardFormat(double sampleRate, std::uint32_t channels)
{
    faults_.call("makeStandardFormat");
    const bool isSupported = sampleRate == static_cast<double>(SoundRecorder::sampleRate) && channels > 0;
    if (!isSupported || faults_.strikes("format")) {
        return nullptr;
    }
    return std::make_unique<Format>();
}

std::unique_ptr<ports::AudioBuffer> SimulatedAudioEngine::makeBuffer(const ports::AudioFormat& /*format*/,
                                                                     std::size_t frames)
{
    faults_.call("makeBuffer");
    constexpr std::size_t mostFrames = 60 * static_cast<std::size_t>(SoundRecorder::sampleRate);
    if (frames == 0 || frames > mostFrames || faults_.strikes("buffer")) {
        return nullptr;
    }
    return std::make_unique<Buffer>(frames);
}

bool SimulatedAudioEngine::attachPlayerToMainMixer(const ports::AudioFormat& /*format*/)
{
    faults_.call("attachPlayerToMainMixer");
    if (faults_.strikes("attach")) {
        return false;
    }
    isAttached_ = true;
    return true;
}

void SimulatedAudioEngine::setMainMixerVolume(float volume)
{
    faults_.call("setMainMixerVolume");
    mixerVolume_ = std::fmin(std::fmax(volume, 0.0F), 1.0F);
    if (sound_) {
        speaker_.setVolume(*sound_, mixerVolume_);
    }
}

bool SimulatedAudioEngine::start()
{
    faults_.call("start");
    const std::lock_guard guard{mutex_};
    isStarted_ = isAttached_ && !faults_.strikes("start");
    return isStarted_;
}

void SimulatedAudioEngine::scheduleLooping(std::unique_ptr<ports::AudioBuffer> buffer)
{
    faults_.call("scheduleLooping");
    if (buffer != nullptr) {
        scheduled_ = samplesOf(*buffer);
    }
}

bool SimulatedAudioEngine::play()
{
    faults_.call("play");
    {
        const std::lock_guard guard{mutex_};
        if (!isStarted_ || faults_.strikes("play")) {
            return false;
        }
        if (scheduled_ == nullptr || sound_ || faults_.strikes("silent")) {
            return true;
        }
        sound_ = speaker_.beginLoop(scheduled_, mixerVolume_, device_);
    }
    {
        const std::lock_guard guard{engines_.mutex_};
        engines_.playing_.push_back(this);
    }
    engines_.stopPlaying();
    return true;
}

bool SimulatedAudioEngine::isRunning()
{
    faults_.call("isRunning");
    const std::lock_guard guard{mutex_};
    return isStarted_;
}

void SimulatedAudioEngine::stop()
{
    faults_.call("stop");
    end();
}

void SimulatedAudioEngine::end()
{
    {
        const std::lock_guard guard{engines_.mutex_};
        std::erase(engines_.playing_, this);
    }
    fallSilent();
    scheduled_.reset();
}

void SimulatedAudioEngine::fallSilent()
{
    const std::lock_guard guard{mutex_};
    isStarted_ = false;
    if (sound_) {
        speaker_.end(*std::exchange(sound_, std::nullopt));
    }
}

} // namespace sentrel::simulation
