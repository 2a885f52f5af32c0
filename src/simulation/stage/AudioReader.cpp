#include "simulation/stage/MacReader.hpp"
#include "simulation/stage/MacWords.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace sentrel::simulation {

namespace {

/// A device being read. The initial value of controls without their own is known only after all keys.
struct AudioDraft {
    std::uint32_t id = 0;
    std::string name;
    std::string uid;
    std::uint32_t transport = AudioDevice{}.transport;
    double volume = 0.5;
    bool isMuted = false;
    std::map<AudioControl, std::optional<double>> controls{{{AudioControl::virtualMainVolume, 0}, {}},
                                                           {{AudioControl::mute, 0}, {}}};
};
using Controls = decltype(AudioDraft::controls);

// Highest element of a simulated device.
constexpr std::uint32_t lastElement = 64;

constexpr std::array<std::string_view, 3> selectorNames{"vmvc", "volm", "mute"};
constexpr std::array<std::uint32_t, 3> selectors{AudioControl::virtualMainVolume, AudioControl::volumeScalar,
                                                 AudioControl::mute};

std::uint32_t readElement(const YamlValue& value)
{
    return readWhole(value, "an output element", 0, lastElement);
}

double readControlValue(const YamlValue& value, std::uint32_t selector)
{
    if (selector == AudioControl::mute) {
        return readFlag(value, "the mute of an element") ? 1.0 : 0.0;
    }
    return readNumber(value, "the volume of an element", 0.0, 1.0);
}

void addControl(Controls& controls, const AudioControl& control, std::optional<double> value, int line)
{
    if (!controls.emplace(control, value).second) {
        throw SourceFault(line, "element " + std::to_string(control.element) + " is given twice");
    }
}

void readSelector(Controls& controls, std::uint32_t selector, const YamlValue& value)
{
    if (value.isMap()) {
        for (std::size_t i = 0; i < value.keys.size(); ++i) {
            const std::uint32_t element = readElement(value.keys[i]);
            addControl(controls, {selector, element}, readControlValue(value.items[i], selector), value.keys[i].line);
        }
        return;
    }
    requireList(value, "the elements of a property");
    for (const YamlValue& item : value.items) {
        addControl(controls, {selector, readElement(item)}, {}, item.line);
    }
}

Controls readControls(const YamlValue& value)
{
    Controls controls;
    if (value.isList()) {
        for (const std::uint32_t selector : selectors) {
            readSelector(controls, selector, value);
        }
        return controls;
    }
    requireMap(value, "'elements'");
    KeyChecker checker{selectorNames, "'elements'"};
    for (std::size_t i = 0; i < value.keys.size(); ++i) {
        readSelector(controls, selectors[checker.placeOf(value.keys[i])], value.items[i]);
    }
    return controls;
}

ValueType<Controls> controlsType()
{
    const Json elements{{"type", "array"}, {"items", {{"type", "integer"}, {"minimum", 0}, {"maximum", lastElement}}}};
    Json schema{{"anyOf", {elements, {{"type", "object"}, {"additionalProperties", false}}}}};
    for (const std::string_view name : selectorNames) {
        schema["anyOf"][1]["properties"][std::string{name}] = {{"type", {"array", "object"}}};
    }
    return {[](auto& value, auto, auto&) { return readControls(value); }, std::move(schema)};
}

AudioDevice deviceOf(const AudioDraft& draft)
{
    const std::string number = std::to_string(draft.id);
    AudioDevice device;
    device.id = draft.id;
    device.name = draft.name.empty() ? "Audio device " + number : draft.name;
    device.uid = draft.uid.empty() ? "AudioDevice" + number : draft.uid;
    device.transport = draft.transport;
    for (const auto& [control, ownValue] : draft.controls) {
        const double isMuted = draft.isMuted ? 1.0 : 0.0;
        const double common = control.selector == AudioControl::mute ? isMuted : draft.volume;
        device.controls[control] = static_cast<float>(ownValue.value_or(common));
    }
    return device;
}

ValueType<AudioDevice> audioDeviceType()
{
    Fields<AudioDraft> fields{
        required(field("id", &AudioDraft::id, type::audioDevice())),
        field("name", &AudioDraft::name, type::text()),
        field("uid", &AudioDraft::uid, type::text()),
        field("transport", &AudioDraft::transport, type::word("transport", transportWords)),
        field("volume", &AudioDraft::volume, type::number(0.0, 1.0)),
        field("muted", &AudioDraft::isMuted, type::flag()),
        field("elements", &AudioDraft::controls, controlsType()),
    };
    return type::called("an audio device", type::made(type::map(std::move(fields)), deviceOf));
}

} // namespace

ValueType<std::vector<AudioDevice>> audioDevicesType()
{
    const auto device = audioDeviceType();
    return {[read = device.read](auto& value, auto what, auto& context) {
                requireList(value, what);
                std::vector<AudioDevice> devices;
                for (const YamlValue& item : value.items) {
                    AudioDevice next = read(item, what, context);
                    if (std::ranges::find(devices, next.id, &AudioDevice::id) != devices.end()) {
                        throw SourceFault(item.line, "two audio devices have the id " + std::to_string(next.id));
                    }
                    devices.push_back(std::move(next));
                }
                return devices;
            },
            {{"type", "array"}, {"items", device.schema}}};
}

} // namespace sentrel::simulation
