#pragma once

#include "ports/CloudDatabase.hpp"
#include "simulation/icloud/Sqlite.hpp"

#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// A part of an SQL statement about a row `r` of the store's table `records`, and the values of its question marks.
struct SqlPart {
    std::string sql;
    std::vector<SqliteValue> values;
};

/// The predicate as a condition. Supported are "TRUEPREDICATE" and "FIELD == %@", "FIELD = %@", "FIELD > %@" and "FIELD
/// IN %@", joined by "AND"; a field matches only an argument of its kind. Others throw error 12 (invalid arguments).
[[nodiscard]] SqlPart conditionOf(const ports::CloudPredicate& predicate);

/// Fields and operators of the comparisons in a predicate that `conditionOf` understands.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> comparisonsOf(const ports::CloudPredicate& predicate);

/// A query's sort expression; records without the field sort lowest.
[[nodiscard]] SqlPart orderOf(const std::string& sortKey);

} // namespace sentrel::simulation
