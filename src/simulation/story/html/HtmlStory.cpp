#include "simulation/story/html/HtmlStory.hpp"

#include "simulation/mac/files/Base64.hpp"
#include "simulation/stage/TextFile.hpp"
#include "simulation/story/html/HtmlCharts.hpp"
#include "simulation/story/html/HtmlText.hpp"

#include <cmath>
#include <string_view>

namespace sentrel::simulation {

namespace {

// Whatever a text of the story might contain, the browser loads and sends nothing.
constexpr std::string_view policy = "default-src 'none'; img-src data:; media-src data:; style-src 'unsafe-inline'; "
                                    "script-src 'unsafe-inline'; base-uri 'none'; form-action 'none'";

std::string dataUrl(std::string_view type, const Bytes& content)
{
    return "data:" + std::string{type} + ";base64," + base64Text(content);
}

std::string timeElement(double at)
{
    return "<time>" + clockText(at) + "</time>";
}

std::string section(std::string_view id, std::string_view heading, const std::string& content)
{
    const std::string name{id};
    return "<section id=\"" + name + "\" aria-labelledby=\"" + name + "-heading\">\n<h2 id=\"" + name + "-heading\">" +
           std::string{heading} + "</h2>\n" + content + "</section>\n";
}

std::string_view classOf(StoryTone tone)
{
    switch (tone) {
    case StoryTone::scene:
        return "scene";
    case StoryTone::event:
        return "event";
    case StoryTone::reaction:
        return "reaction";
    case StoryTone::notice:
        return "reaction notice";
    case StoryTone::alarm:
        return "reaction alarm";
    case StoryTone::good:
        return "reaction good";
    case StoryTone::bad:
        return "bad";
    }
    return "";
}

std::string paragraph(const StoryRecord::Line& line)
{
    return "<p class=\"" + std::string{classOf(line.tone)} + "\">" + htmlText(line.text) + "</p>\n";
}

/// The results of the expectations, which are told after the story.
std::string verdict(const StoryRecord& record)
{
    std::string html;
    for (const StoryRecord::Line& line : record.lines) {
        if (!line.at) {
            const bool isGood = line.tone == StoryTone::good;
            html += "<p class=\"verdict " + std::string{isGood ? "good" : "bad"} + "\"><span aria-hidden=\"true\">" +
                    (isGood ? "✓" : "✗") + "</span> " + htmlText(line.text) + "</p>\n";
        }
    }
    return html;
}

/// Lines of one moment, as the terminal shows it, share an item.
std::string timeline(const StoryRecord& record)
{
    std::string items;
    std::string shown;
    for (const StoryRecord::Line& line : record.lines) {
        if (!line.at) {
            continue;
        }
        if (const std::string clock = clockText(*line.at); clock != shown) {
            items += (shown.empty() ? "" : "</div></li>\n") + std::string{"<li data-at=\""} + htmlNumber(*line.at) +
                     "\">" + timeElement(*line.at) + "<div>\n";
            shown = clock;
        }
        items += paragraph(line);
    }
    return section("story", "What happened", "<ol>\n" + items + (shown.empty() ? "" : "</div></li>\n") + "</ol>\n");
}

std::string player(const SoundClip& clip)
{
    if (clip.wav.empty()) {
        return "<p class=\"quiet\">Too long to be played here.</p>";
    }
    const std::string note =
        clip.kept < clip.seconds
            ? "<p class=\"quiet\">The first " + htmlNumber(std::round(clip.kept)) + " seconds can be played.</p>"
            : std::string{};
    return "<audio controls preload=\"metadata\" aria-label=\"Sound from " + clockText(clip.start) + "\" src=\"" +
           dataUrl("audio/wav", clip.wav) + "\"></audio>" + note;
}

std::string soundFigure(const SoundClip& clip)
{
    return "<figure class=\"sound\" data-start=\"" + htmlNumber(clip.start) + "\" data-seconds=\"" +
           htmlNumber(clip.seconds) + "\">\n<figcaption>" + timeElement(clip.start) + " to " +
           timeElement(clip.start + clip.seconds) + ", " + htmlNumber(std::round(clip.seconds * 10.0) / 10.0) +
           " s</figcaption>\n<div class=\"chart\">" + waveform(clip) + "</div>\n" + player(clip) + "\n</figure>\n";
}

std::string sounds(const StoryRecord& record)
{
    std::string figures;
    for (const SoundClip& clip : record.sounds) {
        figures += soundFigure(clip);
    }
    const std::string note = record.isSoundCut ? "Only the first ten minutes are recorded."
                             : figures.empty() ? "Nothing was heard."
                                               : "";
    if (!note.empty()) {
        figures += "<p class=\"quiet\">" + note + "</p>\n";
    }
    return section("sound", "What was heard", figures);
}

std::string thresholdLabel(const StoryRecord& record)
{
    const auto& thresholds = record.thresholds;
    if (thresholds.empty() || !thresholds.back().value) {
        return {};
    }
    const double value = *thresholds.back().value;
    return "<span class=\"limit\" aria-hidden=\"true\" style=\"top: " +
           htmlNumber(placeOnMotionChart(record, value) * 100.0) + "%\">alarm beyond " +
           htmlNumber(std::round(value * 100.0) / 100.0) + " g</span>";
}

std::string motion(const StoryRecord& record)
{
    if (record.motion.peaks().empty()) {
        return {};
    }
    return section("motion", "How the Mac moved",
                   "<figure>\n<div class=\"chart\">" + motionChart(record) + thresholdLabel(record) +
                       "</div>\n<div class=\"axis\" aria-hidden=\"true\">" + timeElement(0.0) +
                       timeElement(record.seconds / 2.0) + timeElement(record.seconds) +
                       "</div>\n<figcaption class=\"quiet\">Distance from rest; shaded while something was heard."
                       "</figcaption>\n</figure>\n");
}

std::string photos(const StoryRecord& record)
{
    if (record.photos.empty()) {
        return {};
    }
    std::string figures;
    for (const StoryRecord::Photo& photo : record.photos) {
        const std::string reason = htmlText(photo.reason);
        figures += "<figure class=\"photo\"><img alt=\"What the Mac's camera saw at " + clockText(photo.at) +
                   "\" src=\"" + dataUrl("image/jpeg", photo.jpeg) + "\"><figcaption>" + timeElement(photo.at) + " " +
                   reason + "</figcaption></figure>\n";
    }
    if (record.photosLeftOut > 0) {
        figures += "<p class=\"quiet\">And " + std::to_string(record.photosLeftOut) + " more.</p>\n";
    }
    return section("photos", "What the camera saw", figures);
}

std::string notifications(const StoryRecord::Phone& phone)
{
    std::string items;
    for (const auto& notification : phone.notifications) {
        items += "<li class=\"banner\"><span>" + htmlText(notification.text) + "</span>" +
                 timeElement(notification.at) + "</li>\n";
    }
    return items.empty() ? items : "<h3>Notifications</h3>\n<ol>\n" + items + "</ol>\n";
}

std::string alerts(const StoryRecord::Phone& phone)
{
    std::string items;
    for (const auto& alert : phone.alerts) {
        items +=
            "<li>" +
            (alert.thumbnail.empty() ? std::string{"<span class=\"no-photo\" aria-hidden=\"true\"></span>"}
                                     : "<img alt=\"Photo\" src=\"" + dataUrl("image/jpeg", alert.thumbnail) + "\">") +
            "<span><b>" + htmlText(alert.title) + "</b> " + htmlText(alert.device) + "</span>" + timeElement(alert.at) +
            "</li>\n";
    }
    return "<h3>Alerts</h3>\n" +
           (items.empty() ? std::string{"<p class=\"quiet\">No alerts</p>\n"} : "<ol>\n" + items + "</ol>\n");
}

std::string macs(const StoryRecord::Phone& phone)
{
    std::string items;
    for (const auto& mac : phone.macs) {
        items +=
            "<li><span>" + htmlText(mac.name) + "</span><b>" + (mac.isArmed ? "Armed" : "Disarmed") + "</b></li>\n";
    }
    return items.empty() ? items : "<h3>Macs</h3>\n<ul>\n" + items + "</ul>\n";
}

std::string phoneOf(const StoryRecord& record)
{
    if (!record.phone) {
        return {};
    }
    return section("phone", "What the owner's phone showed at the end",
                   "<div class=\"phone\">\n" + notifications(*record.phone) + alerts(*record.phone) +
                       macs(*record.phone) + "</div>\n");
}

} // namespace

HtmlLooks HtmlLooks::readFrom(const std::filesystem::path& folder)
{
    constexpr std::size_t most = 65'536;
    return {readTextFile(folder / "story.css", most), readTextFile(folder / "story.js", most)};
}

std::string htmlStory(const StoryRecord& record, const HtmlLooks& looks)
{
    const std::string title = htmlText(record.title);
    return "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"color-scheme\" content=\"light dark\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
           std::string{policy} + "\">\n<title>" + title + "</title>\n<style>\n" + looks.style +
           "</style>\n</head>\n<body>\n<header>\n<h1>" + title + "</h1>\n<p>" + htmlText(record.scene) + "</p>\n" +
           verdict(record) + "</header>\n<main>\n" + timeline(record) + "<div class=\"beside\">\n" + sounds(record) +
           motion(record) + photos(record) + phoneOf(record) + "</div>\n</main>\n<script>\n" + looks.script +
           "</script>\n</body>\n</html>\n";
}

} // namespace sentrel::simulation
