#include "simulation/icloud/CloudScene.hpp"

#include "simulation/icloud/SubscriptionCoding.hpp"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using ports::CloudRecord;
using ports::CloudSavePolicy;
using ports::CloudSubscription;
using testing::ElementsAre;
using testing::IsEmpty;

class CloudPushTest : public testing::Test, protected CloudScene {
protected:
    CloudPushTest() { launch(); }

    /// A process that has registered, and notes what it hears.
    void launch()
    {
        mac.notifications.setReceiver({[this] { heard.emplace_back("registered"); },
                                       [this](const std::string& why) { heard.push_back("failed: " + why); },
                                       [this](const Json& push) { hear(push); }});
        mac.notifications.registerForRemoteNotifications();
        clock.runUntilIdle();
    }

    void hear(const Json& push)
    {
        lastPush = push;
        const auto notification = mac.notifications.cloudNotification(push);
        heard.push_back(notification
                            ? notification->subscriptionID.value_or("?") + ":" + notification->recordName.value_or("?")
                            : "nothing of CloudKit's");
    }

    std::vector<std::string> takeHeard()
    {
        clock.runUntilIdle();
        return std::exchange(heard, {});
    }

    void subscribe(const std::string& identifier, ports::CloudPredicate predicate, std::uint64_t options)
    {
        CloudSubscription subscription;
        subscription.identifier = identifier;
        subscription.recordType = "Thing";
        subscription.predicate = std::move(predicate);
        subscription.options = options;
        subscription.sendsContentAvailable = true;
        EXPECT_TRUE(answer(done(mac.database.saveSubscription(subscription))));
    }

    /// Another device of the account writes.
    void write(const std::string& name, std::map<std::string, ServerValue> fields, const std::string& device = "phone")
    {
        ServerBatch batch{{{"Thing", name, std::move(fields), {}, {}}}, {}, CloudSavePolicy::allKeys, false, {}};
        ASSERT_EQ(codeOf(server.modify({"owner", device}, batch).saved.at(name)), 0);
    }
    void remove(const std::string& name)
    {
        ServerBatch batch;
        batch.deleteNames.push_back(name);
        ASSERT_FALSE(server.modify({"owner", "phone"}, batch).deleted.at(name));
    }

    std::vector<std::string> heard;
    Json lastPush;
};

TEST_F(CloudPushTest, ASubscriptionTellsOfTheChangesThatItNamesWhoeverMadeThemButTheWriter)
{
    using Option = SubscriptionOption;
    EXPECT_THAT(takeHeard(), ElementsAre("registered"));
    subscribe("created", {}, Option::firesOnRecordCreation);
    subscribe("first", {}, Option::firesOnRecordCreation | Option::firesOnce);
    subscribe("updated", {"n > %@", {std::int64_t{1}}}, Option::firesOnRecordUpdate);
    subscribe("removed", {"n IN %@", {std::vector<std::int64_t>{5}}}, Option::firesOnRecordDeletion);

    write("a", {{"n", std::int64_t{1}}});
    EXPECT_THAT(takeHeard(), ElementsAre("created:a", "first:a"));
    write("b", {{"n", std::int64_t{5}}});
    EXPECT_THAT(takeHeard(), ElementsAre("created:b"));
    write("a", {{"n", std::int64_t{1}}});
    EXPECT_THAT(takeHeard(), IsEmpty());
    write("a", {{"n", std::int64_t{2}}});
    EXPECT_THAT(takeHeard(), ElementsAre("updated:a"));
    remove("a");
    EXPECT_THAT(takeHeard(), IsEmpty());
    remove("b");
    EXPECT_THAT(takeHeard(), ElementsAre("removed:b"));

    write("own", {}, "mac");
    EXPECT_THAT(takeHeard(), IsEmpty()) << "the writer knows already";
    SimulatedICloud second{surroundings("second")};
    answer(second.database.save(thing("c")));
    EXPECT_THAT(takeHeard(), ElementsAre("created:c"));

    const ServerBatch elsewhere{{{"Thing", "d", {}, {}, {}}}, {}, {}, false, {}};
    EXPECT_EQ(codeOf(server.modify({"other", "phone"}, elsewhere).saved.at("d")), 0);
    EXPECT_THAT(takeHeard(), IsEmpty()) << "another account's";
}

