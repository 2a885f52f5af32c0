#include "mac/foundation/Guarded.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "ports/CloudError.hpp"

#import <CloudKit/CloudKit.h>
#import <Foundation/Foundation.h>

#include <os/log.h>

namespace sentrel::mac {

bool guarded(const char* operation, const std::function<void()>& call)
{
    static const os_log_t log = os_log_create("pelma.Sentrel", "raised");
    @try {
        call();
        return true;
    } @catch (NSException* exception) {
        const std::string name = textOf(exception.name);
        const std::string reason = textOf(exception.reason);
        os_log_error(log, "%{public}s: %{public}s: %{public}s", operation, name.c_str(), reason.c_str());
        return false;
    }
}

void guardedCloudCall(const char* operation, const std::function<void()>& call)
{
    if (!guarded(operation, call)) {
        throw ports::CloudError{textOf(CKErrorDomain), CKErrorInvalidArguments,
                                std::string{operation} + " raised an exception"};
    }
}

} // namespace sentrel::mac
