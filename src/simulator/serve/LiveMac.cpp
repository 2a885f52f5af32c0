#include "simulator/serve/LiveMac.hpp"

#include "simulator/EarlierRun.hpp"
#include "simulator/MacActions.hpp"

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace sentrel::simulator {

namespace {

constexpr double shortestMotionPause = 0.05; // seconds
constexpr std::size_t mostSamples = 100;

/// A member of an object's text, to be added to those before.
std::string member(const std::string& before, const std::string& name, std::string_view value)
{
    std::string text;
    text.reserve(name.size() + value.size() + 4);
    return text.append(before.empty() ? "\"" : ",\"").append(name).append("\":").append(value);
}

PageState::Text kept(std::string text)
{
    return std::make_shared<const std::string>(std::move(text));
}

} // namespace

LiveMac::LiveMac(const Scenario& scenario, const std::filesystem::path& disk, const std::filesystem::path& resources,
                 std::uint64_t seed, Date date)
    : session_(scenario.mac, disk, resources, seed, date),
      state_(session_, files_, scenario.title),
      world_(session_.clock())
{
    simulated::SimulatedMac& mac = session_.mac();
    // A person is there to answer.
    mac.login.setAnswerDelay(std::nullopt);
    mac.alerts.setReadingTime(std::nullopt);
    mac.savePanels.setAnswerDelay(std::nullopt);
    mac.accelerometer.observe([this](const simulated::Acceleration& sample) {
        if (departures_.size() < mostSamples) {
            departures_.push_back(departureOf(sample));
        }
    });
    story_.open(scenario);
    world_.happened = [this] { happened(); };
    // What a person has changed on a disk that was kept stays.
    if (!std::filesystem::exists(session_.mac().preferences()) && !leaveFromEarlierRun(session_, scenario)) {
        throw std::runtime_error{"the passcode can't be put into the keychain"};
    }
    session_.launch();
}

LiveMac::~LiveMac()
{
    stop();
}

void LiveMac::start()
{
    world_.start();
}

void LiveMac::stop()
{
    hub_.closeAll();
    world_.stop();
}

std::string LiveMac::perform(const Action& action)
{
    return call([this, &action](MacSession& session) {
        if (std::string why = objection(session, action); !why.empty()) {
            return why;
        }
        story_.perform(session.seconds(), action);
        return simulator::perform(session, action);
    });
}

std::shared_ptr<EventHub::Subscriber> LiveMac::listen()
{
    return call([this](MacSession&) {
        tellStory();
        // So that what comes after the whole state is news to this page, too.
        if (mayHaveChanged()) {
            tellChanges();
        }
        auto subscriber = hub_.subscribe();
        if (subscriber == nullptr) {
            return subscriber;
        }
        state_.redraw();
        std::string all;
        for (const auto& [room, text] : rooms(true)) {
            all += member(all, room, *text);
        }
        all += member(all, "story", PageState::textOf(story_.from(0)));
        hub_.send(*subscriber, "state", "{" + all + "}");
        return subscriber;
    });
}

void LiveMac::happened()
{
    tellStory();
    const double now = session_.seconds();
    if (hub_.subscribers() == 0) {
        departures_.clear();
        lastMotion_ = now;
        isTouched_ = true;
        return;
    }
    tellMotion(now);
    if (mayHaveChanged()) {
        tellChanges();
    }
}

void LiveMac::tellStory()
{
    for (const simulated::Event& event : session_.log().events(eventsSeen_)) {
        ++eventsSeen_;
        isTouched_ = true;
        isLogRead_ = true;
        story_.tell(event);
    }
}

double LiveMac::departureOf(const simulated::Acceleration& sample)
{
    const double threshold = state_.motionThreshold().value_or(meterThreshold_);
    if (!meter_ || threshold != meterThreshold_) {
        meter_.emplace(threshold);
        meterThreshold_ = threshold;
    }
    static_cast<void>(meter_->departs({sample.x, sample.y, sample.z}));
    const AccelerationSample& baseline = meter_->baseline();
    const double distance = std::hypot(sample.x - baseline.x, sample.y - baseline.y, sample.z - baseline.z);
    return std::isfinite(distance) ? distance : 0.0;
}

void LiveMac::tellMotion(double now)
{
    if (departures_.empty() || now - lastMotion_ < shortestMotionPause) {
        return;
    }
    const double rate = static_cast<double>(departures_.size()) / std::max(now - lastMotion_, 0.02);
    hub_.publish("motion", Json{{"at", now}, {"departures", departures_}, {"rate", std::min(rate, 100.0)}}.dump());
    departures_.clear();
    lastMotion_ = now;
}

bool LiveMac::mayHaveChanged()
{
    const std::uint64_t version = session_.mac().displays.version() + session_.mac().statusBar.version();
    if (version != screenVersion_) {
        screenVersion_ = version;
        isTouched_ = true;
    }
    return isTouched_;
}

std::map<std::string, PageState::Text> LiveMac::rooms(bool withPhone)
{
    auto rooms = state_.contents();
    const auto add = [&rooms](const char* room, const Json& value) { rooms[room] = kept(PageState::textOf(value)); };
    add("run", state_.run());
    add("menuBar", state_.menuBar());
    add("screen", state_.screen());
    add("panels", state_.panels());
    add("hardware", state_.hardware());
    add("sound", state_.sound());
    add("cloud", state_.cloud());
    if (withPhone) {
        try {
            add("phone", state_.phone());
        } catch (const platform::CloudError&) {
            // Its server can't be read now; what it showed stays.
        }
    }
    return rooms;
}

void LiveMac::tellChanges()
{
    isTouched_ = false;
    const auto rooms = this->rooms(std::exchange(isLogRead_, false));
    std::string changes = goneContents(rooms);
    for (const auto& [room, text] : rooms) {
        // Time goes by without being told: the page has a clock.
        const PageState::Text now = room == "run" ? kept(untimedRun()) : text;
        PageState::Text& before = told_[room];
        if (before == nullptr || (before != now && *before != *now)) {
            changes += member(changes, room, *text);
        }
        before = now;
    }
    if (story_.count() != storyTold_) {
        changes += member(changes, "story", PageState::textOf(story_.from(storyTold_)));
        storyTold_ = story_.count();
    }
    if (!changes.empty()) {
        hub_.publish("state", "{" + changes + "}");
    }
}

/// Forgets the windows that are not there any more, and has the page forget them.
std::string LiveMac::goneContents(const std::map<std::string, PageState::Text>& rooms)
{
    std::string gone;
    std::erase_if(told_, [&](const auto& told) {
        const bool isGone = told.first.starts_with(PageState::contentPrefix) && !rooms.contains(told.first);
        if (isGone) {
            gone += member(gone, told.first, "null");
        }
        return isGone;
    });
    return gone;
}

std::string LiveMac::untimedRun() const
{
    Json run = state_.run();
    run.erase("date");
    return PageState::textOf(run);
}

} // namespace sentrel::simulator
