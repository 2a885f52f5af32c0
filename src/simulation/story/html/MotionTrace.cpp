#include "simulation/story/html/MotionTrace.hpp"

#include <algorithm>

namespace sentrel::simulation {

void MotionTrace::add(double at, double value)
{
    if (at < 0.0) {
        return;
    }
    while (at / span_ >= static_cast<double>(mostSpans)) {
        halve();
    }
    const auto place = static_cast<std::size_t>(at / span_);
    if (place >= peaks_.size()) {
        peaks_.resize(place + 1);
    }
    peaks_[place] = std::max(peaks_[place].value_or(value), value);
    if (!highest_ || value > *highest_) {
        highest_ = value;
        highestAt_ = at;
    }
}

/// Joins each two neighbours.
void MotionTrace::halve()
{
    for (std::size_t place = 0; place < peaks_.size(); place += 2) {
        const auto next = place + 1 < peaks_.size() ? peaks_[place + 1] : std::nullopt;
        peaks_[place / 2] = std::max(peaks_[place], next); // none is less than any value
    }
    peaks_.resize((peaks_.size() + 1) / 2);
    span_ *= 2.0;
}

} // namespace sentrel::simulation
