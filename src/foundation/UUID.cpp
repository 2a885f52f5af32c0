#include "foundation/UUID.hpp"

namespace sentrel {

namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenPlace(std::size_t place)
{
    return place == 8 || place == 13 || place == 18 || place == 23;
}

std::optional<std::uint8_t> hexDigit(char c)
{
    if (c >= '0' && c <= '9') {
        return static_cast<std::uint8_t>(c - '0');
    }
    const char lower = static_cast<char>(c | 0x20);
    if (lower >= 'a' && lower <= 'f') {
        return static_cast<std::uint8_t>(lower - 'a' + 10);
    }
    return std::nullopt;
}

} // namespace

UUID UUID::fromRandom(Octets random)
{
    random[6] = static_cast<std::uint8_t>((random[6] & 0x0F) | 0x40);
    random[8] = static_cast<std::uint8_t>((random[8] & 0x3F) | 0x80);
    return UUID{random};
}

std::optional<UUID> UUID::parse(std::string_view text)
{
    if (text.size() != textLength) {
        return std::nullopt;
    }
    Octets octets{};
    std::size_t digits = 0;
    for (std::size_t place = 0; place < textLength; ++place) {
        if (isHyphenPlace(place)) {
            if (text[place] != '-') {
                return std::nullopt;
            }
            continue;
        }
        const auto digit = hexDigit(text[place]);
        if (!digit) {
            return std::nullopt;
        }
        std::uint8_t& octet = octets[digits / 2];
        octet = static_cast<std::uint8_t>(octet << 4 | *digit);
        ++digits;
    }
    return UUID{octets};
}

std::string UUID::text() const
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const std::uint8_t octet : octets_) {
        if (isHyphenPlace(text.size())) {
            text += '-';
        }
        text += digits[octet >> 4];
        text += digits[octet & 0x0F];
    }
    return text;
}

} // namespace sentrel
