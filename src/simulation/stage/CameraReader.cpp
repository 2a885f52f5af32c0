#include "simulation/stage/MacReader.hpp"

#include <array>
#include <optional>
#include <utility>

namespace sentrel::simulation {

namespace {

using ports::CaptureAuthorization;

constexpr std::array<Word<CaptureAuthorization>, 4> authorizationWords{{
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

constexpr std::array<Word<CameraKind>, 3> cameraKinds{{
    {"built-in", {"FaceTime HD Camera", "AVCaptureDeviceTypeBuiltInWideAngleCamera"}},
    {"continuity", {"iPhone Camera", "AVCaptureDeviceTypeContinuityCamera", true}},
    {"external", {"USB Camera", "AVCaptureDeviceTypeExternal"}},
}};

/// A camera being read. Its type's defaults are known only after all keys.
struct CameraDraft {
    CameraKind kind = cameraKinds.front().meaning;
    std::string name;
    std::optional<bool> isContinuityCamera;

    [[nodiscard]] CameraModel model() const
    {
        CameraModel model;
        model.name = name.empty() ? kind.name : name;
        model.type = kind.type;
        model.isContinuityCamera = isContinuityCamera.value_or(kind.isContinuityCamera);
        return model;
    }
};

/// A word, or a map.
ValueType<CameraModel> cameraModelType()
{
    Fields<CameraDraft> fields{
        field("name", &CameraDraft::name, type::text()),
        field("type", &CameraDraft::kind, type::word("type of camera", cameraKinds)),
        field("continuity", &CameraDraft::isContinuityCamera, type::flag()),
    };
    auto kind =
        type::made(type::word("camera", cameraKinds), [](CameraKind meaning) { return CameraDraft{meaning, {}, {}}; });
    return type::called("a camera", type::made(type::either(type::map(std::move(fields)), std::move(kind)),
                                               [](const CameraDraft& draft) { return draft.model(); }));
}

/// A list, or for short one camera or `none`.
ValueType<std::vector<CameraModel>> camerasType()
{
    const auto camera = cameraModelType();
    return {[read = camera.read](auto& value, auto what, auto& context) {
                std::vector<CameraModel> cameras;
                if (value.isList()) {
                    for (const YamlValue& item : value.items) {
                        cameras.push_back(read(item, what, context));
                    }
                } else if (!isNone(value)) {
                    cameras.push_back(read(value, what, context));
                }
                return cameras;
            },
            {{"anyOf", {{{"enum", {"none", nullptr}}}, camera.schema, {{"type", "array"}, {"items", camera.schema}}}}}};
}

Field<CameraChange> photoField()
{
    return {"photo",
            [](CameraChange& into, const YamlValue& value, const ReadContext& context) {
                into.photo.emplace();
                if (const auto name = readOptionalText(value, "the photo")) {
                    *into.photo = readFileContent(value, "the photo", context);
                    into.photoName = *name;
                }
            },
            type::text().schema};
}

} // namespace

ValueType<CameraChange> cameraType()
{
    Fields<CameraChange> fields{
        field("authorization", &CameraChange::authorization, type::word("authorization", authorizationWords)),
        field("devices", &CameraChange::devices, camerasType()),
        field("brightness", &CameraChange::brightness, type::orNone(type::number(0.0, 1.0))),
        field("share", &CameraChange::share,
              type::made(type::whole(1, 16), [](auto share) { return static_cast<int>(share); })),
        photoField(),
        field("delay", &CameraChange::delay, type::span()),
        field("fail", &CameraChange::fails, type::flag()),
    };
    auto devices = type::made(camerasType(), [](std::vector<CameraModel> cameras) {
        CameraChange change;
        change.devices = std::move(cameras);
        return change;
    });
    return type::either(type::map(std::move(fields), "{camera: {brightness: 0.05}}"), std::move(devices));
}

} // namespace sentrel::simulation
