#include "mac/cloud/CloudContainer.hpp"

#include "mac/foundation/FoundationText.hpp"
#include "mac/security/Signature.hpp"
#include "ports/CloudError.hpp"

namespace sentrel::mac {

CKContainer* CloudContainer::open()
{
    if (container_ == nil) {
        if (!isSignedWith(@"com.apple.developer.icloud-services")) {
            throw ports::CloudError{textOf(CKErrorDomain), CKErrorMissingEntitlement,
                                    "this build is not signed for iCloud"};
        }
        container_ = [CKContainer containerWithIdentifier:stringObject(identifier_)];
    }
    return container_;
}

} // namespace sentrel::mac
