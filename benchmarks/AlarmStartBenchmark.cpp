#include "BesideFloor.hpp"

#include "outputs/AlarmSoundPlayer.hpp"
#include "outputs/MediaPlayback.hpp"
#include "outputs/SystemVolumeControl.hpp"
#include "outputs/ToneBuffer.hpp"
#include "ports/Journal.hpp"
#include "ports/UserDefaults.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/mac/MacDescription.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/mac/music/SimulatedInput.hpp"
#include "simulation/mac/music/SimulatedMusic.hpp"
#include "simulation/mac/sound/SimulatedAudioEngines.hpp"
#include "simulation/mac/sound/SimulatedBeep.hpp"
#include "simulation/mac/sound/Speaker.hpp"
#include "support/MemoryDefaults.hpp"

#include <map>
#include <memory>
#include <span>

namespace sentrel {
namespace {

class Silence final : public ports::Journal {
public:
    void write(std::string_view /*event*/, std::initializer_list<Field> /*fields*/) override {}
};

/// From the call to the player's `play` on the engine, with the take-over of the speaker, beside making the tone's
/// buffer and rendering it.
void alarmStart(benchmark::State& state)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    Silence journal;
    test::MemoryDefaults defaults;
    const simulation::MacDescription description;
    simulation::SimulatedAudio audio{journal, description.audio, description.defaultOutput};
    simulation::Speaker speaker{scheduler, audio};
    simulation::SimulatedAudioEngines engines{speaker, audio};
    simulation::SimulatedBeep beep{speaker};
    simulation::SimulatedMusic music{journal};
    simulation::SimulatedInput input{[] {}};
    simulation::IcuLanguage language{SENTREL_SOURCE_DIR "/resources", journal};
    SystemVolumeControl outputVolume{audio, language};
    MediaPlayback mediaPlayback{MainActor{scheduler}, music, music, input};
    AlarmSoundPlayer player{MainActor{scheduler},
                            {outputVolume, mediaPlayback, engines, beep, defaults, language, journal}};

    auto render = [] {
        const auto samples = std::make_unique<float[]>(ToneBuffer::frameCount);
        ToneBuffer::render(std::span<float, ToneBuffer::frameCount>{samples.get(), ToneBuffer::frameCount}, 0.8F);
        benchmark::DoNotOptimize(samples.get());
    };
    auto start = [&] {
        player.play(0.8F);
        clock.runReady();
    };
    double fastestRender = 1e9;
    double fastestStart = 1e9;
    for ([[maybe_unused]] auto turn : state) {
        fastestRender = std::min(fastestRender, secondsOf(render, processorSeconds));
        const double seconds = secondsOf(start, processorSeconds);
        fastestStart = std::min(fastestStart, seconds);
        state.SetIterationTime(seconds);
        player.stop();
        clock.runReady();
    }
    state.counters["floor_ns"] = fastestRender * 1e9;
    state.counters["work_ns"] = fastestStart * 1e9;
    state.counters["ratio"] = fastestStart / fastestRender;
    state.counters["limit"] = 1.5;
}
BENCHMARK(alarmStart)->UseManualTime();

} // namespace
} // namespace sentrel
