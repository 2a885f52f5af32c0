#include "app/ShellWindows.hpp"
#include "app/WindowScene.hpp"
#include "ports/WindowConstants.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedApplication.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"
#include "simulation/mac/display/SimulatedDisplays.hpp"
#include "support/VirtualMachine.hpp"
#include "ui/Description.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace sentrel {
namespace {

using ports::Size;
using testing::ElementsAre;

/// Both windows of the application on the simulated displays.
class ShellWindowsTest : public testing::Test {
protected:
    [[nodiscard]] simulation::WindowState window(std::string_view identifier)
    {
        return displays.window(identifier).value_or(simulation::WindowState{});
    }
    [[nodiscard]] Size contentSize(std::string_view identifier)
    {
        const auto state = window(identifier);
        const auto content = simulation::contentOf(state, state.frame);
        return {content.width, content.height};
    }
    [[nodiscard]] bool isRegular() const { return application.activationPolicy() == ports::regularActivationPolicy; }

    test::VirtualMachine machine;
    simulation::EventLog log{machine.scheduler};
    simulation::SimulatedApplicationActivation activation;
    simulation::SimulatedDisplays displays{machine.scheduler, log, activation};
    simulation::SimulatedApplication application{log};
    ShellWindows windows{application, activation};
    int drawn = 0;
    MainWindowDelegate mainDelegate{windows};
    AlertsWindowDelegate alertsDelegate{windows};
    WindowScene main{machine.mainActor, displays,  windows,
                     mainDelegate,      "Sentrel", [this] { return ui::text(std::to_string(++drawn)); }};
    WindowScene alerts{machine.mainActor, displays,     windows,
                       alertsDelegate,    "Alert List", [] { return ui::text("none"); }};
};

TEST_F(ShellWindowsTest, KeepTheirWidthAndStayWithinTheirHeights)
{
    constexpr double huge = 1e300;
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        std::string_view identifier;
        Size dragged;
        double height;
    };
    const Row rows[] = {
        {mainWindow.identifier, {300, 300}, 480},         {mainWindow.identifier, {900, 1500}, 1200},
        {mainWindow.identifier, {440, 481}, 481},         {mainWindow.identifier, {440, 480}, 480},
        {mainWindow.identifier, {440, 1200}, 1200},       {mainWindow.identifier, {-5, -5}, 480},
        {mainWindow.identifier, {none, none}, 480},       {mainWindow.identifier, {huge, huge}, 1200},
        {mainWindow.identifier, {0, -infinite}, 480},     {alertsWindow.identifier, {100, 100}, 360},
        {alertsWindow.identifier, {1600, 2000}, 900},     {alertsWindow.identifier, {720, 500.5}, 500.5},
        {alertsWindow.identifier, {none, infinite}, 900},
    };
    main.open();
    alerts.open();
    for (const Row& row : rows) {
        displays.resizeWindow(row.identifier, row.dragged);
        const double width = row.identifier == mainWindow.identifier ? 440.0 : 720.0;
        EXPECT_EQ(contentSize(row.identifier), (Size{width, row.height}))
            << row.identifier << " dragged to " << row.dragged.width << " x " << row.dragged.height;
    }
    const auto alertsState = window(alertsWindow.identifier);
    EXPECT_EQ(alertsState.contentMinSize, (Size{720, 360})) << "for what asks no delegate";
    EXPECT_EQ(alertsState.contentMaxSize, (Size{720, 900}));
    EXPECT_EQ(alertsState.collectionBehavior, 512U) << "no full screen";
    const auto before = window(mainWindow.identifier).frame;
    EXPECT_FALSE(displays.zoomWindow(mainWindow.identifier)) << "zooming does nothing";
    EXPECT_EQ(window(mainWindow.identifier).frame, before);
}

TEST_F(ShellWindowsTest, TheApplicationHasADockIconExactlyWhileOneOfThemIsVisible)
{
    EXPECT_FALSE(isRegular());
    main.open();
    const auto made = displays.windows().size();
    EXPECT_TRUE(isRegular());
    EXPECT_TRUE(activation.isActive());
    EXPECT_TRUE(window(mainWindow.identifier).isKey);
    displays.moveWindow(mainWindow.identifier, 90, 80);
    const auto frame = window(mainWindow.identifier).frame;
    alerts.open();
    EXPECT_TRUE(window(alertsWindow.identifier).isKey);

    displays.closeWindow(alertsWindow.identifier);
    EXPECT_TRUE(isRegular()) << "the control panel is still there";
    EXPECT_TRUE(window(mainWindow.identifier).isKey);
    displays.closeWindow(mainWindow.identifier);
    EXPECT_FALSE(isRegular());
    windows.hide(alertsWindow.identifier);
    EXPECT_FALSE(isRegular());
    main.open();
    EXPECT_EQ(window(mainWindow.identifier).frame, frame);
    EXPECT_EQ(displays.windows().size(), made) << "it is the same window";
}

TEST_F(ShellWindowsTest, ShowWhatChangedOnceATurnAndOnlyWhileVisible)
{
    const auto shown = [this] { return ui::visibleTexts(window(mainWindow.identifier).content); };
    main.contentChanged();
    machine.clock.runReady();
    EXPECT_EQ(drawn, 0) << "there is no window yet";
    main.open();
    EXPECT_THAT(shown(), ElementsAre("1"));
    for (int i = 0; i < 5; ++i) {
        main.contentChanged();
    }
    machine.clock.runReady();
    EXPECT_THAT(shown(), ElementsAre("2"));
    displays.closeWindow(mainWindow.identifier);
    main.contentChanged();
    machine.clock.runReady();
    EXPECT_EQ(drawn, 2);
    main.open();
    EXPECT_THAT(shown(), ElementsAre("3"));
    windows.find(mainWindow.identifier)->orderOut(); // as the system does it when the application is hidden
    main.contentChanged();
    machine.clock.runReady();
    EXPECT_THAT(shown(), ElementsAre("4")) << "the system brings it back without a word";
}

} // namespace
} // namespace sentrel
