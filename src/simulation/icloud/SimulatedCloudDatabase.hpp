#pragma once

#include "ports/CloudDatabase.hpp"

#include <filesystem>
#include <memory>

namespace sentrel::simulation {

class AssetFolder;
class CloudLink;

/// The private database of the account that is signed in, as one Mac sees it. Main thread.
class SimulatedCloudDatabase final : public ports::CloudDatabase {
public:
    /// Downloaded assets become files in the folder `assets`, which is emptied at once.
    SimulatedCloudDatabase(CloudLink& link, const std::filesystem::path& assets);

    [[nodiscard]] Async<ports::CloudQueryPage> query(ports::CloudQuery query, ports::CloudDesiredKeys desiredKeys,
                                                     std::size_t resultsLimit) override;
    [[nodiscard]] Async<ports::CloudQueryPage> continueQuery(std::shared_ptr<const ports::CloudQueryCursor> cursor,
                                                             ports::CloudDesiredKeys desiredKeys,
                                                             std::size_t resultsLimit) override;
    [[nodiscard]] Async<std::map<std::string, ports::CloudRecordResult>>
    records(std::vector<std::string> names, ports::CloudDesiredKeys desiredKeys) override;
    [[nodiscard]] Async<ports::CloudModification> modify(std::vector<ports::CloudRecord> save,
                                                         std::vector<std::string> deleteNames,
                                                         ports::CloudSavePolicy policy, bool isAtomic) override;
    [[nodiscard]] Async<ports::CloudRecord> record(std::string name) override;
    [[nodiscard]] Async<ports::CloudRecord> save(ports::CloudRecord record) override;
    [[nodiscard]] Async<void> saveSubscription(ports::CloudSubscription subscription) override;

private:
    CloudLink& link_;
    std::shared_ptr<AssetFolder> assets_; // shared with requests in flight, which may outlive this
};

} // namespace sentrel::simulation
