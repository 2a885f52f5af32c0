#include "simulation/mac/display/SimulatedStatusBar.hpp"

#include <functional>
#include <utility>

namespace sentrel::simulation {

/// The product's handle to its item.
class SimulatedStatusBar::Handle final : public ports::StatusItem {
public:
    Handle(SimulatedStatusBar& bar, std::shared_ptr<State> state) : bar_(bar), state_(std::move(state)) {}
    ~Handle() override
    {
        if (bar_.state_ == state_) {
            bar_.state_.reset();
        }
    }

    void setImage(const std::string& asset, const std::string& accessibilityLabel) override
    {
        bar_.faults_.call("setImage");
        state_->image = asset;
        state_->accessibilityLabel = accessibilityLabel;
    }
    void showContent(ui::View content) override
    {
        bar_.faults_.call("showContent");
        WindowContent{state_->menu}.show(std::move(content));
    }
    void setOpened(std::function<void()> opened) override { state_->opened = std::move(opened); }
    void dismiss() override
    {
        bar_.faults_.call("dismiss");
        state_->isMenuOpen = false;
    }

private:
    SimulatedStatusBar& bar_;
    std::shared_ptr<State> state_;
};

std::unique_ptr<ports::StatusItem> SimulatedStatusBar::makeStatusItem()
{
    faults_.call("makeStatusItem");
    state_ = std::make_shared<State>();
    return std::make_unique<Handle>(*this, state_);
}

std::optional<SimulatedStatusBar::Item> SimulatedStatusBar::item() const
{
    if (state_ == nullptr) {
        return std::nullopt;
    }
    return Item{state_->image, state_->accessibilityLabel, state_->menu.content, state_->isMenuOpen};
}

std::uint64_t SimulatedStatusBar::version() const
{
    if (state_ == nullptr) {
        return 0;
    }
    const std::uint64_t image = std::hash<std::string>{}(state_->image);
    return image + state_->menu.contentVersion * 2 + static_cast<std::uint64_t>(state_->isMenuOpen);
}

bool SimulatedStatusBar::openMenu()
{
    const auto state = state_;
    if (state == nullptr) {
        return false;
    }
    if (!std::exchange(state->isMenuOpen, true)) {
        if (const auto opened = state->opened) {
            opened();
        }
    }
    return true;
}

void SimulatedStatusBar::closeMenu()
{
    if (state_ != nullptr) {
        state_->isMenuOpen = false;
    }
}

ui::Interaction SimulatedStatusBar::click(std::string_view wanted)
{
    const auto state = state_;
    return isMenuOpen() ? WindowContent{state->menu}.click(wanted) : ui::Interaction::notFound;
}

ui::Interaction SimulatedStatusBar::pressKey(ui::Key key)
{
    const auto state = state_;
    if (!isMenuOpen()) {
        return ui::Interaction::notFound;
    }
    const auto outcome = WindowContent{state->menu}.pressKey(key);
    if (outcome != ui::Interaction::done && key == ui::Key::escape) {
        state->isMenuOpen = false;
        return ui::Interaction::done;
    }
    return outcome;
}

} // namespace sentrel::simulation
