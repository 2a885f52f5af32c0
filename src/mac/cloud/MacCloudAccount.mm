#include "mac/cloud/Cloud.hpp"

#include "mac/cloud/CloudContainer.hpp"
#include "mac/cloud/CloudRecords.hpp"
#include "mac/cloud/CloudRequest.hpp"
#include "mac/foundation/FoundationText.hpp"
#include "mac/foundation/Guarded.hpp"

#include <memory>

namespace sentrel::mac {

namespace {

using StatusRequest = CloudRequest<ports::CloudAccountStatus>;
using NameRequest = CloudRequest<std::optional<std::string>>;

// The framework can't cancel these two requests. Without a waiting task, their answer is dropped.

std::shared_ptr<StatusRequest> askForStatus(CKContainer* container)
{
    const auto request = std::make_shared<StatusRequest>();
    guardedCloudCall("accountStatus", [&] {
        [container accountStatusWithCompletionHandler:^(CKAccountStatus status, NSError* error) {
            request->answer = static_cast<ports::CloudAccountStatus>(status);
            if (error != nil) {
                request->error = cloudErrorOf(error);
            }
            request->finished.signal();
        }];
    });
    return request;
}

std::shared_ptr<NameRequest> askForUser(CKContainer* container)
{
    const auto request = std::make_shared<NameRequest>();
    guardedCloudCall("fetchUserRecordID", [&] {
        [container fetchUserRecordIDWithCompletionHandler:^(CKRecordID* recordID, NSError* error) {
            if (error != nil) {
                request->error = cloudErrorOf(error);
            } else if (recordID != nil) {
                request->answer = textOf(recordID.recordName);
            }
            request->finished.signal();
        }];
    });
    return request;
}

/// The account behind a container in iCloud.
class MacCloudAccount final : public ports::CloudAccount {
public:
    explicit MacCloudAccount(std::string containerIdentifier) : container_(std::move(containerIdentifier)) {}
    [[nodiscard]] Async<ports::CloudAccountStatus> accountStatus() override
    {
        const auto request = askForStatus(container_.open());
        co_await request->finished.wait();
        co_return request->take();
    }

    [[nodiscard]] Async<std::optional<std::string>> userRecordName() override
    {
        const auto request = askForUser(container_.open());
        co_await request->finished.wait();
        co_return request->take();
    }

private:
    CloudContainer container_;
};

} // namespace

std::unique_ptr<ports::CloudAccount> makeCloudAccount(std::string containerIdentifier)
{
    return std::make_unique<MacCloudAccount>(std::move(containerIdentifier));
}

} // namespace sentrel::mac
