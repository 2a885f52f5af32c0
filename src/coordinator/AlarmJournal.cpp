#include "coordinator/AlarmJournal.hpp"

#include "coordinator/AlarmCoordinator.hpp"
#include "platform/Journal.hpp"

namespace sentrel {

AlarmJournal::AlarmJournal(AlarmCoordinator& coordinator, platform::Journal& journal) : journal_(journal)
{
    observations_.push_back(
        coordinator.isArmed.observe([this](bool isArmed) { journal_.note(isArmed ? "armed" : "disarmed", {}); }));
    noteNotice(coordinator.lastError, "lastError");
    noteNotice(coordinator.cameraWarning, "cameraWarning");
    noteNotice(coordinator.motionWarning, "motionWarning");
}

void AlarmJournal::noteNotice(Observable<std::optional<std::string>>& notice, std::string_view field)
{
    observations_.push_back(notice.observe([this, field](const std::optional<std::string>& text) {
        const platform::Journal::Value value =
            text ? platform::Journal::Value{std::string_view{*text}} : platform::Journal::Value{};
        journal_.note("notice", {{"field", field}, {"text", value}});
    }));
}

} // namespace sentrel
