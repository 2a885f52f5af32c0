#include "mac/application/MacLoginItem.hpp"

#include "mac/foundation/FoundationText.hpp"

#import <ServiceManagement/ServiceManagement.h>

namespace sentrel::mac {

namespace {

std::optional<std::string> failure(bool hasWorked, NSError* error)
{
    if (hasWorked) {
        return std::nullopt;
    }
    return textOf(error.localizedDescription);
}

} // namespace

std::int64_t MacLoginItem::status()
{
    return SMAppService.mainAppService.status;
}

std::optional<std::string> MacLoginItem::registerItem()
{
    NSError* error = nil;
    const bool hasWorked = [SMAppService.mainAppService registerAndReturnError:&error];
    return failure(hasWorked, error);
}

std::optional<std::string> MacLoginItem::unregisterItem()
{
    NSError* error = nil;
    const bool hasWorked = [SMAppService.mainAppService unregisterAndReturnError:&error];
    return failure(hasWorked, error);
}

} // namespace sentrel::mac
