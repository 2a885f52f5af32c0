#pragma once

#include "simulation/Event.hpp"
#include "simulation/story/StoryPage.hpp"

#include <optional>
#include <string>

namespace sentrel::simulation {

/// One sentence of the story.
struct StorySentence {
    StoryTone tone = StoryTone::reaction;
    std::string text; ///< empty for an event not worth telling
};

/// The sentence for an event that is told without regard to earlier ones; none for another event.
[[nodiscard]] std::optional<StorySentence> sentenceOf(const Event& event);

} // namespace sentrel::simulation
