#include "platform/macos/MacCloudAccount.hpp"

#include "platform/macos/CloudRecords.hpp"
#include "platform/macos/CloudRequest.hpp"
#include "platform/macos/FoundationText.hpp"
#include "platform/macos/Guarded.hpp"

#include <memory>

namespace sentrel::macos {

namespace {

using StatusRequest = CloudRequest<platform::CloudAccountStatus>;
using NameRequest = CloudRequest<std::optional<std::string>>;

// The framework has no way to call these two off: when nobody waits any more, the answer goes to nobody.

std::shared_ptr<StatusRequest> askForStatus(CKContainer* container)
{
    const auto request = std::make_shared<StatusRequest>();
    guardedCloudCall("accountStatus", [&] {
        [container accountStatusWithCompletionHandler:^(CKAccountStatus status, NSError* error) {
            request->answer = static_cast<platform::CloudAccountStatus>(status);
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

} // namespace

Async<platform::CloudAccountStatus> MacCloudAccount::accountStatus()
{
    const auto request = askForStatus(container_.open());
    co_await request->finished.wait();
    co_return request->take();
}

Async<std::optional<std::string>> MacCloudAccount::userRecordName()
{
    const auto request = askForUser(container_.open());
    co_await request->finished.wait();
    co_return request->take();
}

} // namespace sentrel::macos
