#pragma once

#include <array>
#include <cstdint>

namespace sentrel::simulation {

inline constexpr std::size_t wavHeaderSize = 44; // bytes

/// The header of a WAV file with one channel. Samples have 16 bits with a sign, or 8 bits without.
[[nodiscard]] std::array<std::uint8_t, wavHeaderSize> wavHeader(std::uint32_t sampleRate, std::uint16_t bitsPerSample,
                                                                std::uint32_t dataBytes);

} // namespace sentrel::simulation
