#include "simulation/EventLog.hpp"

#include <type_traits>

namespace sentrel::simulation {

namespace {

Event::Value ownedValue(const ports::Journal::Value& value)
{
    const auto owned = [](const auto& each) -> Event::Value {
        if constexpr (std::is_same_v<std::decay_t<decltype(each)>, std::string_view>) {
            return std::string{each};
        } else {
            return each;
        }
    };
    return std::visit(owned, value);
}

} // namespace

void EventLog::write(std::string_view event, std::initializer_list<Field> fields)
{
    Event made{.at = 0.0, .name = std::string{event}, .fields = {}};
    made.fields.reserve(fields.size());
    for (const auto& [name, value] : fields) {
        made.fields.emplace_back(name, ownedValue(value));
    }
    const Event* noted = &made;
    std::shared_ptr<const Observers> observers;
    {
        const std::lock_guard guard{mutex_};
        // Read under the lock, so that the times never go back along the log.
        made.at = toSeconds(scheduler_.now() - start_);
        if (keeps_) {
            noted = &events_.emplace_back(std::move(made));
        }
        observers = observers_;
        if (file_.is_open()) {
            writeLine(*noted);
        }
    }
    for (const Observer& observer : *observers) {
        observer(*noted);
    }
}

void EventLog::keepNothing()
{
    const std::lock_guard guard{mutex_};
    keeps_ = false;
    events_.clear();
}

void EventLog::observe(Observer observer)
{
    const std::lock_guard guard{mutex_};
    auto observers = std::make_shared<Observers>(*observers_);
    observers->push_back(std::move(observer));
    observers_ = std::move(observers);
}

std::size_t EventLog::size() const
{
    const std::lock_guard guard{mutex_};
    return events_.size();
}

std::vector<Event> EventLog::events(std::size_t from) const
{
    const std::lock_guard guard{mutex_};
    if (from >= events_.size()) {
        return {};
    }
    return {events_.begin() + static_cast<std::ptrdiff_t>(from), events_.end()};
}

std::vector<Event> EventLog::named(std::string_view name) const
{
    const std::lock_guard guard{mutex_};
    std::vector<Event> found;
    for (const Event& event : events_) {
        if (event.name == name) {
            found.push_back(event);
        }
    }
    return found;
}

bool EventLog::writeTo(const std::filesystem::path& file)
{
    const std::lock_guard guard{mutex_};
    file_ = std::ofstream{file, std::ios::binary | std::ios::trunc};
    isWrittenWhole_ = file_.is_open();
    for (const Event& event : events_) {
        writeLine(event);
    }
    return isWrittenWhole_;
}

bool EventLog::isWrittenWhole() const
{
    const std::lock_guard guard{mutex_};
    return isWrittenWhole_;
}

void EventLog::writeLine(const Event& event)
{
    // Flushed at once: readers of the file see an event when it happens, and a crash of this program loses none.
    file_ << jsonLine(event) << '\n' << std::flush;
    isWrittenWhole_ = isWrittenWhole_ && file_.good();
}

} // namespace sentrel::simulation
