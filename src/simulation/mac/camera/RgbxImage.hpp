#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace sentrel::simulation {

/// Pixels of four bytes (red, green, blue, unused), row after row.
class RgbxImage {
public:
    static constexpr std::size_t pixelBytes = 4;

    RgbxImage() = default;

    /// The pixels are left undefined.
    RgbxImage(int width, int height)
        : width_(width), height_(height), pixels_(std::make_unique_for_overwrite<std::uint8_t[]>(byteCount()))
    {
    }

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] int stride() const { return width_ * static_cast<int>(pixelBytes); } ///< bytes of a row
    [[nodiscard]] std::size_t byteCount() const
    {
        return static_cast<std::size_t>(stride()) * static_cast<std::size_t>(height_);
    }
    [[nodiscard]] std::uint8_t* data() { return pixels_.get(); }
    [[nodiscard]] const std::uint8_t* data() const { return pixels_.get(); }
    [[nodiscard]] std::span<std::uint8_t> bytes() { return {pixels_.get(), byteCount()}; }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return {pixels_.get(), byteCount()}; }
    [[nodiscard]] std::uint8_t* row(int y) { return data() + static_cast<std::ptrdiff_t>(y) * stride(); }
    [[nodiscard]] const std::uint8_t* row(int y) const { return data() + static_cast<std::ptrdiff_t>(y) * stride(); }

private:
    int width_ = 0;
    int height_ = 0;
    std::unique_ptr<std::uint8_t[]> pixels_;
};

} // namespace sentrel::simulation
