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

/// Throws error 12 (invalid arguments) when a query or subscription needs an index that the schema does not declare:
/// for a field that the predicate compares, for the sort key, or for "recordName" if the predicate compares nothing.
/// Undeclared types are exempt: a development container creates them and their indexes.
void requireIndexes(const std::string& recordType, const ports::CloudPredicate& predicate,
                    const std::string& sortKey = {});

} // namespace sentrel::simulation
