#include "coordinator/AlarmJournal.hpp"

#include "coordinator/AlarmCoordinator.hpp"
#include "core/Events.hpp"
#include "ports/Journal.hpp"

namespace sentrel {

AlarmJournal::AlarmJournal(AlarmCoordinator& coordinator, ports::Journal& journal) : journal_(journal)
{
    observations_.push_back(coordinator.isArmed.observe(
        [this](bool isArmed) { isArmed ? journal_.note(events::Armed{}) : journal_.note(events::Disarmed{}); }));
    noteNotice(coordinator.lastError, "lastError");
    noteNotice(coordinator.cameraWarning, "cameraWarning");
    noteNotice(coordinator.motionWarning, "motionWarning");
}

void AlarmJournal::noteNotice(Observable<std::optional<std::string>>& notice, std::string_view field)
{
    observations_.push_back(notice.observe([this, field](const std::optional<std::string>& text) {
        journal_.note(events::Notice{.field = field, .text = text});
    }));
}

} // namespace sentrel
