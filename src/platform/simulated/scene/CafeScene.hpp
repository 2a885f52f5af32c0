#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"
#include "platform/simulated/RgbxImage.hpp"

#include <mutex>
#include <optional>

namespace sentrel::simulated {

/// What the camera sees: a cafe at the time of day, its clock on the wall, and somebody at the Mac. Any thread.
class CafeScene {
public:
    static constexpr int width = 1920;
    static constexpr int height = 1080;

    /// A JPEG of the scene at this moment (UTC), to the minute. It measures the given brightness (0 to 1), or what the
    /// light of the hour gives. Equal calls give equal bytes.
    [[nodiscard]] Bytes photograph(Date date, std::optional<double> brightness);

private:
    std::mutex mutex_;
    int drawnMinute_ = -1;
    RgbxImage drawn_; // at `drawnMinute_`: drawing takes far longer than the rest
};

/// Draws the scene at a minute of the day.
[[nodiscard]] RgbxImage drawCafe(int minuteOfDay);

/// Brightens or darkens the image evenly until its mean luma (ITU-R BT.709) is this, 0 to 1.
void expose(RgbxImage& image, double brightness);

} // namespace sentrel::simulated
