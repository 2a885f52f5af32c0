#pragma once

#include <functional>

namespace sentrel::mac {

/// Runs a call of a framework. False when the framework raises an Objective-C exception, whose name and reason go to
/// the log under this operation's name; C++ exceptions pass. Any thread.
bool guarded(const char* operation, const std::function<void()>& call);

/// The same where the port's failure is a `CloudError`: throws one with code 12 (invalid arguments).
void guardedCloudCall(const char* operation, const std::function<void()>& call);

} // namespace sentrel::mac
