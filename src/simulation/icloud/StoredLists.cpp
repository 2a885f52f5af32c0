#include "simulation/icloud/StoredLists.hpp"

#include "foundation/Json.hpp"

#include <nlohmann/json.hpp>

#include <string_view>

namespace sentrel::simulation {

namespace {

/// Adds the texts from `first` on to a JSON array.
void appendTexts(std::string& encoded, const TextList& texts, std::size_t first)
{
    encoded.pop_back();
    for (std::size_t place = first; place < texts.size(); ++place) {
        if (place > 0) {
            encoded += ',';
        }
        appendJsonText(encoded, texts[place]);
    }
    encoded += ']';
}

/// The texts of an encoded list without escapes, in which quotation marks only delimit texts.
TextList plainTextsOf(std::string_view encoded)
{
    TextListWriter texts;
    texts.reserve(0, encoded.size());
    for (std::size_t open = encoded.find('"'); open != std::string_view::npos;) {
        const std::size_t close = encoded.find('"', open + 1);
        if (close == std::string_view::npos) {
            break; // not written by this server
        }
        texts.add(encoded.substr(open + 1, close - open - 1));
        open = encoded.find('"', close + 1);
    }
    return texts.take();
}

TextList textsOf(const Bytes& encoded)
{
    if (textOf(encoded).find('\\') == std::string_view::npos) {
        return plainTextsOf(textOf(encoded)); // fast, for a catalog's thousands of identifiers
    }
    TextListWriter texts;
    const auto list = parseJson(encoded);
    for (const Json& text : list.value_or(Json::array())) {
        if (text.is_string()) {
            texts.add(text.get_ref<const std::string&>());
        }
    }
    return texts.take();
}

} // namespace

const TextList* StoredLists::find(const Place& place, const std::string& tag) const
{
    const auto found = lists_.find(place);
    return found == lists_.end() || found->second.tag != tag ? nullptr : &found->second.texts;
}

const TextList& StoredLists::keep(const Place& place, const std::string& tag, const Bytes& stored)
{
    List& list = lists_[place];
    list = {tag, textsOf(stored), {}};
    return list.texts;
}

const std::string& StoredLists::encode(const Place& place, const std::string& tag, const TextList& texts)
{
    List& list = lists_[place];
    const std::size_t common = list.texts.commonWith(texts);
    if (list.encoded.empty() || common < list.texts.size()) {
        list.encoded = "[]";
        appendTexts(list.encoded, texts, 0);
    } else {
        appendTexts(list.encoded, texts, common);
    }
    list.tag = tag;
    list.texts = texts;
    return list.encoded;
}

void StoredLists::forget(std::int64_t record)
{
    const auto end = lists_.lower_bound({record + 1, {}});
    lists_.erase(lists_.lower_bound({record, {}}), end);
}

} // namespace sentrel::simulation
