#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"
#include "foundation/TextList.hpp"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace sentrel::ports {

/// A file attached to a record. In a fetched record it is the system's own copy, which may be deleted with the last
/// `CloudAsset` that names it: keep one while reading the file.
struct CloudAsset {
    std::filesystem::path file;
    std::shared_ptr<const void> holder{}; ///< opaque: the system's own object
    friend bool operator==(const CloudAsset& left, const CloudAsset& right) { return left.file == right.file; }
};

/// The value of a field. The database stores Booleans as the integers 0 and 1.
using CloudValue = std::variant<std::string, std::int64_t, double, Date, TextList, CloudAsset>;

/// A record of the private database's default zone, or the requested fields of one.
struct CloudRecord {
    std::string type;
    std::string name;
    std::map<std::string, CloudValue> fields;

    /// The system's own fields, the record's version among them; opaque, empty for a record that was never fetched.
    Bytes systemFields;
    std::optional<Date> modificationDate; ///< by the server's clock; none for a record that was never saved

    friend bool operator==(const CloudRecord&, const CloudRecord&) = default;
};

/// The field's value, or null when it is missing or of another kind.
template <class Kind> [[nodiscard]] const Kind* fieldOf(const CloudRecord& record, const std::string& name)
{
    const auto found = record.fields.find(name);
    return found == record.fields.end() ? nullptr : std::get_if<Kind>(&found->second);
}

} // namespace sentrel::ports
