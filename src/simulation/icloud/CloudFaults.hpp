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

/// A fault to inject into requests.
struct CloudFault {
    ports::CloudError error;
    std::optional<CloudOperation> operation{}; ///< none: any but `accountStatus`, which asks no server
    std::string record{};                      ///< the only record that fails; empty: the whole request fails
    int times = -1;                            ///< strikes left; negative: unlimited
    double probability = 1.0;                  ///< of each possible strike
    bool losesAnswer = false;                  ///< the server acts before the error; ignored for a single record
};

/// The faults between one Mac and the server, tried in the order of their addition. Any thread.
class CloudFaults {
public:
    explicit CloudFaults(std::uint64_t seed) : generator_(seed) {}

    void add(CloudFault fault);

    /// The server carries out the next `times` requests, but their answers are lost (network failure).
    void loseAnswers(int times, std::optional<CloudOperation> operation = std::nullopt);

    /// Removes all faults.
    void clear();

    /// The faults with strikes left.
    [[nodiscard]] std::vector<CloudFault> all() const;

    /// The fault that fails this request as a whole, or none. Counts as one strike.
    [[nodiscard]] std::optional<CloudFault> strike(CloudOperation operation);

    /// The errors of records that fail singly, by name. One strike each.
    [[nodiscard]] std::map<std::string, ports::CloudError> strike(CloudOperation operation,
                                                                  const std::vector<std::string>& records);

private:
    [[nodiscard]] std::optional<CloudFault> strikeLocked(CloudOperation operation, const std::string& record);

    mutable std::mutex mutex_;
    std::mt19937_64 generator_;
    std::vector<CloudFault> faults_;
};

} // namespace sentrel::simulation
