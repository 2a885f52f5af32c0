#pragma once

#include "platform/CloudDatabase.hpp"
#include "platform/macos/CloudContainer.hpp"

namespace sentrel::macos {

/// The private database of a container in iCloud. Cursors that come in were made here.
class MacCloudDatabase final : public platform::CloudDatabase {
public:
    explicit MacCloudDatabase(std::string containerIdentifier) : container_(std::move(containerIdentifier)) {}
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
    [[nodiscard]] CKDatabase* database() { return container_.open().privateCloudDatabase; }

    CloudContainer container_;
};

} // namespace sentrel::macos
