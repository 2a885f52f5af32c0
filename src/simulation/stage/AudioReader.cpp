#include "simulation/stage/AudioReader.hpp"

#include "foundation/FourCharCode.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace sentrel::simulation {

namespace {

/// A device being read. The initial value of controls without their own is known only after all keys.
struct Draft {
    AudioDevice device;
    double volume = 0.5;
    bool isMuted = false;
    std::map<AudioControl, std::optional<double>> controls{{{AudioControl::virtualMainVolume, 0}, {}},
                                                           {{AudioControl::mute, 0}, {}}};
};
using Controls = decltype(Draft::controls);

// Highest element of a simulated device.
constexpr std::uint32_t lastElement = 64;

constexpr std::array<Word<std::uint32_t>, 27> transports{{
    {"built-in", fourCharCode("bltn")},  {"builtIn", fourCharCode("bltn")},      {"bltn", fourCharCode("bltn")},
    {"usb", fourCharCode("usb ")},       {"usb ", fourCharCode("usb ")},         {"bluetooth", fourCharCode("blue")},
    {"blue", fourCharCode("blue")},      {"bluetooth-le", fourCharCode("blea")}, {"blea", fourCharCode("blea")},
    {"hdmi", fourCharCode("hdmi")},      {"displayport", fourCharCode("dprt")},  {"dprt", fourCharCode("dprt")},
    {"airplay", fourCharCode("airp")},   {"airp", fourCharCode("airp")},         {"thunderbolt", fourCharCode("thun")},
    {"thun", fourCharCode("thun")},      {"pci", fourCharCode("pci ")},          {"pci ", fourCharCode("pci ")},
    {"firewire", fourCharCode("1394")},  {"1394", fourCharCode("1394")},         {"avb", fourCharCode("eavb")},
    {"eavb", fourCharCode("eavb")},      {"virtual", fourCharCode("virt")},      {"virt", fourCharCode("virt")},
    {"aggregate", fourCharCode("grup")}, {"grup", fourCharCode("grup")},         {"unknown", 0},
}};

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
        throw SourceFault(line, "element " + std::to_string(control.element) + " stands twice");
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

constexpr std::array<FieldRow<Draft>, 7> deviceFields{{
    {"id", [](auto& draft, auto& value, auto&) { draft.device.id = readDevice(value); }, true},
    {"name", [](auto& draft, auto& value, auto&) { draft.device.name = readText(value, "'name'"); }},
    {"uid", [](auto& draft, auto& value, auto&) { draft.device.uid = readText(value, "'uid'"); }},
    {"transport",
     [](auto& draft, auto& value, auto&) { draft.device.transport = readWord(value, "transport", transports); }},
    {"volume", [](auto& draft, auto& value, auto&) { draft.volume = readNumber(value, "'volume'", 0.0, 1.0); }},
    {"muted", [](auto& draft, auto& value, auto&) { draft.isMuted = readFlag(value, "'muted'"); }},
    {"elements", [](auto& draft, auto& value, auto&) { draft.controls = readControls(value); }},
}};

AudioDevice readAudioDevice(const YamlValue& value, const ReadContext& context)
{
    Draft draft;
    readFields(value, "an audio device", deviceFields, draft, context);
    AudioDevice& device = draft.device;
    const std::string number = std::to_string(device.id);
    device.name = device.name.empty() ? "Audio device " + number : device.name;
    device.uid = device.uid.empty() ? "AudioDevice" + number : device.uid;
    for (const auto& [control, ownValue] : draft.controls) {
        const double isMuted = draft.isMuted ? 1.0 : 0.0;
        const double common = control.selector == AudioControl::mute ? isMuted : draft.volume;
        device.controls[control] = static_cast<float>(ownValue.value_or(common));
    }
    return std::move(device);
}

} // namespace

std::vector<AudioDevice> readAudioDevices(const YamlValue& value, const ReadContext& context)
{
    requireList(value, "'audio'");
    std::vector<AudioDevice> devices;
    for (const YamlValue& item : value.items) {
        AudioDevice device = readAudioDevice(item, context);
        const bool isTaken =
            std::ranges::any_of(devices, [&](const AudioDevice& other) { return other.id == device.id; });
        if (isTaken) {
            throw SourceFault(item.line, "two audio devices have the id " + std::to_string(device.id));
        }
        devices.push_back(std::move(device));
    }
    return devices;
}

std::string_view transportName(std::uint32_t transport)
{
    const auto found = std::ranges::find(transports, transport, &Word<std::uint32_t>::meaning);
    return found == transports.end() ? "unknown" : found->text;
}

} // namespace sentrel::simulation
