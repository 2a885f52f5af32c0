#include "simulation/stage/NearestWord.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace sentrel::simulation {

namespace {

// A change of case costs 1, any other `oneChange`: the word in the same case wins.
constexpr std::size_t oneChange = 4;
constexpr std::size_t longestCompared = 64;

char lowered(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string loweredText(std::string_view text)
{
    std::string result{text};
    std::ranges::transform(result, result.begin(), lowered);
    return result;
}

std::size_t costOfChange(char from, char to)
{
    if (from == to) {
        return 0;
    }
    return lowered(from) == lowered(to) ? 1 : oneChange;
}

std::size_t distance(std::string_view from, std::string_view to)
{
    std::vector<std::vector<std::size_t>> cost(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = (i + j) * oneChange;
                continue;
            }
            std::size_t best = cost[i - 1][j - 1] + costOfChange(from[i - 1], to[j - 1]);
            best = std::min({best, cost[i - 1][j] + oneChange, cost[i][j - 1] + oneChange});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                best = std::min(best, cost[i - 2][j - 2] + oneChange);
            }
            cost[i][j] = best;
        }
    }
    return cost[from.size()][to.size()];
}

} // namespace

std::string_view nearestWord(std::string_view word, std::span<const std::string_view> words)
{
    word = word.substr(0, longestCompared);
    std::string_view nearest;
    std::size_t least = 0;
    for (const std::string_view candidate : words) {
        const std::size_t changes = distance(word, candidate);
        if (nearest.empty() || changes < least) {
            nearest = candidate;
            least = changes;
        }
    }
    return nearest;
}

bool isNearly(std::string_view word, std::string_view meant)
{
    constexpr std::size_t lettersForOneSlip = 4;
    const std::size_t allowed = meant.size() / lettersForOneSlip * oneChange;
    return word.size() <= longestCompared && distance(loweredText(word), loweredText(meant)) <= allowed;
}

std::string inQuotes(std::string_view text)
{
    constexpr std::size_t longestShown = 60;
    std::string shown{text.substr(0, longestShown)};
    if (shown.size() < text.size()) {
        while (!shown.empty() && (static_cast<unsigned char>(shown.back()) & 0xC0U) == 0x80U) {
            shown.pop_back(); // never splits a character
        }
        if (!shown.empty() && static_cast<unsigned char>(shown.back()) >= 0xC0U) {
            shown.pop_back();
        }
        shown += "...";
    }
    for (char& letter : shown) {
        if (static_cast<unsigned char>(letter) < 0x20U || letter == 0x7F) {
            letter = ' ';
        }
    }
    return "'" + shown + "'";
}

std::string unknownWord(std::string_view what, std::string_view word, std::span<const std::string_view> words)
{
    std::string message = "unknown " + std::string{what} + " " + inQuotes(word);
    if (!words.empty()) {
        message += "; did you mean " + inQuotes(nearestWord(word, words)) + "?";
    }
    return message;
}

} // namespace sentrel::simulation
