#include "simulation/mac/sound/SoundRecorder.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

namespace {

/// Frames mixed at a time: small enough for the nearest cache, and a whole number of file system blocks.
constexpr std::size_t blockFrames = 4096;

constexpr float fullScale = 32767.0F;

std::int64_t lengthOf(const AudibleSound& sound)
{
    return static_cast<std::int64_t>(sound.samples.size());
}

/// Adds the sound's samples from `place` on; loops wrap around.
void addSamples(const AudibleSound& sound, std::int64_t place, std::span<float> mixed)
{
    while (!mixed.empty()) {
        place %= lengthOf(sound);
        const auto run = std::min(mixed.size(), static_cast<std::size_t>(lengthOf(sound) - place));
        const float* const samples = sound.samples.data() + place;
        float* const out = mixed.data();
        const float gain = sound.gain;
        for (std::size_t i = 0; i < run; ++i) {
            out[i] += gain * samples[i];
        }
        mixed = mixed.subspan(run);
        place += static_cast<std::int64_t>(run);
    }
}

/// Rounds to 16 bits and clips. True if any result isn't 0.
bool quantize(std::span<const float> mixed, std::int16_t* out)
{
    std::int16_t any = 0;
    for (std::size_t i = 0; i < mixed.size(); ++i) {
        // With this order of operands NaN becomes full scale: audible, not undefined.
        const float clipped = std::min(1.0F, std::max(-1.0F, mixed[i])) * fullScale;
        const auto value = static_cast<std::int16_t>(static_cast<std::int32_t>(clipped + (clipped < 0 ? -0.5F : 0.5F)));
        out[i] = value;
        any = static_cast<std::int16_t>(any | value);
    }
    return any != 0;
}

} // namespace

SoundRecorder::SoundRecorder(std::filesystem::path file, Instant start)
    : start_(start),
      writer_(std::move(file), static_cast<std::uint32_t>(sampleRate)),
      mixed_(blockFrames),
      quantized_(blockFrames)
{
}

std::int64_t SoundRecorder::frameAt(Instant instant) const
{
    constexpr std::int64_t second = 1'000'000'000;
    const std::int64_t span = (instant - start_).count();
    // Seconds and remainder are multiplied apart, else the product would overflow; both are rounded down.
    std::int64_t seconds = span / second;
    std::int64_t rest = span % second;
    if (rest < 0) {
        --seconds;
        rest += second;
    }
    return seconds * sampleRate + rest * sampleRate / second;
}

void SoundRecorder::record(std::span<const AudibleSound> sounds, Instant until)
{
    const std::int64_t end = std::min(frameAt(until), maximumFrames);
    while (writer_.frames() < end) {
        const Piece piece = pieceFrom(writer_.frames(), end, sounds);
        if (!piece.isAudible) {
            writer_.appendSilence(piece.end - writer_.frames());
            continue;
        }
        mix(sounds, piece.end);
    }
}

/// The longest piece from a frame on in which no sound begins or ends.
SoundRecorder::Piece SoundRecorder::pieceFrom(std::int64_t frame, std::int64_t until,
                                              std::span<const AudibleSound> sounds) const
{
    Piece piece{until, false};
    for (const AudibleSound& sound : sounds) {
        const std::int64_t begin = frameAt(sound.start);
        if (frame < begin) {
            piece.end = std::min(piece.end, begin);
            continue;
        }
        if (!sound.isLooping && frame >= begin + lengthOf(sound)) {
            continue;
        }
        if (!sound.isLooping) {
            piece.end = std::min(piece.end, begin + lengthOf(sound));
        }
        piece.isAudible = piece.isAudible || sound.gain > 0.0F;
    }
    return piece;
}

void SoundRecorder::mix(std::span<const AudibleSound> sounds, std::int64_t end)
{
    while (writer_.frames() < end) {
        const auto count =
            static_cast<std::size_t>(std::min<std::int64_t>(end - writer_.frames(), std::int64_t{blockFrames}));
        mixBlock(sounds, writer_.frames(), count);
        writeBlock(count);
    }
}

void SoundRecorder::mixBlock(std::span<const AudibleSound> sounds, std::int64_t frame, std::size_t count)
{
    const std::span<float> mixed{mixed_.data(), count};
    std::ranges::fill(mixed, 0.0F);
    for (const AudibleSound& sound : sounds) {
        const std::int64_t place = frame - frameAt(sound.start);
        if (place >= 0 && (sound.isLooping || place < lengthOf(sound)) && sound.gain > 0.0F) {
            addSamples(sound, place, mixed);
        }
    }
}

void SoundRecorder::writeBlock(std::size_t count)
{
    if (quantize({mixed_.data(), count}, quantized_.data())) {
        writer_.append({quantized_.data(), count});
    } else {
        writer_.appendSilence(static_cast<std::int64_t>(count));
    }
}

} // namespace sentrel::simulation
