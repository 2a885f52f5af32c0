#include "simulation/PortCalls.hpp"

#include <stdexcept>
#include <utility>

namespace sentrel::simulation {

thread_local int PortCalls::DeviceScope::depth = 0;

bool PortCalls::isProductCalling() const
{
    return DeviceScope::depth == 0 && (hanging_ == nullptr || hanging_->isProcessCalling());
}

void PortCalls::decideBy(Decide decide)
{
    const std::lock_guard guard{mutex_};
    decide_ = std::move(decide);
    hasDecision_ = static_cast<bool>(decide_);
}

PortCalls::Fate PortCalls::fateOf(std::string_view port, std::string_view operation)
{
    if (hanging_ != nullptr && hanging_->isEnding()) {
        return Fate::raises; // a dying process has no effect any more
    }
    if (!hasDecision_) {
        return Fate::passes;
    }
    Decide decide;
    {
        const std::lock_guard guard{mutex_};
        decide = decide_;
    }
    return decide && isProductCalling() ? decide(port, operation) : Fate::passes;
}

void PortCalls::prepareToHang()
{
    if (hanging_ != nullptr) {
        hanging_->prepare();
    }
}

void PortCalls::hang()
{
    if (hanging_ == nullptr) {
        throw std::logic_error{"this simulated Mac does not support hanging calls"};
    }
    hanging_->hang();
}

} // namespace sentrel::simulation
