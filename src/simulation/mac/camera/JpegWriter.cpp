#include "simulation/mac/camera/JpegWriter.hpp"

#include "simulation/mac/camera/JpegErrors.hpp"

#include <cstdlib>

namespace sentrel::simulation {

namespace {

/// One encoding; owns the memory that the library allocates.
class JpegWriter {
public:
    JpegWriter() { codec_.err = errors_.manager(); }
    ~JpegWriter()
    {
        jpeg_destroy_compress(&codec_); // also valid if it was never created
        std::free(file_);
    }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    [[nodiscard]] bool write(const RgbxImage& image, int quality)
    {
        return errors_.guard([&] {
            jpeg_create_compress(&codec_);
            jpeg_mem_dest(&codec_, &file_, &size_);
            codec_.image_width = static_cast<JDIMENSION>(image.width());
            codec_.image_height = static_cast<JDIMENSION>(image.height());
            codec_.input_components = static_cast<int>(RgbxImage::pixelBytes);
            codec_.in_color_space = JCS_EXT_RGBX;
            jpeg_set_defaults(&codec_);
            jpeg_set_quality(&codec_, quality, TRUE);
            jpeg_start_compress(&codec_, TRUE);
            while (codec_.next_scanline < codec_.image_height) {
                // The library's interface predates const; it only reads.
                auto* row = const_cast<JSAMPROW>(image.row(static_cast<int>(codec_.next_scanline)));
                jpeg_write_scanlines(&codec_, &row, 1);
            }
            jpeg_finish_compress(&codec_);
        });
    }

    [[nodiscard]] BytesView file() const { return {file_, size_}; }

private:
    JpegErrors errors_;
    jpeg_compress_struct codec_{};
    unsigned char* file_ = nullptr;
    unsigned long size_ = 0;
};

} // namespace

std::optional<Bytes> encodeJpeg(const RgbxImage& image, int quality)
{
    JpegWriter writer;
    if (!writer.write(image, quality)) {
        return std::nullopt;
    }
    const BytesView file = writer.file();
    return Bytes{file.begin(), file.end()};
}

} // namespace sentrel::simulation
