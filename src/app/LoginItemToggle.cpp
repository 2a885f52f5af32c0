#include "app/LoginItemToggle.hpp"

#include "app/ProtectedActions.hpp"
#include "app/ViewParts.hpp"
#include "foundation/Quietly.hpp"
#include "ports/Language.hpp"
#include "ports/LoginItem.hpp"
#include "ports/SystemConstants.hpp"

#include <utility>

namespace sentrel {

LoginItemToggle::LoginItemToggle(ports::LoginItem& loginItem, ProtectedActions& protectedActions,
                                 ports::Language& language)
    : loginItem_(loginItem), protectedActions_(protectedActions), language_(language)
{
}

void LoginItemToggle::refresh()
{
    const auto read = quietly([this] { return std::optional{loginItem_.status()}; });
    const std::int64_t status = read.value_or(status_);
    if (status == status_) {
        return;
    }
    status_ = status;
    refusal_.reset(); // the refusal concerned another state
    changed();
}

bool LoginItemToggle::isRegistered() const
{
    // An item waiting for approval is registered, too, and can be unregistered.
    return status_ == ports::loginItemEnabled || status_ == ports::loginItemRequiresApproval;
}

ui::View LoginItemToggle::body()
{
    return ui::toggle(language_.localized("Open at login"),
                      weakBinding(anchor_.weak(), isRegistered(), &LoginItemToggle::set))
        .id("openAtLogin");
}

ui::View LoginItemToggle::notice() const
{
    const bool isWaiting = !refusal_ && status_ == ports::loginItemRequiresApproval;
    const std::string why =
        isWaiting ? language_.localized("Allow Sentrel under Login Items in System Settings.") : refusal_.value_or("");
    return ui::verticalStack(
               {
                   warning(language_.localized("Couldn't change whether Sentrel opens at login.")).hidden(!refusal_),
                   ui::text(why, ui::Text::Style::caption, ui::Text::Color::secondary),
               },
               2.0, ui::Stack::Alignment::leading)
        .id("loginItemNotice")
        .hidden(!refusal_ && !isWaiting);
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
    status_ = loginItem_.status();
    changed();
}

} // namespace sentrel
