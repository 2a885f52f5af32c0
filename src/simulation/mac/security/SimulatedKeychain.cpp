#include "simulation/mac/security/SimulatedKeychain.hpp"

#include "ports/DurableFile.hpp"
#include "ports/FileSystem.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulation {

using ports::KeychainConstant;
using ports::KeychainDictionary;
using ports::KeychainKey;

namespace {

constexpr std::int32_t securitySuccess = 0;
constexpr std::int32_t inputOutputError = -36;         // errSecIO
constexpr std::int32_t securityParameterError = -50;   // errSecParam
constexpr std::int32_t notAvailable = -25291;          // errSecNotAvailable
constexpr std::int32_t authenticationFailed = -25293;  // errSecAuthFailed
constexpr std::int32_t invalidKeychain = -25295;       // errSecInvalidKeychain
constexpr std::int32_t duplicateItem = -25299;         // errSecDuplicateItem
constexpr std::int32_t itemNotFound = -25300;          // errSecItemNotFound
constexpr std::int32_t interactionNotAllowed = -25308; // errSecInteractionNotAllowed

constexpr std::uint32_t ownerOnly = 0600;

/// The value under a key; null when there is none or it is of another type.
template <class T> const T* find(const KeychainDictionary& dictionary, KeychainKey key)
{
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : std::get_if<T>(&found->second);
}

std::optional<std::string> textUnder(const KeychainDictionary& dictionary, KeychainKey key)
{
    const auto* const text = find<std::string_view>(dictionary, key);
    return text == nullptr ? std::nullopt : std::optional<std::string>{*text};
}

bool isTrue(const KeychainDictionary& dictionary, KeychainKey key)
{
    const auto* const flag = find<bool>(dictionary, key);
    return flag != nullptr && *flag;
}

/// Matches the item of this service and account.
auto namedAs(std::string_view service, std::string_view account)
{
    return [service, account](const KeychainItem& item) { return item.service == service && item.account == account; };
}

/// Copies the attributes that an item stores into it.
void apply(const KeychainDictionary& attributes, KeychainItem& item)
{
    if (const auto* const data = find<BytesView>(attributes, KeychainKey::valueData)) {
        item.data.assign(data->begin(), data->end());
    }
    const auto* const accessible = find<KeychainConstant>(attributes, KeychainKey::accessible);
    if (accessible != nullptr && *accessible == KeychainConstant::accessibleWhenUnlocked) {
        item.accessible = "whenUnlocked";
    }
}

} // namespace

/// The part of a dictionary that selects items.
struct SimulatedKeychain::Query {
    KeychainStore store = KeychainStore::legacy;
    std::optional<std::string> service;
    std::optional<std::string> account;

    /// None for a dictionary that isn't about generic passwords.
    static std::optional<Query> read(const KeychainDictionary& dictionary)
    {
        const auto* const itemClass = find<KeychainConstant>(dictionary, KeychainKey::itemClass);
        if (itemClass == nullptr || *itemClass != KeychainConstant::genericPassword) {
            return std::nullopt;
        }
        Query query;
        if (isTrue(dictionary, KeychainKey::useDataProtectionKeychain)) {
            query.store = KeychainStore::dataProtection;
        }
        query.service = textUnder(dictionary, KeychainKey::service);
        query.account = textUnder(dictionary, KeychainKey::account);
        return query;
    }

    [[nodiscard]] bool matches(const KeychainItem& item) const
    {
        return (!service || *service == item.service) && (!account || *account == item.account);
    }

    [[nodiscard]] auto matcher() const
    {
        return [this](const KeychainItem& item) { return matches(item); };
    }
};

SimulatedKeychain::SimulatedKeychain(ports::FileSystem& files, std::filesystem::path file)
    : files_(files), file_(std::move(file))
{
    const auto text = files_.read(file_);
    if (text) {
        contents_ = KeychainContents::decode(*text);
    } else if (!files_.exists(file_)) {
        contents_.emplace();
    }
}

SimulatedKeychain::Copied SimulatedKeychain::copyMatching(const KeychainDictionary& dictionary)
{
    faults_.call("copyMatching");
    const std::lock_guard guard{mutex_};
    const auto query = Query::read(dictionary);
    if (const std::int32_t refused = permit(query, "copy"); refused != securitySuccess) {
        return {refused, std::nullopt};
    }
    const auto& items = contents_->items(query->store);
    const auto found = std::ranges::find_if(items, query->matcher());
    if (found == items.end()) {
        return {itemNotFound, std::nullopt};
    }
    if (!isTrue(dictionary, KeychainKey::returnData)) {
        return {securitySuccess, std::nullopt};
    }
    return {securitySuccess, SecretBytes{BytesView{found->data}}};
}

