#pragma once

#include "simulation/story/html/StoryRecord.hpp"

#include <filesystem>
#include <string>

namespace sentrel::simulation {

/// The style and the script that a story's page carries.
struct HtmlLooks {
    std::string style;
    std::string script;

    /// Reads `story.css` and `story.js` of a folder. Throws `ScenarioError` if one can't be read.
    [[nodiscard]] static HtmlLooks readFrom(const std::filesystem::path& folder);
};

/// The story as one HTML page that refers to nothing outside of it.
[[nodiscard]] std::string htmlStory(const StoryRecord& record, const HtmlLooks& looks);

} // namespace sentrel::simulation
