#pragma once

#include "mac/cloud/CloudContainer.hpp"
#include "ports/CloudAccount.hpp"

namespace sentrel::mac {

/// The account behind a container in iCloud.
class MacCloudAccount final : public ports::CloudAccount {
public:
    explicit MacCloudAccount(std::string containerIdentifier) : container_(std::move(containerIdentifier)) {}
    [[nodiscard]] Async<ports::CloudAccountStatus> accountStatus() override;
    [[nodiscard]] Async<std::optional<std::string>> userRecordName() override;

private:
    CloudContainer container_;
};

} // namespace sentrel::mac
