#pragma once

#include "platform/CloudDatabase.hpp"

#include <filesystem>
#include <memory>

namespace sentrel::simulated {

class AssetFolder;
class CloudLink;

/// The private database of the account that is signed in, as one Mac sees it. Main thread.
class SimulatedCloudDatabase final : public platform::CloudDatabase {
public:
    /// Assets arrive as files in a folder of the system's own, which is emptied at once.
    SimulatedCloudDatabase(CloudLink& link, const std::filesystem::path& assets);

    [[nodiscard]] Async<platform::CloudQueryPage>
    query(platform::CloudQuery query, platform::CloudDesiredKeys desiredKeys, std::size_t resultsLimit) override;
    [[nodiscard]] Async<platform::CloudQueryPage>
    continueQuery(std::shared_ptr<const platform::CloudQueryCursor> cursor, platform::CloudDesiredKeys desiredKeys,
                  std::size_t resultsLimit) override;
    [[nodiscard]] Async<std::map<std::string, platform::CloudRecordResult>>
    records(std::vector<std::string> names, platform::CloudDesiredKeys desiredKeys) override;
    [[nodiscard]] Async<platform::CloudModification> modify(std::vector<platform::CloudRecord> save,
                                                            std::vector<std::string> deleteNames,
                                                            platform::CloudSavePolicy policy, bool isAtomic) override;
    [[nodiscard]] Async<platform::CloudRecord> record(std::string name) override;
    [[nodiscard]] Async<platform::CloudRecord> save(platform::CloudRecord record) override;
    [[nodiscard]] Async<void> saveSubscription(platform::CloudSubscription subscription) override;

private:
    CloudLink& link_;
    std::shared_ptr<AssetFolder> assets_; // also of the requests under way, which may outlive this
};

} // namespace sentrel::simulated
