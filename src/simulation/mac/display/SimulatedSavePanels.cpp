#include "simulation/mac/display/SimulatedSavePanels.hpp"

#include <system_error>
#include <utility>

namespace sentrel::simulation {

Async<std::optional<std::filesystem::path>> SimulatedSavePanels::run(ports::SavePanelContent content)
{
    co_await faults_.awaitedCall("run");
    const auto given = co_await panels_.ask(content);
    Answer answer;
    {
        const std::lock_guard guard{mutex_};
        answer = given.value_or(answer_);
    }
    co_return chosen(answer, content);
}

std::optional<std::filesystem::path> SimulatedSavePanels::chosen(const Answer& answer,
                                                                 const ports::SavePanelContent& content) const
{
    if (answer.isCancelled) {
        return std::nullopt;
    }
    // A name is not a path: everything up to the last slash is dropped.
    const auto name = std::filesystem::path{answer.name.value_or(content.nameFieldStringValue)}.filename();
    if (answer.folder) {
        return disk_ / *answer.folder / name;
    }
    const auto downloads = disk_ / "Downloads";
    std::error_code ignored; // if this fails, so does the later write
    std::filesystem::create_directories(downloads, ignored);
    return downloads / name;
}

void SimulatedSavePanels::setAnswer(Answer answer)
{
    const std::lock_guard guard{mutex_};
    answer_ = std::move(answer);
}

} // namespace sentrel::simulation
