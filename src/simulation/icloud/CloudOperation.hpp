#pragma once

#include "simulation/Word.hpp"

#include <array>
#include <string_view>

namespace sentrel::simulation {

/// The requests that a Mac makes of iCloud.
enum class CloudOperation {
    accountStatus,
    userRecord,
    query,
    continueQuery,
    fetch,
    modify,
    fetchOne,
    save,
    saveSubscription,
};

/// Every operation with its name in scenarios and in the journal.
inline constexpr std::array<Word<CloudOperation>, 9> cloudOperations{{
    {"accountStatus", CloudOperation::accountStatus},
    {"userRecord", CloudOperation::userRecord},
    {"query", CloudOperation::query},
    {"continueQuery", CloudOperation::continueQuery},
    {"fetch", CloudOperation::fetch},
    {"modify", CloudOperation::modify},
    {"fetchOne", CloudOperation::fetchOne},
    {"save", CloudOperation::save},
    {"saveSubscription", CloudOperation::saveSubscription},
}};

[[nodiscard]] constexpr std::string_view nameOf(CloudOperation operation)
{
    return wordFor(cloudOperations, operation);
}

/// A request's progress when an observer is called.
enum class CloudRequestPhase {
    beforeEffect, ///< the server has received it and not acted yet
    afterEffect,  ///< the server has acted; the answer has not left
};

} // namespace sentrel::simulation
