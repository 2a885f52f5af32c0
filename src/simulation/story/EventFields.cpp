#include "simulation/story/EventFields.hpp"

namespace sentrel::simulation {

std::optional<double> numberIn(const Event& event, std::string_view field)
{
    const Event::Value* const value = event.find(field);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (const auto* real = std::get_if<double>(value)) {
        return *real;
    }
    const auto* const whole = std::get_if<std::int64_t>(value);
    return whole == nullptr ? std::nullopt : std::optional{static_cast<double>(*whole)};
}

bool flagIn(const Event& event, std::string_view field)
{
    const Event::Value* const value = event.find(field);
    const bool* const truth = value == nullptr ? nullptr : std::get_if<bool>(value);
    return truth != nullptr && *truth;
}

} // namespace sentrel::simulation
