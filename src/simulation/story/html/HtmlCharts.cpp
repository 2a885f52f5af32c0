#include "simulation/story/html/HtmlCharts.hpp"

#include "simulation/story/html/HtmlText.hpp"

#include <algorithm>
#include <cmath>
#include <ranges>

namespace sentrel::simulation {

namespace {

constexpr double width = 1000.0;
constexpr double height = 100.0;

std::string svg(const std::string& label, const std::string& content)
{
    return "<svg role=\"img\" aria-label=\"" + htmlText(label) +
           "\" viewBox=\"0 0 1000 100\" preserveAspectRatio=\"none\">" + content + "</svg>";
}

std::string point(double x, double y)
{
    return htmlNumber(x) + "," + htmlNumber(y);
}

/// Places on a chart of the whole story.
class Chart {
public:
    explicit Chart(const StoryRecord& record) : seconds_(std::max(record.seconds, 0.1))
    {
        for (const auto& threshold : record.thresholds) {
            scale_ = std::max(scale_, 1.4 * threshold.value.value_or(0.0));
        }
        scale_ = std::max(scale_, 1.1 * record.motion.highest().value_or(0.0));
    }

    [[nodiscard]] double x(double at) const { return std::clamp(at / seconds_, 0.0, 1.0) * width; }
    [[nodiscard]] double y(double value) const { return (1.0 - std::clamp(value / scale_, 0.0, 1.0)) * height; }

private:
    double seconds_;
    double scale_ = 0.2; // g at the top edge, at least
};

std::string heardTimes(const StoryRecord& record, const Chart& chart)
{
    std::string rects;
    for (const SoundClip& clip : record.sounds) {
        const double from = chart.x(clip.start);
        rects += "<rect class=\"heard\" x=\"" + htmlNumber(from) + "\" y=\"0\" width=\"" +
                 htmlNumber(std::max(chart.x(clip.start + clip.seconds) - from, 1.0)) + "\" height=\"100\"/>";
    }
    return rects;
}

std::string thresholdLines(const StoryRecord& record, const Chart& chart)
{
    std::string lines;
    for (std::size_t index = 0; index < record.thresholds.size(); ++index) {
        const auto& threshold = record.thresholds[index];
        const double until = index + 1 < record.thresholds.size() ? record.thresholds[index + 1].from : record.seconds;
        if (threshold.value) {
            lines += "M" + point(chart.x(threshold.from), chart.y(*threshold.value)) + "H" + htmlNumber(chart.x(until));
        }
    }
    return lines.empty() ? lines : "<path class=\"threshold\" d=\"" + lines + "\"/>";
}

std::string motionLine(const MotionTrace& trace, const Chart& chart)
{
    std::string line;
    bool isOpen = false;
    for (std::size_t place = 0; place < trace.peaks().size(); ++place) {
        const auto& peak = trace.peaks()[place];
        if (peak) {
            line += (isOpen ? "L" : "M") +
                    point(chart.x((static_cast<double>(place) + 0.5) * trace.span()), chart.y(*peak));
            line += isOpen ? "" : "h0.1"; // a single value is seen, too
        }
        isOpen = peak.has_value();
    }
    return "<path class=\"motion\" d=\"" + line + "\"/>";
}

std::string inG(double value)
{
    return htmlNumber(std::round(value * 100.0) / 100.0) + " g";
}

} // namespace

std::string waveform(const SoundClip& clip)
{
    std::string upper;
    std::string lower;
    float loudest = 0.0F;
    for (std::size_t place = 0; place < clip.peaks.size(); ++place) {
        const float peak = clip.peaks[place];
        const double x = static_cast<double>(place) / static_cast<double>(clip.peaks.size()) * width;
        const double next = static_cast<double>(place + 1) / static_cast<double>(clip.peaks.size()) * width;
        const double half = std::max(static_cast<double>(peak) * 48.0, 0.7);
        upper += "L" + point(x, 50.0 - half) + "H" + htmlNumber(next);
        lower.insert(0, "L" + point(next, 50.0 + half) + "H" + htmlNumber(x));
        loudest = std::max(loudest, peak);
    }
    const std::string label = "Loudness from " + clockText(clip.start) + " to " + clockText(clip.start + clip.seconds) +
                              ", at most " + htmlNumber(std::round(static_cast<double>(loudest) * 100.0)) +
                              " % of full scale";
    return svg(label, "<path class=\"wave\" d=\"M0,50" + upper + lower + "Z\"/>");
}

std::string motionChart(const StoryRecord& record)
{
    const Chart chart{record};
    std::string label = "Distance from rest over the whole story";
    if (record.motion.highest()) {
        label += ", at most " + inG(*record.motion.highest()) + ", at " + clockText(record.motion.highestAt());
    }
    for (const auto& threshold : record.thresholds | std::views::reverse) {
        if (threshold.value) {
            label += ". The alarm sounds beyond " + inG(*threshold.value);
            break;
        }
    }
    return svg(label, heardTimes(record, chart) + motionLine(record.motion, chart) + thresholdLines(record, chart));
}

double placeOnMotionChart(const StoryRecord& record, double value)
{
    return Chart{record}.y(value) / height;
}

} // namespace sentrel::simulation
