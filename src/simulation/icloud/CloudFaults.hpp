#pragma once

#include "ports/CloudError.hpp"
#include "simulation/icloud/CloudOperation.hpp"

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A way in which requests go wrong.
struct CloudFault {
    ports::CloudError error;
    std::optional<CloudOperation> operation{}; ///< none: any but `accountStatus`, which asks no server
    std::string record{};                      ///< fails this record of a request alone; empty: the whole request
    int times = -1;                            ///< how often; negative: until it is cleared
    double probability = 1.0;                  ///< that it strikes where it could
    bool losesAnswer = false;                  ///< the server does what was asked, and the error comes all the same
};

/// What goes wrong between one Mac and the server, in the order in which it was added. Any thread.
class CloudFaults {
public:
    explicit CloudFaults(std::uint64_t seed) : generator_(seed) {}

    void add(CloudFault fault);

    /// The next answers are lost on their way (network failure), after the server has done what was asked.
    void loseAnswers(int times, std::optional<CloudOperation> operation = std::nullopt);

    /// Heals everything.
    void clear();

    /// What is still to strike.
    [[nodiscard]] std::vector<CloudFault> all() const;

    /// The fault that strikes this request as a whole; none when it goes well. Counts as one strike.
    [[nodiscard]] std::optional<CloudFault> strike(CloudOperation operation);

    /// The errors of those records of a request that fail by themselves, by name.
    [[nodiscard]] std::map<std::string, ports::CloudError> strike(CloudOperation operation,
                                                                  const std::vector<std::string>& records);

private:
    [[nodiscard]] std::optional<CloudFault> strikeLocked(CloudOperation operation, const std::string& record);

    mutable std::mutex mutex_;
    std::mt19937_64 generator_;
    std::vector<CloudFault> faults_;
};

} // namespace sentrel::simulation
