#include "app/ShellWindows.hpp"

#include "ports/Application.hpp"
#include "ports/ApplicationActivation.hpp"
#include "ports/WindowConstants.hpp"
#include "ports/Windows.hpp"

#include <algorithm>

namespace sentrel {

void ShellWindows::add(std::string_view identifier, ports::Window& window)
{
    windows_[std::string{identifier}] = &window;
}

ports::Window* ShellWindows::find(std::string_view identifier) const
{
    const auto found = windows_.find(identifier);
    return found == windows_.end() ? nullptr : found->second;
}

void ShellWindows::show(std::string_view identifier)
{
    if (ports::Window* const window = find(identifier)) {
        // First: an application without a Dock icon can't be brought to the front reliably.
        application_.setActivationPolicy(ports::regularActivationPolicy);
        activation_.activate(true);
        shown_.emplace(identifier);
        window->makeKeyAndOrderFront();
    }
}

void ShellWindows::hide(std::string_view identifier)
{
    if (ports::Window* const window = find(identifier)) {
        shown_.erase(std::string{identifier});
        window->orderOut();
    }
    refreshActivationPolicy();
}

void ShellWindows::refreshActivationPolicy()
{
    const bool isAnyVisible =
        std::ranges::any_of(windows_, [](const auto& entry) { return entry.second->isVisible(); });
    if (!isAnyVisible) {
        application_.setActivationPolicy(ports::accessoryActivationPolicy);
    }
}

} // namespace sentrel
