#include "core/AlarmSettings.hpp"
#include "core/AlertEvent.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <vector>

namespace sentrel {
namespace {

Json parse(std::string_view text)
{
    return parseJson(bytesOf(text)).value();
}

const AlertEvent example{*UUID::parse("3F2504E0-4F89-41D3-9A0C-0305E82C3301"),
                         TriggerReason::lockBypassAttempt,
                         Date{785000000.25},
                         "Mona's MacBook",
                         std::nullopt,
                         true};

TEST(AlarmSettings, AreWrittenWhollyAndInOrder)
{
    EXPECT_EQ(encodeJson(encodeAlarmSettings(AlarmSettings{})),
              R"({"isArmed":false,"triggerOnUnplugged":true,"triggerOnLidClosed":true,"triggerOnMotion":true,)"
              R"("motionSensitivity":0.35,"sendNotification":true,"alarmSound":true,"alarmVolume":0.8,)"
              R"("capturePhoto":true,"requirePasswordForActions":true,"lockScreenOnArm":false,)"
              R"("lockScreenSleepDelay":0,"triggerOnFailedUnlock":false,"failedUnlockAttemptLimit":3})");
}

TEST(AlarmSettings, DamageCostsOneFieldAndNeverTheWhole)
{
    EXPECT_EQ(decodeAlarmSettings(parse("{}")), AlarmSettings{});

    AlarmSettings armed;
    armed.isArmed = true;
    EXPECT_EQ(decodeAlarmSettings(parse(R"({"isArmed":true,"alarmVolume":"loud","capturePhoto":0,"later":[{}],)"
                                        R"("motionSensitivity":null,"lockScreenSleepDelay":1e999})")),
              armed);

    EXPECT_EQ(decodeAlarmSettings(parse(R"({"failedUnlockAttemptLimit":3})"))->failedUnlockAttemptLimit, 3.0);
    for (const std::string_view document : {"[]", "null", "true", "\"isArmed\"", "3"}) {
        EXPECT_EQ(decodeAlarmSettings(parse(document)), std::nullopt) << document;
    }
}

TEST(AlarmSettings, AreComparedAndHashedOverAllTheirFields)
{
    const std::hash<AlarmSettings> hash;
    EXPECT_EQ(hash(AlarmSettings{}), hash(AlarmSettings{}));
    for (const AlarmSettingsField& field : alarmSettingsFields) {
        AlarmSettings other;
        std::visit([&other](auto member) { other.*member = other.*member == 0; }, field.member);
        EXPECT_NE(other, AlarmSettings{}) << field.name;
        EXPECT_NE(hash(other), hash(AlarmSettings{})) << field.name;
    }
}

TEST(AlertEvent, ComesBackAsItWasWritten)
{
    AlertEvent withPhoto = example;
    withPhoto.photoFileName = example.id.text() + ".jpg";
    for (const AlertEvent& alert : {example, withPhoto}) {
        EXPECT_EQ(decodeAlertEvent(parse(encodeJson(encodeAlertEvent(alert)))), alert);
    }
    EXPECT_EQ(encodeJson(encodeAlertEvent(example)),
              R"({"id":"3F2504E0-4F89-41D3-9A0C-0305E82C3301","reason":"lockBypassAttempt",)"
              R"("timestamp":785000000.25,"deviceName":"Mona's MacBook","sendNotification":true})");
}

TEST(AlertEvent, IsReadStrictly)
{
    const Json whole = encodeAlertEvent(example);
    for (const auto& [key, value] : whole.items()) {
        Json lacking = whole;
        lacking.erase(key);
        EXPECT_EQ(decodeAlertEvent(lacking), std::nullopt) << "without " << key;
        for (const Json& wrong : {Json(nullptr), Json::array(), Json("lid")}) {
            if (key == "deviceName" && wrong.is_string()) {
                continue;
            }
            Json malformed = whole;
            malformed[key] = wrong;
            EXPECT_EQ(decodeAlertEvent(malformed), std::nullopt) << key << " as " << wrong;
        }
    }
    Json nullPhoto = whole;
    nullPhoto["photoFileName"] = nullptr;
    EXPECT_EQ(decodeAlertEvent(nullPhoto), example);
    nullPhoto["photoFileName"] = 7;
    EXPECT_EQ(decodeAlertEvent(nullPhoto), std::nullopt);
}

TEST(AlertEvent, IsComparedAndHashedOverAllItsFields)
{
    const std::hash<AlertEvent> hash;
    EXPECT_EQ(hash(AlertEvent{example}), hash(example));
    std::vector<AlertEvent> others(6, example);
    others[0].id = UUID{};
    others[1].reason = TriggerReason::motion;
    others[2].timestamp.secondsSinceReferenceDate += 1.0;
    others[3].deviceName += "s";
    others[4].photoFileName = "";
    others[5].sendNotification = false;
    for (const AlertEvent& other : others) {
        EXPECT_NE(other, example);
        EXPECT_NE(hash(other), hash(example));
    }
}

} // namespace
} // namespace sentrel