std::int32_t SimulatedKeychain::add(const KeychainDictionary& attributes)
{
    faults_.call("add");
    const std::lock_guard guard{mutex_};
    const auto query = Query::read(attributes);
    if (const std::int32_t refused = permit(query, "add"); refused != securitySuccess) {
        return refused;
    }
    KeychainItem item{query->service.value_or(""), query->account.value_or(""), {}, {}};
    apply(attributes, item);
    return change(query->store, [&item](std::vector<KeychainItem>& items) {
        if (std::ranges::any_of(items, namedAs(item.service, item.account))) {
            return duplicateItem;
        }
        items.push_back(item);
        return securitySuccess;
    });
}

std::int32_t SimulatedKeychain::update(const KeychainDictionary& dictionary,
                                       const KeychainDictionary& attributesToUpdate)
{
    faults_.call("update");
    const std::lock_guard guard{mutex_};
    const auto query = Query::read(dictionary);
    if (const std::int32_t refused = permit(query, "update"); refused != securitySuccess) {
        return refused;
    }
    return change(query->store, [&](std::vector<KeychainItem>& items) {
        std::int32_t status = itemNotFound;
        for (KeychainItem& item : items) {
            if (query->matches(item)) {
                apply(attributesToUpdate, item);
                status = securitySuccess;
            }
        }
        return status;
    });
}

std::int32_t SimulatedKeychain::remove(const KeychainDictionary& dictionary)
{
    faults_.call("remove");
    const std::lock_guard guard{mutex_};
    const auto query = Query::read(dictionary);
    if (const std::int32_t refused = permit(query, "delete"); refused != securitySuccess) {
        return refused;
    }
    return change(query->store, [&](std::vector<KeychainItem>& items) {
        return std::erase_if(items, query->matcher()) == 0 ? itemNotFound : securitySuccess;
    });
}

void SimulatedKeychain::setAccess(KeychainStore store, Access access)
{
    const std::lock_guard guard{mutex_};
    access_.at(static_cast<std::size_t>(store)) = access;
}

bool SimulatedKeychain::setItem(KeychainStore store, KeychainItem item)
{
    const std::lock_guard guard{mutex_};
    if (!contents_) {
        return false;
    }
    return change(store, [&item](std::vector<KeychainItem>& items) {
               std::erase_if(items, namedAs(item.service, item.account));
               items.push_back(std::move(item));
               return securitySuccess;
           }) == securitySuccess;
}

std::optional<KeychainItem> SimulatedKeychain::item(KeychainStore store, std::string_view service,
                                                    std::string_view account) const
{
    const std::lock_guard guard{mutex_};
    if (!contents_) {
        return std::nullopt;
    }
    const auto& items = contents_->items(store);
    const auto found = std::ranges::find_if(items, namedAs(service, account));
    return found == items.end() ? std::nullopt : std::optional{*found};
}

std::int32_t SimulatedKeychain::permit(const std::optional<Query>& query, std::string_view fault)
{
    if (!query) {
        return securityParameterError;
    }
    if (faults_.strikes(fault)) {
        return notAvailable;
    }
    if (!contents_) {
        return invalidKeychain;
    }
    switch (access_.at(static_cast<std::size_t>(query->store))) {
    case Access::locked:
        return interactionNotAllowed;
    case Access::denied:
        return authenticationFailed;
    case Access::open:
        break;
    }
    return securitySuccess;
}

std::int32_t SimulatedKeychain::change(KeychainStore store, const Change& make)
{
    const PortCalls::DeviceScope scope;
    KeychainContents changed = *contents_;
    if (const std::int32_t status = make(changed.items(store)); status != securitySuccess) {
        return status;
    }
    const std::string text = changed.encode();
    files_.createDirectories(file_.parent_path(), 0700);
    if (ports::writeDurably(files_, file_, bytesOf(text), ownerOnly) != 0) {
        return inputOutputError;
    }
    contents_ = std::move(changed);
    return securitySuccess;
}

} // namespace sentrel::simulation
