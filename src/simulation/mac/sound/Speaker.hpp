#pragma once

#include "runtime/Scheduler.hpp"
#include "simulation/mac/sound/SimulatedAudio.hpp"
#include "simulation/mac/sound/SoundRecorder.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace sentrel::simulation {

/// A sound at one moment.
struct Sounding {
    enum class Kind { loop, beep };

    Kind kind = Kind::loop;
    std::optional<ports::AudioObjectId> device; ///< the device that plays it; none without any output
    float gain = 0.0F;                          ///< from the samples to the ear: mixer, device volume, mute
    std::uint64_t id = 0;                       ///< constant as long as it sounds
    std::shared_ptr<const std::vector<float>> samples = nullptr; ///< at 44.1 kHz
};

/// Plays sounds through the simulated audio devices, and knows the audible result, now and on a recording. Samples are
/// computed only for a recording, up to each change. Times are on the hardware's clock. Any thread.
class Speaker {
public:
    using Samples = std::shared_ptr<const std::vector<float>>;
    using SoundId = std::uint64_t;

    /// Length of one system beep.
    static constexpr Duration beepLength = std::chrono::milliseconds{150};

    /// Time for which a beep is remembered after its end.
    static constexpr Duration memory = std::chrono::seconds{1};

    Speaker(Scheduler& hardware, SimulatedAudio& audio);
    ~Speaker();
    Speaker(const Speaker&) = delete;
    Speaker& operator=(const Speaker&) = delete;

    /// Begins a loop of samples at 44.1 kHz, now; without a device it follows the default output. Empty samples are
    /// silent.
    SoundId beginLoop(Samples samples, float volume, std::optional<ports::AudioObjectId> device);
    void setVolume(SoundId sound, float volume);
    void setDevice(SoundId sound, ports::AudioObjectId device);
    void end(SoundId sound);

    /// A short beep on the current default output, after those before it.
    void beep();

    /// While the machine sleeps nothing is heard.
    void setAsleep(bool isAsleep);

    /// The sounds playing now, oldest first, including those made inaudible by a mute or a missing device. `past`, at
    /// most `memory`, adds the beeps that ended within it.
    [[nodiscard]] std::vector<Sounding> sounding(Duration past = Duration::zero()) const;

    /// Records from now on into a WAV file; false when it can't be made.
    [[nodiscard]] bool startRecording(const std::filesystem::path& file);

    /// Ends the recording now. False when there was none or it could not be written completely.
    bool finishRecording();

private:
    struct Sound {
        SoundId id = 0;
        Sounding::Kind kind = Sounding::Kind::loop;
        Samples samples = {};
        Instant start = {};
        float volume = 1.0F;
        bool followsDefault = false;
        std::optional<ports::AudioObjectId> device = {};
        float gain = 0.0F; // as of the last change
    };

    template <class Change> void change(Change apply);
    void settle(Instant now);
    void refreshGains();
    [[nodiscard]] static bool isOver(const Sound& sound, Instant now);
    [[nodiscard]] Sound* find(SoundId id);

    Scheduler& scheduler_;
    SimulatedAudio& audio_;
    const Samples beepSamples_;
    mutable std::mutex mutex_;
    std::vector<Sound> sounds_;
    SoundId lastId_ = 0;
    Instant beepsEnd_{};
    bool isAsleep_ = false;
    std::unique_ptr<SoundRecorder> recorder_;
    std::vector<AudibleSound> audible_; // kept to reuse its memory
};

} // namespace sentrel::simulation
