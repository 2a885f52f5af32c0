#include "simulation/icloud/SimulatedCloudAccount.hpp"

#include "simulation/icloud/CloudLink.hpp"

#include <utility>

namespace sentrel::simulation {

using ports::CloudAccountStatus;

Async<CloudAccountStatus> SimulatedCloudAccount::accountStatus()
{
    std::function<CloudAccountStatus(const CloudDevice&)> serve = [&link = link_](const CloudDevice&) {
        return link.accountStatus();
    };
    return link_.request<CloudAccountStatus>(CloudOperation::accountStatus, std::move(serve));
}

Async<std::optional<std::string>> SimulatedCloudAccount::userRecordName()
{
    using Name = std::optional<std::string>;
    std::function<Name(const CloudDevice&)> serve = [](const CloudDevice& who) {
        return Name{PrivateCloud::userRecordName(who.user)};
    };
    return link_.request<Name>(CloudOperation::userRecord, std::move(serve));
}

void SimulatedCloudAccount::onChange(std::function<void()> changed)
{
    const std::lock_guard guard{mutex_};
    changed_ = std::move(changed);
}

void SimulatedCloudAccount::setStatus(CloudAccountStatus status)
{
    link_.setAccountStatus(status);
    tell();
}

void SimulatedCloudAccount::signIn(const std::string& user)
{
    link_.setUser(user);
    link_.setAccountStatus(CloudAccountStatus::available);
    tell();
}

void SimulatedCloudAccount::tell()
{
    std::function<void()> changed;
    {
        const std::lock_guard guard{mutex_};
        changed = changed_;
    }
    if (changed) {
        changed();
    }
}

} // namespace sentrel::simulation
