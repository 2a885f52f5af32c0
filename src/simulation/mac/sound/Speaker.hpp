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

/// What sounds at a moment.
struct Sounding {
    enum class Kind { loop, beep };

    Kind kind = Kind::loop;
    std::optional<ports::AudioObjectId> device; ///< where it is played; none without any output
    float gain = 0.0F;                          ///< from the samples to the ear: mixer, device volume, mute
    std::uint64_t id = 0;                       ///< the same as long as it sounds
    std::shared_ptr<const std::vector<float>> samples = nullptr; ///< at 44.1 kHz
};

/// Plays sounds through the simulated audio devices, and so knows what the ear hears, now and on a recording. It keeps
/// what sounds and what was changed last; samples are computed only for a recording, up to each change. The clock is
/// the hardware's. Any thread.
class Speaker {
public:
    using Samples = std::shared_ptr<const std::vector<float>>;
    using SoundId = std::uint64_t;

    /// Length of one system beep.
    static constexpr Duration beepLength = std::chrono::milliseconds{150};

    /// How long a beep is remembered after its end.
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

    /// A short beep on what is the default output now; it waits until those before it have sounded.
    void beep();

    /// While the machine sleeps nothing is heard.
    void setAsleep(bool isAsleep);

    /// What sounds now, also what a mute or a missing device makes inaudible; oldest first. With a span of at most
    /// `memory`, beeps count that ended within it.
    [[nodiscard]] std::vector<Sounding> sounding(Duration past = Duration::zero()) const;

    /// Records from now on into a WAV file; false when it can't be made.
    [[nodiscard]] bool startRecording(const std::filesystem::path& file);

    /// Brings the recording up to now, so that an open file grows while nothing changes.
    void renderUpToNow();

    /// Ends the recording now. False when there was none or it could not be written whole.
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
    std::vector<AudibleSound> audible_; // kept to be filled again
};

} // namespace sentrel::simulation
