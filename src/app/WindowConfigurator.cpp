#include "app/WindowConfigurator.hpp"

#include "app/ShellWindows.hpp"

#include <string>
#include <utility>

namespace sentrel {

namespace {

constexpr double mainWindowHeight = 720.0;
constexpr double alertsWindowHeight = 480.0;

} // namespace

WindowConfigurator::WindowConfigurator(ShellWindows& windows, std::unique_ptr<ShellWindowDelegate> delegate,
                                       double startHeight)
    : windows_(windows), delegate_(std::move(delegate)), startHeight_(startHeight)
{
}

void WindowConfigurator::configure(ports::Window& window)
{
    window.setIdentifier(std::string{identifier()});
    windows_.add(identifier(), window);
    delegate_->attachTo(window);
}

MainWindowConfigurator::MainWindowConfigurator(ShellWindows& windows)
    : WindowConfigurator(windows, std::make_unique<MainWindowDelegate>(windows), mainWindowHeight)
{
}

AlertsWindowConfigurator::AlertsWindowConfigurator(ShellWindows& windows)
    : WindowConfigurator(windows, std::make_unique<AlertsWindowDelegate>(windows), alertsWindowHeight)
{
}

} // namespace sentrel
