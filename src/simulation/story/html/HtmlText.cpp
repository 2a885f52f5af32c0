#include "simulation/story/html/HtmlText.hpp"

#include <cmath>
#include <cstdint>

namespace sentrel::simulation {

std::string htmlText(std::string_view text)
{
    std::string html;
    html.reserve(text.size());
    for (const char character : text) {
        switch (character) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += static_cast<unsigned char>(character) < 0x20U || character == 0x7F ? ' ' : character;
        }
    }
    return html;
}

std::string htmlNumber(double number)
{
    constexpr double most = 1e12;
    if (!(std::abs(number) < most)) {
        return "0";
    }
    const auto thousandths = static_cast<std::int64_t>(std::llround(number * 1000.0));
    const auto size = thousandths < 0 ? -thousandths : thousandths;
    std::string text = (thousandths < 0 ? "-" : "") + std::to_string(size / 1000);
    if (size % 1000 != 0) {
        text += "." + std::to_string(1000 + size % 1000).substr(1);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return text;
}

} // namespace sentrel::simulation
