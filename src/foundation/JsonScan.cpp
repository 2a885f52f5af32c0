#include "foundation/JsonScan.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace sentrel {

namespace {

constexpr std::string_view numberCharacters = "0123456789+-.eE";

/// A double has up to 309 digits before its point: a shorter number without an exponent can't overflow.
bool mayOverflow(std::string_view number)
{
    return number.size() > 300 || number.find_first_of("eE") != std::string_view::npos;
}

bool overflows(std::string_view number)
{
    return mayOverflow(number) && !std::isfinite(std::strtod(std::string{number}.c_str(), nullptr));
}

/// Index after the text's closing quotation mark.
std::size_t skipString(std::string_view text, std::size_t place)
{
    for (++place; place < text.size() && text[place] != '"'; ++place) {
        if (text[place] == '\\') {
            ++place;
        }
    }
    return place + 1;
}

} // namespace

JsonScan scanJson(std::string_view text)
{
    JsonScan scan;
    std::size_t level = 0;
    std::size_t place = 0;
    while (place < text.size()) {
        const char c = text[place];
        if (c == '"') {
            place = skipString(text, place);
            continue;
        }
        if (c == '-' || (c >= '0' && c <= '9')) {
            const std::size_t end = std::min(text.find_first_not_of(numberCharacters, place), text.size());
            if (overflows(text.substr(place, end - place))) {
                scan.oversizedNumbers.push_back({place, end - place});
            }
            place = end;
            continue;
        }
        if (c == '[' || c == '{') {
            scan.deepestLevel = std::max(scan.deepestLevel, ++level);
        } else if ((c == ']' || c == '}') && level > 0) {
            --level;
        }
        ++place;
    }
    return scan;
}

} // namespace sentrel
