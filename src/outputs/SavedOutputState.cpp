#include "outputs/SavedOutputState.hpp"

#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>

namespace sentrel {

std::optional<Bytes> encode(const SavedOutputState& state)
{
    Json json;
    json["speakerDeviceID"] = state.speakerDeviceID;
    json["speakerVolume"] = jsonNumber(state.speakerVolume);
    json["speakerWasMuted"] = state.speakerWasMuted;
    if (state.previousDefaultDeviceID) {
        json["previousDefaultDeviceID"] = *state.previousDefaultDeviceID;
    }
    if (state.previousDefaultVolume) {
        json["previousDefaultVolume"] = jsonNumber(*state.previousDefaultVolume);
    }
    json["previousDefaultWasMuted"] = state.previousDefaultWasMuted;
    json["switchedDefaultDevice"] = state.switchedDefaultDevice;
    try {
        return bytesOf(encodeJson(json));
    } catch (const JsonEncodingError&) {
        return std::nullopt;
    }
}

std::optional<SavedOutputState> decodeSavedOutputState(BytesView text)
{
    const auto json = parseJson(text);
    if (!json) {
        return std::nullopt;
    }
    const auto speaker = uint32Member(*json, "speakerDeviceID");
    const auto speakerVolume = floatMember(*json, "speakerVolume");
    const auto speakerWasMuted = boolMember(*json, "speakerWasMuted");
    const auto previousWasMuted = boolMember(*json, "previousDefaultWasMuted");
    const auto switched = boolMember(*json, "switchedDefaultDevice");
    if (!speaker || !speakerVolume || !speakerWasMuted || !previousWasMuted || !switched) {
        return std::nullopt;
    }
    const auto previous = uint32Member(*json, "previousDefaultDeviceID");
    const auto previousVolume = floatMember(*json, "previousDefaultVolume");
    const bool previousIsRight = previous || isAbsent(*json, "previousDefaultDeviceID");
    const bool previousVolumeIsRight = previousVolume || isAbsent(*json, "previousDefaultVolume");
    if (!previousIsRight || !previousVolumeIsRight) {
        return std::nullopt;
    }
    return SavedOutputState{*speaker,       *speakerVolume,    *speakerWasMuted, previous,
                            previousVolume, *previousWasMuted, *switched};
}

} // namespace sentrel
