#include "simulation/mac/sound/WavWriter.hpp"

#include "simulation/mac/sound/WavHeader.hpp"

#include <system_error>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::int64_t frameSize = sizeof(std::int16_t);

} // namespace

WavWriter::WavWriter(std::filesystem::path file, std::uint32_t sampleRate)
    : path_(std::move(file)), sampleRate_(sampleRate), file_(path_, std::ios::binary | std::ios::trunc)
{
    writeHeader();
}

void WavWriter::append(std::span<const std::int16_t> frames)
{
    if (filePlace_ != frames_) {
        file_.seekp(static_cast<std::streamoff>(sizeof(WavHeader)) + frames_ * frameSize);
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
    std::filesystem::resize_file(path_, sizeof(WavHeader) + static_cast<std::uintmax_t>(frames_ * frameSize), error);
    return file_.good() && !error;
}

void WavWriter::writeHeader()
{
    const WavHeader header{sampleRate_, frameSize * 8, static_cast<std::uint32_t>(frames_ * frameSize)};
    file_.write(reinterpret_cast<const char*>(&header), sizeof(header));
}

} // namespace sentrel::simulation
