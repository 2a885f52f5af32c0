#include "simulation/mac/display/SimulatedDisplays.hpp"

#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace sentrel::simulation {
namespace {

/// A display with a window at the shielding level, which is hidden at first.
class DisplaysTest : public testing::Test {
protected:
    std::unique_ptr<ports::Window> makeWindow(const ports::Rectangle& frame, std::uint64_t styleMask)
    {
        ports::WindowDescription description;
        description.contentRectangle = frame;
        description.styleMask = styleMask;
        description.canBecomeKey = true;
        return displays_.makeWindow(description);
    }

    VirtualClock clock_;
    VirtualScheduler scheduler_{clock_};
    EventLog journal_{scheduler_};
    SimulatedApplicationActivation activation_;
    SimulatedDisplays displays_{scheduler_, journal_, activation_};
    const ports::Rectangle whole_ = displays_.screens()[0].frame;
    std::unique_ptr<ports::Window> cover_ = [this] {
        auto made = makeWindow(whole_, 0);
        made->setLevel(displays_.shieldingLevel());
        return made;
    }();
};

TEST_F(DisplaysTest, OnlyAnOpaqueWindowThatReachesEveryCornerCoversADisplay)
{
    cover_->orderFrontRegardless();
    EXPECT_FALSE(displays_.isCovered(0));
    cover_->setOpaque(true);
    EXPECT_TRUE(displays_.isCovered(0));
    cover_->setFrame({whole_.x, whole_.y, whole_.width - 1.0, whole_.height}, true);
    EXPECT_FALSE(displays_.isCovered(0));
    cover_->setFrame(whole_, true);
    cover_->setLevel(0);
    EXPECT_FALSE(displays_.isCovered(0));
}

TEST_F(DisplaysTest, ATitledWindowCannotBeLostOrDestroyedByItsUserNorReachedBehindACover)
{
    const auto titled = makeWindow({100.0, 100.0, 400.0, 300.0}, 11);
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

    cover_->makeKeyAndOrderFront();
    EXPECT_FALSE(displays_.closeWindow("titled"));
    EXPECT_FALSE(displays_.moveWindow("titled", 1.0, 1.0));
    cover_->orderOut();
    titled->hostContent(titled->contentFrame(), 18);
    titled->showContent(ui::text("behind").attach(ui::view(ui::Dialog{})));
    EXPECT_FALSE(displays_.closeWindow("titled")) << "the question comes first";
    titled->showContent(ui::text("behind"));
    EXPECT_TRUE(displays_.closeWindow("titled"));
    EXPECT_FALSE(titled->isVisible());
}

} // namespace
} // namespace sentrel::simulation
