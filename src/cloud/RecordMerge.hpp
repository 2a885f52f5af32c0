#pragma once

#include "ports/CloudDatabase.hpp"

#include <functional>
#include <optional>
#include <string>

namespace sentrel {

// Records that several devices change: each reads the record, merges its change and saves it unless the server's record
// has changed meanwhile, in which case it starts again from the newer one.

/// Applies a change to a record; false when the record needs none.
using RecordMerge = std::function<bool(ports::CloudRecord&)>;

/// The record of this name, or a new, empty one when there is none. One request; throws its error.
[[nodiscard]] Async<ports::CloudRecord> recordOrNew(ports::CloudDatabase& database, std::string type, std::string name);

/// Reads, merges and saves until no other device interferes, five times at most. `fresh` is a record that was just
/// read, which saves the first reading. Throws the requests' errors, and the last conflict.
[[nodiscard]] Async<void> mergeIntoRecord(ports::CloudDatabase& database, std::string type, std::string name,
                                          std::optional<ports::CloudRecord> fresh, RecordMerge merge);

} // namespace sentrel
