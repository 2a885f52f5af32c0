#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A mono 16-bit WAV file of 44.1 kHz, read strictly, and measured.
struct Wav {
    std::vector<std::int16_t> frames;

    explicit Wav(const std::filesystem::path& file)
    {
        std::ifstream stream{file, std::ios::binary};
        const std::string bytes{std::istreambuf_iterator<char>{stream}, {}};
        const auto number = [&](std::size_t offset) {
            std::uint32_t value = 0;
            std::memcpy(&value, bytes.data() + offset, sizeof(value));
            return value;
        };
        const bool isSound = bytes.size() >= 44 && bytes.starts_with("RIFF") && number(4) == bytes.size() - 8 &&
                             bytes.compare(8, 8, "WAVEfmt ") == 0 && number(16) == 16 && number(20) == 0x00010001 &&
                             number(24) == 44'100 && number(28) == 88'200 && number(32) == 0x00100002 &&
                             bytes.compare(36, 4, "data") == 0 && number(40) == bytes.size() - 44;
        if (!isSound) {
            throw std::runtime_error{"not the WAV file that was promised"};
        }
        frames.resize(number(40) / 2);
        std::memcpy(frames.data(), bytes.data() + 44, frames.size() * 2);
    }

    [[nodiscard]] std::span<const std::int16_t> part(double from, double seconds) const
    {
        return std::span{frames}.subspan(static_cast<std::size_t>(from * 44'100),
                                         static_cast<std::size_t>(seconds * 44'100));
    }

    /// Root mean square, 1 being full scale.
    static double rms(std::span<const std::int16_t> part)
    {
        double squares = 0.0;
        for (const std::int16_t frame : part) {
            squares += static_cast<double>(frame) * frame;
        }
        return std::sqrt(squares / static_cast<double>(part.size())) / 32'767.0;
    }

    /// The multiple of 20 Hz below 4 kHz that is strongest.
    static double dominantFrequency(std::span<const std::int16_t> part)
    {
        double strongest = 0.0;
        double best = 0.0;
        for (double frequency = 20.0; frequency < 4000.0; frequency += 20.0) {
            const auto turn = std::polar(1.0, -2.0 * std::numbers::pi * frequency / 44'100.0);
            std::complex<double> phase{1.0, 0.0};
            std::complex<double> sum;
            for (const std::int16_t frame : part) {
                sum += phase * static_cast<double>(frame);
                phase *= turn;
            }
            if (std::abs(sum) > strongest) {
                strongest = std::abs(sum);
                best = frequency;
            }
        }
        return best;
    }
};

} // namespace sentrel::simulation
