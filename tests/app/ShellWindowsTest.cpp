#include "app/ShellWindows.hpp"
#include "app/ActivationPolicy.hpp"
#include "app/WindowConfigurator.hpp"
#include "app/WindowScene.hpp"
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
    [[nodiscard]] bool isRegular() const { return application.activationPolicy() == regularActivationPolicy; }

    test::VirtualMachine machine;
    simulation::EventLog log{machine.scheduler};
    simulation::SimulatedApplicationActivation activation;
    simulation::SimulatedDisplays displays{machine.scheduler, log, activation};
    simulation::SimulatedApplication application{log};
    ShellWindows windows{application, activation};
    MainWindowConfigurator mainConfigurator{windows};
    AlertsWindowConfigurator alertsConfigurator{windows};
    int drawn = 0;
    WindowScene main{machine.mainActor, displays,  windows,
                     mainConfigurator,  "Sentrel", [this] { return ui::text(std::to_string(++drawn)); }};
    WindowScene alerts{machine.mainActor,  displays,     windows,
                       alertsConfigurator, "Alert List", [] { return ui::text("none"); }};
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
        {mainWindowIdentifier, {300, 300}, 480},         {mainWindowIdentifier, {900, 1500}, 1200},
        {mainWindowIdentifier, {440, 481}, 481},         {mainWindowIdentifier, {440, 480}, 480},
        {mainWindowIdentifier, {440, 1200}, 1200},       {mainWindowIdentifier, {-5, -5}, 480},
        {mainWindowIdentifier, {none, none}, 480},       {mainWindowIdentifier, {huge, huge}, 1200},
        {mainWindowIdentifier, {0, -infinite}, 480},     {alertsWindowIdentifier, {100, 100}, 360},
        {alertsWindowIdentifier, {1600, 2000}, 900},     {alertsWindowIdentifier, {720, 500.5}, 500.5},
        {alertsWindowIdentifier, {none, infinite}, 900},
    };
    main.open();
    alerts.open();
    for (const Row& row : rows) {
        displays.resizeWindow(row.identifier, row.dragged);
        const double width = row.identifier == mainWindowIdentifier ? 440.0 : 720.0;
        EXPECT_EQ(contentSize(row.identifier), (Size{width, row.height}))
            << row.identifier << " dragged to " << row.dragged.width << " x " << row.dragged.height;
    }
    const auto alertsState = window(alertsWindowIdentifier);
    EXPECT_EQ(alertsState.contentMinSize, (Size{720, 360})) << "for what asks no delegate";
    EXPECT_EQ(alertsState.contentMaxSize, (Size{720, 900}));
    EXPECT_EQ(alertsState.collectionBehavior, 512U) << "no full screen";
    const auto before = window(mainWindowIdentifier).frame;
    EXPECT_FALSE(displays.zoomWindow(mainWindowIdentifier)) << "zooming does nothing";
    EXPECT_EQ(window(mainWindowIdentifier).frame, before);
}

TEST_F(ShellWindowsTest, HideInsteadOfClosingAndComeBackAsTheyWere)
{
    main.open();
    const auto made = displays.windows().size();
    displays.resizeWindow(mainWindowIdentifier, {440, 600});
    displays.moveWindow(mainWindowIdentifier, 90, 80);
    const auto frame = window(mainWindowIdentifier).frame;

    EXPECT_TRUE(displays.closeWindow(mainWindowIdentifier));
    EXPECT_FALSE(window(mainWindowIdentifier).isVisible);
    main.open();
    EXPECT_TRUE(window(mainWindowIdentifier).isVisible);
    EXPECT_EQ(window(mainWindowIdentifier).frame, frame);
    EXPECT_EQ(displays.windows().size(), made) << "it is the same window";
}

TEST_F(ShellWindowsTest, TheApplicationHasADockIconExactlyWhileOneOfThemIsVisible)
{
    EXPECT_FALSE(isRegular());
    main.open();
    EXPECT_TRUE(isRegular());
    EXPECT_TRUE(activation.isActive());
    EXPECT_TRUE(window(mainWindowIdentifier).isKey);
    alerts.open();
    EXPECT_TRUE(window(alertsWindowIdentifier).isKey);

    displays.closeWindow(alertsWindowIdentifier);
    EXPECT_TRUE(isRegular()) << "the control panel is still there";
    EXPECT_TRUE(window(mainWindowIdentifier).isKey);
    displays.closeWindow(mainWindowIdentifier);
    EXPECT_FALSE(isRegular());
    windows.hide(alertsWindowIdentifier);
    EXPECT_FALSE(isRegular());
}

TEST_F(ShellWindowsTest, ShowWhatChangedOnceATurnAndOnlyWhileVisible)
{
    const auto shown = [this] { return ui::visibleTexts(window(mainWindowIdentifier).content); };
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
    displays.closeWindow(mainWindowIdentifier);
    main.contentChanged();
    machine.clock.runReady();
    EXPECT_EQ(drawn, 2);
    main.open();
    EXPECT_THAT(shown(), ElementsAre("3"));
    windows.find(mainWindowIdentifier)->orderOut(); // as the system does it when the application is hidden
    main.contentChanged();
    machine.clock.runReady();
    EXPECT_THAT(shown(), ElementsAre("4")) << "the system brings it back without a word";
}

} // namespace
} // namespace sentrel
