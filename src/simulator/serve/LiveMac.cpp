#include "simulator/serve/LiveMac.hpp"

#include "simulator/EarlierRun.hpp"
#include "simulator/MacActions.hpp"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace sentrel::simulator {

namespace {

constexpr double shortestMotionPause = 0.05; // seconds
constexpr std::size_t mostSamples = 100;

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
        if (samples_.size() < mostSamples) {
            samples_.push_back(sample);
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
        Json all = Json::object();
        for (auto& [room, value] : rooms(true)) {
            all[room] = std::move(value);
        }
        all["story"] = story_.from(0);
        hub_.send(*subscriber, "state", all.dump(-1, ' ', false, Json::error_handler_t::replace));
        return subscriber;
    });
}

void LiveMac::happened()
{
    tellStory();
    const double now = session_.seconds();
    if (hub_.subscribers() == 0) {
        samples_.clear();
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

void LiveMac::tellMotion(double now)
{
    if (samples_.empty() || now - lastMotion_ < shortestMotionPause) {
        return;
    }
    Json samples = Json::array();
    for (const simulated::Acceleration& sample : samples_) {
        samples.push_back({sample.x, sample.y, sample.z});
    }
    const double rate = static_cast<double>(samples_.size()) / std::max(now - lastMotion_, 0.02);
    hub_.publish("motion", Json{{"at", now}, {"samples", std::move(samples)}, {"rate", std::min(rate, 100.0)}}.dump());
    samples_.clear();
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

std::map<std::string, Json> LiveMac::rooms(bool withPhone)
{
    std::map<std::string, Json> rooms;
    rooms["run"] = state_.run();
    rooms["menuBar"] = state_.menuBar();
    rooms["screen"] = state_.screen();
    rooms["panels"] = state_.panels();
    rooms["hardware"] = state_.hardware();
    rooms["sound"] = state_.sound();
    rooms["cloud"] = state_.cloud();
    if (withPhone) {
        try {
            rooms["phone"] = state_.phone();
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
    for (const auto& [room, value] : rooms(std::exchange(isLogRead_, false))) {
        std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
        // Time goes by without being told: the page has a clock.
        Json untimed;
        if (room == "run") {
            untimed = value;
            untimed.erase("date");
        }
        const std::string compared = room == "run" ? untimed.dump() : text;
        std::string& before = told_[room];
        if (before != compared) {
            before = compared;
            changes += (changes.empty() ? "\"" : ",\"") + room + "\":" + text;
        }
    }
    if (story_.count() != storyTold_) {
        changes += std::string{changes.empty() ? "" : ","} + "\"story\":" + story_.from(storyTold_).dump();
        storyTold_ = story_.count();
    }
    if (!changes.empty()) {
        hub_.publish("state", "{" + changes + "}");
    }
}

} // namespace sentrel::simulator
