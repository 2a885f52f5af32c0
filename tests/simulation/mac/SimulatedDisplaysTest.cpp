#include "simulation/mac/display/SimulatedDisplays.hpp"

#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace sentrel::simulation {
namespace {

/// A window at the shielding level with two fields, which is shown anew after each change.
class DisplaysTest : public testing::Test {
protected:
    struct Field {
        std::string text;
        bool isFocused = false;
    };

    DisplaysTest()
    {
        ports::WindowDescription description;
        description.contentRectangle = displays_.screens()[0].frame;
        description.canBecomeKey = true;
        window_ = displays_.makeWindow(description);
        window_->setLevel(displays_.shieldingLevel());
        window_->hostContent(window_->contentFrame(), 0);
        show();
    }

    ui::View viewOf(Field& field, std::string id)
    {
        ui::TextField shown{id, {field.text, [&](std::string text) { set(field.text, std::move(text)); }}, {}};
        return ui::view(std::move(shown)).id(std::move(id)).focused({field.isFocused, [&](bool isFocused) {
                                                                         set(field.isFocused, isFocused);
                                                                     }});
    }
    template <class T> void set(T& state, T value)
    {
        state = std::move(value);
        show();
    }
    void show() { window_->showContent(ui::verticalStack({viewOf(name_, "name"), viewOf(town_, "town")})); }

    VirtualClock clock_;
    VirtualScheduler scheduler_{clock_};
    EventLog journal_{scheduler_};
    SimulatedApplicationActivation activation_;
    SimulatedDisplays displays_{scheduler_, journal_, activation_};
    Field name_{"", true};
    Field town_;
    std::unique_ptr<ports::Window> window_;
};

TEST_F(DisplaysTest, TheKeyboardGoesToTheFocusOfTheKeyWindowOfTheActiveApplicationAndNowhereElse)
{
    EXPECT_FALSE(displays_.type("lost")) << "nothing is visible";
    window_->makeKeyAndOrderFront();
    EXPECT_FALSE(displays_.type("lost")) << "another application is in front";
    activation_.activate(true);
    EXPECT_TRUE(displays_.type("J\xC3\xB6rg"));
    EXPECT_EQ(name_.text, "J\xC3\xB6rg");

    EXPECT_EQ(displays_.click(0, "town"), ui::Interaction::done);
    EXPECT_FALSE(name_.isFocused);
    EXPECT_TRUE(town_.isFocused);
    EXPECT_TRUE(displays_.type("Ulm"));
    EXPECT_EQ(displays_.pressKey(ui::Key::deleteKey), ui::Interaction::done);
    EXPECT_EQ(town_.text, "Ul");

    set(town_.isFocused, false);
    EXPECT_FALSE(displays_.type("lost")) << "the state took the focus away";
    window_->orderOut();
    EXPECT_EQ(displays_.click(0, "town"), ui::Interaction::notFound);
    window_.reset();
    EXPECT_FALSE(displays_.type("lost"));
    EXPECT_EQ(name_.text, "J\xC3\xB6rg");
}

TEST_F(DisplaysTest, OnlyAnOpaqueWindowThatReachesEveryCornerCoversADisplay)
{
    const ports::Rectangle whole = displays_.screens()[0].frame;
    window_->orderFrontRegardless();
    EXPECT_FALSE(displays_.isCovered(0));
    window_->setOpaque(true);
    EXPECT_TRUE(displays_.isCovered(0));
    window_->setFrame({whole.x, whole.y, whole.width - 1.0, whole.height}, true);
    EXPECT_FALSE(displays_.isCovered(0));
    window_->setFrame(whole, true);
    window_->setLevel(0);
    EXPECT_FALSE(displays_.isCovered(0));
}

TEST_F(DisplaysTest, ACoverLiesOverEveryWindowAndATitledWindowCannotBeLostOrDestroyedByItsUser)
{
    ports::WindowDescription description;
    description.contentRectangle = {100.0, 100.0, 400.0, 300.0};
    description.styleMask = 11;
    description.canBecomeKey = true;
    const auto titled = displays_.makeWindow(description);
    titled->setIdentifier("titled");
    titled->makeKeyAndOrderFront();
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    const auto frame = titled->frame();
    for (const ports::Size size : {ports::Size{none, 5.0}, {-5.0, 400.0}, {HUGE_VAL, 1.0}, {1.0, -HUGE_VAL}}) {
        EXPECT_FALSE(displays_.resizeWindow("titled", size));
        EXPECT_FALSE(displays_.moveWindow("titled", none, size.width));
        EXPECT_EQ(titled->frame(), frame) << size.width;
    }
    EXPECT_TRUE(displays_.moveWindow("titled", 1e9, 1e9));
    EXPECT_LT(titled->frame().x, 1728.0) << "a corner stays within reach";
    EXPECT_TRUE(displays_.resizeWindow("titled", {500.0, 200.0}));
    EXPECT_EQ(titled->contentFrame(), (ports::Rectangle{0.0, 0.0, 500.0, 200.0}));

    window_->makeKeyAndOrderFront();
    EXPECT_FALSE(displays_.closeWindow("titled"));
    EXPECT_FALSE(displays_.moveWindow("titled", 1.0, 1.0));
    EXPECT_EQ(displays_.useFront([](WindowContent content) { return content.fill("town", "Ulm"); }),
              ui::Interaction::done)
        << "the cover is in front";
    EXPECT_EQ(town_.text, "Ulm");
    window_->orderOut();
    titled->hostContent(titled->contentFrame(), 18);
    titled->showContent(ui::text("behind").attach(ui::view(ui::Dialog{})));
    EXPECT_FALSE(displays_.closeWindow("titled")) << "the question comes first";
    titled->showContent(ui::text("behind"));
    EXPECT_TRUE(displays_.closeWindow("titled"));
    EXPECT_FALSE(titled->isVisible());
}

} // namespace
} // namespace sentrel::simulation
