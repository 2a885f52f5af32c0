#pragma once

#include "ports/CloudDatabase.hpp"

#include <span>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// A field as `resources/cloudkit-schema.ckdb` declares it.
struct CloudField {
    std::string_view type; ///< of the record
    std::string_view name;
    std::string_view kind; ///< in the words of CloudKit's schema language
    bool isQueryable = false;
    bool isSortable = false;
};

/// The product's record types, in the order of the file.
[[nodiscard]] std::span<const CloudField> cloudSchema();

/// Throws error 12 (invalid arguments) when a query or subscription needs an index that the schema does not declare: of
/// the fields that the predicate compares, of the sort key, and of "recordName" when the predicate compares nothing.
/// Types that the schema does not declare are those of a development container, which indexes what it makes by itself.
void requireIndexes(const std::string& recordType, const ports::CloudPredicate& predicate,
                    const std::string& sortKey = {});

} // namespace sentrel::simulation
