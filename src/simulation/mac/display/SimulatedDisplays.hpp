#pragma once

#include "ports/ApplicationNotifications.hpp"
#include "ports/Windows.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/NotificationHub.hpp"
#include "simulation/mac/display/WindowList.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sentrel::ports {
class Journal;
}

namespace sentrel::simulation {

class SimulatedApplicationActivation;

/// The displays of the simulated MacBook, the product's windows on them, and the person in front. Connecting and
/// disconnecting notes `displays.changed` {count} and posts the notification of it. Used on the product's main thread;
/// displays may come and go on any thread that excludes it.
///
/// Faults: `no-screens` (the system lists none), `notification` (a change goes unannounced),
/// `notification-twice`.
class SimulatedDisplays final : public ports::Windows, public ports::ApplicationNotifications {
public:
    SimulatedDisplays(Scheduler& process, ports::Journal& journal, SimulatedApplicationActivation& activation,
                      std::size_t count = 1);
    ~SimulatedDisplays() override;

    [[nodiscard]] std::vector<ports::Screen> screens() override;
    [[nodiscard]] std::int64_t shieldingLevel() override;
    [[nodiscard]] std::unique_ptr<ports::Window> makeWindow(const ports::WindowDescription& description) override;
    [[nodiscard]] ports::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;

    /// Posts a notification of the application's own center. Any thread.
    void post(const std::string& name) { notifications_.post(name); }

    /// Connects or disconnects displays until there are this many. The first, 1728 x 1117 points, is built in; each
    /// further one, 1920 x 1080, stands to the right. Windows on a removed display stay where they are.
    void setCount(std::size_t count);
    [[nodiscard]] std::size_t count() const { return count_; }

    /// The displays, whatever the system lists; the built-in one first.
    [[nodiscard]] std::vector<ports::Screen> connected() const;

    /// The visible windows at the shielding level or above, in the order in which they were made.
    [[nodiscard]] std::vector<WindowState> covers() const;

    /// Whether an opaque cover hides the whole display.
    [[nodiscard]] bool isCovered(std::size_t display) const;

    /// Calls back, in the call that does it, when a window is given the keyboard.
    void onKeyWindow(std::function<void()> given) { keyGiven_ = std::move(given); }

    /// The visible windows below the shielding level, the one in front first.
    [[nodiscard]] std::vector<WindowState> windows() const;

    /// A window's live state, without a copy: for reading before anything changes.
    using SeenWindow = std::shared_ptr<const WindowState>;
    [[nodiscard]] std::vector<SeenWindow> seenWindows() const;
    [[nodiscard]] std::vector<SeenWindow> seenCovers() const;

    /// The window of this identifier, even if hidden; none if the product hasn't made it.
    [[nodiscard]] std::optional<WindowState> window(std::string_view identifier) const;

    // Actions of the person.

    /// Types into the key window while the application is active; false if nothing received the text.
    [[nodiscard]] bool type(std::string_view text);
    [[nodiscard]] ui::Interaction pressKey(ui::Key key);

    /// Clicks on a node of a cover, by its place in `covers`; that window gets the keyboard.
    [[nodiscard]] ui::Interaction click(std::size_t cover, std::string_view wanted);

    /// An action of the person in a window's content.
    using Use = std::function<ui::Interaction(WindowContent content)>;

    /// Does it in the window of this identifier, which first comes to the front with its application.
    [[nodiscard]] ui::Interaction use(std::string_view identifier, const Use& use);

    /// Does it in the window that the person faces: a cover, else the key window, else the one in front.
    [[nodiscard]] ui::Interaction useFront(const Use& use);

    /// Does it in a cover, by its place in `covers`.
    [[nodiscard]] ui::Interaction useCover(std::size_t cover, const Use& use);

    /// Changes whenever the windows' content or frames change.
    [[nodiscard]] std::uint64_t version() const;

    // These change a window's frame, by its identifier. False if there is no such window, a cover lies over it, its
    // style doesn't offer this, or its delegate refuses. Sizes are those of the content.
    bool closeWindow(std::string_view identifier);
    bool resizeWindow(std::string_view identifier, ports::Size content);
    bool moveWindow(std::string_view identifier, double x, double y);
    bool zoomWindow(std::string_view identifier);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    using WindowPtr = WindowList::WindowPtr;

    [[nodiscard]] static ports::Screen screenAt(std::size_t index);
    [[nodiscard]] std::vector<WindowPtr> visibleCovers() const;
    [[nodiscard]] WindowPtr keyWindow() const;
    [[nodiscard]] WindowPtr reachable(std::string_view identifier) const;
    ui::Interaction useWindow(const WindowPtr& window, const Use& use);

    ports::Journal& journal_;
    SimulatedApplicationActivation& activation_;
    std::size_t count_;
    WindowList windows_;
    std::function<void()> keyGiven_;
    std::uint64_t keyGivenAfter_ = 0; ///< `activation_.losses()` at that moment
    FaultSwitches faults_{"no-screens", "notification", "notification-twice"};
    NotificationHub notifications_;
};

} // namespace sentrel::simulation