TEST_F(CloudPushTest, ThePushIsCloudKitsDictionaryAndItsSubscriptionOutlivesTheServer)
{
    const CloudSubscription subscription{"alerts",
                                         "Thing",
                                         {"kind == %@", {std::string{"x"}}},
                                         1,
                                         "%1$@ on %2$@",
                                         {"kind", "missing", "n"},
                                         "default",
                                         {"n", "when", "photo"},
                                         false};
    server.saveSubscription({"owner", "mac"}, subscription);
    server.saveSubscription({"owner", "second"}, subscription);
    PrivateCloud later{disk.path() / "iCloud", wallClock, log};
    ASSERT_EQ(later.subscriptions("owner").size(), 1U);
    EXPECT_EQ(encodeSubscription(later.subscriptions("owner").front()), encodeSubscription(subscription));

    write("a", {{"kind", std::string{"x"}}, {"n", std::int64_t{7}}, {"when", Date{5.5}}, {"photo", Bytes{1}}});
    EXPECT_THAT(takeHeard(), ElementsAre("registered", "alerts:a"));
    lastPush["ck"].erase("nid"); // differs for each push
    EXPECT_EQ(encodeJson(lastPush),
              R"({"aps":{"alert":{"loc-key":"%1$@ on %2$@","loc-args":["x","","7"]},"sound":"default"},"ck":{)"
              R"("ce":2,"cid":"iCloud.pelma.Sentrel","qry":{"af":{"n":7,"when":5.5},"dbs":2,"fo":1,"rid":"a",)"
              R"("sid":"alerts","zid":"_defaultZone","zoid":")" +
                  PrivateCloud::userRecordName("owner") + "\"}}}");
}

TEST_F(CloudPushTest, WhileTheNetworkIsDownTheLastPushOfEachSubscriptionWaits)
{
    subscribe("one", {"n == %@", {std::int64_t{1}}}, 3);
    subscribe("two", {"n == %@", {std::int64_t{2}}}, 3);
    takeHeard();
    mac.network.setUp(false);
    write("a", {{"n", std::int64_t{1}}});
    write("b", {{"n", std::int64_t{2}}});
    write("c", {{"n", std::int64_t{1}}});
    EXPECT_THAT(takeHeard(), IsEmpty());
    mac.network.setUp(true);
    EXPECT_THAT(takeHeard(), ElementsAre("two:b", "one:c"));
    mac.network.setUp(true);
    EXPECT_THAT(takeHeard(), IsEmpty());
}

TEST_F(CloudPushTest, OnlyAProcessThatHasRegisteredHearsOfPushes)
{
    subscribe("one", {}, 1);
    takeHeard();
    write("on its way", {});
    mac.notifications.endProcess();
    write("nobody", {});
    EXPECT_THAT(takeHeard(), IsEmpty());

    mac.network.setUp(false);
    launch();
    EXPECT_THAT(takeHeard(), IsEmpty()) << "registering waits for the network";
    mac.network.setUp(true);
    EXPECT_THAT(takeHeard(), ElementsAre("registered"));
    mac.account.signIn("other");
    write("elsewhere", {});
    EXPECT_THAT(takeHeard(), IsEmpty());
    mac.account.signIn("owner");
    write("here", {});
    EXPECT_THAT(takeHeard(), ElementsAre("one:here"));

    mac.notifications.endProcess();
    mac.notifications.setFailure("no certificate");
    launch();
    write("unheard", {});
    EXPECT_THAT(takeHeard(), ElementsAre("failed: no certificate"));
}

TEST_F(CloudPushTest, PushesOfOthersAreToldApart)
{
    takeHeard();
    const std::vector<std::pair<std::string, std::string>> table{
        {"null", "nothing of CloudKit's"},
        {R"({"aps":{"alert":"win a prize"}})", "nothing of CloudKit's"},
        {"[]", "nothing of CloudKit's"},
        {R"({"ck":7})", "nothing of CloudKit's"},
        {R"({"ck":{}})", "nothing of CloudKit's"},
        {R"({"ck":{"qry":[]}})", "nothing of CloudKit's"},
        {R"({"ck":{"qry":{}}})", "?:?"},
        {R"({"ck":{"qry":{"sid":7,"rid":null}}})", "?:?"},
        {R"({"ck":{"qry":{"sid":"s","rid":"r"}}})", "s:r"},
        {R"({"ck":{"fet":{"sid":"s","rid":"r"}}})", "s:?"},
    };
    for (const auto& [text, expected] : table) {
        mac.notifications.inject(Json::parse(text));
        EXPECT_THAT(takeHeard(), ElementsAre(expected)) << text;
    }
}

TEST_F(CloudPushTest, SubscriptionsThatAreNotUnderstoodAreRefused)
{
    const CloudSubscription good{"s", "Thing", {}, 1, {}, {}, {}, {}, true};
    EXPECT_EQ(code(done(mac.database.saveSubscription(good))), 0);
    std::vector<CloudSubscription> bad(5, good);
    bad[0].predicate = {"n LIKE %@", {std::string{"x"}}};
    bad[1].identifier = "";
    bad[2].options = 0;
    bad[3].options = 16;
    bad[4].sendsContentAvailable = false;
    for (const CloudSubscription& subscription : bad) {
        EXPECT_EQ(code(done(mac.database.saveSubscription(subscription))), CKError::invalidArguments);
    }
    std::string hugeOption = encodeSubscription({});
    EXPECT_TRUE(decodeSubscription(bytesOf(hugeOption)));
    hugeOption.replace(hugeOption.find("\"options\":0") + 10, 1, "1e308");
    for (const std::string& damaged :
         {std::string{}, std::string{"[]"}, std::string{R"({"identifier":1})"}, hugeOption}) {
        EXPECT_FALSE(decodeSubscription(bytesOf(damaged))) << damaged;
    }
}

} // namespace
} // namespace sentrel::simulation
