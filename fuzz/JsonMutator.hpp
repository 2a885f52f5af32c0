#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// A mutation that keeps JSON well-formed, for decoders that refuse nearly all bytes before they look at a field.

namespace sentrel::fuzz {

/// Changes one node of a document: its value, its type, or which members it has.
class JsonMutation {
public:
    explicit JsonMutation(std::minstd_rand& random) : random_(random) {}

    void apply(Json& document)
    {
        std::vector<Json*> nodes;
        collect(document, nodes);
        Json& node = *pick(nodes);
        if (node.is_structured() && !node.empty() && chance(2)) {
            changeElements(node);
        } else if (node.is_string() && chance(2)) {
            node = changedText(node.get<std::string>());
        } else if (chance(4)) {
            const Json other = *pick(nodes); // a copy: the node may lie within the other
            node = other;
        } else {
            node = pick(values());
        }
    }

private:
    static void collect(Json& node, std::vector<Json*>& nodes)
    {
        nodes.push_back(&node);
        if (node.is_structured()) {
            for (Json& child : node) {
                collect(child, nodes);
            }
        }
    }

    /// The values at which decoders tend to differ.
    static const std::vector<Json>& values()
    {
        static const std::vector<Json> all{nullptr,
                                           true,
                                           false,
                                           0,
                                           1,
                                           -1,
                                           0.5,
                                           -0.0,
                                           1e308,
                                           5e-324,
                                           std::int64_t{1} << 53,
                                           std::numeric_limits<std::int64_t>::min(),
                                           std::numeric_limits<std::uint64_t>::max(),
                                           std::numeric_limits<std::uint32_t>::max(),
                                           "",
                                           "unplugged",
                                           "AAAA",
                                           "11111111-2222-3333-4444-555555555555",
                                           Json::array(),
                                           Json::object(),
                                           Json::array({"11111111-2222-3333-4444-555555555555", 1})};
        return all;
    }

    void changeElements(Json& node)
    {
        const auto place = std::next(node.begin(), static_cast<std::ptrdiff_t>(below(node.size())));
        if (chance(2)) {
            node.erase(place);
        } else if (node.is_array()) {
            const Json element = *place;
            node.push_back(element);
        } else {
            const Json value = *place;
            node[changedText(place.key())] = value;
        }
    }

    std::string changedText(std::string text)
    {
        const std::size_t size = text.size();
        text.resize(size + 8);
        text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
        return text;
    }

    [[nodiscard]] std::size_t below(std::size_t end) { return random_() % end; }
    [[nodiscard]] bool chance(std::size_t of) { return below(of) == 0; }
    template <class List> auto pick(List& list) -> decltype(list[0]) { return list[below(list.size())]; }

    std::minstd_rand& random_;
};

inline std::size_t copyBack(std::string_view text, std::uint8_t* data)
{
    std::memcpy(data, text.data(), text.size());
    return text.size();
}

/// Changes a node of the input if that is a JSON document, else of one of its lines that
/// is one, else bytes.
inline std::size_t mutateJson(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    std::minstd_rand random{seed};
    const std::string_view text{reinterpret_cast<const char*>(data), size};
    std::size_t begin = 0;
    std::size_t end = size;
    auto document = parseJson(bytesOf(text));
    if (!document && size > 0) {
        const std::size_t place = random() % size;
        const std::size_t before = text.rfind('\n', place == 0 ? 0 : place - 1);
        begin = before == text.npos || place == 0 ? 0 : before + 1;
        end = std::min(text.find('\n', place), size);
        document = begin <= end ? parseJson(bytesOf(text.substr(begin, end - begin))) : std::nullopt;
    }
    if (!document || random() % 4 == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    JsonMutation{random}.apply(*document);
    const std::string changed =
        std::string{text.substr(0, begin)} + encodeJson(*document) + std::string{text.substr(end)};
    return changed.size() <= maxSize ? copyBack(changed, data) : LLVMFuzzerMutate(data, size, maxSize);
}

} // namespace sentrel::fuzz

/// The mutator of the target whose only source includes this file.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    return sentrel::fuzz::mutateJson(data, size, maxSize, seed);
}
