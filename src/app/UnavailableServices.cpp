#include "app/UnavailableServices.hpp"

#include "platform/CloudError.hpp"

namespace sentrel {

Async<void> NoCloud::upload(AlertEvent /*alert*/, std::optional<Bytes> /*photo*/)
{
    constexpr int notAuthenticated = 9; // CKErrorNotAuthenticated
    throw platform::CloudError{"CKErrorDomain", notAuthenticated, "there is no iCloud account"};
    co_return;
}

} // namespace sentrel
