#pragma once

#include "ports/CloudDatabase.hpp"

#include <functional>
#include <optional>
#include <string>

namespace sentrel {

// Records that several devices change: each reads the record, puts its own change into it and saves it, unless the
// server's has changed meanwhile; then it begins again with the newer one.

/// Puts a change into a record; false when the record needs none.
using RecordMerge = std::function<bool(ports::CloudRecord&)>;

/// The record of this name; a new and empty one when there is none. One request; throws what it throws.
[[nodiscard]] Async<ports::CloudRecord> recordOrNew(ports::CloudDatabase& database, std::string type, std::string name);

/// Reads, merges and saves until the server agrees, five times at most. `fresh` is a record that was just read, which
/// saves the first reading. Throws what the requests throw, and the last conflict.
[[nodiscard]] Async<void> mergeIntoRecord(ports::CloudDatabase& database, std::string type, std::string name,
                                          std::optional<ports::CloudRecord> fresh, RecordMerge merge);

} // namespace sentrel
