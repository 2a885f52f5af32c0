#include "simulation/mac/camera/JpegReader.hpp"

#include "simulation/mac/camera/ExifOrientation.hpp"

#include <limits>

namespace sentrel::simulation {

namespace {

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr unsigned longestSegment = 0xFFFF;

/// Converts ink on white paper to light. Nearly all CMYK files are Adobe's and store light instead of ink.
void convertCmykRow(std::uint8_t* pixels, std::size_t width, bool storesLight)
{
    const unsigned flip = storesLight ? 0 : 255;
    for (std::size_t x = 0; x < width; ++x) {
        std::uint8_t* const pixel = pixels + x * 4;
        const unsigned black = pixel[3] ^ flip;
        for (std::size_t i = 0; i < 3; ++i) {
            pixel[i] = static_cast<std::uint8_t>(((pixel[i] ^ flip) * black + 127) / 255);
        }
    }
}

} // namespace

JpegReader::JpegReader(BytesView data) : data_(data)
{
    codec_.err = errors_.manager();
}

JpegReader::~JpegReader()
{
    jpeg_destroy_decompress(&codec_); // also valid if it was never created
}

std::optional<ports::PixelSize> JpegReader::readHeader()
{
    if (data_.size() > std::numeric_limits<unsigned long>::max() || data_.empty()) {
        return std::nullopt;
    }
    const bool isRead = errors_.guard([this] {
        jpeg_create_decompress(&codec_);
        progress_.progress_monitor = &limitScans;
        codec_.progress = &progress_;
        jpeg_mem_src(&codec_, data_.data(), data_.size());
        jpeg_save_markers(&codec_, exifMarker, longestSegment);
        jpeg_read_header(&codec_, TRUE);
    });
    if (!isRead || std::uint64_t{codec_.image_width} * codec_.image_height > mostPixels) {
        return std::nullopt;
    }
    return ports::PixelSize{codec_.image_width, codec_.image_height};
}

int JpegReader::orientation() const
{
    for (const auto* segment = codec_.marker_list; segment != nullptr; segment = segment->next) {
        if (const auto orientation = exifOrientation({segment->data, segment->data_length})) {
            return *orientation;
        }
    }
    return 1;
}

std::optional<ports::PixelSize> JpegReader::sizeAt(unsigned eighths)
{
    codec_.scale_num = eighths;
    codec_.scale_denom = 8;
    if (!errors_.guard([this] { jpeg_calc_output_dimensions(&codec_); })) {
        return std::nullopt;
    }
    return ports::PixelSize{codec_.output_width, codec_.output_height};
}

bool JpegReader::start(unsigned eighths, std::size_t mostCoefficientBytes)
{
    codec_.scale_num = eighths;
    codec_.scale_denom = 8;
    const bool isCmyk = codec_.jpeg_color_space == JCS_CMYK || codec_.jpeg_color_space == JCS_YCCK;
    codec_.out_color_space = isCmyk ? JCS_CMYK : JCS_EXT_RGBX;
    // The library has no backing store here: it fails if this is not enough.
    codec_.mem->max_memory_to_use = static_cast<long>(mostCoefficientBytes);
    return errors_.guard([this] { jpeg_start_decompress(&codec_); });
}

bool JpegReader::readRow(std::uint8_t* rgbx)
{
    if (!errors_.guard([this, rgbx] {
            JSAMPROW row = rgbx;
            jpeg_read_scanlines(&codec_, &row, 1);
        })) {
        return false;
    }
    if (codec_.out_color_space == JCS_CMYK) {
        convertCmykRow(rgbx, codec_.output_width, codec_.saw_Adobe_marker);
    }
    return true;
}

bool JpegReader::finish()
{
    return errors_.guard([this] { jpeg_finish_decompress(&codec_); });
}

void JpegReader::limitScans(j_common_ptr codec)
{
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > mostScans) {
        codec->err->error_exit(codec);
    }
}

} // namespace sentrel::simulation
