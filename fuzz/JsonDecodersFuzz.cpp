#include "JsonMutator.hpp"
#include "Require.hpp"
#include "alerts/StoredAlert.hpp"
#include "cloud/AlertCacheFile.hpp"
#include "core/AlarmSettings.hpp"
#include "foundation/Json.hpp"
#include "outputs/SavedOutputState.hpp"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>

namespace sentrel {
namespace {

using fuzz::require;

/// A decoded value must survive its own encoding.
void decodeAll(BytesView bytes)
{
    // Each reads its own bytes, and fails on its own.
    const auto state = decodeSavedOutputState(bytes);
    const auto cache = decodeAlertCache(bytes);
    require(!cache || decodeAlertCache(bytesOf(encodeAlertCache(*cache))) == cache, "a cache changed on the way");
    const auto document = parseJson(bytes);
    if (!document) {
        require(!state, "an audio state of what is no JSON");
        require(!cache, "a cache of what is no JSON");
        return;
    }
    if (const auto settings = decodeAlarmSettings(*document)) {
        const auto again = parseJson(bytesOf(encodeJson(encodeAlarmSettings(*settings))));
        require(again && decodeAlarmSettings(*again) == settings, "settings changed on the way");
    }
    if (const auto stored = decodeStoredAlert(*document)) {
        const auto again = parseJson(bytesOf(encodeJson(encodeStoredAlert(*stored))));
        require(again && decodeStoredAlert(*again) == stored, "an alert changed on the way");
    }
}

} // namespace
} // namespace sentrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    sentrel::decodeAll({data, size});
    return 0;
}
