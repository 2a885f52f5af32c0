#include "ports/CloudAccount.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/StoredDefaults.hpp"
#include "support/Acting.hpp"
#include "support/TemporaryFolder.hpp"
#include "ui/Node.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using simulation::LoginAnswer;
using simulation::WindowContent;
using testing::IsEmpty;

using Words = std::set<std::string>;

/// The passcode that everybody tries.
constexpr const char* guess = "0000";

/// How a MacBook is found, and what the person at it can answer the login.
struct Found {
    const char* name;
    LoginAnswer answer = LoginAnswer::fail;
    bool isLoginRequired = true;
    bool isArmed = true;
    const char* passcode = "2468"; ///< null: none is set
    bool isCovered = false;
    bool isSounding = false;
    bool isDisarmedByPhone = false; ///< afterwards, from under the lock screen
    bool isQuitting = false;        ///< the cleanup is under way, and began before the alarm
    bool isAsked = false;           ///< a quit's login panel is open, and nobody answers it
};

/// The protections that a thief would want to lose, read from the devices.
struct Protection {
    explicit Protection(MacSession& session)
        : isRunning(session.app() != nullptr),
          isSounding(!session.mac().speaker.sounding().empty()),
          isAwake(!session.mac().assertions.held().empty()),
          hasCover(!session.mac().displays.covers().empty()),
          passcode(session.mac().keychain.item(simulation::KeychainStore::dataProtection,
                                               "pelmadev.Sentrel.unlock-passcode", "arm-screen-cover")),
          loginItem(session.mac().loginItem.status())
    {
        StoredDefaults stored{session.mac()};
        settings = SettingsStore{session.mainActor(), stored.get()}.settings();
    }

    bool isRunning;
    bool isSounding;
    bool isAwake; ///< which the armed Mac keeps itself
    bool hasCover;
    std::optional<simulation::KeychainItem> passcode;
    std::int64_t loginItem;
    AlarmSettings settings;
};

/// Which of the settings are looser now, by name. A number without a better direction may not change at all.
Words loosened(const AlarmSettings& before, const AlarmSettings& now)
{
    const std::map<std::string_view, double> better{
        {"motionSensitivity", 1.0}, {"alarmVolume", 1.0}, {"lockScreenSleepDelay", -1.0}};
    Words names;
    for (const auto& [name, member] : alarmSettingsFields) {
        if (const auto* const flag = std::get_if<bool AlarmSettings::*>(&member)) {
            if (before.**flag && !(now.**flag)) {
                names.emplace(name);
            }
            continue;
        }
        const double change = now.*std::get<double AlarmSettings::*>(member) - before.*std::get<1>(member);
        const auto direction = better.find(name);
        if (change != 0.0 && (direction == better.end() || change * direction->second < 0.0)) {
            names.emplace(name);
        }
    }
    return names;
}

Words losses(const Protection& before, const Protection& now)
{
    Words lost = loosened(before.settings, now.settings);
    const std::pair<const char*, bool> others[] = {
        {"process", before.isRunning && !now.isRunning}, {"sound", before.isSounding && !now.isSounding},
        {"watch", before.isAwake && !now.isAwake},       {"cover", before.hasCover && !now.hasCover},
        {"passcode", before.passcode != now.passcode},   {"login item", before.loginItem != now.loginItem},
    };
    for (const auto& [name, isLost] : others) {
        if (isLost) {
            lost.emplace(name);
        }
    }
    return lost;
}

/// Losses for which the product need not ask, in view of the settings and the state.
Words permitted(const Found& found)
{
    Words words;
    if (!found.isArmed || !found.isLoginRequired) {
        // Nothing is to be protected from an owner who sits at a disarmed Mac, or who wants no questions.
        words = {"passcode"};
        for (const auto& [name, member] : alarmSettingsFields) {
            words.emplace(name);
        }
    }
    if (!found.isLoginRequired) {
        words.insert({"login item", "watch"});
    }
    return words;
}

/// Something that a person can do now.
struct Deed {
    int order = 0; ///< what ends other possibilities comes later
    std::string name;
    std::function<void()> act;
};

