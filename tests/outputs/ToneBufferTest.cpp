#include "outputs/ToneBuffer.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace sentrel {
namespace {

TEST(ToneBuffer, IsABeepOf880HertzWithFadesAndThenSilenceToWithinAMillionth)
{
    for (const double volume : {0.25, 0.625, 0.8, 1.0}) {
        std::vector<float> samples(ToneBuffer::frameCount, 7.0F);
        ToneBuffer::render(std::span<float, ToneBuffer::frameCount>{samples}, static_cast<float>(volume));

        double worst = 0.0;
        for (std::size_t i = 0; i < 39'690; ++i) {
            const auto frame = static_cast<double>(i);
            const double envelope = std::min({frame / 220.0, (15'435.0 - frame) / 220.0, 1.0});
            const double sine = std::sin(2.0 * 3.14159265358979323846 * 880.0 * frame / 44'100.0);
            const double wanted = i < 15'435 ? std::min(volume * 1.1, 1.0) * sine * envelope : 0.0;
            worst = std::max(worst, std::abs(static_cast<double>(samples[i]) - wanted));
        }
        EXPECT_LT(worst, 1e-6) << "at volume " << volume;
    }
}

} // namespace
} // namespace sentrel
