#include "runtime/Observable.hpp"
#include "runtime/Weak.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace sentrel {
namespace {

TEST(Observables, ForgetAnObserverWhoseObservationEnds)
{
    std::optional<Observable<std::string>> text{std::in_place, "a"};
    std::string told;
    std::optional<Observation> first{text->observe([&](const std::string& value) { told += value; })};
    Observation second = text->observe([&](const std::string&) { first.reset(); });
    *text = "b";
    *text = "c";
    EXPECT_EQ(told, "b");
    text.reset(); // an observation may outlive what it observed
}

TEST(Observables, TellNobodyAnOldValueWhenAnObserverChangesIt)
{
    Observable<int> number{0};
    std::vector<int> told;
    const auto correcting = number.observe([&](int value) { number = value > 10 ? 10 : value; });
    const auto listening = number.observe([&](int value) { told.push_back(value); });
    number = 50;
    EXPECT_EQ(told, (std::vector<int>{10}));
}

TEST(WeakHandles, KnowThatTheirObjectHasDied)
{
    struct Owner {
        int value = 7;
        WeakAnchor<Owner> anchor{*this};
    };
    Weak<Owner> handle;
    EXPECT_EQ(handle.get(), nullptr);
    {
        Owner owner;
        handle = owner.anchor.weak();
        ASSERT_EQ(handle.get(), &owner);
        EXPECT_EQ(handle.get()->value, 7);
    }
    EXPECT_EQ(handle.get(), nullptr);
}

} // namespace
} // namespace sentrel
