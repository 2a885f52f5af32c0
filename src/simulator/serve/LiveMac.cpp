#include "simulator/serve/LiveMac.hpp"

#include "simulator/EarlierRun.hpp"
#include "simulator/MacActions.hpp"

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace sentrel::simulator {

namespace {

constexpr double shortestMotionPause = 0.05; // seconds
constexpr std::size_t mostSamples = 100;

/// A member of an object's text, to be added to those before.
std::string member(const std::string& before, const std::string& name, const std::string& value)
{
    return (before.empty() ? "\"" : ",\"") + name + "\":" + value;
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
            all += member(all, room, text);
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

std::map<std::string, std::string> LiveMac::rooms(bool withPhone)
{
    std::map<std::string, std::string> rooms;
    rooms["run"] = PageState::textOf(state_.run());
    rooms["menuBar"] = PageState::textOf(state_.menuBar());
    rooms["screen"] = state_.screen();
    rooms["panels"] = PageState::textOf(state_.panels());
    rooms["hardware"] = PageState::textOf(state_.hardware());
    rooms["sound"] = PageState::textOf(state_.sound());
    rooms["cloud"] = PageState::textOf(state_.cloud());
    if (withPhone) {
        try {
            rooms["phone"] = PageState::textOf(state_.phone());
        } catch (const platform::CloudError&) {
            // Its server can't be read now; what it showed stays.
        }
    }
    return rooms;
}

void LiveMac::tellChanges()
{
    isTouched_ = false;
    std::string changes;
    for (auto& [room, text] : rooms(std::exchange(isLogRead_, false))) {
        // Time goes by without being told: the page has a clock.
        const bool isTimed = room == "run";
        std::string untimed = isTimed ? untimedRun() : std::string{};
        std::string& before = told_[room];
        if (before != (isTimed ? untimed : text)) {
            changes += member(changes, room, text);
            before = std::move(isTimed ? untimed : text);
        }
    }
    if (story_.count() != storyTold_) {
        changes += member(changes, "story", PageState::textOf(story_.from(storyTold_)));
        storyTold_ = story_.count();
    }
    if (!changes.empty()) {
        hub_.publish("state", "{" + changes + "}");
    }
}

std::string LiveMac::untimedRun() const
{
    Json run = state_.run();
    run.erase("date");
    return PageState::textOf(run);
}

} // namespace sentrel::simulator
