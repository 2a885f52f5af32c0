#include "simulation/icloud/CloudFaults.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"

#include <utility>

namespace sentrel::simulation {

namespace {

bool concerns(const CloudFault& fault, CloudOperation operation)
{
    return fault.operation ? *fault.operation == operation : operation != CloudOperation::accountStatus;
}

} // namespace

void CloudFaults::add(CloudFault fault)
{
    const std::lock_guard guard{mutex_};
    faults_.push_back(std::move(fault));
}

void CloudFaults::loseAnswers(int times, std::optional<CloudOperation> operation)
{
    CloudFault fault{.error = cloudError(CKError::networkFailure)};
    fault.operation = operation;
    fault.times = times;
    fault.losesAnswer = true;
    add(std::move(fault));
}

void CloudFaults::clear()
{
    const std::lock_guard guard{mutex_};
    faults_.clear();
}

std::vector<CloudFault> CloudFaults::all() const
{
    const std::lock_guard guard{mutex_};
    std::vector<CloudFault> left = faults_;
    std::erase_if(left, [](const CloudFault& fault) { return fault.times == 0; });
    return left;
}

std::optional<CloudFault> CloudFaults::strike(CloudOperation operation)
{
    const std::lock_guard guard{mutex_};
    return strikeLocked(operation, {});
}

std::map<std::string, ports::CloudError> CloudFaults::strike(CloudOperation operation,
                                                             const std::vector<std::string>& records)
{
    const std::lock_guard guard{mutex_};
    std::map<std::string, ports::CloudError> errors;
    for (const std::string& record : records) {
        if (auto fault = strikeLocked(operation, record)) {
            errors.emplace(record, std::move(fault->error));
        }
    }
    return errors;
}

std::optional<CloudFault> CloudFaults::strikeLocked(CloudOperation operation, const std::string& record)
{
    for (CloudFault& fault : faults_) {
        if (fault.times == 0 || fault.record != record || !concerns(fault, operation)) {
            continue;
        }
        // Computed from raw bits: the library's distributions differ between systems.
        const double chance = static_cast<double>(generator_() >> 11U) * 0x1p-53;
        if (chance >= fault.probability) {
            continue;
        }
        fault.times -= fault.times > 0 ? 1 : 0;
        return fault;
    }
    return std::nullopt;
}

} // namespace sentrel::simulation
