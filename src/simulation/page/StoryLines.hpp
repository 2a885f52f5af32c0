#pragma once

#include "foundation/Json.hpp"
#include "simulation/story/Story.hpp"

#include <cstddef>
#include <deque>
#include <sstream>
#include <string>

namespace sentrel::simulation {

/// The story as lines of plain text with their times, for the page. World's thread only.
class StoryLines {
public:
    StoryLines();

    /// Takes the names and levels of the audio devices; adds no lines.
    void open(const Scenario& scenario);

    void tell(const Event& event);
    void perform(double at, const Action& action);

    /// Number of lines so far, dropped ones included.
    [[nodiscard]] std::size_t count() const { return dropped_ + lines_.size(); }

    /// The lines from this number on that are still kept: {"from", "lines"}.
    [[nodiscard]] Json from(std::size_t number) const;

private:
    struct Line {
        double at = 0.0;
        std::string text;
    };

    void take(double at);

    std::ostringstream out_;
    Story story_;
    std::deque<Line> lines_;
    std::size_t dropped_ = 0;
};

} // namespace sentrel::simulation
