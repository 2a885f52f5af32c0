#include "sensors/PowerAssertion.hpp"

namespace sentrel {

namespace {

constexpr const char* assertionType = "PreventUserIdleSystemSleep"; // kIOPMAssertPreventUserIdleSystemSleep
constexpr std::uint32_t levelOn = 255;                              // kIOPMAssertionLevelOn

} // namespace

void PowerAssertion::acquire(const std::string& reason)
{
    if (isActive_) {
        return;
    }
    const auto created = assertions_.create(assertionType, levelOn, reason);
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
