#pragma once

#include "runtime/Async.hpp"
#include "runtime/Scheduler.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Time.hpp"

#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// The panels of one kind that wait for a person, who answers the last opened one first. Any thread.
template <class Content, class Answer> class OpenPanels {
public:
    explicit OpenPanels(Scheduler& scheduler) : scheduler_(scheduler) {}
    OpenPanels(const OpenPanels&) = delete;

    /// Opens a panel until it is answered, or until the delay has passed, which gives none. Also closes it if the task
    /// ends while it waits.
    [[nodiscard]] Async<std::optional<Answer>> ask(Content content)
    {
        Opened opened{*this, std::move(content)};
        const std::optional<Duration> delay = opened.delay();
        if (delay) {
            co_await opened.panel().answered.waitUntil(scheduler_.now() + *delay);
        } else {
            co_await opened.panel().answered.wait();
        }
        co_return opened.answer();
    }

    /// Time until a panel closes by itself, 0 at first; none leaves it to `answer`. Holds for later panels.
    void setDelay(std::optional<Duration> delay)
    {
        const std::lock_guard guard{mutex_};
        delay_ = delay;
    }

    /// Answers the last opened panel; false if none is open.
    bool answer(Answer answer)
    {
        const std::lock_guard guard{mutex_};
        if (open_.empty()) {
            return false;
        }
        open_.back()->answer = std::move(answer);
        open_.back()->answered.signal();
        open_.pop_back();
        return true;
    }

    /// The last opened of the open panels.
    [[nodiscard]] std::optional<Content> open() const
    {
        const std::lock_guard guard{mutex_};
        return open_.empty() ? std::nullopt : std::optional{open_.back()->content};
    }

    /// Every panel so far, closed ones too.
    [[nodiscard]] std::vector<Content> shown() const
    {
        const std::lock_guard guard{mutex_};
        return shown_;
    }

private:
    struct Panel {
        Content content;
        std::optional<Answer> answer;
        Semaphore answered;
    };

    /// An open panel, which closes on every way out of `ask`.
    class Opened {
    public:
        Opened(OpenPanels& panels, Content content) : panels_(panels)
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

        [[nodiscard]] Panel& panel() { return *panel_; }
        [[nodiscard]] std::optional<Duration> delay() const
        {
            const std::lock_guard guard{panels_.mutex_};
            return panels_.delay_;
        }
        [[nodiscard]] std::optional<Answer> answer() const
        {
            const std::lock_guard guard{panels_.mutex_};
            return panel_->answer;
        }

    private:
        OpenPanels& panels_;
        std::shared_ptr<Panel> panel_ = std::make_shared<Panel>();
    };

    Scheduler& scheduler_;
    mutable std::mutex mutex_;
    std::optional<Duration> delay_{Duration::zero()};
    std::vector<std::shared_ptr<Panel>> open_;
    std::vector<Content> shown_;
};

} // namespace sentrel::simulation
