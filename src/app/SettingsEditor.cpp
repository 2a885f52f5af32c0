#include "app/SettingsEditor.hpp"

#include "app/ProtectedActions.hpp"
#include "app/ProtectedSettings.hpp"
#include "app/SpacedCheckboxToggle.hpp"
#include "coordinator/AlarmCoordinator.hpp"
#include "core/SettingsStore.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sentrel {

namespace {

template <class Member> const AlarmSettingsField& fieldOf(Member member)
{
    return *std::ranges::find_if(alarmSettingsFields, [&](const AlarmSettingsField& field) {
        const auto* const found = std::get_if<Member>(&field.member);
        return found != nullptr && *found == member;
    });
}

AlarmSettings with(AlarmSettings settings, const AlarmSettingsField& field, const std::variant<bool, double>& value)
{
    if (const auto* const flag = std::get_if<bool AlarmSettings::*>(&field.member)) {
        settings.** flag = std::get<bool>(value);
    } else {
        settings.*std::get<double AlarmSettings::*>(field.member) = std::get<double>(value);
    }
    return settings;
}

/// Restricts a value to the range, even one from a damaged file.
double within(const SettingsEditor::Range& range, double value)
{
    return std::isnan(value) ? range.lower : std::clamp(value, range.lower, range.upper);
}

} // namespace

SettingsEditor::SettingsEditor(SettingsStore& settings, AlarmCoordinator& coordinator,
                               ProtectedActions& protectedActions)
    : settings_(settings), coordinator_(coordinator), protectedActions_(protectedActions)
{
}

const AlarmSettings& SettingsEditor::settings() const
{
    return settings_.settings();
}

ui::View SettingsEditor::checkbox(std::string label, bool AlarmSettings::* field)
{
    const AlarmSettingsField& named = fieldOf(field);
    const auto set = [weak = anchor_.weak(), &named](bool isOn) {
        if (auto* const editor = weak.get()) {
            editor->change(named, isOn);
        }
    };
    return SpacedCheckboxToggle{std::move(label), {settings().*field, set}}.body().id(std::string{named.name});
}

ui::View SettingsEditor::slider(std::string label, double AlarmSettings::* field, Range range, std::string valueText)
{
    const AlarmSettingsField& named = fieldOf(field);
    ui::Slider slider;
    slider.label = std::move(label);
    slider.value.value = within(range, settings().*field);
    slider.value.set = [weak = anchor_.weak(), &named, range](double value) {
        if (auto* const editor = weak.get()) {
            editor->change(named, within(range, value));
        }
    };
    slider.lower = range.lower;
    slider.upper = range.upper;
    slider.step = range.step;
    slider.valueText = std::move(valueText);
    return ui::view(std::move(slider)).id(std::string{named.name});
}

void SettingsEditor::loosen(const std::string& name, std::function<void()> action)
{
    if (coordinator_.isArmed) {
        protectedActions_.perform(name, std::move(action));
    } else {
        action();
    }
}

void SettingsEditor::change(const AlarmSettingsField& field, Value value)
{
    // The last wish counts: while the login is pending, a drag's later value replaces the first one.
    wishes_.insert_or_assign(field.name, value);
    if (!loosensProtection(settings(), with(settings(), field, value))) {
        writeWish(field);
        return;
    }
    loosen("settings." + std::string{field.name}, [weak = anchor_.weak(), &field] {
        if (auto* const editor = weak.get()) {
            editor->writeWish(field);
        }
    });
    if (wishes_.contains(field.name)) {
        changed();
    }
}

void SettingsEditor::writeWish(const AlarmSettingsField& field)
{
    const auto wish = wishes_.extract(field.name);
    if (!wish.empty()) {
        settings_.setSettings(with(settings(), field, wish.mapped()));
    }
}

} // namespace sentrel
