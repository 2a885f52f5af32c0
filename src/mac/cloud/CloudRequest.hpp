#pragma once

#include "ports/CloudError.hpp"
#include "runtime/Semaphore.hpp"

#import <CloudKit/CloudKit.h>

#include <optional>
#include <utility>

namespace sentrel::mac {

/// The framework's answer to one request. Its blocks write it, one after another on its own queue, and the last one
/// signals. Shared by the blocks and the waiting task.
template <class Answer> struct CloudRequest {
    Semaphore finished;
    Answer answer{};
    std::optional<ports::CloudError> error; ///< of the request as a whole

    /// Moves out the answer, once finished. Throws `error` if set.
    Answer take()
    {
        if (error) {
            throw *error;
        }
        return std::move(answer);
    }
};

} // namespace sentrel::mac
