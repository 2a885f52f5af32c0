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

/// The one current settings value: observable, and kept in the user defaults at each assignment. Main actor only.
class SettingsStore {
public:
    /// Loads what the domain holds, or the defaults where that can't be read; writes nothing.
    SettingsStore(MainActor actor, ports::UserDefaults& defaults);
    SettingsStore(const SettingsStore&) = delete;

    [[nodiscard]] const AlarmSettings& settings() const;

    /// Replaces the value and saves it, also when it is equal; observers are told only of a change, and at once. A
    /// value that has no encoding leaves the stored one as it was.
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
