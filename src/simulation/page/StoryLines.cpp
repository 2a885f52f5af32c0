#include "simulation/page/StoryLines.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::size_t mostLines = 200;

/// Columns; wider than any sentence, so that none is wrapped.
constexpr std::size_t oneLine = 100'000;

/// A line of the story without its column of times.
std::string withoutTime(const std::string& line)
{
    const auto isLead = [](char c) { return c == ' ' || c == ':' || c == '.' || (c >= '0' && c <= '9'); };
    const auto start = line.find_first_not_of(' ');
    if (start == std::string::npos) {
        return {};
    }
    const auto end = line.find(' ', start);
    const std::string first = line.substr(start, end - start);
    const bool isTime = first.find(':') != std::string::npos && std::ranges::all_of(first, isLead);
    const auto text = isTime && end != std::string::npos ? line.find_first_not_of(' ', end) : start;
    return text == std::string::npos ? std::string{} : line.substr(text);
}

} // namespace

StoryLines::StoryLines() : story_(out_, {.isColoured = false, .width = oneLine})
{
}

void StoryLines::open(const Scenario& scenario)
{
    story_.open(scenario);
    out_.str({});
}

void StoryLines::tell(const Event& event)
{
    story_.tell(event);
    take(event.at);
}

void StoryLines::perform(double at, const Action& action)
{
    story_.perform(at, action);
    take(at);
}

void StoryLines::take(double at)
{
    std::istringstream told{out_.str()};
    out_.str({});
    for (std::string line; std::getline(told, line);) {
        if (std::string text = withoutTime(line); !text.empty()) {
            lines_.push_back({at, std::move(text)});
        }
    }
    while (lines_.size() > mostLines) {
        lines_.pop_front();
        ++dropped_;
    }
}

Json StoryLines::from(std::size_t number) const
{
    const std::size_t first = std::max(number, dropped_);
    Json lines = Json::array();
    for (std::size_t index = first - dropped_; index < lines_.size(); ++index) {
        lines.push_back({{"at", lines_[index].at}, {"text", lines_[index].text}});
    }
    return {{"from", number == 0 ? 0 : first}, {"lines", std::move(lines)}};
}

} // namespace sentrel::simulation
