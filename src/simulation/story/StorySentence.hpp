#pragma once

#include "simulation/Event.hpp"
#include "simulation/story/StoryPage.hpp"

#include <optional>
#include <string>

namespace sentrel::simulation {

/// The sentence for an event that needs no context.
struct StorySentence {
    StoryTone tone = StoryTone::reaction;
    std::string text; ///< empty for an event not worth telling
};

/// The event in plain English; none for an unknown event.
[[nodiscard]] std::optional<StorySentence> sentenceOf(const Event& event);

} // namespace sentrel::simulation
