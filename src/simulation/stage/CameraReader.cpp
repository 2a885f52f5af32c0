#include "simulation/stage/CameraReader.hpp"

#include <optional>
#include <utility>

namespace sentrel::simulation {

namespace {

using ports::CaptureAuthorization;

constexpr std::array<Word<CaptureAuthorization>, 4> authorizations{{
    {"authorized", CaptureAuthorization::authorized},
    {"denied", CaptureAuthorization::denied},
    {"notDetermined", CaptureAuthorization::notDetermined},
    {"restricted", CaptureAuthorization::restricted},
}};

/// A kind of camera and its default name.
struct CameraKind {
    std::string_view name;
    std::string_view type;
    bool isContinuityCamera = false;
};

constexpr std::array<Word<CameraKind>, 3> kinds{{
    {"built-in", {"FaceTime HD Camera", "AVCaptureDeviceTypeBuiltInWideAngleCamera"}},
    {"continuity", {"iPhone Camera", "AVCaptureDeviceTypeContinuityCamera", true}},
    {"external", {"USB Camera", "AVCaptureDeviceTypeExternal"}},
}};

/// A camera being read. Its type's defaults are known only after all keys.
struct CameraDraft {
    CameraKind kind = kinds.front().meaning;
    std::optional<std::string> name;
    std::optional<bool> isContinuityCamera;

    [[nodiscard]] CameraModel model() const
    {
        CameraModel model;
        model.name = name.value_or(std::string{kind.name});
        model.type = kind.type;
        model.isContinuityCamera = isContinuityCamera.value_or(kind.isContinuityCamera);
        return model;
    }
};

constexpr std::array<FieldRow<CameraDraft>, 3> cameraDeviceFields{{
    {"name", [](auto& draft, auto& value, auto&) { draft.name = readText(value, "'name'"); }},
    {"type", [](auto& draft, auto& value, auto&) { draft.kind = readWord(value, "type of camera", kinds); }},
    {"continuity", [](auto& draft, auto& value, auto&) { draft.isContinuityCamera = readFlag(value, "'continuity'"); }},
}};

CameraModel readDevice(const YamlValue& value, const ReadContext& context)
{
    CameraDraft draft;
    if (value.isMap()) {
        readFields(value, "a camera", cameraDeviceFields, draft, context);
    } else {
        draft.kind = readWord(value, "camera", kinds);
    }
    return draft.model();
}

std::vector<CameraModel> readDevices(const YamlValue& value, const ReadContext& context)
{
    std::vector<CameraModel> devices;
    if (value.isList()) {
        for (const YamlValue& item : value.items) {
            devices.push_back(readDevice(item, context));
        }
    } else if (!isNone(value)) {
        devices.push_back(readDevice(value, context));
    }
    return devices;
}

void readBrightness(ChangeCamera& action, const YamlValue& value, const ReadContext&)
{
    action.change.brightness.emplace();
    if (!isNone(value)) {
        *action.change.brightness = readNumber(value, "'brightness'", 0.0, 1.0);
    }
}

void readPhoto(ChangeCamera& action, const YamlValue& value, const ReadContext& context)
{
    action.change.photo.emplace();
    if (const auto name = readOptionalText(value, "the photo")) {
        *action.change.photo = readFileContent(value, "the photo", context);
        action.photoName = *name;
    }
}

constexpr std::array<FieldRow<ChangeCamera>, 6> cameraFields{{
    {"authorization", [](auto& action, auto& value,
                         auto&) { action.change.authorization = readWord(value, "authorization", authorizations); }},
    {"devices", [](auto& action, auto& value, auto& context) { action.change.devices = readDevices(value, context); }},
    {"brightness", readBrightness},
    {"photo", readPhoto},
    {"delay", [](auto& action, auto& value, auto&) { action.change.delay = readSpan(value, "'delay'"); }},
    {"fail", [](auto& action, auto& value, auto&) { action.change.fails = readFlag(value, "'fail'"); }},
}};

} // namespace

ChangeCamera readCamera(const YamlValue& value, const ReadContext& context)
{
    ChangeCamera action;
    if (!value.isMap()) {
        action.change.devices = readDevices(value, context);
        return action;
    }
    readFields(value, "'camera'", cameraFields, action, context);
    if (value.keys.empty()) {
        throw SourceFault(value.line, "'camera' needs at least one key, as in {camera: {brightness: 0.05}}");
    }
    return action;
}

} // namespace sentrel::simulation
