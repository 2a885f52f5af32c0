#include "simulation/mac/sound/AudioDevice.hpp"

#include <algorithm>
#include <cmath>

namespace sentrel::simulation {

namespace {

std::optional<float> mean(const std::map<AudioControl, float>& controls, std::uint32_t selector)
{
    float sum = 0.0F;
    int count = 0;
    for (const auto& [control, value] : controls) {
        if (control.selector == selector) {
            sum += value;
            ++count;
        }
    }
    return count > 0 ? std::optional{sum / static_cast<float>(count)} : std::nullopt;
}

/// Clamps to a control's range 0...1; NaN gives 0.
float scalar(float volume)
{
    return std::fmin(std::fmax(volume, 0.0F), 1.0F);
}

} // namespace

void AudioDevice::addControls(const std::vector<std::uint32_t>& elements, float volume, bool isMuted)
{
    for (const std::uint32_t element : elements) {
        controls[{AudioControl::virtualMainVolume, element}] = scalar(volume);
        controls[{AudioControl::mute, element}] = isMuted ? 1.0F : 0.0F;
    }
}

bool AudioDevice::hasOutput() const
{
    return std::ranges::any_of(outputBuffers, [](std::uint32_t channels) { return channels > 0; });
}

std::optional<float> AudioDevice::volume() const
{
    const auto main = mean(controls, AudioControl::virtualMainVolume);
    return main ? main : mean(controls, AudioControl::volumeScalar);
}

bool AudioDevice::isMuted() const
{
    return std::ranges::any_of(
        controls, [](const auto& entry) { return entry.first.selector == AudioControl::mute && entry.second != 0.0F; });
}

float AudioDevice::audibleGain() const
{
    if (!hasOutput() || isMuted()) {
        return 0.0F;
    }
    return volume().value_or(1.0F);
}

void AudioDevice::setVolume(float volume)
{
    for (auto& [control, value] : controls) {
        if (control.selector != AudioControl::mute) {
            value = scalar(volume);
        }
    }
}

void AudioDevice::setMuted(bool isMuted)
{
    for (auto& [control, value] : controls) {
        if (control.selector == AudioControl::mute) {
            value = isMuted ? 1.0F : 0.0F;
        }
    }
}

} // namespace sentrel::simulation
