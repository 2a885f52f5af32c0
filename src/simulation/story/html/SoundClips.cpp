#include "simulation/story/html/SoundClips.hpp"

#include "simulation/mac/sound/SoundRecorder.hpp"
#include "simulation/mac/sound/WavHeader.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::size_t framesForOne = 4; // of the recording, for one sample of a clip
constexpr double sampleRate = static_cast<double>(SoundRecorder::sampleRate) / framesForOne;
constexpr auto longestPause = static_cast<std::size_t>(2.0 * sampleRate);
constexpr std::size_t peaksInClip = 480;

using Samples = std::vector<std::int16_t>;

/// Cuts a series of samples into clips.
class Cutter {
public:
    explicit Cutter(double mostSeconds) : room_(static_cast<std::size_t>(std::max(mostSeconds, 0.0) * sampleRate)) {}

    void take(std::int16_t sample)
    {
        if (sample != 0 && open_.empty()) {
            start_ = place_;
        }
        ++place_;
        if (sample == 0 && open_.empty()) {
            return;
        }
        open_.push_back(sample);
        pause_ = sample == 0 ? pause_ + 1 : 0;
        if (pause_ > longestPause) {
            close();
        }
    }

    std::vector<SoundClip> finish()
    {
        if (!open_.empty()) {
            close();
        }
        return std::move(clips_);
    }

private:
    void close()
    {
        open_.resize(open_.size() - pause_);
        const std::size_t kept = std::min(room_, open_.size());
        room_ -= kept;
        clips_.push_back({.start = static_cast<double>(start_) / sampleRate,
                          .seconds = static_cast<double>(open_.size()) / sampleRate,
                          .peaks = peaks(),
                          .wav = kept == 0 ? Bytes{} : wav(kept),
                          .kept = static_cast<double>(kept) / sampleRate});
        open_.clear();
        pause_ = 0;
    }

    [[nodiscard]] std::vector<float> peaks() const
    {
        constexpr float fullScale = 32767.0F;
        std::vector<float> found(std::min(peaksInClip, open_.size()), 0.0F);
        for (std::size_t index = 0; index < open_.size(); ++index) {
            float& peak = found[index * found.size() / open_.size()];
            peak = std::max(peak, std::abs(static_cast<float>(open_[index])) / fullScale);
        }
        return found;
    }

    [[nodiscard]] Bytes wav(std::size_t kept) const
    {
        const auto header =
            WavHeader{static_cast<std::uint32_t>(sampleRate), 8, static_cast<std::uint32_t>(kept)}.bytes();
        Bytes file{header.begin(), header.end()};
        file.reserve(header.size() + kept);
        for (std::size_t index = 0; index < kept; ++index) {
            file.push_back(static_cast<std::uint8_t>((open_[index] + 32'768) / 256));
        }
        return file;
    }

    std::size_t room_; // samples that may still be kept
    std::size_t place_ = 0;
    std::size_t start_ = 0;
    std::size_t pause_ = 0;
    Samples open_; // the clip that has begun, with the pause at its end
    std::vector<SoundClip> clips_;
};

} // namespace

std::vector<SoundClip> soundClips(const std::filesystem::path& recording, double mostSeconds)
{
    std::ifstream file{recording, std::ios::binary};
    file.seekg(sizeof(WavHeader));
    Cutter cutter{mostSeconds};
    std::array<std::int16_t, framesForOne * 16'384> block{};
    while (file) {
        file.read(reinterpret_cast<char*>(block.data()), static_cast<std::streamsize>(sizeof(block)));
        const auto frames = static_cast<std::size_t>(file.gcount()) / sizeof(std::int16_t);
        for (std::size_t frame = 0; frame + framesForOne <= frames; frame += framesForOne) {
            std::int32_t sum = 0;
            for (std::size_t index = 0; index < framesForOne; ++index) {
                sum += block[frame + index];
            }
            cutter.take(static_cast<std::int16_t>(sum / static_cast<std::int32_t>(framesForOne)));
        }
    }
    return cutter.finish();
}

} // namespace sentrel::simulation
