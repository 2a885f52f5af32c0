#include "platform/macos/CloudContainer.hpp"

#include "platform/CloudError.hpp"
#include "platform/macos/FoundationText.hpp"
#include "platform/macos/Signature.hpp"

namespace sentrel::macos {

CKContainer* CloudContainer::open()
{
    if (container_ == nil) {
        if (!isSignedWith(@"com.apple.developer.icloud-services")) {
            throw platform::CloudError{textOf(CKErrorDomain), CKErrorMissingEntitlement,
                                       "this build is not signed for iCloud"};
        }
        container_ = [CKContainer containerWithIdentifier:stringObject(identifier_)];
    }
    return container_;
}

} // namespace sentrel::macos
