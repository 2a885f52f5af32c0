#include "simulation/story/StoryPage.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace sentrel::simulation {

namespace {

constexpr std::size_t timeColumns = 9;
constexpr std::string_view dim = "2";

std::string_view colourOf(StoryTone tone)
{
    switch (tone) {
    case StoryTone::scene:
        return "3;36";
    case StoryTone::event:
        return "1";
    case StoryTone::reaction:
        return "";
    case StoryTone::notice:
        return "33";
    case StoryTone::alarm:
        return "1;31";
    case StoryTone::good:
        return "32";
    case StoryTone::bad:
        return "1;31";
    }
    return "";
}

bool isReaction(StoryTone tone)
{
    return tone != StoryTone::scene && tone != StoryTone::event && tone != StoryTone::bad;
}

/// Number of characters, each counted as one column.
std::size_t columns(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
}

/// Replaces control characters: those of one byte, and those with two in UTF-8 (0xC2 first).
std::string harmless(std::string_view text)
{
    std::string clean;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0U;
        if (byte < 0x20U || byte == 0x7FU) {
            clean += ' ';
        } else if (byte == 0xC2U && next >= 0x80U && next < 0xA0U) {
            clean += ' ';
            ++i;
        } else {
            clean += text[i];
        }
    }
    return clean;
}

std::vector<std::string> wrap(const std::string& text, std::size_t width)
{
    std::vector<std::string> lines{""};
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        const std::string word = text.substr(begin, end - begin);
        if (!lines.back().empty() && columns(lines.back()) + 1 + columns(word) > width) {
            lines.emplace_back();
        }
        lines.back() += (lines.back().empty() || word.empty() ? "" : " ") + word;
        begin = end + 1;
    }
    return lines;
}

std::string padded(const std::string& text, std::size_t width, bool toTheRight)
{
    const std::size_t has = columns(text);
    const std::string space(width > has ? width - has : 0, ' ');
    return toTheRight ? space + text : text + space;
}

std::string repeated(std::string_view piece, std::size_t times)
{
    std::string text;
    for (std::size_t i = 0; i < times; ++i) {
        text += piece;
    }
    return text;
}

} // namespace

StoryStyle StoryStyle::forStandardOutput()
{
    constexpr std::size_t narrowest = 60;
    constexpr std::size_t widest = 100;
    StoryStyle style;
    if (isatty(STDOUT_FILENO) == 0) {
        return style;
    }
    const char* const refusal = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool isDumb = terminal != nullptr && std::string_view{terminal} == "dumb";
    style.isColoured = !isDumb && (refusal == nullptr || *refusal == '\0');
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        style.width = std::clamp<std::size_t>(size.ws_col, narrowest, widest);
    }
    return style;
}

void StoryPage::heading(std::string_view text)
{
    const std::string title = harmless(text);
    out_ << "\n  " << painted("1", title) << "\n  " << painted(dim, repeated("─", columns(title))) << '\n';
}

void StoryPage::paragraph(std::string_view text)
{
    wrapped("  ", 2, StoryTone::reaction, text);
    out_.flush();
}

void StoryPage::line(double at, StoryTone tone, std::string_view text)
{
    if (told_) {
        told_(at, tone, text);
    }
    const long long moment = std::llround(at * 10.0);
    const bool isNewMoment = moment_ != moment;
    if (isNewMoment && (!isReaction(tone) || !moment_)) {
        out_ << '\n';
    }
    moment_ = moment;
    std::string lead = painted(dim, padded(isNewMoment ? clockText(at) : "", timeColumns, true)) + "   ";
    std::size_t leadColumns = timeColumns + 3;
    if (isReaction(tone)) {
        lead += painted(dim, "→") + " ";
        leadColumns += 2;
    }
    wrapped(lead, leadColumns, tone, text);
    out_.flush();
}

void StoryPage::rule()
{
    out_ << "\n  " << painted(dim, repeated("─", style_.width - 2)) << '\n';
}

void StoryPage::closing(StoryTone tone, std::string_view mark, std::string_view text)
{
    if (told_) {
        told_(std::nullopt, tone, text);
    }
    wrapped("  " + painted(colourOf(tone), mark) + " ", 3 + columns(mark), tone, text);
}

void StoryPage::entry(std::string_view name, std::string_view text)
{
    constexpr std::size_t nameColumns = 26;
    // Not wrapped, so that paths can be copied whole.
    out_ << "    " << painted(dim, padded(harmless(name), nameColumns, false)) << ' ' << harmless(text) << '\n'
         << std::flush;
}

void StoryPage::wrapped(std::string_view lead, std::size_t leadColumns, StoryTone tone, std::string_view text)
{
    constexpr std::size_t narrowest = 20;
    const std::size_t width = std::max(style_.width, leadColumns + narrowest) - leadColumns;
    std::string before{lead};
    for (const std::string& each : wrap(harmless(text), width)) {
        out_ << before << painted(colourOf(tone), each) << '\n';
        before = std::string(leadColumns, ' ');
    }
}

std::string StoryPage::painted(std::string_view code, std::string_view text) const
{
    if (!style_.isColoured || code.empty() || text.empty()) {
        return std::string{text};
    }
    std::string result = "\x1b[";
    result += code;
    result += 'm';
    result += text;
    result += "\x1b[0m";
    return result;
}

std::string clockText(double seconds)
{
    const long long tenths = std::llround(std::max(seconds, 0.0) * 10.0);
    const auto twoDigits = [](long long number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    const long long minutes = tenths / 600;
    const std::string rest = twoDigits(tenths / 10 % 60) + "." + std::to_string(tenths % 10);
    if (minutes < 60) {
        return std::to_string(minutes) + ":" + rest;
    }
    return std::to_string(minutes / 60) + ":" + twoDigits(minutes % 60) + ":" + rest;
}

} // namespace sentrel::simulation
