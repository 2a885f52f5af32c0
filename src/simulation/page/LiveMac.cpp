#include "simulation/page/LiveMac.hpp"

#include "simulation/stage/Player.hpp"

#include <filesystem>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr double shortestMotionPause = 0.05; // seconds
constexpr std::size_t mostSamples = 100;

/// The text of an object's member, to be appended to `before`.
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

LiveMac::Life::Life(const Scenario& scenario, const std::filesystem::path& disk, const std::filesystem::path& resources,
                    std::uint64_t seed, Date date, PageFiles& files)
    : session(scenario.mac, disk, resources, seed, date), state(session, files, scenario.title), world(session.clock())
{
    simulation::SimulatedMac& mac = session.mac();
    // The page's user answers the panels.
    mac.login.setAnswerDelay(std::nullopt);
    mac.alerts.setReadingTime(std::nullopt);
    mac.savePanels.setAnswerDelay(std::nullopt);
    story.open(scenario);
    // A kept disk keeps the user's changes.
    if (!std::filesystem::exists(mac.preferences()) && !leaveFromEarlierRun(session, scenario)) {
        throw std::runtime_error{"the keychain refuses the passcode"};
    }
}

LiveMac::LiveMac(Scenario scenario, std::filesystem::path disk, std::filesystem::path resources, std::uint64_t seed,
                 Date date, bool mayBeReplaced)
    : scenario_(std::move(scenario)),
      disk_(std::move(disk)),
      resources_(std::move(resources)),
      seed_(seed),
      mayBeReplaced_(mayBeReplaced),
      life_(std::make_unique<Life>(scenario_, disk_, resources_, seed_, date, files_))
{
    begin();
}

void LiveMac::begin()
{
    life_->session.mac().accelerometer.observe([this](const simulation::Acceleration& sample) {
        if (life_->departures.size() < mostSamples) {
            life_->departures.push_back(life_->meter.distanceOf(sample, life_->threshold));
        }
    });
    life_->world.happened = [this] { happened(); };
    life_->session.launch();
}

LiveMac::~LiveMac()
{
    stop();
}

void LiveMac::start()
{
    life_->world.start();
}

void LiveMac::stop()
{
    hub_.closeAll();
    const std::shared_lock guard{mutex_};
    life_->world.stop();
}

std::string LiveMac::replace()
{
    if (!mayBeReplaced_) {
        return "This MacBook's disk is kept: for a new one, start the program without --disk.";
    }
    const std::unique_lock guard{mutex_};
    const std::filesystem::path disk = disk_ / ("mac-" + std::to_string(++replacements_));
    std::filesystem::create_directories(disk);
    const Date now = life_->world.call([this] { return life_->session.mac().wallClock.now(); });
    auto next = std::make_unique<Life>(scenario_, disk, resources_, seed_ + replacements_, now, files_);
    life_->world.stop();
    life_ = std::move(next);
    begin();
    tellStory();
    tellChanges();
    life_->world.start();
    return {};
}

std::string LiveMac::perform(const Action& action)
{
    return call([this, &action](MacSession& session) {
        if (std::string why = action.objection(session); !why.empty()) {
            return why;
        }
        life_->story.perform(session.seconds(), action);
        return action.perform(session);
    });
}

std::shared_ptr<EventHub::Subscriber> LiveMac::listen()
{
    return call([this](MacSession&) {
        tellStory();
        // Brings the other pages up to date first: later changes then are new to this page too.
        if (mayHaveChanged()) {
            tellChanges();
        }
        auto subscriber = hub_.subscribe();
        if (subscriber == nullptr) {
            return subscriber;
        }
        life_->state.redraw();
        std::string all;
        for (const auto& [room, text] : rooms(true)) {
            all += member(all, room, *text);
        }
        all += member(all, "story", PageState::textOf(life_->story.from(0)));
        hub_.send(*subscriber, "state", "{" + all + "}");
        return subscriber;
    });
}

void LiveMac::happened()
{
    tellStory();
    life_->threshold = motionThreshold(life_->session);
    const double now = life_->session.seconds();
    if (hub_.subscribers() == 0) {
        life_->departures.clear();
        life_->lastMotion = now;
        life_->isTouched = true;
        return;
    }
    tellMotion(now);
    if (mayHaveChanged()) {
        tellChanges();
    }
}

void LiveMac::tellStory()
{
    for (const simulation::Event& event : life_->session.log().events(life_->eventsSeen)) {
        ++life_->eventsSeen;
        life_->isTouched = true;
        life_->isLogRead = true;
        life_->story.tell(event);
    }
}

void LiveMac::tellMotion(double now)
{
    if (life_->departures.empty() || now - life_->lastMotion < shortestMotionPause) {
        return;
    }
    const double rate = static_cast<double>(life_->departures.size()) / std::max(now - life_->lastMotion, 0.02);
    hub_.publish("motion",
                 Json{{"at", now}, {"departures", life_->departures}, {"rate", std::min(rate, 100.0)}}.dump());
    life_->departures.clear();
    life_->lastMotion = now;
}

bool LiveMac::mayHaveChanged()
{
    const std::uint64_t version = life_->session.mac().displays.version() + life_->session.mac().statusBar.version();
    if (version != life_->screenVersion) {
        life_->screenVersion = version;
        life_->isTouched = true;
    }
    return life_->isTouched;
}

std::map<std::string, PageState::Text> LiveMac::rooms(bool withPhone)
{
    auto rooms = life_->state.contents();
    const auto add = [&rooms](const char* room, const Json& value) { rooms[room] = kept(PageState::textOf(value)); };
    add("run", life_->state.run());
    add("menuBar", life_->state.menuBar());
    add("screen", life_->state.screen());
    add("panels", life_->state.panels());
    add("hardware", life_->state.hardware());
    add("sound", life_->state.sound());
    add("cloud", life_->state.cloud());
    // A page keeps what the phone showed last while its server can't be read.
    if (const Json phone = withPhone ? life_->state.phone() : Json{}; !phone.is_null()) {
        add("phone", phone);
    }
    return rooms;
}

void LiveMac::tellChanges()
{
    life_->isTouched = false;
    const auto rooms = this->rooms(std::exchange(life_->isLogRead, false));
    std::string changes = goneContents(rooms);
    for (const auto& [room, text] : rooms) {
        // Passing time isn't sent: the page has a clock.
        const PageState::Text now = room == "run" ? kept(untimedRun()) : text;
        PageState::Text& before = told_[room];
        if (before == nullptr || (before != now && *before != *now)) {
            changes += member(changes, room, *text);
        }
        before = now;
    }
    if (life_->story.count() != life_->storyTold) {
        changes += member(changes, "story", PageState::textOf(life_->story.from(life_->storyTold)));
        life_->storyTold = life_->story.count();
    }
    if (!changes.empty()) {
        hub_.publish("state", "{" + changes + "}");
    }
}

/// Forgets windows that are gone, and returns the members that remove them from the page.
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
    Json run = life_->state.run();
    run.erase("date");
    return PageState::textOf(run);
}

} // namespace sentrel::simulation
