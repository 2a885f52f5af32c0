#include "app/LoginItemToggle.hpp"

#include "app/ProtectedActions.hpp"
#include "app/ViewParts.hpp"
#include "platform/Language.hpp"
#include "platform/LoginItem.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr std::int64_t enabled = 1;          // SMAppServiceStatusEnabled
constexpr std::int64_t requiresApproval = 2; // SMAppServiceStatusRequiresApproval

} // namespace

LoginItemToggle::LoginItemToggle(platform::LoginItem& loginItem, ProtectedActions& protectedActions,
                                 platform::Language& language)
    : loginItem_(loginItem), protectedActions_(protectedActions), language_(language)
{
}

void LoginItemToggle::refresh()
{
    const bool isEnabled = loginItem_.status() == enabled;
    if (isEnabled == openAtLogin_) {
        return;
    }
    openAtLogin_ = isEnabled;
    refusal_.reset(); // it was about another state
    changed();
}

ui::View LoginItemToggle::body()
{
    return ui::toggle(language_.localized("Open at login"),
                      weakBinding(anchor_.weak(), openAtLogin_, &LoginItemToggle::set))
        .id("openAtLogin");
}

ui::View LoginItemToggle::notice() const
{
    return ui::verticalStack({warning(language_.localized("Couldn't change whether Sentrel opens at login.")),
                              ui::text(refusal_.value_or(""), ui::Text::Style::caption, ui::Text::Color::secondary)},
                             2.0, ui::Stack::Alignment::leading)
        .id("loginItemNotice")
        .hidden(!refusal_);
}

void LoginItemToggle::set(bool isOn)
{
    if (isOn) {
        write(true);
        return;
    }
    protectedActions_.perform("stopOpeningAtLogin", [weak = anchor_.weak()] {
        if (auto* const toggle = weak.get()) {
            toggle->write(false);
        }
    });
    changed();
}

void LoginItemToggle::write(bool isOn)
{
    refusal_ = isOn ? loginItem_.registerItem() : loginItem_.unregisterItem();
    const std::int64_t status = loginItem_.status();
    openAtLogin_ = status == enabled;
    if (isOn && !refusal_ && status == requiresApproval) {
        refusal_ = language_.localized("Allow Sentrel under Login Items in System Settings.");
    }
    changed();
}

void LoginItemToggle::changed()
{
    if (onChange) {
        onChange();
    }
}

} // namespace sentrel
