#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

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
inline constexpr std::array<std::pair<CloudOperation, std::string_view>, 9> cloudOperations{{
    {CloudOperation::accountStatus, "accountStatus"},
    {CloudOperation::userRecord, "userRecord"},
    {CloudOperation::query, "query"},
    {CloudOperation::continueQuery, "continueQuery"},
    {CloudOperation::fetch, "fetch"},
    {CloudOperation::modify, "modify"},
    {CloudOperation::fetchOne, "fetchOne"},
    {CloudOperation::save, "save"},
    {CloudOperation::saveSubscription, "saveSubscription"},
}};

[[nodiscard]] constexpr std::string_view nameOf(CloudOperation operation)
{
    return cloudOperations[static_cast<std::size_t>(operation)].second;
}

/// The operation with this name, or none.
[[nodiscard]] constexpr std::optional<CloudOperation> cloudOperation(std::string_view name)
{
    for (const auto& [operation, itsName] : cloudOperations) {
        if (itsName == name) {
            return operation;
        }
    }
    return std::nullopt;
}

/// A request's progress when an observer is called.
enum class CloudRequestPhase {
    beforeEffect, ///< the server has received it and not acted yet
    afterEffect,  ///< the server has acted; the answer has not left
};

} // namespace sentrel::simulation
