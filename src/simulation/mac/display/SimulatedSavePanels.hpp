#pragma once

#include "ports/SavePanels.hpp"
#include "simulation/FaultSwitches.hpp"
#include "simulation/mac/display/OpenPanels.hpp"

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// Save panels and the person who answers them. By default, files are saved under the suggested name into the disk's
/// "Downloads". Any thread; panels are run on the main thread.
class SimulatedSavePanels final : public ports::SavePanels {
public:
    /// The answer to a panel: name and folder, or a cancellation. A missing folder isn't created: saving into it fails.
    struct Answer {
        bool isCancelled = false;
        std::optional<std::filesystem::path> folder; ///< relative to the disk; none: "Downloads", created if missing
        std::optional<std::string> name;             ///< none: the suggested one
    };

    SimulatedSavePanels(Scheduler& scheduler, std::filesystem::path disk) : disk_(std::move(disk)), panels_(scheduler)
    {
    }

    [[nodiscard]] Async<std::optional<std::filesystem::path>> run(ports::SavePanelContent content) override;

    /// Sets the answer to panels from now on.
    void setAnswer(Answer answer);

    /// Time until the person answers a panel, 0 at first; none leaves it to `answerPanel`.
    void setAnswerDelay(std::optional<Duration> delay) { panels_.setDelay(delay); }

    /// Answers the last opened panel; false if none is open.
    bool answerPanel(const Answer& answer) { return panels_.answer(answer); }

    /// The last opened of the open panels.
    [[nodiscard]] std::optional<ports::SavePanelContent> open() const { return panels_.open(); }

    /// Every panel so far.
    [[nodiscard]] std::vector<ports::SavePanelContent> shown() const { return panels_.shown(); }

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
    [[nodiscard]] std::optional<std::filesystem::path> chosen(const Answer& answer,
                                                              const ports::SavePanelContent& content) const;

    const std::filesystem::path disk_;
    mutable std::mutex mutex_;
    Answer answer_;
    OpenPanels<ports::SavePanelContent, Answer> panels_;
};

} // namespace sentrel::simulation
