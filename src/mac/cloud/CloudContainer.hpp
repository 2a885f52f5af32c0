#pragma once

#import <CloudKit/CloudKit.h>

#include <string>

namespace sentrel::mac {

/// An application's iCloud container, opened on first use. Main thread.
class CloudContainer {
public:
    explicit CloudContainer(std::string identifier) : identifier_(std::move(identifier)) {}

    /// Throws `CloudError` with code 8 (missing entitlement) in a build that isn't signed for iCloud: CloudKit itself
    /// would end the process.
    [[nodiscard]] CKContainer* open();

private:
    const std::string identifier_;
    CKContainer* container_ = nil;
};

} // namespace sentrel::mac
