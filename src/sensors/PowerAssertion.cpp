#include "sensors/PowerAssertion.hpp"

#include "ports/SystemConstants.hpp"

namespace sentrel {

void PowerAssertion::acquire(const std::string& reason)
{
    if (isActive_) {
        return;
    }
    const auto created = assertions_.create(ports::preventIdleSleepAssertion, ports::assertionLevelOn, reason);
    if (created.status != 0) {
        return;
    }
    assertionID_ = created.id;
    isActive_ = true;
}

void PowerAssertion::release()
{
    if (!isActive_) {
        return;
    }
    assertions_.release(assertionID_);
    assertionID_ = 0;
    isActive_ = false;
}

} // namespace sentrel