/// A MacBook, and a person at it who tries everything.
class Tries {
public:
    explicit Tries(const Found& found) : found_(found), session_(describe(), disk_.path(), resources, 1)
    {
        session_.launch();
        session_.clock().advance(10s); // the phone knows the Mac
        if (found_.passcode != nullptr) {
            session_.setPasscode(found_.passcode);
        }
        static_cast<void>(session_.mac().loginItem.setStatus(1));
        // Two alerts of an earlier alarm.
        change([](AlarmSettings& settings) { settings.isArmed = true; });
        for (const bool isOnAC : {false, true, false, true}) {
            session_.mac().power.setAC(isOnAC);
            session_.clock().advance(5s);
        }
        change([](AlarmSettings& settings) { settings.isArmed = false; });
        EXPECT_EQ(act(session_, "{open: main}"), "");
        EXPECT_EQ(act(session_, "{open: alerts}"), "");
        session_.mac().statusBar.closeMenu();
        session_.clock().advance(10s);
        bringAbout();
    }

    /// Everything that was lost at any time.
    Words tryEverything()
    {
        const Protection before{session_};
        Words lost;
        while (const auto deed = next()) {
            session_.onMain([&](SentrelApp&) { deed->act(); });
            session_.clock().advance(10ms);
            const Words now = losses(before, Protection{session_});
            for (const std::string& word : now) {
                if (lost.insert(word).second && !permitted(found_).contains(word)) {
                    culprits.push_back(deed->name + " -> " + word);
                }
            }
        }
        while (session_.mac().login.answerPanel(found_.answer)) {
            session_.clock().advance(10ms);
        }
        session_.clock().advance(5s);
        lost.merge(losses(before, Protection{session_}));
        return lost;
    }

    std::vector<std::string> culprits; ///< what was done, and what was lost by it
    std::set<std::string> tried;

private:
    static constexpr const char* resources = SENTREL_SOURCE_DIR "/resources";

    static simulation::MacDescription describe()
    {
        simulation::MacDescription description;
        description.iCloud = {.user = "maya", .account = ports::CloudAccountStatus::available};
        return description;
    }
    void change(const std::function<void(AlarmSettings&)>& change)
    {
        session_.changeSettings(change);
        session_.clock().advance(1s);
    }
    void bringAbout()
    {
        session_.mac().login.setAnswer(found_.answer);
        change([&](AlarmSettings& settings) {
            settings.requirePasswordForActions = found_.isLoginRequired;
            settings.triggerOnFailedUnlock = true;
            settings.lockScreenOnArm = true;
            // Else the lock screen comes after all that is tried.
            settings.lockScreenSleepDelay = found_.isCovered ? 0.0 : 29.0;
            settings.isArmed = found_.isArmed;
        });
        if (found_.isQuitting) {
            session_.mac().iCloud.link.setLatency(1h);
            session_.quit();
        }
        session_.mac().power.setAC(!found_.isSounding);
        session_.clock().advance(500ms);
        if (found_.isDisarmedByPhone) {
            session_.commandByPhone({.arm = false});
            session_.clock().advance(10s);
        }
        if (found_.isAsked) {
            session_.mac().login.setAnswerDelay(std::nullopt);
            session_.quit();
        }
        EXPECT_EQ(!session_.mac().displays.covers().empty(), found_.isCovered);
        EXPECT_EQ(!session_.mac().speaker.sounding().empty(), found_.isSounding);
        EXPECT_EQ(session_.app()->coordinator().isArmed.get(), found_.isArmed && !found_.isDisarmedByPhone);
        EXPECT_EQ(session_.mac().application.isAwaitingReply(), found_.isQuitting);
    }

    std::optional<Deed> next()
    {
        if (session_.app() == nullptr) {
            return std::nullopt;
        }
        std::vector<Deed> deeds = possible();
        std::erase_if(deeds, [&](const Deed& deed) { return tried.contains(deed.name); });
        const auto first = std::ranges::min_element(deeds, {}, &Deed::order);
        if (first == deeds.end()) {
            return std::nullopt;
        }
        tried.insert(first->name);
        return *first;
    }

