#include "core/SettingsStore.hpp"

#include "foundation/Quietly.hpp"
#include "ports/UserDefaults.hpp"
#include "runtime/AssertOnMainActor.hpp"

#include <nlohmann/json.hpp>

namespace sentrel {

namespace {

constexpr const char* settingsKey = "alarmSettings";

AlarmSettings load(ports::UserDefaults& defaults)
{
    const auto data = defaults.data(settingsKey);
    const auto document = data ? parseJson(*data) : std::nullopt;
    return (document ? decodeAlarmSettings(*document) : std::nullopt).value_or(AlarmSettings{});
}

} // namespace

SettingsStore::SettingsStore(MainActor actor, ports::UserDefaults& defaults)
    : actor_(actor), defaults_(defaults), settings_(load(defaults))
{
}

const AlarmSettings& SettingsStore::settings() const
{
    assertOnMainActor(actor_);
    return settings_.get();
}

void SettingsStore::setSettings(const AlarmSettings& settings)
{
    assertOnMainActor(actor_);
    // An observer that throws must not keep the settings from being stored.
    quietly([&] { settings_ = settings; });
    save();
}

void SettingsStore::save()
{
    try {
        defaults_.setData(settingsKey, bytesOf(encodeJson(encodeAlarmSettings(settings()))));
    } catch (const JsonEncodingError&) {
        // A number isn't finite: the stored entry stays unchanged.
    }
}

} // namespace sentrel
