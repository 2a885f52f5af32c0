#pragma once

#include "core/AlarmSettings.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace sentrel {

class AlarmCoordinator;
class ProtectedActions;
class SettingsStore;

/// Controls that write fields of the settings as soon as the user changes them. A change that loosens the protection of
/// an armed Mac is written after the login only; until then, and when the login fails, the control shows what is
/// stored. Main actor.
class SettingsEditor {
public:
    SettingsEditor(SettingsStore& settings, AlarmCoordinator& coordinator, ProtectedActions& protectedActions);
    SettingsEditor(const SettingsEditor&) = delete;

    /// Called when a control has to show the stored value again, though that has not changed.
    std::function<void()> onChange;

    [[nodiscard]] const AlarmSettings& settings() const;

    /// Where a slider may be brought. Without a step it is continuous.
    struct Range {
        double lower = 0.0;
        double upper = 1.0;
        std::optional<double> step;
    };

    /// Controls for a field, under the field's stored name as identity. The label is localised already.
    [[nodiscard]] ui::View checkbox(std::string label, bool AlarmSettings::* field);
    [[nodiscard]] ui::View slider(std::string label, double AlarmSettings::* field, Range range,
                                  std::string valueText = {});

    /// Does what loosens the protection: after the login if the Mac is armed and the settings want it, else at once.
    void loosen(const std::string& name, std::function<void()> action);

private:
    using Value = std::variant<bool, double>;

    void change(const AlarmSettingsField& field, Value value);
    void writeWish(const AlarmSettingsField& field);

    SettingsStore& settings_;
    AlarmCoordinator& coordinator_;
    ProtectedActions& protectedActions_;
    std::map<std::string_view, Value> wishes_; ///< by field: what is written once the user has logged in
    WeakAnchor<SettingsEditor> anchor_{*this};
};

} // namespace sentrel
