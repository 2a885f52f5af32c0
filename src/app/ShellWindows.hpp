#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace sentrel {

namespace ports {
class Application;
class ApplicationActivation;
class Window;
} // namespace ports

/// The application's windows by their identifiers. The application has a Dock icon exactly while one of them is
/// visible. Main actor.
class ShellWindows {
public:
    ShellWindows(ports::Application& application, ports::ApplicationActivation& activation)
        : application_(application), activation_(activation)
    {
    }
    ShellWindows(const ShellWindows&) = delete;

    /// The window must outlive this object's use.
    void add(std::string_view identifier, ports::Window& window);

    /// The window of this identifier, or null while it hasn't been made.
    [[nodiscard]] ports::Window* find(std::string_view identifier) const;

    /// Brings the application and the window to the front.
    void show(std::string_view identifier);

    void hide(std::string_view identifier);

    /// Whether the window was shown and not hidden since. Ignores hiding of the whole application, after which the
    /// system restores the window without telling anyone.
    [[nodiscard]] bool isShown(std::string_view identifier) const { return shown_.contains(identifier); }

private:
    void refreshActivationPolicy();

    ports::Application& application_;
    ports::ApplicationActivation& activation_;
    std::map<std::string, ports::Window*, std::less<>> windows_;
    std::set<std::string, std::less<>> shown_;
};

} // namespace sentrel
