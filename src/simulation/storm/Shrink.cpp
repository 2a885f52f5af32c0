#include "simulation/storm/Shrink.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace sentrel::simulation {

namespace {

class Shrinker {
public:
    Shrinker(Plan plan, const std::function<bool(const Plan&)>& stillFails, int tries)
        : plan_(std::move(plan)), stillFails_(stillFails), triesLeft_(tries)
    {
    }

    Plan run()
    {
        std::size_t before = 0;
        do {
            before = size();
            leaveOut(&Plan::steps);
            leaveOut(&Plan::settings);
            leaveOut(&Plan::mac);
        } while (size() < before && triesLeft_ > 0);
        shortenWaits();
        return std::move(plan_);
    }

private:
    [[nodiscard]] std::size_t size() const { return plan_.steps.size() + plan_.settings.size() + plan_.mac.size(); }

    bool accept(Plan candidate)
    {
        if (triesLeft_-- <= 0 || candidate.steps.empty() || !stillFails_(candidate)) {
            return false;
        }
        plan_ = std::move(candidate);
        return true;
    }

    /// Leaves out runs of parts, long ones first.
    template <class Part> void leaveOut(std::vector<Part> Plan::* parts)
    {
        for (std::size_t length = std::max<std::size_t>((plan_.*parts).size() / 2, 1);; length /= 2) {
            for (std::size_t from = 0; from < (plan_.*parts).size() && triesLeft_ > 0;) {
                Plan candidate = plan_;
                auto& all = candidate.*parts;
                const auto begin = all.begin() + static_cast<std::ptrdiff_t>(from);
                const auto count = std::min(length, all.size() - from);
                all.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
                if (!accept(std::move(candidate))) {
                    from += length;
                }
            }
            if (length <= 1) {
                return;
            }
        }
    }

    /// Moves each step and all after it closer to the one before.
    void shortenWaits()
    {
        constexpr std::int64_t shortest = 1000; // milliseconds
        for (std::size_t step = 0; step < plan_.steps.size(); ++step) {
            const std::int64_t previous = step == 0 ? 0 : plan_.steps[step - 1].at;
            for (std::int64_t wait = shortest; triesLeft_ > 0; wait *= 30) {
                const std::int64_t saved = plan_.steps[step].at - previous - wait;
                if (saved <= 0) {
                    break;
                }
                Plan candidate = plan_;
                for (std::size_t later = step; later < candidate.steps.size(); ++later) {
                    candidate.steps[later].at -= saved;
                }
                if (accept(std::move(candidate))) {
                    break;
                }
            }
        }
    }

    Plan plan_;
    const std::function<bool(const Plan&)>& stillFails_;
    int triesLeft_;
};

} // namespace

Plan shrunk(Plan plan, const std::function<bool(const Plan&)>& stillFails, int mostTries)
{
    return Shrinker{std::move(plan), stillFails, mostTries}.run();
}

} // namespace sentrel::simulation
