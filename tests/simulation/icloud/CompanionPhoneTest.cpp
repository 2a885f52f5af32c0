#include "simulation/icloud/CompanionPhone.hpp"

#include "simulation/icloud/CloudScene.hpp"
#include "support/Files.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace sentrel::simulation {
namespace {

using namespace std::string_literals;
using ports::CloudValue;
using testing::ElementsAre;
using testing::IsEmpty;
using Fields = std::map<std::string, CloudValue>;

class CompanionPhoneTest : public testing::Test, protected CloudScene {
protected:
    void save(const std::string& type, const std::string& name, Fields fields)
    {
        static_cast<void>(answer(mac.database.save({type, name, std::move(fields), {}, {}})));
    }

    CompanionPhone phone{server, wallClock, "owner"};
};

TEST_F(CompanionPhoneTest, AlertsAreListedNewestFirstWithTheirPhotos)
{
    const auto photo = test::put(disk.path() / "photo.jpg", "jpeg");
    save("AlertEvent", "old", {{"reason", "motion"s}, {"timestamp", Date{1.0}}});
    save("AlertEvent", "new",
         {{"reason", "unplugged"s},
          {"triggerName", "Charger"s},
          {"deviceName", "Desk"s},
          {"timestamp", Date{2.0}},
          {"sendNotification", std::int64_t{0}},
          {"photo", ports::CloudAsset{photo}}});
    save("AlertEvent", "broken", {{"reason", std::int64_t{1}}, {"timestamp", Date{3.0}}});
    save("AlertEvent", "timeless", {{"reason", "motion"s}, {"timestamp", "3"s}, {"photo", "no"s}});

    const auto alerts = phone.alerts();
    ASSERT_EQ(alerts.size(), 2U);
    EXPECT_EQ(alerts[0].id, "new");
    EXPECT_EQ(alerts[0].triggerName + alerts[0].deviceName, "ChargerDesk");
    EXPECT_FALSE(alerts[0].sendNotification);
    EXPECT_EQ(alerts[0].photo, bytesOf("jpeg"));
    EXPECT_EQ(alerts[1].triggerName + alerts[1].deviceName, "motionMac");
    EXPECT_TRUE(alerts[1].sendNotification);
    EXPECT_FALSE(alerts[1].photo);

    phone.signIn("other");
    EXPECT_THAT(phone.alerts(), IsEmpty());
}

TEST_F(CompanionPhoneTest, ANotificationIsShownForWhatAsksForOne)
{
    ports::CloudSubscription subscription;
    subscription.identifier = "alerts";
    subscription.recordType = "AlertEvent";
    subscription.predicate = {"sendNotification == %@", {std::int64_t{1}}};
    subscription.options = 1;
    subscription.soundName = "default";
    subscription.alertLocalizationArguments = {"triggerName", "deviceName"};
    int number = 0;
    for (const char* const format : {"%1$@ on %2$@", "%2$@: %@ %@%", "%3$@%0$@", ""}) {
        subscription.alertLocalizationKey = format;
        server.saveSubscription({"owner", "mac"}, subscription);
        for (const std::int64_t wanted : {0, 1}) {
            save("AlertEvent", std::to_string(++number),
                 {{"triggerName", "Lid"s}, {"deviceName", "%1$@"s}, {"sendNotification", wanted}});
        }
    }
    std::vector<std::string> shown;
    for (const auto& notification : phone.notifications()) {
        shown.push_back(notification.alertID + " " + notification.text);
    }
    EXPECT_THAT(shown, ElementsAre("2 Lid on %1$@", "4 %1$@: Lid %1$@%", "6 %0$@"));
}

TEST_F(CompanionPhoneTest, ItSeesTheMacsOfTheCatalog)
{
    save("MacDeviceCatalog", "mac-device-catalog", {{"deviceIDs", TextList{"B", "gone", "\xC3\xA4", "A"}}});
    save("MacDeviceCatalog", "mac-device-catalog-A",
         {{"deviceName", "Desk"s},
          {"lastSeen", Date{5.0}},
          {"isCompatible", std::int64_t{1}},
          {"isArmed", std::int64_t{1}}});
    save("MacDeviceCatalog", "mac-device-catalog-B", {{"lastSeen", Date{6.0}}, {"isArmed", "yes"s}});
    const auto macs = phone.macs();
    ASSERT_EQ(macs.size(), 2U);
    EXPECT_EQ(macs[0].deviceID + macs[0].deviceName, "BMac");
    EXPECT_FALSE(macs[0].isArmed);
    EXPECT_EQ(macs[1].deviceID + macs[1].deviceName, "ADesk");
    EXPECT_TRUE(macs[1].isArmed && macs[1].isCompatible);
    EXPECT_EQ(macs[1].lastSeen, Date{5.0});
}

TEST_F(CompanionPhoneTest, EachCommandHasANumberAndItsTime)
{
    const double now = wallClock.now().secondsSinceReferenceDate;
    EXPECT_EQ(phone.send("A", {.arm = true}), 1);
    EXPECT_EQ(phone.send("A", {.arm = false, .issuedAgo = 121.0}), 2);
    EXPECT_EQ(answer(mac.database.record("mac-device-catalog-A-command")).fields,
              (Fields{{"commandSequence", std::int64_t{2}},
                      {"commandIssuedAt", Date{now - 121.0}},
                      {"requestedArmState", std::int64_t{0}}}));
    EXPECT_EQ(phone.send("B", {.sequence = std::numeric_limits<std::int64_t>::max()}),
              std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(phone.send("B", {}), 1) << "no number is beyond";
    server.setQuota("owner", 0);
    EXPECT_THROW(phone.send("C", {}), ports::CloudError);
}

} // namespace
} // namespace sentrel::simulation
