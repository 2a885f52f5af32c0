#pragma once

#include "core/AlarmSettings.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Observable.hpp"

#include <functional>
#include <utility>

namespace sentrel {

namespace ports {
class UserDefaults;
}

/// The current settings: observable, and saved to the user defaults at each assignment. Main actor only.
class SettingsStore {
public:
    /// Loads the stored settings, or the defaults when they can't be read. Writes nothing.
    SettingsStore(MainActor actor, ports::UserDefaults& defaults);
    SettingsStore(const SettingsStore&) = delete;

    [[nodiscard]] const AlarmSettings& settings() const;

    /// Replaces the value and saves it, even if equal. Observers are called at once, and only for a change. A value
    /// that can't be encoded (NaN or infinity) leaves the stored one unchanged.
    void setSettings(const AlarmSettings& settings);

    /// Changes one field: reads, changes and assigns back.
    template <class Field> void set(Field AlarmSettings::* field, Field value)
    {
        AlarmSettings changed = settings();
        changed.*field = value;
        setSettings(changed);
    }

    /// Registers an observer of the settings.
    Observation observe(std::function<void(const AlarmSettings&)> changed)
    {
        return settings_.observe(std::move(changed));
    }

private:
    void save();

    MainActor actor_;
    ports::UserDefaults& defaults_;
    Observable<AlarmSettings> settings_;
};

} // namespace sentrel
