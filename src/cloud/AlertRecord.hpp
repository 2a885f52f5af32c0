#pragma once

#include "core/AlertEvent.hpp"
#include "ports/CloudRecord.hpp"

#include <optional>
#include <string>
#include <vector>

namespace sentrel {

namespace ports {
class Language;
}

/// The type of alert records; each record is named by its alert's identifier.
inline constexpr const char* alertRecordType = "AlertEvent";

/// The field with the photo, an asset.
inline constexpr const char* alertPhotoField = "photo";

/// The fields fetched for a listed alert: no photo, no title.
[[nodiscard]] std::vector<std::string> alertListKeys();

/// The record of an alert, without its photo. `deviceName` is the Mac's current name; the trigger's title is in the
/// user's language.
[[nodiscard]] ports::CloudRecord alertRecord(const AlertEvent& alert, const std::string& deviceName,
                                             ports::Language& language);

/// The alert of a fetched record; none when its name, reason or time is unusable. It has a photo when the record was
/// fetched with one.
[[nodiscard]] std::optional<AlertEvent> alertOf(const ports::CloudRecord& record);

} // namespace sentrel
