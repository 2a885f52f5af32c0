#include "simulation/icloud/CompanionPhone.hpp"

#include "ports/WallClock.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/icloud/PrivateCloud.hpp"

#include <nlohmann/json.hpp>

#include <limits>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

// Names shared with the Macs, repeated because the phone is another program: a change on the Mac's side alone fails the
// scenarios.
constexpr const char* alertType = "AlertEvent";
constexpr const char* catalogType = "MacDeviceCatalog";
constexpr const char* catalogName = "mac-device-catalog";

template <class Kind> Kind valueOr(const ServerRecord& record, const char* field, const Kind& otherwise)
{
    const Kind* const value = fieldOf<Kind>(record, field);
    return value == nullptr ? otherwise : *value;
}

bool flag(const ServerRecord& record, const char* field, bool otherwise)
{
    return valueOr<std::int64_t>(record, field, otherwise ? 1 : 0) != 0;
}

std::optional<CompanionPhone::Alert> alertOf(const ServerRecord& record)
{
    const auto* const reason = fieldOf<std::string>(record, "reason");
    const auto* const timestamp = fieldOf<Date>(record, "timestamp");
    if (reason == nullptr || timestamp == nullptr) {
        return std::nullopt;
    }
    CompanionPhone::Alert alert;
    alert.id = record.name;
    alert.reason = *reason;
    alert.timestamp = *timestamp;
    alert.triggerName = valueOr<std::string>(record, "triggerName", *reason);
    alert.deviceName = valueOr<std::string>(record, "deviceName", "Mac");
    alert.sendNotification = flag(record, "sendNotification", true);
    if (const auto* const photo = fieldOf<Bytes>(record, "photo")) {
        alert.photo = *photo;
    }
    return alert;
}

/// The text with its "%@" and "%1$@" replaced; those without an argument become empty.
std::string filled(const std::string& format, const std::vector<std::string>& arguments)
{
    std::string text;
    std::size_t next = 0;
    for (std::size_t place = 0; place < format.size();) {
        const std::string_view rest = std::string_view{format}.substr(place);
        const bool isNumbered =
            rest.size() >= 4 && rest[0] == '%' && rest[1] >= '1' && rest[1] <= '9' && rest.substr(2, 2) == "$@";
        if (!isNumbered && !rest.starts_with("%@")) {
            text += format[place++];
            continue;
        }
        const std::size_t wanted = isNumbered ? static_cast<std::size_t>(rest[1] - '1') : next++;
        text += wanted < arguments.size() ? arguments[wanted] : "";
        place += isNumbered ? 4 : 2;
    }
    return text;
}

/// The text that a push shows; none if silent.
std::optional<std::string> shownText(const Json& push)
{
    const Json* const aps = member(push, "aps");
    const Json* const alert = aps == nullptr ? nullptr : member(*aps, "alert");
    const auto format = alert == nullptr ? std::nullopt : textMember(*alert, "loc-key");
    if (!format) {
        return std::nullopt;
    }
    std::vector<std::string> arguments;
    if (const Json* const list = member(*alert, "loc-args"); list != nullptr && list->is_array()) {
        for (const Json& argument : *list) {
            arguments.push_back(argument.is_string() ? argument.get<std::string>() : "");
        }
    }
    return filled(*format, arguments);
}

/// The name of a push's record, or empty.
std::string recordOf(const Json& push)
{
    const Json* const cloudKit = member(push, "ck");
    const Json* const query = cloudKit == nullptr ? nullptr : member(*cloudKit, "qry");
    return query == nullptr ? "" : textMember(*query, "rid").value_or("");
}

std::string macRecordName(const std::string& deviceID)
{
    return std::string{catalogName} + "-" + deviceID;
}

std::string commandRecordName(const std::string& deviceID)
{
    return macRecordName(deviceID) + "-command";
}

} // namespace

CompanionPhone::CompanionPhone(PrivateCloud& cloud, ports::WallClock& clock, std::string user, std::string device)
    : cloud_(cloud), clock_(clock), device_(std::move(device))
{
    signIn(std::move(user));
    pushes_ =
        cloud.receivePushes(device_, [this](const std::string& toUser, const Json& push) { receive(toUser, push); });
}

std::vector<CompanionPhone::Alert> CompanionPhone::alerts()
{
    const CloudDevice who{user(), device_};
    std::vector<Alert> alerts;
    ServerPage page = cloud_.query(who, {alertType, {}, "timestamp", false}, std::nullopt, 0);
    while (true) {
        for (const auto& [name, result] : page.results) {
            if (auto alert = alertOf(std::get<ServerRecord>(result))) {
                alerts.push_back(std::move(*alert));
            }
        }
        if (page.cursor == nullptr) {
            return alerts;
        }
        page = cloud_.continueQuery(who, page.cursor.get(), std::nullopt, 0);
    }
}

std::optional<ServerRecord> CompanionPhone::read(const std::string& name)
{
    auto results = cloud_.fetch({user(), device_}, {name}, std::nullopt);
    auto* const record = std::get_if<ServerRecord>(&results.at(name));
    return record == nullptr ? std::nullopt : std::optional{std::move(*record)};
}

std::vector<CompanionPhone::Mac> CompanionPhone::macs()
{
    const auto catalog = read(catalogName);
    if (!catalog) {
        return {};
    }
    std::vector<Mac> macs;
    const auto deviceIDs = valueOr<TextList>(*catalog, "deviceIDs", {});
    for (const std::string_view listed : deviceIDs) {
        const std::string deviceID{listed};
        // Skips invalid entries and Macs that have never published a record.
        const auto record = isRecordName(macRecordName(deviceID)) ? read(macRecordName(deviceID)) : std::nullopt;
        const auto* const lastSeen = record ? fieldOf<Date>(*record, "lastSeen") : nullptr;
        if (lastSeen != nullptr) {
            macs.push_back({deviceID, valueOr<std::string>(*record, "deviceName", "Mac"),
                            flag(*record, "isArmed", false), flag(*record, "isCompatible", false), *lastSeen});
        }
    }
    return macs;
}

std::int64_t CompanionPhone::send(const std::string& deviceID, const Command& command)
{
    const std::string name = commandRecordName(deviceID);
    const auto known = command.sequence ? std::nullopt : read(name);
    const std::int64_t last = known ? valueOr<std::int64_t>(*known, "commandSequence", 0) : 0;
    const std::int64_t next = last < std::numeric_limits<std::int64_t>::max() ? last + 1 : 1;
    const std::int64_t sequence = command.sequence.value_or(next);

    ServerBatch batch;
    batch.policy = ports::CloudSavePolicy::changedKeys;
    batch.save.push_back({catalogType,
                          name,
                          {{"commandSequence", sequence},
                           {"commandIssuedAt", clock_.now().addingSeconds(-command.issuedAgo)},
                           {"requestedArmState", std::int64_t{command.arm}}},
                          {},
                          {}});
    const ServerModification done = cloud_.modify({user(), device_}, batch);
    if (const auto* const error = std::get_if<ports::CloudError>(&done.saved.at(name))) {
        throw ports::CloudError{*error};
    }
    return sequence;
}

void CompanionPhone::receive(const std::string& user, const Json& push)
{
    auto text = shownText(push);
    if (!text || user != this->user()) {
        return;
    }
    const Notification notification{std::move(*text), recordOf(push), clock_.now()};
    std::function<void(const Notification&)> shown;
    {
        const auto state = state_.lock();
        state->notifications.push_back(notification);
        shown = state->shown;
    }
    if (shown) {
        shown(notification);
    }
}

} // namespace sentrel::simulation
