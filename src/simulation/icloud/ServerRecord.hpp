#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"
#include "foundation/TextList.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/CloudError.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sentrel::simulation {

/// A field's value at the server; for an asset, its content.
using ServerValue = std::variant<std::string, std::int64_t, double, Date, TextList, Bytes>;

using ServerFields = std::map<std::string, ServerValue>;

/// A record as the server stores it, or as a device sends it.
struct ServerRecord {
    std::string type;
    std::string name;
    ServerFields fields;
    std::string tag; ///< its version; empty if it was never fetched
    Date modificationDate{};
};

/// The field when it is there and of this kind, or null.
template <class Kind> [[nodiscard]] const Kind* fieldOf(const ServerRecord& record, const std::string& name)
{
    const auto found = record.fields.find(name);
    return found == record.fields.end() ? nullptr : std::get_if<Kind>(&found->second);
}

using ServerRecordResult = std::variant<ServerRecord, ports::CloudError>;

struct ServerPage {
    std::vector<std::pair<std::string, ServerRecordResult>> results;
    std::shared_ptr<const ports::CloudQueryCursor> cursor; ///< null at the end
};

/// The saves and deletions of one request.
struct ServerBatch {
    std::vector<ServerRecord> save;
    std::vector<std::string> deleteNames;
    ports::CloudSavePolicy policy = ports::CloudSavePolicy::ifServerRecordUnchanged;
    bool isAtomic = false;
    std::map<std::string, ports::CloudError> refused; ///< injected errors of single records, by name
};

struct ServerModification {
    std::map<std::string, ServerRecordResult> saved; ///< with all fields but assets
    std::map<std::string, ports::CloudDeleteResult> deleted;
};

/// The reason to refuse a record, or none: invalid names or texts, numbers that aren't finite (invalid arguments), more
/// than 1 MiB without assets (limit exceeded).
[[nodiscard]] std::optional<ports::CloudError> objectionTo(const ServerRecord& record);

/// True for 1 to 255 printable ASCII characters without a leading underscore.
[[nodiscard]] bool isRecordName(const std::string& name);

[[nodiscard]] bool isUtf8(std::string_view text);

} // namespace sentrel::simulation
