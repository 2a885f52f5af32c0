#pragma once

#include "runtime/Observable.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel {

class AlarmCoordinator;

namespace ports {
class Journal;
}

/// Writes the coordinator's published state to the journal: armed, disarmed and every notice. Main thread.
class AlarmJournal {
public:
    AlarmJournal(AlarmCoordinator& coordinator, ports::Journal& journal);

private:
    void noteNotice(Observable<std::optional<std::string>>& notice, std::string_view field);

    ports::Journal& journal_;
    std::vector<Observation> observations_;
};

} // namespace sentrel
