#pragma once

#include "platform/ApplicationNotifications.hpp"
#include "platform/Windows.hpp"
#include "platform/simulated/FaultSwitches.hpp"
#include "platform/simulated/NotificationHub.hpp"
#include "platform/simulated/SimulatedWindow.hpp"
#include "runtime/Scheduler.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::platform {
class Journal;
}

namespace sentrel::simulated {

class SimulatedApplicationActivation;

/// The displays of the simulated MacBook, the product's windows on them, and the person in front. Connecting and
/// disconnecting notes `displays.changed` {count} and posts the notification of it. Used on the product's main thread;
/// displays may come and go on any thread that excludes it.
///
/// Faults: `no-screens` (the system lists none), `notification` (a change goes unannounced).
class SimulatedDisplays final : public platform::Windows, public platform::ApplicationNotifications {
public:
    SimulatedDisplays(Scheduler& process, platform::Journal& journal, const SimulatedApplicationActivation& activation,
                      std::size_t count = 1);
    ~SimulatedDisplays() override;

    [[nodiscard]] std::vector<platform::Screen> screens() override;
    [[nodiscard]] std::int64_t shieldingLevel() override;
    [[nodiscard]] std::unique_ptr<platform::Window> makeWindow(const platform::WindowDescription& description) override;
    [[nodiscard]] platform::RegistrationPtr observe(const std::string& name, std::function<void()> received) override;

    /// Connects or disconnects displays until there are this many. The first, 1728 x 1117 points, is built in; each
    /// further one, 1920 x 1080, stands to the right. What was on a display that goes stays where it was.
    void setCount(std::size_t count);
    [[nodiscard]] std::size_t count() const { return count_; }

    /// The visible windows at the shielding level or above, in the order in which they were made.
    [[nodiscard]] std::vector<WindowState> covers() const;

    /// Whether nothing of a display can be seen past an opaque cover.
    [[nodiscard]] bool isCovered(std::size_t display) const;

    /// What the person does. The keyboard goes to the key window, as long as the application is active; false when
    /// what was typed went nowhere.
    [[nodiscard]] bool type(std::string_view text);
    [[nodiscard]] ui::Interaction pressKey(ui::Key key);

    /// Clicks on a node of a cover, by its place in `covers`; that window gets the keyboard.
    [[nodiscard]] ui::Interaction click(std::size_t cover, std::string_view wanted);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    class Handle;

    [[nodiscard]] static platform::Screen screenAt(std::size_t index);
    void makeKey(WindowState& window);
    [[nodiscard]] std::shared_ptr<WindowState> keyWindow() const;
    [[nodiscard]] std::vector<std::shared_ptr<WindowState>> visibleCovers() const;

    platform::Journal& journal_;
    const SimulatedApplicationActivation& activation_;
    std::size_t count_;
    std::vector<std::shared_ptr<WindowState>> windows_;
    FaultSwitches faults_{"no-screens", "notification"};
    NotificationHub notifications_;
};

} // namespace sentrel::simulated
