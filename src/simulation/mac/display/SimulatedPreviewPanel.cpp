#include "simulation/mac/display/SimulatedPreviewPanel.hpp"

#include "ports/Journal.hpp"
#include "simulation/Events.hpp"

#include <utility>

namespace sentrel::simulation {

void SimulatedPreviewPanel::setDataSource(ports::PreviewDataSource* source)
{
    faults_.call("setDataSource");
    source_ = source;
    reloadData();
}

void SimulatedPreviewPanel::reloadData()
{
    faults_.call("reloadData");
    items_.clear();
    const std::size_t count = source_ == nullptr ? 0 : source_->numberOfItems();
    for (std::size_t index = 0; index < count; ++index) {
        items_.push_back(source_->itemAt(index));
    }
}

void SimulatedPreviewPanel::makeKeyAndOrderFront()
{
    faults_.call("makeKeyAndOrderFront");
    if (std::exchange(isVisible_, true)) {
        return;
    }
    // Without an object that accepts control, the panel stays empty.
    isControlled_ = control_.accepts && control_.accepts();
    if (isControlled_ && control_.begin) {
        control_.begin();
    }
    reloadData();
    journal_.note(events::PreviewShown{static_cast<std::int64_t>(items().size())});
}

bool SimulatedPreviewPanel::close()
{
    if (!std::exchange(isVisible_, false)) {
        return false;
    }
    journal_.note(events::PreviewClosed{});
    if (std::exchange(isControlled_, false) && control_.end) {
        control_.end();
    }
    return true;
}

void SimulatedPreviewPanel::end()
{
    control_ = {};
    source_ = nullptr;
    items_.clear();
    isVisible_ = false;
    isControlled_ = false;
}

std::vector<std::filesystem::path> SimulatedPreviewPanel::items() const
{
    return isVisible_ && isControlled_ ? items_ : std::vector<std::filesystem::path>{};
}

} // namespace sentrel::simulation
