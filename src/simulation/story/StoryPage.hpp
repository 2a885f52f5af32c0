#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

/// The look of a story.
struct StoryStyle {
    bool isColoured = false;
    std::size_t width = 96; ///< columns

    /// For the standard output: coloured on a terminal unless `NO_COLOR` is set and not empty, and no wider than the
    /// terminal.
    [[nodiscard]] static StoryStyle forStandardOutput();
};

/// The kind of a line, which decides its colour and its place.
enum class StoryTone {
    scene,    ///< the narrator speaks
    event,    ///< something happens to the Mac
    reaction, ///< Sentrel answers, quietly
    notice,   ///< Sentrel notices or says something
    alarm,    ///< the alarm is heard
    good,
    bad,
};

/// Receives each line of a story as it is told: its time in seconds (none for a line after the story), its kind and its
/// text.
using StoryListener = std::function<void(std::optional<double> at, StoryTone tone, std::string_view text)>;

/// The layout of a story: a column of times, and lines that are wrapped and coloured. Control characters in texts are
/// replaced, so that no name can affect the terminal. One thread.
class StoryPage {
public:
    StoryPage(std::ostream& out, StoryStyle style, StoryListener told = {})
        : out_(out), style_(style), told_(std::move(told))
    {
    }

    void heading(std::string_view text);
    void paragraph(std::string_view text);

    /// A line of the story at a time in seconds. Reactions of Sentrel are indented under their cause.
    void line(double at, StoryTone tone, std::string_view text);

    /// A rule over the whole width, with an empty line before it.
    void rule();

    /// A line after the story, with a mark before it.
    void closing(StoryTone tone, std::string_view mark, std::string_view text);

    /// A name and its meaning, in two columns.
    void entry(std::string_view name, std::string_view text);

private:
    void wrapped(std::string_view lead, std::size_t leadColumns, StoryTone tone, std::string_view text);
    [[nodiscard]] std::string painted(std::string_view code, std::string_view text) const;

    std::ostream& out_;
    StoryStyle style_;
    StoryListener told_;
    std::optional<long long> moment_; // time of the last line, in tenths of a second
};

/// Seconds as "m:ss.s", and as "h:mm:ss.s" from an hour on.
[[nodiscard]] std::string clockText(double seconds);

} // namespace sentrel::simulation
