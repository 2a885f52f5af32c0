#include "simulation/stage/Wording.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace sentrel::simulation {

std::string quotation(std::string_view text)
{
    return "“" + std::string{text} + "”";
}

std::string percent(double level)
{
    return std::to_string(std::lround(level * 100.0)) + " %";
}

std::string decimal(double number, int decimals)
{
    std::array<char, 400> text{}; // room for the largest double
    const auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, decimals);
    return {text.data(), end};
}

std::string plainNumber(double number)
{
    constexpr double mostReadable = 1e9;
    if (!(std::abs(number) < mostReadable)) {
        return number < 0.0 ? "minus a billion or less" : "a billion or more";
    }
    std::string text = decimal(number, 3);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

std::string listed(const std::vector<CameraModel>& cameras)
{
    std::string text;
    for (std::size_t i = 0; i < cameras.size(); ++i) {
        text += i == 0 ? "" : i + 1 == cameras.size() ? " and " : ", ";
        text += cameras[i].name;
    }
    return text;
}

} // namespace sentrel::simulation
