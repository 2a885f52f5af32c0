#include "core/CompatibleComputer.hpp"
#include "simulation/mac/SimulatedHost.hpp"

#include <gtest/gtest.h>

namespace sentrel {
namespace {

TEST(CompatibleComputer, IsAMacBookByItsModelOrElseByItsProductName)
{
    struct Case {
        std::string model;
        std::optional<std::string> productName;
        bool isCompatible;
    };
    const std::vector<Case> cases{
        {"MacBookPro18,3", std::nullopt, true},
        {"MacBookAir10,1", "a name of no account", true},
        {"Mac14,2", "MacBook Air (M2, 2022)", true},
        {"Mac15,6", "MacBook Pro (14-inch, Nov 2023)", true},
        {"Mac14,2", std::nullopt, false},
        {"Mac14,3", "Mac mini (M2, 2023)", false},
        {"Mac15,4", "iMac (24-inch, 2023)", false},
        {"Macmini9,1", "MacBook by mistake", false},
        {"MacPro7,1", "MacBook by mistake", false},
        {"iMac21,1", "MacBook by mistake", false},
        {"VirtualMac2,1", "MacBook by mistake", false},
        {"Mac", "MacBook by mistake", false},
        {"", "MacBook by mistake", false},
    };
    for (const Case& each : cases) {
        simulation::SimulatedHost host{"/mac", {.model = each.model, .productName = each.productName}};
        EXPECT_EQ(isCompatibleComputer(host), each.isCompatible)
            << each.model << ", " << each.productName.value_or("-");
        host.faults().set("model");
        EXPECT_FALSE(isCompatibleComputer(host));
    }
}

} // namespace
} // namespace sentrel
