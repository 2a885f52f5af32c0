#pragma once

#include "ports/Registration.hpp"

#import <Foundation/Foundation.h>

#include <functional>
#include <string>

namespace sentrel::mac {

/// Observes the notifications of this name at the center, on the main queue, as long as the registration lives. Main
/// thread.
[[nodiscard]] ports::RegistrationPtr observeNotification(NSNotificationCenter* center, const std::string& name,
                                                         std::function<void()> received);

} // namespace sentrel::mac
