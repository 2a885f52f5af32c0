#pragma once

#include "simulation/stage/ShellAction.hpp"

#include <functional>
#include <string>

namespace sentrel {
class SentrelApp;
}

namespace sentrel::ui {
enum class Interaction;
}

namespace sentrel::simulation {

class MacSession;

/// The person in front of the MacBook, who uses the menu, the windows and the panels that are reachable: the lock
/// screen covers everything. Each function returns why it failed; empty on success.
class Person {
public:
    explicit Person(MacSession& session) : session_(session) {}

    std::string perform(const UseMenu& action) const;
    std::string perform(const ClickOn& action) const;
    std::string perform(const TypeText& action) const;
    std::string perform(const PressKey& action) const;
    std::string perform(const MoveSlider& action) const;
    std::string perform(const SelectRows& action) const;
    std::string perform(const OpenWindow& action) const;
    std::string perform(const CloseWindow& action) const;
    std::string perform(const DragWindow& action) const;
    std::string perform(const AnswerLoginItem& action) const;
    std::string perform(const AnswerSavePanel& action) const;

private:
    [[nodiscard]] bool isLockedOut() const;
    std::string pressInMenu(const std::string& wanted) const;
    std::string onMain(const std::function<std::string()>& act) const;

    MacSession& session_;
};

/// The identifier of a window.
[[nodiscard]] std::string_view identifierOf(ShellWindow window);

} // namespace sentrel::simulation
