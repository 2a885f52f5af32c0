#pragma once

#include "app/ChangeReporter.hpp"
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

/// Controls that write settings as soon as the user changes them. A change that loosens the protection of an armed Mac
/// is written only after the login; until then, and when the login fails, the control shows the stored value. Reports a
/// change when it must show that again although the settings have not changed. Main actor.
class SettingsEditor final : public ChangeReporter {
public:
    SettingsEditor(SettingsStore& settings, AlarmCoordinator& coordinator, ProtectedActions& protectedActions);

    [[nodiscard]] const AlarmSettings& settings() const;

    /// The range of a slider; continuous without a step.
    struct Range {
        double lower = 0.0;
        double upper = 1.0;
        std::optional<double> step;
    };

    /// Controls for a field, with the field's stored name as id. The label must be localised.
    [[nodiscard]] ui::View checkbox(std::string label, bool AlarmSettings::* field);
    [[nodiscard]] ui::View slider(std::string label, double AlarmSettings::* field, Range range,
                                  std::string valueText = {});

    /// Performs an action that loosens the protection: after the login if the Mac is armed and the settings require it,
    /// else at once.
    void loosen(const std::string& name, std::function<void()> action);

private:
    using Value = std::variant<bool, double>;

    void change(const AlarmSettingsField& field, Value value);
    void writeWish(const AlarmSettingsField& field);

    SettingsStore& settings_;
    AlarmCoordinator& coordinator_;
    ProtectedActions& protectedActions_;
    std::map<std::string_view, Value> wishes_; ///< by field: values to write after the login
    WeakAnchor<SettingsEditor> anchor_{*this};
};

} // namespace sentrel
