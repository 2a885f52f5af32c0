#include "simulation/mac/security/KeychainContents.hpp"

#include "foundation/Json.hpp"
#include "simulation/mac/files/Base64.hpp"

#include <nlohmann/json.hpp>

#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::array<std::pair<KeychainStore, std::string_view>, 2> storeNames{
    {{KeychainStore::dataProtection, "dataProtection"}, {KeychainStore::legacy, "legacy"}}};

std::optional<KeychainItem> decodeItem(const Json& json)
{
    auto service = textMember(json, "service");
    auto account = textMember(json, "account");
    auto accessible = textMember(json, "accessible");
    const auto data = textMember(json, "data");
    auto bytes = data ? bytesOfBase64(*data) : std::nullopt;
    if (!service || !account || !accessible || !bytes) {
        return std::nullopt;
    }
    return KeychainItem{std::move(*service), std::move(*account), std::move(*accessible), std::move(*bytes)};
}

Json encodeItem(const KeychainItem& item)
{
    Json json = Json::object();
    json["service"] = item.service;
    json["account"] = item.account;
    json["accessible"] = item.accessible;
    json["data"] = base64Text(item.data);
    return json;
}

bool decodeItems(const Json* list, std::vector<KeychainItem>& items)
{
    if (list == nullptr || !list->is_array()) {
        return false;
    }
    for (const Json& json : *list) {
        auto item = decodeItem(json);
        if (!item) {
            return false;
        }
        items.push_back(std::move(*item));
    }
    return true;
}

} // namespace

std::optional<KeychainContents> KeychainContents::decode(BytesView text)
{
    const auto json = parseJson(text);
    if (!json) {
        return std::nullopt;
    }
    KeychainContents contents;
    for (const auto& [store, name] : storeNames) {
        if (!decodeItems(member(*json, name), contents.items(store))) {
            return std::nullopt;
        }
    }
    return contents;
}

std::string KeychainContents::encode() const
{
    Json json = Json::object();
    for (const auto& [store, name] : storeNames) {
        Json list = Json::array();
        for (const KeychainItem& item : items(store)) {
            list.push_back(encodeItem(item));
        }
        json[std::string{name}] = std::move(list);
    }
    return encodeJson(json);
}

} // namespace sentrel::simulation
