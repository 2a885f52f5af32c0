#pragma once

#include "simulation/Event.hpp"
#include "simulation/story/StoryPage.hpp"

#include <optional>
#include <string>

namespace sentrel::simulation {

/// An event that tells itself, whatever came before it.
struct StorySentence {
    StoryTone tone = StoryTone::reaction;
    std::string text; ///< empty for an event that isn't worth a word
};

/// The event in plain English; none for one that isn't known here.
[[nodiscard]] std::optional<StorySentence> sentenceOf(const simulation::Event& event);

} // namespace sentrel::simulation
