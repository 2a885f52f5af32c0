#pragma once

#include "ports/CloudAccount.hpp"
#include "simulation/Guarded.hpp"

#include <functional>
#include <string>

namespace sentrel::simulation {

class CloudLink;

/// The iCloud account that the Mac's user is signed in to. The port's functions: main thread; the others: any thread.
class SimulatedCloudAccount final : public ports::CloudAccount {
public:
    explicit SimulatedCloudAccount(CloudLink& link) : link_(link) {}

    [[nodiscard]] Async<ports::CloudAccountStatus> accountStatus() override;
    [[nodiscard]] Async<std::optional<std::string>> userRecordName() override;

    /// Sets the callback that posts `CKAccountChangedNotification` to the application.
    void onChange(std::function<void()> changed) { *changed_.lock() = std::move(changed); }

    /// Sets the status, or signs a user in (available), and notifies the application.
    void setStatus(ports::CloudAccountStatus status);
    void signIn(const std::string& user);

private:
    void tell();

    CloudLink& link_;
    Guarded<std::function<void()>> changed_;
};

} // namespace sentrel::simulation
