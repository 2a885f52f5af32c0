#pragma once

#include "ports/CloudAccount.hpp"

#include <functional>
#include <mutex>
#include <string>

namespace sentrel::simulation {

class CloudLink;

/// The iCloud account that the Mac's user is signed in to. The ports' part belongs to the main thread; what befalls
/// the account may do so on any thread.
class SimulatedCloudAccount final : public ports::CloudAccount {
public:
    explicit SimulatedCloudAccount(CloudLink& link) : link_(link) {}

    [[nodiscard]] Async<ports::CloudAccountStatus> accountStatus() override;
    [[nodiscard]] Async<std::optional<std::string>> userRecordName() override;

    /// Who posts that the account has changed, `CKAccountChangedNotification`, to the application.
    void onChange(std::function<void()> changed);

    /// The account's status changes, or another user signs in. The application is told.
    void setStatus(ports::CloudAccountStatus status);
    void signIn(const std::string& user);

private:
    void tell();

    CloudLink& link_;
    std::mutex mutex_;
    std::function<void()> changed_;
};

} // namespace sentrel::simulation
