#pragma once

#include <memory>

namespace sentrel::ports {

/// A registration with the operating system that lasts as long as this object. When the destructor returns, no callback
/// is running on another thread, and none comes later.
class Registration {
public:
    Registration() = default;
    virtual ~Registration() = default;
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
};

using RegistrationPtr = std::unique_ptr<Registration>;

} // namespace sentrel::ports
