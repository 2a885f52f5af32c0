#include "simulation/mac/motion/MotionChange.hpp"
#include "simulation/mac/motion/MotionRecording.hpp"
#include "simulation/stage/Action.hpp"
#include "simulation/stage/MacReader.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacWords.hpp"
#include "simulation/stage/Wording.hpp"

#include <array>
#include <variant>

// Actions on the hardware: power, lid, motion, sound, camera and displays.

namespace sentrel::simulation {

namespace {

using Power = MacDescription::Power;

std::string unknownDevice(MacSession& session, std::uint32_t id)
{
    std::vector<std::string> known;
    for (const AudioDevice& device : session.mac().audio.devices()) {
        if (device.id == id) {
            return {};
        }
        known.push_back(std::to_string(device.id));
    }
    const std::vector<std::string_view> words{known.begin(), known.end()};
    return unknownWord("audio device", std::to_string(id), words);
}

void setPower(MacSession& session, Power power)
{
    if (power == Power::unknown) {
        session.mac().power.setUnknown();
    } else {
        session.mac().power.setAC(power == Power::ac);
    }
}

Acceleration readSample(const YamlValue& value)
{
    requireList(value, "a sample");
    if (value.items.size() != 3) {
        throw SourceFault(value.line, "a sample has three numbers, [x, y, z] in g");
    }
    const double x = readNumber(value.items[0], "x");
    const double y = readNumber(value.items[1], "y");
    const double z = readNumber(value.items[2], "z");
    return {x, y, z};
}

PlayedRecording readRecording(const YamlValue& value, const ReadContext& context)
{
    try {
        const Bytes content = readFileContent(value, "the recording", context);
        return {MotionRecording::parse(textOf(content), (context.folder / value.text).string()), value.text};
    } catch (const MotionRecordingError& error) {
        throw SourceFault(value.line, error.what());
    }
}

ValueType<MotionChange> motionType()
{
    static constexpr std::array<Word<bool>, 2> rests{{{"resting", true}, {"still", false}}};
    const auto word = type::word("accelerometer", rests);
    Fields<MotionChange> fields{
        {"sample", [](auto& motion, auto& value, auto&) { motion = readSample(value); },
         Json{{"type", "array"}, {"items", {{"type", "number"}}}, {"minItems", 3}, {"maxItems", 3}}},
        {"file", [](auto& motion, auto& value, auto& context) { motion = readRecording(value, context); },
         type::text().schema},
        {"resting", [](auto& motion, auto& value, auto&) { motion = readFlag(value, "'resting'"); },
         type::flag().schema},
    };
    Json schema{{"anyOf", {word.schema, schemaOf(fields)}}};
    return {[word = word.read, fields = std::move(fields)](auto& value, auto what, auto& context) -> MotionChange {
                if (!value.isMap()) {
                    return word(value, what, context);
                }
                if (value.keys.size() != 1) {
                    throw SourceFault(value.line, "'accelerometer' takes one of sample, file and resting");
                }
                MotionChange motion;
                readFields(value, what, fields, motion, context);
                return motion;
            },
            std::move(schema)};
}

void move(MacSession& session, const MotionChange& motion)
{
    SimulatedAccelerometer& accelerometer = session.mac().accelerometer;
    if (const auto* sample = std::get_if<Acceleration>(&motion)) {
        accelerometer.sample(*sample);
    } else if (const auto* recording = std::get_if<PlayedRecording>(&motion)) {
        accelerometer.play(recording->content);
    } else {
        accelerometer.setResting(std::get<bool>(motion));
    }
}

std::string tellMotion(const MotionChange& motion)
{
    if (const auto* sample = std::get_if<Acceleration>(&motion)) {
        return "The accelerometer reads " + decimal(sample->x, 2) + ", " + decimal(sample->y, 2) + " and " +
               decimal(sample->z, 2) + " g.";
    }
    if (const auto* recording = std::get_if<PlayedRecording>(&motion)) {
        return "The Mac moves as recorded in " + recording->name + ".";
    }
    return std::get<bool>(motion) ? "The Mac lies still; its accelerometer delivers samples."
                                  : "The accelerometer falls silent.";
}

/// A person sets a device's volume, mute or both.
struct Volume {
    std::uint32_t device = 0;
    std::optional<double> value; ///< 0 to 1
    std::optional<bool> muted;
};

ValueType<Volume> volumeType()
{
    auto type = type::map(Fields<Volume>{
        required(field("device", &Volume::device, type::audioDevice())),
        field("value", &Volume::value, type::number(0.0, 1.0)),
        field("muted", &Volume::muted, type::flag()),
    });
    return {[read = std::move(type.read)](auto& value, auto what, auto& context) {
                Volume volume = read(value, what, context);
                if (!volume.value && !volume.muted) {
                    throw SourceFault(value.line, "'volume' needs 'value', 'muted' or both");
                }
                return volume;
            },
            std::move(type.schema)};
}

void setVolume(MacSession& session, const Volume& volume)
{
    const auto level = volume.value ? std::optional{static_cast<float>(*volume.value)} : std::nullopt;
    session.mac().audio.setVolume(volume.device, level, volume.muted);
}

/// The owner unplugs an audio device.
struct RemovedDevice {
    std::uint32_t id = 0;
};

void useMusic(MacSession& session, const std::string& use)
{
    SimulatedMusic& music = session.mac().music;
    if (use == "play") {
        music.play();
    } else if (use == "pause") {
        music.pause();
    } else {
        music.quit();
    }
}

constexpr std::array<Word<ports::CaptureAuthorization>, 4> authorizationTexts{{
    {"Sentrel may use the camera.", ports::CaptureAuthorization::authorized},
    {"Sentrel may not use the camera.", ports::CaptureAuthorization::denied},
    {"The camera may not be used on this Mac.", ports::CaptureAuthorization::restricted},
    {"Nobody has said yet whether Sentrel may use the camera.", ports::CaptureAuthorization::notDetermined},
}};

std::string tellCamera(const CameraChange& change)
{
    std::string text;
    if (change.authorization) {
        text += " " + std::string{wordFor(authorizationTexts, *change.authorization)};
    }
    if (change.devices) {
        text += change.devices->empty() ? " There is no camera any more."
                                        : " The cameras are now: " + listed(*change.devices) + ".";
    }
    if (change.brightness) {
        text += *change.brightness ? " The scene before the camera is now at " + percent(**change.brightness) + "."
                                   : " The scene before the camera is as bright as the day.";
    }
    if (change.share) {
        text += " The sides of a photo are divided by " + std::to_string(*change.share) + ".";
    }
    if (change.photo) {
        text += *change.photo ? " Every photo is now " + change.photoName + "." : " Photos show the café again.";
    }
    if (change.delay) {
        text += " A photo now takes " + decimal(toSeconds(*change.delay), 2) + " s.";
    }
    if (change.fails) {
        text += *change.fails ? " From now on every photo fails." : " Photos succeed again.";
    }
    return text.substr(1);
}

} // namespace

std::vector<ActionRow> hardwareActions()
{
    return {
        ActionRow::plain("unplug", "the charger is pulled out",
                         [](auto& session) { session.mac().power.setAC(false); }),
        ActionRow::plain("plug-in", "the charger is plugged in",
                         [](auto& session) { session.mac().power.setAC(true); }),
        ActionRow::plain("close-lid", "the lid is closed", [](auto& session) { session.closeLid(); }),
        ActionRow::plain("open-lid", "the lid is opened", [](auto& session) { session.openLid(); }),
        ActionRow::plain(
            "screens-sleep", "the screens go to sleep", [](auto& session) { session.sleepScreens(); },
            "The screen goes dark."),
        ActionRow::plain("sleep", "the machine sleeps", [](auto& session) { session.sleep(); }),
        ActionRow::plain("wake", "the machine wakes up", [](auto& session) { session.wake(); }),
        ActionRow::with("power", "{power: battery}", "the power source", type::word("power", powerWords), setPower),
        ActionRow::with("accelerometer", "{accelerometer: {sample: [0, 0, 1]}}", "motion of the Mac", motionType(),
                        move, tellMotion),
        ActionRow::with("volume", "{volume: {device: 73, value: 0.1}}", "a person sets a volume", volumeType(),
                        setVolume, nullptr,
                        [](auto& session, const Volume& volume) { return unknownDevice(session, volume.device); }),
        ActionRow::with(
            "default-output", "{default-output: 91}", "a person chooses the output, or the system loses it",
            type::orNone(type::audioDevice()),
            [](MacSession& session, const auto& device) { session.mac().audio.setDefaultOutput(device); }, nullptr,
            [](MacSession& session, const auto& device) {
                return device ? unknownDevice(session, *device) : std::string{};
            }),
        ActionRow::with(
            "audio-device", "{audio-device: {remove: 73}}", "an audio device disappears",
            type::map(Fields<RemovedDevice>{required(field("remove", &RemovedDevice::id, type::audioDevice()))}),
            [](MacSession& session, const RemovedDevice& device) { session.mac().audio.remove(device.id); },
            [](const RemovedDevice& device, const DeviceName& name) { return name(device.id) + " disappears."; },
            [](MacSession& session, const RemovedDevice& device) { return unknownDevice(session, device.id); }),
        ActionRow::with("music", "{music: play}", "the owner uses the Music app",
                        type::oneOf("music", {"play", "pause", "quit"}), useMusic),
        ActionRow::with(
            "camera", "{camera: {brightness: 0.05}}", "the cameras, their view and the permission to use them",
            cameraType(), [](MacSession& session, const CameraChange& change) { apply(change, session.mac().camera); },
            tellCamera),
        ActionRow::with("displays", "{displays: 2}", "how many displays are connected", displaysType(),
                        [](MacSession& session, std::size_t count) { session.mac().displays.setCount(count); }),
    };
}

} // namespace sentrel::simulation
