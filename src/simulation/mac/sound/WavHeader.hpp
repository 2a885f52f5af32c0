#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace sentrel::simulation {

static_assert(std::endian::native == std::endian::little, "WAV files are written as their numbers lie in memory");

/// The header of a WAV file with one channel. Samples have 16 bits with a sign, or 8 bits without.
struct WavHeader {
    WavHeader(std::uint32_t itsSampleRate, std::uint16_t itsBitsPerSample, std::uint32_t itsDataBytes)
        : fileBytes(itsDataBytes + sizeof(WavHeader) - 8),
          sampleRate(itsSampleRate),
          bytesPerSecond(itsSampleRate * itsBitsPerSample / 8),
          frameBytes(static_cast<std::uint16_t>(itsBitsPerSample / 8)),
          bitsPerSample(itsBitsPerSample),
          dataBytes(itsDataBytes)
    {
    }

    [[nodiscard]] auto bytes() const { return std::bit_cast<std::array<std::uint8_t, 44>>(*this); }

    std::array<char, 4> riff{'R', 'I', 'F', 'F'};
    std::uint32_t fileBytes; ///< behind this field
    std::array<char, 8> format{'W', 'A', 'V', 'E', 'f', 'm', 't', ' '};
    std::uint32_t formatBytes = 16;
    std::uint16_t encoding = 1; ///< uncompressed
    std::uint16_t channels = 1;
    std::uint32_t sampleRate;
    std::uint32_t bytesPerSecond;
    std::uint16_t frameBytes;
    std::uint16_t bitsPerSample;
    std::array<char, 4> data{'d', 'a', 't', 'a'};
    std::uint32_t dataBytes;
};

} // namespace sentrel::simulation
