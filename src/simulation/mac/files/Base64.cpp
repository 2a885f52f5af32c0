#include "simulation/mac/files/Base64.hpp"

#include <algorithm>
#include <array>

namespace sentrel::simulation {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t noDigit = 0xFF;

constexpr auto digits = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noDigit);
    for (std::size_t value = 0; value < alphabet.size(); ++value) {
        values[static_cast<unsigned char>(alphabet[value])] = static_cast<std::uint8_t>(value);
    }
    return values;
}();

} // namespace

std::string base64Text(BytesView bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t begin = 0; begin < bytes.size(); begin += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - begin);
        std::uint32_t group = 0;
        for (std::size_t place = 0; place < 3; ++place) {
            group = group << 8 | (place < count ? bytes[begin + place] : 0U);
        }
        for (std::size_t place = 0; place < 4; ++place) {
            text += place <= count ? alphabet[group >> (18 - 6 * place) & 0x3FU] : '=';
        }
    }
    return text;
}

std::optional<Bytes> bytesOfBase64(std::string_view text)
{
    const std::string_view unpadded = text.substr(0, text.find('='));
    Bytes bytes;
    bytes.reserve(unpadded.size() / 4 * 3 + 2);
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const char character : unpadded) {
        const std::uint8_t digit = digits[static_cast<unsigned char>(character)];
        if (digit == noDigit) {
            return std::nullopt;
        }
        pending = pending << 6 | digit;
        pendingBits += 6;
        if (pendingBits >= 8) {
            pendingBits -= 8;
            bytes.push_back(static_cast<std::uint8_t>(pending >> pendingBits));
            pending &= (1U << pendingBits) - 1;
        }
    }
    // The rest must be exact: spare bits are zero, and the padding has the right length.
    const bool isExact = pending == 0 && pendingBits != 6 && text.size() % 4 == 0 &&
                         text.size() - unpadded.size() <= 2 &&
                         text.find_first_not_of('=', unpadded.size()) == std::string_view::npos;
    if (!isExact) {
        return std::nullopt;
    }
    return bytes;
}

} // namespace sentrel::simulation
