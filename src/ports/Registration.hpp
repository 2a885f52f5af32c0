#pragma once

#include <memory>

namespace sentrel::ports {

/// Something that stays registered with the operating system as long as this lives. When its destructor returns, no
/// callback of it is running on another thread, and none comes later.
class Registration {
public:
    Registration() = default;
    virtual ~Registration() = default;
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
};

using RegistrationPtr = std::unique_ptr<Registration>;

} // namespace sentrel::ports
