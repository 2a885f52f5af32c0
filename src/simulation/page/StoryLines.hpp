#pragma once

#include "foundation/Json.hpp"
#include "simulation/story/Story.hpp"

#include <cstddef>
#include <deque>
#include <sstream>
#include <string>

namespace sentrel::simulation {

/// The story as lines of plain text with their times, for the page. On the world's thread.
class StoryLines {
public:
    StoryLines();

    /// Who plays, and how the Mac stands.
    void open(const Scenario& scenario);

    void tell(const simulation::Event& event);
    void perform(double at, const Action& action);

    /// How many lines there have been.
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
