#pragma once

#include "app/ChangeReporter.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace sentrel {

class ProtectedActions;

namespace ports {
class Language;
class LoginItem;
} // namespace ports

/// The toggle for opening the application at login, and a notice when the system refuses. Main actor.
class LoginItemToggle final : public ChangeReporter {
public:
    LoginItemToggle(ports::LoginItem& loginItem, ProtectedActions& protectedActions, ports::Language& language);

    /// Reads the state again: the user may have changed it in the system's settings.
    void refresh();

    [[nodiscard]] ui::View body();

    /// Hidden unless the last change was refused, or waits for the user's approval.
    [[nodiscard]] ui::View notice() const;

private:
    [[nodiscard]] bool isRegistered() const;
    void set(bool isOn);
    void write(bool isOn);

    ports::LoginItem& loginItem_;
    ProtectedActions& protectedActions_;
    ports::Language& language_;
    std::int64_t status_ = 0; ///< an `SMAppServiceStatus`
    std::optional<std::string> refusal_;
    WeakAnchor<LoginItemToggle> anchor_{*this};
};

} // namespace sentrel
