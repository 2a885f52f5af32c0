#include "alerts/PendingCloudDeletionStore.hpp"

#include "support/MemoryDefaults.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Texts = std::vector<std::string>;

UUID number(int n)
{
    UUID::Octets octets{};
    octets[0] = 0xAB;
    octets[14] = static_cast<std::uint8_t>(n >> 8);
    octets[15] = static_cast<std::uint8_t>(n);
    return UUID{octets};
}

struct PendingCloudDeletionStoreTest : testing::Test {
    PendingCloudDeletionStore store() { return {"key", defaults}; }
    std::optional<Texts> stored() { return defaults.texts("key"); }

    test::MemoryDefaults defaults;
};

TEST_F(PendingCloudDeletionStoreTest, RemembersInTheOrderOfAdditionAcrossLaunches)
{
    PendingCloudDeletionStore first = store();
    EXPECT_THAT(first.ids(), IsEmpty());
    for (const int n : {3, 1, 2, 3}) {
        first.add({number(n)}, "maya");
    }
    const std::string prefix = "AB000000-0000-0000-0000-00000000000";
    EXPECT_EQ(stored(), (Texts{prefix + "3", prefix + "1", prefix + "2"})) << "an old one keeps its place";

    PendingCloudDeletionStore second = store();
    second.remove({number(1), number(9)});
    EXPECT_THAT(second.orderedIDs(), ElementsAre(number(3), number(2)));
    EXPECT_FALSE(second.ids().contains(number(1)));
    EXPECT_EQ(stored(), (Texts{prefix + "3", prefix + "2"}));
    second.remove({number(2), number(3)});
    EXPECT_EQ(stored(), Texts{});
}

TEST_F(PendingCloudDeletionStoreTest, KeepsTheNewestTwoThousand)
{
    PendingCloudDeletionStore full = store();
    full.add({number(0)}, "maya");
    std::unordered_set<UUID> many;
    for (int n = 1; n <= 2000; ++n) {
        many.insert(number(n));
    }
    full.add(many, "maya");
    EXPECT_EQ(full.orderedIDs().size(), 2000U);
    EXPECT_EQ(full.orderedIDs(), full.idsOf("maya"));
    EXPECT_THAT(full.orderedIDs(), Not(Contains(number(0))));
    EXPECT_EQ(full.ids(), many) << "the first one is forgotten";
    EXPECT_EQ(stored()->size(), 2000U);
}

TEST_F(PendingCloudDeletionStoreTest, KnowsInWhoseDatabaseEachIsOwed)
{
    PendingCloudDeletionStore first = store();
    first.add({number(1)}, "maya");
    first.add({number(2)}, ""); // nobody is known to be signed in
    first.add({number(1), number(3)}, "bob ");
    EXPECT_EQ(stored(), (Texts{number(1).text(), number(2).text(), number(3).text()}));
    PendingCloudDeletionStore second = store();
    EXPECT_THAT(second.idsOf("maya"), ElementsAre(number(1), number(2)));
    EXPECT_THAT(second.idsOf("bob "), ElementsAre(number(2), number(3)));
    second.remove({number(1)});
    second.add({number(1)}, "bob ");
    EXPECT_THAT(store().idsOf("bob "), ElementsAre(number(2), number(3), number(1)));

    defaults.setTexts("key.owners", {"", "nobody", number(2).text(), number(9).text() + " bob", " bob"});
    EXPECT_THAT(store().idsOf("tom"), ElementsAre(number(2), number(3), number(1))) << "damaged: everybody's";
}

TEST_F(PendingCloudDeletionStoreTest, LoadsWhatIsGoodOfDamagedDefaults)
{
    defaults.setTexts("key", {number(2).text(), "no identifier", "", number(1).text(), number(2).text(),
                              "ab000000-0000-0000-0000-000000000007", number(3).text() + "0"});
    EXPECT_THAT(store().orderedIDs(), ElementsAre(number(2), number(1), number(7)));
    defaults.setText("key", number(1).text());
    EXPECT_THAT(store().orderedIDs(), IsEmpty()) << "no array of texts";
}

} // namespace
} // namespace sentrel
