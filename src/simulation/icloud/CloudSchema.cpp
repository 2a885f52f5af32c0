#include "simulation/icloud/CloudSchema.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/PredicateSql.hpp"

#include <algorithm>
#include <array>

namespace sentrel::simulation {

namespace {

constexpr std::string_view recordIdentity = "___recordID";

constexpr std::array schema{
    CloudField{"AlertCatalog", "alertIDs", "LIST<STRING>"},
    CloudField{"AlertCatalog", "isTruncated", "INT64"},
    CloudField{"AlertEvent", recordIdentity, "REFERENCE", true},
    CloudField{"AlertEvent", "deviceName", "STRING"},
    CloudField{"AlertEvent", "photo", "ASSET"},
    CloudField{"AlertEvent", "reason", "STRING"},
    CloudField{"AlertEvent", "sendNotification", "INT64", true},
    CloudField{"AlertEvent", "timestamp", "TIMESTAMP", true, true},
    CloudField{"AlertEvent", "triggerName", "STRING"},
    CloudField{"MacDeviceCatalog", "commandIssuedAt", "TIMESTAMP"},
    CloudField{"MacDeviceCatalog", "commandSequence", "INT64"},
    CloudField{"MacDeviceCatalog", "deviceID", "STRING"},
    CloudField{"MacDeviceCatalog", "deviceIDs", "LIST<STRING>"},
    CloudField{"MacDeviceCatalog", "deviceName", "STRING"},
    CloudField{"MacDeviceCatalog", "isArmed", "INT64"},
    CloudField{"MacDeviceCatalog", "isCompatible", "INT64"},
    CloudField{"MacDeviceCatalog", "lastSeen", "TIMESTAMP"},
    CloudField{"MacDeviceCatalog", "requestedArmState", "INT64", true},
};

/// The schema's name of a field in a request.
std::string_view declaredName(std::string_view field)
{
    if (field == "modificationDate") {
        return "___modTime";
    }
    return field == "creationDate" ? "___createTime" : field;
}

void require(std::string_view type, std::string_view field, bool CloudField::* index)
{
    const auto isNamed = [&](const CloudField& known) {
        return known.type == type && known.name == declaredName(field) && known.*index;
    };
    if (std::ranges::none_of(schema, isNamed)) {
        throw cloudError(CKError::invalidArguments);
    }
}

} // namespace

std::span<const CloudField> cloudSchema()
{
    return schema;
}

void requireIndexes(const std::string& recordType, const ports::CloudPredicate& predicate, const std::string& sortKey)
{
    if (std::ranges::find(schema, recordType, &CloudField::type) == schema.end()) {
        return;
    }
    const auto comparisons = comparisonsOf(predicate);
    if (comparisons.empty()) {
        require(recordType, recordIdentity, &CloudField::isQueryable);
    }
    for (const auto& [field, operation] : comparisons) {
        require(recordType, field, operation == ">" ? &CloudField::isSortable : &CloudField::isQueryable);
    }
    if (!sortKey.empty()) {
        require(recordType, sortKey, &CloudField::isSortable);
    }
}

} // namespace sentrel::simulation
