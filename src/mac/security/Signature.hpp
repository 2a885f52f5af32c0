#pragma once

#import <Foundation/Foundation.h>

namespace sentrel::mac {

/// Whether this process is signed with the entitlement. An ad-hoc signature has none that a provisioning profile must
/// grant.
[[nodiscard]] bool isSignedWith(NSString* entitlement);

} // namespace sentrel::mac
