#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"
#include "ports/CloudDatabase.hpp"
#include "ports/CloudError.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace sentrel::simulation {

/// What the server keeps in a field; of an asset, its content.
using ServerValue = std::variant<std::string, std::int64_t, double, Date, std::vector<std::string>, Bytes>;

/// A record as the server has it, or what a device asks to be saved.
struct ServerRecord {
    std::string type;
    std::string name;
    std::map<std::string, ServerValue> fields;
    std::string tag; ///< its version; empty for one that was never fetched
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

/// What one request saves and deletes.
struct ServerBatch {
    std::vector<ServerRecord> save;
    std::vector<std::string> deleteNames;
    ports::CloudSavePolicy policy = ports::CloudSavePolicy::ifServerRecordUnchanged;
    bool isAtomic = false;
    std::map<std::string, ports::CloudError> refused; ///< records that fail whatever the request says, by name
};

struct ServerModification {
    std::map<std::string, ServerRecordResult> saved; ///< with all fields but assets
    std::map<std::string, ports::CloudDeleteResult> deleted;
};

/// What is wrong with a record that a device wants to save: names and texts that the server does not take, numbers that
/// aren't finite (invalid arguments), more than 1 MB without assets (limit exceeded). None when nothing is.
[[nodiscard]] std::optional<ports::CloudError> objectionTo(const ServerRecord& record);

/// Up to 255 ASCII characters, none of them a control character, and no underscore first.
[[nodiscard]] bool isRecordName(const std::string& name);

[[nodiscard]] bool isUtf8(const std::string& text);

} // namespace sentrel::simulation