    std::vector<Deed> possible()
    {
        auto& mac = session_.mac();
        std::vector<Deed> deeds;
        const auto covers = mac.displays.covers();
        for (std::size_t index = 0; index < covers.size(); ++index) {
            addContent(deeds, "cover " + std::to_string(index), covers[index].content, 0,
                       [&mac, index](const auto& use) { static_cast<void>(mac.displays.useCover(index, use)); });
        }
        if (covers.empty()) {
            for (const auto& window : mac.displays.windows()) {
                addWindow(deeds, window);
            }
            addMenu(deeds);
        }
        addEvents(deeds);
        return deeds;
    }

    using Hands = std::function<void(const simulation::SimulatedDisplays::Use& use)>;

    void addWindow(std::vector<Deed>& deeds, const simulation::WindowState& window)
    {
        auto& displays = session_.mac().displays;
        const std::string id = window.identifier;
        addContent(deeds, id, window.content, 0,
                   [&displays, id](const auto& use) { static_cast<void>(displays.use(id, use)); });
        deeds.push_back({1, id + " zoomed", [&displays, id] { displays.zoomWindow(id); }});
        deeds.push_back({1, id + " resized", [&displays, id] { displays.resizeWindow(id, {1.0, 1.0}); }});
        deeds.push_back({5, id + " closed", [&displays, id] { displays.closeWindow(id); }});
    }

    void addMenu(std::vector<Deed>& deeds)
    {
        auto& bar = session_.mac().statusBar;
        if (!bar.isMenuOpen()) {
            deeds.push_back({10, "menu opened", [&bar] { bar.openMenu(); }});
        }
        const auto item = bar.item();
        for (const ui::Node& node : ui::nodesOf(item->menu)) {
            if (ui::isInteractive(*node.view) && node.isEnabled && !isExcepted(node.identity)) {
                deeds.push_back({11, "menu: " + node.identity, [&bar, id = node.identity] {
                                     bar.openMenu();
                                     static_cast<void>(bar.click(id));
                                 }});
            }
        }
        for (const ui::Key key : allKeys) {
            deeds.push_back({12, "menu key " + std::to_string(static_cast<int>(key)), [&bar, key] {
                                 bar.openMenu();
                                 static_cast<void>(bar.pressKey(key));
                             }});
        }
    }

    /// Events from outside the views: the system, and a phone whose commands are stale or known.
    void addEvents(std::vector<Deed>& deeds)
    {
        const auto add = [&](const char* name, std::function<void()> act) {
            deeds.push_back({20, name, std::move(act)});
        };
        add("stale command", [this] { session_.commandByPhone({.arm = false, .issuedAgo = 600.0}); });
        add("old command", [this] { session_.commandByPhone({.arm = false, .sequence = 0}); });
        add("screens asleep", [this] { session_.mac().workspace.post("NSWorkspaceScreensDidSleepNotification"); });
        add("woken", [this] { session_.mac().workspace.post("NSWorkspaceDidWakeNotification"); });
        add("second display", [this] { session_.mac().displays.setCount(2); });
        add("first display only", [this] { session_.mac().displays.setCount(1); });
        add("new day", [this] { session_.mac().displays.post("NSCalendarDayChangedNotification"); });
        add("quit", [this] { session_.mac().application.terminate(); });
        add("quit again", [this] { session_.mac().application.terminate(); });
    }

    void addContent(std::vector<Deed>& deeds, const std::string& where, const ui::View& content, int order,
                    const Hands& hands)
    {
        std::string front; // the dialog that keys go to
        for (const ui::Node& node : ui::nodesOf(content)) {
            const bool isModal =
                ui::elementOf<ui::Dialog>(*node.view) != nullptr || ui::elementOf<ui::Sheet>(*node.view) != nullptr;
            front = isModal ? node.identity : front;
            if (ui::isInteractive(*node.view) && node.isEnabled && !node.isBlocked && !isExcepted(node.identity)) {
                addNode(deeds, where + ": " + node.identity, node, order, hands);
            }
        }
        for (const ui::Key key : allKeys) {
            const int later = key == ui::Key::escape ? 4 : 2;
            deeds.push_back({order + later, where + " key " + std::to_string(static_cast<int>(key)) + " " + front,
                             [hands, key] { hands([key](WindowContent shown) { return shown.pressKey(key); }); }});
        }
    }

