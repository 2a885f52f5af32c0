#include "core/coordinator/AlarmJournal.hpp"

#include "core/coordinator/AlarmCoordinator.hpp"
#include "ports/Journal.hpp"

namespace sentrel {

AlarmJournal::AlarmJournal(AlarmCoordinator& coordinator, ports::Journal& journal) : journal_(journal)
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
        const ports::Journal::Value value =
            text ? ports::Journal::Value{std::string_view{*text}} : ports::Journal::Value{};
        journal_.note("notice", {{"field", field}, {"text", value}});
    }));
}

} // namespace sentrel
