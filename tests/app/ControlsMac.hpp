#pragma once

#include "app/MacContentView.hpp"
#include "app/MenuBarLabel.hpp"
#include "app/MenuBarView.hpp"
#include "app/ProtectedActions.hpp"
#include "app/WindowHooks.hpp"
#include "cloud/CloudMac.hpp"
#include "simulation/mac/display/SimulatedLoginItem.hpp"
#include "simulation/stage/MacSession.hpp"
#include "ui/Description.hpp"
#include "ui/Interaction.hpp"
#include "ui/Node.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace sentrel::test {

/// A running product with a menu and a control panel, and the person at them.
class ControlsMac {
public:
    explicit ControlsMac(const simulation::MacDescription& description = {})
        : session_(description, disk_.path(), SENTREL_SOURCE_DIR "/resources", 1)
    {
        panel.appeared();
    }

    /// A person uses the menu or the panel, and everything that follows from it at once happens.
    template <class View> ui::Interaction press(View& view, std::string_view wanted)
    {
        return act([&] { return ui::press(view.body(), wanted); });
    }
    template <class View> ui::Interaction slide(View& view, std::string_view wanted, double value)
    {
        return act([&] { return ui::slideTo(view.body(), wanted, value); });
    }
    template <class View> ui::Interaction type(View& view, std::string_view wanted, std::string_view text)
    {
        return act([&] { return ui::typeText(view.body(), wanted, text); });
    }

    template <class View> [[nodiscard]] static bool shows(View& view, std::string_view wanted)
    {
        return ui::find(view.body(), wanted).has_value();
    }
    template <class View> [[nodiscard]] static bool isEnabled(View& view, std::string_view wanted)
    {
        const auto body = view.body();
        const auto node = ui::find(body, wanted);
        return node && node->isEnabled;
    }
    [[nodiscard]] double sliderAt(std::string_view wanted)
    {
        const auto body = panel.body();
        return ui::elementOf<ui::Slider>(*ui::find(body, wanted)->view)->value.value;
    }

    void arm()
    {
        session_.changeSettings([](AlarmSettings& settings) { settings.isArmed = true; });
    }
    template <class Field> void set(Field AlarmSettings::* field, Field value)
    {
        session_.changeSettings([&](AlarmSettings& settings) { settings.*field = value; });
    }
    /// How the login goes from now on.
    void login(simulation::LoginAnswer answer) { session_.mac().login.setAnswer(answer); }
    [[nodiscard]] std::size_t loginsAsked() { return session_.mac().login.reasonsAsked().size(); }
    /// The panel's iCloud learns that nobody is signed in.
    void signOut()
    {
        cloudMac_.icloud.account.setStatus(ports::CloudAccountStatus::noAccount);
        static_cast<void>(cloudMac_.await(cloud.refreshAvailability(true)));
    }
    void trigger()
    {
        session_.onMain([](SentrelApp& app) { app.coordinator().trigger(TriggerReason::unplugged); });
    }

    [[nodiscard]] const AlarmSettings& settings() { return app().settings().settings(); }
    [[nodiscard]] AlarmCoordinator& coordinator() { return app().coordinator(); }
    [[nodiscard]] SentrelApp& app() { return *session_.app(); }
    [[nodiscard]] simulation::SimulatedMac& mac() { return session_.mac(); }
    [[nodiscard]] simulation::MacSession& session() { return session_; }

private:
    template <class Act> ui::Interaction act(Act interact)
    {
        auto result = ui::Interaction::notFound;
        session_.onMain([&](SentrelApp&) { result = interact(); });
        // Panels are answered by a timer, even at once.
        session_.clock().advance(std::chrono::milliseconds{1});
        return result;
    }

    TemporaryFolder disk_;
    simulation::MacSession session_;
    const bool isLaunched_ = (session_.launch(), true); // before what refers to the product
    CloudWorld world_;
    CloudMac cloudMac_{world_, "Mac"};
    posix::PosixFileSystem files_;

public:
    std::vector<std::string> done; ///< what was asked of the menu's scene
    CloudKitService& cloud = *cloudMac_.cloud;
    WindowHooks hooks;
    simulation::SimulatedLoginItem loginItem{files_, session_.log(), disk_.path() / "LoginItem.json"};
    ProtectedActions protectedActions{session_.mainActor(), app().settings(), app().passwordGate(), mac().language};
    MenuBarLabel label{coordinator(), app().isComputerCompatible(), mac().language};
    MenuBarView menu{{app().settings(), coordinator(), protectedActions, hooks, loginItem, mac().language},
                     app().isComputerCompatible(),
                     {[this] { done.emplace_back("dismiss"); }, [this] { done.emplace_back("main"); },
                      [this] { done.emplace_back("alerts"); }, [this] { done.emplace_back("quit"); }}};
    MacContentView panel{{session_.mainActor(), app().settings(), coordinator(), cloud, app().presence(),
                          app().passcodes(), protectedActions, mac().language},
                         app().isComputerCompatible()};
};

} // namespace sentrel::test
