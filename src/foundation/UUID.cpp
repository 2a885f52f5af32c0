#include "foundation/UUID.hpp"

namespace sentrel {

namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenPlace(std::size_t place)
{
    return place == 8 || place == 13 || place == 18 || place == 23;
}

constexpr std::string_view upperDigits = "0123456789ABCDEF";
constexpr std::uint8_t noDigit = 0xFF;

/// The value of each character as a digit of either case. A table: lists of thousands of identifiers are read often.
constexpr std::array<std::uint8_t, 256> digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::uint8_t value = 0; value < 16; ++value) {
        const auto upper = static_cast<std::uint8_t>(upperDigits[value]);
        values[upper] = value;
        values[upper | 0x20U] = value;
    }
    return values;
}();

std::uint8_t digitValue(char character)
{
    return digitValues[static_cast<std::uint8_t>(character)];
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
    std::size_t place = 0;
    bool isWellFormed = true;
    for (std::uint8_t& octet : octets) {
        if (isHyphenPlace(place)) {
            isWellFormed = isWellFormed && text[place] == '-';
            ++place;
        }
        const std::uint8_t high = digitValue(text[place]);
        const std::uint8_t low = digitValue(text[place + 1]);
        isWellFormed = isWellFormed && (high | low) != noDigit;
        octet = static_cast<std::uint8_t>(high << 4 | low);
        place += 2;
    }
    return isWellFormed ? std::optional{UUID{octets}} : std::nullopt;
}

std::string UUID::text() const
{
    std::string text(textLength, '-');
    std::size_t place = 0;
    for (const std::uint8_t octet : octets_) {
        place += isHyphenPlace(place) ? 1U : 0U;
        text[place++] = upperDigits[octet >> 4];
        text[place++] = upperDigits[octet & 0x0F];
    }
    return text;
}

} // namespace sentrel
