#pragma once

#include "simulation/Event.hpp"
#include "simulation/storm/Sight.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace sentrel::simulation {

class MacSession;

/// Reads the devices of a session. Each part is read again only when something may have changed it, so that an idle
/// instant costs next to nothing.
class Lookout {
public:
    explicit Lookout(MacSession& session);
    ~Lookout();
    Lookout(const Lookout&) = delete;

    /// Call for each event of the session.
    void happened(const Event& event);

    /// The server is asked at the next look, whatever the Mac's requests were.
    void expectChangesInCloud() { mustAskCloud_ = true; }

    /// Asks the owner's phone whether this Mac is armed.
    void askPhone();

    /// Reads how much memory this process has allocated, after the last look.
    void askMemory();

    /// Everything is read again at the next look.
    void expectAnything();

    /// Reads the devices now. Call while nothing runs.
    const Sight& look();

    /// The last look.
    [[nodiscard]] const Sight& seen() const { return sight_; }

    /// Whether the last look saw anything that the one before did not; time alone doesn't count.
    [[nodiscard]] bool hasChanged() const { return hasChanged_; }

private:
    void lookAtScreen();
    void lookAtSound();
    void lookAtDisk();
    void lookAtCloud();
    void lookAtList();
    template <class Value> void set(Value& place, const Value& value);

    MacSession& session_;
    Sight sight_;
    bool hasChanged_ = true;
    double outputMovesUntil_ = 0.0; ///< seconds
    bool mustReadOutput_ = true;
    bool mustReadAssertions_ = true;
    bool mustReadPower_ = true;
    bool mustAskCloud_ = true;
    bool mustReadDisk_ = true;
    std::uint64_t menuVersion_ = 0;
    std::uint64_t screenVersion_ = 0;
    std::uint64_t writes_ = 0;
    double asksCloudUntil_ = 0.0; ///< of quiet times; seconds
    AlertList list_;
};

} // namespace sentrel::simulation
