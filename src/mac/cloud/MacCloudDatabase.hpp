#pragma once

#include "mac/cloud/CloudContainer.hpp"
#include "ports/CloudDatabase.hpp"

namespace sentrel::mac {

/// The private database of a container in iCloud. Cursors passed in must come from here.
class MacCloudDatabase final : public ports::CloudDatabase {
public:
    explicit MacCloudDatabase(std::string containerIdentifier) : container_(std::move(containerIdentifier)) {}
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
    [[nodiscard]] CKDatabase* database() { return container_.open().privateCloudDatabase; }

    CloudContainer container_;
};

} // namespace sentrel::mac
