#pragma once

#include "ports/StatusBar.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/display/SimulatedWindow.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// The menu bar with the product's item, and the person who opens its menu and clicks there. The product's main
/// thread.
class SimulatedStatusBar final : public ports::StatusBar {
public:
    /// The item's visible state.
    struct Item {
        std::string image;
        std::string accessibilityLabel;
        ui::View menu;
        bool isMenuOpen = false;
    };

    [[nodiscard]] std::unique_ptr<ports::StatusItem> makeStatusItem() override;

    /// The item made last; none if it is gone.
    [[nodiscard]] std::optional<Item> item() const;
    /// Changes whenever the item or its menu changes.
    [[nodiscard]] std::uint64_t version() const;
    [[nodiscard]] bool isMenuOpen() const { return state_ != nullptr && state_->isMenuOpen; }

    // Actions of the person.

    /// Opens the menu; an open one stays open. False if there is no item.
    bool openMenu();

    /// Closes it, as a click elsewhere does.
    void closeMenu();

    /// Clicks in the open menu.
    [[nodiscard]] ui::Interaction click(std::string_view wanted);
    [[nodiscard]] ui::Interaction pressKey(ui::Key key);

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    struct State {
        std::string image;
        std::string accessibilityLabel;
        std::function<void()> opened;
        WindowState menu;
        bool isMenuOpen = false;
    };
    class Handle;

    std::shared_ptr<State> state_;
};

} // namespace sentrel::simulation
