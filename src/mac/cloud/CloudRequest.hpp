#pragma once

#include "ports/CloudError.hpp"
#include "runtime/Semaphore.hpp"

#import <CloudKit/CloudKit.h>

#include <optional>
#include <utility>

namespace sentrel::mac {

/// What the framework brings for one request: written by its blocks, which run one after another on a queue of its
/// own; the last of them signals. Shared by the blocks and the task that waits.
template <class Answer> struct CloudRequest {
    Semaphore finished;
    Answer answer{};
    std::optional<ports::CloudError> error; ///< of the request as a whole

    /// What was asked for, once finished. Throws the error there is.
    Answer take()
    {
        if (error) {
            throw *error;
        }
        return std::move(answer);
    }
};

} // namespace sentrel::mac
