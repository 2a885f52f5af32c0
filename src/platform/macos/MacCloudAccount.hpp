#pragma once

#include "platform/CloudAccount.hpp"
#include "platform/macos/CloudContainer.hpp"

namespace sentrel::macos {

/// The account behind a container in iCloud.
class MacCloudAccount final : public platform::CloudAccount {
public:
    explicit MacCloudAccount(std::string containerIdentifier) : container_(std::move(containerIdentifier)) {}
    [[nodiscard]] Async<platform::CloudAccountStatus> accountStatus() override;
    [[nodiscard]] Async<std::optional<std::string>> userRecordName() override;

private:
    CloudContainer container_;
};

} // namespace sentrel::macos
