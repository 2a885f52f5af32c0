#include "simulation/mac/sound/WavWriter.hpp"

#include <array>
#include <bit>
#include <cstring>
#include <system_error>
#include <utility>

namespace sentrel::simulation {

namespace {

static_assert(std::endian::native == std::endian::little, "the file's samples are written as they lie in memory");

constexpr std::size_t headerSize = 44;
constexpr std::int64_t frameSize = sizeof(std::int16_t);

/// A RIFF header put together field by field.
class Header {
public:
    void text(const char (&code)[5]) { add(code, 4); }
    void number(std::uint32_t value) { add(&value, sizeof(value)); }
    void shortNumber(std::uint16_t value) { add(&value, sizeof(value)); }
    [[nodiscard]] const std::array<char, headerSize>& bytes() const { return bytes_; }

private:
    void add(const void* data, std::size_t size)
    {
        std::memcpy(bytes_.data() + place_, data, size);
        place_ += size;
    }

    std::array<char, headerSize> bytes_{};
    std::size_t place_ = 0;
};

} // namespace

WavWriter::WavWriter(std::filesystem::path file, std::uint32_t sampleRate)
    : path_(std::move(file)), sampleRate_(sampleRate), file_(path_, std::ios::binary | std::ios::trunc)
{
    writeHeader();
}

void WavWriter::append(std::span<const std::int16_t> frames)
{
    if (filePlace_ != frames_) {
        file_.seekp(static_cast<std::streamoff>(headerSize) + frames_ * frameSize);
    }
    file_.write(reinterpret_cast<const char*>(frames.data()), static_cast<std::streamsize>(frames.size_bytes()));
    frames_ += static_cast<std::int64_t>(frames.size());
    filePlace_ = frames_;
}

bool WavWriter::finish()
{
    file_.seekp(0);
    writeHeader();
    file_.close();
    std::error_code error;
    std::filesystem::resize_file(path_, headerSize + static_cast<std::uintmax_t>(frames_ * frameSize), error);
    return file_.good() && !error;
}

void WavWriter::writeHeader()
{
    constexpr std::uint16_t pcm = 1;
    constexpr std::uint16_t channels = 1;
    const auto dataSize = static_cast<std::uint32_t>(frames_ * frameSize);
    Header header;
    header.text("RIFF");
    header.number(dataSize + static_cast<std::uint32_t>(headerSize) - 8);
    header.text("WAVE");
    header.text("fmt ");
    header.number(16);
    header.shortNumber(pcm);
    header.shortNumber(channels);
    header.number(sampleRate_);
    header.number(sampleRate_ * static_cast<std::uint32_t>(frameSize));
    header.shortNumber(static_cast<std::uint16_t>(frameSize));
    header.shortNumber(16);
    header.text("data");
    header.number(dataSize);
    file_.write(header.bytes().data(), static_cast<std::streamsize>(header.bytes().size()));
}

} // namespace sentrel::simulation
