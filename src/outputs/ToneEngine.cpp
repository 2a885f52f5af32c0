#include "outputs/ToneEngine.hpp"

#include "foundation/Quietly.hpp"
#include "outputs/ToneBuffer.hpp"
#include "ports/AudioConstants.hpp"

#include <utility>

namespace sentrel {

namespace {

using ports::audio::currentDeviceProperty;
using ports::audio::globalUnitScope;

constexpr std::uint32_t channelCount = 1;

std::unique_ptr<ports::AudioBuffer> makeTone(ports::AudioEngine& engine, const ports::AudioFormat& format,
                                             float alarmVolume)
{
    auto buffer = engine.makeBuffer(format, ToneBuffer::frameCount);
    if (buffer == nullptr || buffer->samples().size() != ToneBuffer::frameCount) {
        return nullptr;
    }
    ToneBuffer::render(buffer->samples().first<ToneBuffer::frameCount>(), alarmVolume);
    return buffer;
}

} // namespace

bool ToneEngine::start(ports::AudioObjectId device, float alarmVolume)
{
    stop();
    const bool isStarted = quietly([&] { return startNow(device, alarmVolume); });
    if (!isStarted) {
        stop();
    }
    return isStarted;
}

bool ToneEngine::startNow(ports::AudioObjectId device, float alarmVolume)
{
    engine_ = engines_.makeEngine();
    if (engine_ == nullptr) {
        return false;
    }
    // A refusal leaves the engine on the default device, which the take-over has set to the same device.
    engine_->setOutputUnitProperty(currentDeviceProperty, globalUnitScope, 0, device);
    const auto format = engine_->makeStandardFormat(ToneBuffer::sampleRate, channelCount);
    if (format == nullptr || !engine_->attachPlayerToMainMixer(*format)) {
        return false;
    }
    engine_->setMainMixerVolume(alarmVolume);
    auto tone = makeTone(*engine_, *format, alarmVolume);
    if (tone == nullptr || !engine_->start()) {
        return false;
    }
    engine_->scheduleLooping(std::move(tone));
    return engine_->play();
}

bool ToneEngine::isRunning()
{
    return engine_ != nullptr && quietly([this] { return engine_->isRunning(); });
}

void ToneEngine::stop()
{
    if (engine_ != nullptr) {
        quietly([this] { engine_->stop(); });
        engine_.reset();
    }
}

} // namespace sentrel
