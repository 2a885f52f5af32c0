#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/TextList.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace sentrel::simulation {

/// The lists of texts of one database, which stores each as a JSON array, decoded and encoded. A list is kept with the
/// tag of the record's version that it belongs to, so a catalog of thousands is decoded once, and a text that is added
/// costs only its own encoding. Not synchronised.
class StoredLists {
public:
    /// A record's number and the field's name.
    using Place = std::pair<std::int64_t, std::string>;

    /// The list in that version of the record; null if it isn't known and has to be read.
    [[nodiscard]] const TextList* find(const Place& place, const std::string& tag) const;

    /// Takes the list as it is stored. Valid until the next call for the same place.
    const TextList& keep(const Place& place, const std::string& tag, const Bytes& stored);

    /// The list's encoding, for a version that has it or is about to have it; valid until the next call for the same
    /// place.
    const std::string& encode(const Place& place, const std::string& tag, const TextList& texts);

    void forget(std::int64_t record);

private:
    struct List {
        std::string tag;
        TextList texts;
        std::string encoded; ///< empty until the list is written
    };

    std::map<Place, List> lists_;
};

} // namespace sentrel::simulation
