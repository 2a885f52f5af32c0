#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace sentrel {

/// Replaces the first "%lld" of a localised text by the number.
[[nodiscard]] inline std::string filledIn(std::string format, std::int64_t number)
{
    constexpr std::string_view placeholder = "%lld";
    const auto place = format.find(placeholder);
    return place == format.npos ? format : format.replace(place, placeholder.size(), std::to_string(number));
}

} // namespace sentrel