    static void addNode(std::vector<Deed>& deeds, const std::string& name, const ui::Node& node, int order,
                        const Hands& hands)
    {
        const auto add = [&](int later, const std::string& how, simulation::SimulatedDisplays::Use use) {
            deeds.push_back({order + later, name + how, [hands, use = std::move(use)] { hands(use); }});
        };
        const std::string id = node.identity;
        const auto click = [id](WindowContent shown) { return shown.click(id); };
        if (const auto* const button = ui::elementOf<ui::Button>(*node.view)) {
            using Role = ui::Button::Role;
            add(button->role == Role::cancel ? 3 : button->role == Role::destructive ? 1 : 0, "", click);
        } else if (const auto* const toggle = ui::elementOf<ui::Toggle>(*node.view)) {
            add(0, toggle->isOn.value ? " off" : " on", click);
        } else if (const auto* const slider = ui::elementOf<ui::Slider>(*node.view)) {
            for (const double end : {slider->lower, slider->upper}) {
                add(0, " to " + std::to_string(end), [id, end](WindowContent shown) { return shown.slide(id, end); });
            }
        } else if (ui::elementOf<ui::List>(*node.view) != nullptr) {
            add(0, " one", [](WindowContent shown) { return shown.select({0}); });
            add(1, " two", [](WindowContent shown) { return shown.select({0, 1}); });
        } else {
            add(0, " typed", [id](WindowContent shown) { return shown.fill(id, guess); });
        }
    }

    /// Settings that want no login let anybody stop the alarm by its button and disarm, and these say so.
    [[nodiscard]] bool isExcepted(std::string_view identity) const
    {
        return !found_.isLoginRequired && (identity.ends_with("stopAlarm") || identity.ends_with("armed"));
    }

    static constexpr ui::Key allKeys[] = {ui::Key::returnKey, ui::Key::deleteKey, ui::Key::escape};

    Found found_;
    TemporaryFolder disk_;
    MacSession session_;
};

TEST(WaysRoundTheLogin, NoControlKeyCommandOrEventTakesProtectionAwayWithoutIt)
{
    const Found strangers[] = {
        {.name = "disarmed", .isArmed = false},
        {.name = "armed"},
        {.name = "armed, cancelling", .answer = LoginAnswer::cancel},
        {.name = "armed, no passcode", .passcode = nullptr},
        {.name = "sounding", .isSounding = true},
        {.name = "sounding, no passcode", .passcode = nullptr, .isSounding = true},
        {.name = "sounding, no login there", .answer = LoginAnswer::unavailable, .isSounding = true},
        {.name = "sounding, asked", .isSounding = true, .isAsked = true},
        {.name = "sounding, free", .isLoginRequired = false, .isSounding = true},
        {.name = "sounding, quitting, free", .isLoginRequired = false, .isSounding = true, .isQuitting = true},
        {.name = "covered", .isCovered = true},
        {.name = "covered, sounding", .isCovered = true, .isSounding = true},
        {.name = "covered, free", .isLoginRequired = false, .isCovered = true},
        {.name = "covered, disarmed by the phone, free",
         .isLoginRequired = false,
         .isCovered = true,
         .isDisarmedByPhone = true},
    };
    for (const Found& found : strangers) {
        SCOPED_TRACE(found.name);
        Tries stranger{found};
        Words lost = stranger.tryEverything();
        std::erase_if(lost, [&](const std::string& word) { return permitted(found).contains(word); });
        EXPECT_THAT(lost, IsEmpty()) << testing::PrintToString(stranger.culprits);
    }
    // The same tries take everything away after the login, and the lock screen with its passcode, so that the strangers
    // have tried what there is.
    Tries owner{{.name = "owner", .answer = LoginAnswer::succeed, .isSounding = true}};
    Words everything{"process", "sound", "watch", "passcode", "login item"};
    for (const auto& [name, member] : alarmSettingsFields) {
        everything.emplace(name);
    }
    EXPECT_EQ(owner.tryEverything(), everything);
    Tries friendOfOwner{{.name = "friend", .passcode = guess, .isCovered = true, .isSounding = true}};
    EXPECT_EQ(friendOfOwner.tryEverything(), (Words{"cover", "sound"}));
}

} // namespace
} // namespace sentrel::simulation
