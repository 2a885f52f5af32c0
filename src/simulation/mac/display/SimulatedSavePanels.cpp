#include "simulation/mac/display/SimulatedSavePanels.hpp"

#include "runtime/Scheduler.hpp"

#include <system_error>
#include <utility>

namespace sentrel::simulation {

/// An open panel, which closes on every way out of `run`.
class SimulatedSavePanels::Opened {
public:
    Opened(SimulatedSavePanels& panels, ports::SavePanelContent content) : panels_(panels)
    {
        panel_->content = std::move(content);
        const std::lock_guard guard{panels_.mutex_};
        panels_.shown_.push_back(panel_->content);
        panels_.open_.push_back(panel_);
    }
    ~Opened()
    {
        const std::lock_guard guard{panels_.mutex_};
        std::erase(panels_.open_, panel_);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    [[nodiscard]] Panel& panel() { return *panel_; }

private:
    SimulatedSavePanels& panels_;
    std::shared_ptr<Panel> panel_ = std::make_shared<Panel>();
};

SimulatedSavePanels::SimulatedSavePanels(Scheduler& scheduler, std::filesystem::path disk)
    : scheduler_(scheduler), disk_(std::move(disk))
{
}

Async<std::optional<std::filesystem::path>> SimulatedSavePanels::run(ports::SavePanelContent content)
{
    co_await faults_.awaitedCall("run");
    Opened opened{*this, std::move(content)};
    Panel& panel = opened.panel();
    std::optional<Duration> delay;
    {
        const std::lock_guard guard{mutex_};
        delay = delay_;
    }
    if (delay) {
        co_await panel.answered.waitUntil(scheduler_.now() + *delay);
    } else {
        co_await panel.answered.wait();
    }
    Answer answer;
    {
        const std::lock_guard guard{mutex_};
        answer = panel.answer.value_or(answer_);
    }
    co_return chosen(answer, panel.content);
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

void SimulatedSavePanels::setAnswerDelay(std::optional<Duration> delay)
{
    const std::lock_guard guard{mutex_};
    delay_ = delay;
}

bool SimulatedSavePanels::answerPanel(const Answer& answer)
{
    const std::lock_guard guard{mutex_};
    if (open_.empty()) {
        return false;
    }
    open_.back()->answer = answer;
    open_.back()->answered.signal();
    open_.pop_back();
    return true;
}

std::optional<ports::SavePanelContent> SimulatedSavePanels::open() const
{
    const std::lock_guard guard{mutex_};
    return open_.empty() ? std::nullopt : std::optional{open_.back()->content};
}

std::vector<ports::SavePanelContent> SimulatedSavePanels::shown() const
{
    const std::lock_guard guard{mutex_};
    return shown_;
}

} // namespace sentrel::simulation
