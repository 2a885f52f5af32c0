#pragma once

#include "foundation/Bytes.hpp"
#include "ports/AudioHardware.hpp"

#include <optional>

namespace sentrel {

/// The audio output's state before the alarm took it over; kept on disk while the alarm sounds.
struct SavedOutputState {
    ports::AudioObjectId speakerDeviceID = 0; ///< the device that was taken over
    float speakerVolume = 0.0F;               ///< its volume scalar, 0 to 1; 0 if it could not be read
    bool speakerWasMuted = false;
    std::optional<ports::AudioObjectId> previousDefaultDeviceID; ///< none if it could not be read
    std::optional<float> previousDefaultVolume;                  ///< none exactly when there is no such device
    bool previousDefaultWasMuted = false;
    bool switchedDefaultDevice = false; ///< whether the take-over changed the default output device

    friend bool operator==(const SavedOutputState&, const SavedOutputState&) = default;
};

/// The state as a JSON object with the fields' names in their order; absent values are omitted. None when a volume
/// isn't finite.
[[nodiscard]] std::optional<Bytes> encode(const SavedOutputState& state);

/// Strict: none unless every field is present and valid; only the two optional ones may be missing or null.
[[nodiscard]] std::optional<SavedOutputState> decodeSavedOutputState(BytesView json);

} // namespace sentrel
