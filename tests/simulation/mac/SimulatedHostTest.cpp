#include "simulation/mac/SimulatedHost.hpp"
#include "simulation/mac/security/SeededRandom.hpp"

#include <gtest/gtest.h>

#include <array>

namespace sentrel::simulation {
namespace {

TEST(SimulatedHost, TellsItsFactsAndLacksThemWhenItMust)
{
    SimulatedHost host{"/mac", {}};
    EXPECT_EQ(host.systemControlText("hw.model"), "MacBookPro18,3");
    EXPECT_EQ(host.systemControlText("hw.ncpu"), std::nullopt);
    EXPECT_EQ(host.localizedName(), "MacBook");
    EXPECT_EQ(host.bundleIdentifier(), "pelma.Sentrel");
    EXPECT_EQ(host.applicationSupportDirectory(), "/mac/Application Support");
    EXPECT_EQ(host.temporaryDirectory(), "/mac/tmp");

    host.faults().set("model", 1);
    host.faults().set("application-support");
    EXPECT_EQ(host.systemControlText("hw.model"), std::nullopt);
    EXPECT_EQ(host.systemControlText("hw.model"), "MacBookPro18,3");
    EXPECT_EQ(host.applicationSupportDirectory(), std::nullopt);
}

TEST(SeededRandom, GivesTheSameBytesForTheSameSeedHoweverTheyAreAskedFor)
{
    std::array<std::uint8_t, 16> whole{};
    std::array<std::uint8_t, 16> parts{};
    std::array<std::uint8_t, 16> other{};
    SeededRandom first{7};
    SeededRandom second{7};
    SeededRandom third{8};
    EXPECT_TRUE(first.fill(whole));
    EXPECT_TRUE(second.fill(std::span{parts}.first(5)));
    second.faults().set("fill", 1);
    EXPECT_FALSE(second.fill(std::span{parts}.subspan(5)));
    EXPECT_TRUE(second.fill(std::span{parts}.subspan(5)));
    EXPECT_TRUE(third.fill(other));
    EXPECT_EQ(whole, parts);
    EXPECT_NE(whole, other);
}

} // namespace
} // namespace sentrel::simulation
