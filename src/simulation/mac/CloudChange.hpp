#pragma once

#include "ports/CloudAccount.hpp"
#include "runtime/Time.hpp"
#include "simulation/icloud/CloudFaults.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel::simulation {

class SimulatedICloud;

/// Answers that get lost on their way.
struct LostAnswers {
    int times = 1;
    std::optional<CloudOperation> operation{}; ///< none: any
};

/// What becomes different about the Mac's iCloud account, the cloud behind it and the network before it; what holds no
/// value stays as it is.
struct CloudChange {
    std::optional<std::string> user{}; ///< who signs in
    std::optional<ports::CloudAccountStatus> account{};
    std::optional<bool> isNetworkUp{};
    std::optional<std::optional<std::uint64_t>> quota{}; ///< bytes that the account may hold; none inside: no bound
    std::optional<std::optional<CloudFault>> fault{};    ///< one more; none inside: everything is healed
    std::optional<Duration> latency{};                   ///< from a request to its answer
    std::optional<LostAnswers> lostAnswers{};
};

/// Makes the change. A quota is that of the user who is then signed in.
void apply(const CloudChange& change, SimulatedICloud& iCloud);

} // namespace sentrel::simulation
