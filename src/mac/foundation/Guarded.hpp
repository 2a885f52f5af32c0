#pragma once

#include <functional>
#include <type_traits>

namespace sentrel::mac {

/// Runs a call of a framework. False when the framework raises an Objective-C exception, whose name and reason go to
/// the log under this operation's name; C++ exceptions propagate. Any thread.
bool guarded(const char* operation, const std::function<void()>& call);

/// The call's result; zero, nil or none when the framework raises an exception.
template <class Call> std::invoke_result_t<Call> guardedResult(const char* operation, Call call)
{
    std::invoke_result_t<Call> result{};
    guarded(operation, [&] { result = call(); });
    return result;
}

/// Like `guarded`, but throws `CloudError` with code 12 (invalid arguments) on failure.
void guardedCloudCall(const char* operation, const std::function<void()>& call);

} // namespace sentrel::mac
