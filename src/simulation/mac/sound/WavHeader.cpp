#include "simulation/mac/sound/WavHeader.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace sentrel::simulation {

namespace {

/// A RIFF header put together field by field; numbers have their lowest byte first.
class Header {
public:
    void text(std::string_view code)
    {
        std::ranges::copy(code, bytes_.begin() + static_cast<std::ptrdiff_t>(place_));
        place_ += code.size();
    }
    void number(std::uint32_t value) { add(value, 4); }
    void shortNumber(std::uint16_t value) { add(value, 2); }
    [[nodiscard]] const std::array<std::uint8_t, wavHeaderSize>& bytes() const { return bytes_; }

private:
    void add(std::uint32_t value, int count)
    {
        for (int index = 0; index < count; ++index) {
            bytes_.at(place_++) = static_cast<std::uint8_t>(value >> (8 * index));
        }
    }

    std::array<std::uint8_t, wavHeaderSize> bytes_{};
    std::size_t place_ = 0;
};

} // namespace

std::array<std::uint8_t, wavHeaderSize> wavHeader(std::uint32_t sampleRate, std::uint16_t bitsPerSample,
                                                  std::uint32_t dataBytes)
{
    constexpr std::uint16_t pcm = 1;
    constexpr std::uint16_t channels = 1;
    const auto frameBytes = static_cast<std::uint16_t>(bitsPerSample / 8);
    Header header;
    header.text("RIFF");
    header.number(dataBytes + static_cast<std::uint32_t>(wavHeaderSize) - 8);
    header.text("WAVE");
    header.text("fmt ");
    header.number(16);
    header.shortNumber(pcm);
    header.shortNumber(channels);
    header.number(sampleRate);
    header.number(sampleRate * frameBytes);
    header.shortNumber(frameBytes);
    header.shortNumber(bitsPerSample);
    header.text("data");
    header.number(dataBytes);
    return header.bytes();
}

} // namespace sentrel::simulation
