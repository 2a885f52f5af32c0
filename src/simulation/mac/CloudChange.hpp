#pragma once

#include "ports/CloudAccount.hpp"
#include "runtime/Time.hpp"
#include "simulation/icloud/CloudFaults.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel::simulation {

class SimulatedICloud;

/// Answers that are lost on their way.
struct LostAnswers {
    int times = 1;
    std::optional<CloudOperation> operation{}; ///< none: any
};

/// A change of the Mac's iCloud account, its cloud and its network; members without a value stay as they are.
struct CloudChange {
    std::optional<std::string> user{}; ///< the user who signs in
    std::optional<ports::CloudAccountStatus> account{};
    std::optional<bool> isNetworkUp{};
    std::optional<std::optional<std::uint64_t>> quota{}; ///< bytes the account may hold; inner none: no limit
    std::optional<std::optional<CloudFault>> fault{};    ///< an additional fault; inner none heals all
    std::optional<Duration> latency{};                   ///< from a request to its answer
    std::optional<LostAnswers> lostAnswers{};
};

/// Makes the change. A quota applies to the user signed in after the change.
void apply(const CloudChange& change, SimulatedICloud& iCloud);

} // namespace sentrel::simulation
