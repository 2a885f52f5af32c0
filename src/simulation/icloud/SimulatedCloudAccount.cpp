#include "simulation/icloud/SimulatedCloudAccount.hpp"

#include "simulation/icloud/CloudLink.hpp"

namespace sentrel::simulation {

using ports::CloudAccountStatus;

Async<CloudAccountStatus> SimulatedCloudAccount::accountStatus()
{
    return link_.request(CloudOperation::accountStatus,
                         [&link = link_](const CloudDevice&) { return link.accountStatus(); });
}

Async<std::optional<std::string>> SimulatedCloudAccount::userRecordName()
{
    return link_.request(CloudOperation::userRecord,
                         [](const CloudDevice& who) { return std::optional{PrivateCloud::userRecordName(who.user)}; });
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
    const std::function<void()> changed = *changed_.lock();
    if (changed) {
        changed();
    }
}

} // namespace sentrel::simulation
