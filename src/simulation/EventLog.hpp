#pragma once

#include "ports/Journal.hpp"
#include "runtime/Scheduler.hpp"
#include "simulation/Event.hpp"

#include <cstddef>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace sentrel::simulation {

/// The journal of the simulated MacBook: everything noted since it was made, in order, with the time on the
/// scheduler's clock. Any thread.
class EventLog final : public ports::Journal {
public:
    using Observer = std::function<void(const Event&)>;

    explicit EventLog(Scheduler& scheduler) : scheduler_(scheduler), start_(scheduler.now()) {}

    /// Calls back for each event from now on, on the thread that noted it and under no lock, so that the observer may
    /// note events itself. An observer can't be removed.
    void observe(Observer observer);

    /// Number of events so far.
    [[nodiscard]] std::size_t size() const;

    /// The events from index `from` on.
    [[nodiscard]] std::vector<Event> events(std::size_t from = 0) const;

    /// The events of one name.
    [[nodiscard]] std::vector<Event> named(std::string_view name) const;

    /// Writes the events so far and all later ones to the file, one JSON object a line, each as it is noted. False if
    /// the file can't be created.
    [[nodiscard]] bool writeTo(const std::filesystem::path& file);

    /// Keeps no event from now on: only observers and the file get them. Forgets the earlier ones.
    void keepNothing();

    /// False once a line could not be written.
    [[nodiscard]] bool isWrittenWhole() const;

private:
    using Observers = std::vector<Observer>;

    void write(std::string_view event, std::initializer_list<Field> fields) override;
    void writeLine(const Event& event);

    Scheduler& scheduler_;
    Instant start_;
    mutable std::mutex mutex_;
    std::deque<Event> events_; // an entry never moves or changes, so that observers read it without the lock
    std::shared_ptr<const Observers> observers_ = std::make_shared<const Observers>();
    std::ofstream file_;
    bool isWrittenWhole_ = true;
    bool keeps_ = true;
};

} // namespace sentrel::simulation
