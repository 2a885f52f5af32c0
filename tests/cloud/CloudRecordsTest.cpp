#include "cloud/AlertCacheFile.hpp"
#include "cloud/AlertRecord.hpp"
#include "cloud/DeviceCatalog.hpp"
#include "cloud/RecordText.hpp"
#include "foundation/Json.hpp"
#include "foundation/TextList.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <utility>
#include <vector>

namespace sentrel {
namespace {

using ports::CloudAsset;
using ports::CloudRecord;
using ports::CloudValue;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr const char* name = "5A5A0000-0000-4000-8000-0000000000AF";

CloudRecord record()
{
    CloudRecord alert;
    alert.type = alertRecordType;
    alert.name = name;
    alert.fields = {{"reason", std::string{"lidClosed"}},
                    {"timestamp", Date{7e8}},
                    {"deviceName", std::string{"Mona's MacBook"}},
                    {"sendNotification", std::int64_t{0}}};
    return alert;
}

CloudRecord with(const char* field, CloudValue value)
{
    CloudRecord changed = record();
    changed.fields[field] = std::move(value);
    return changed;
}

CloudRecord without(const char* field)
{
    CloudRecord changed = record();
    changed.fields.erase(field);
    return changed;
}

TEST(AlertRecord, ReadsWhatIsThereAndTakesTheRestAsUsual)
{
    const AlertEvent plain{
        *UUID::parse(name), TriggerReason::lidClosed, Date{7e8}, "Mona's MacBook", std::nullopt, false};
    EXPECT_EQ(alertOf(record()), plain);
    EXPECT_EQ(alertOf(with("photo", CloudAsset{"anywhere"}))->photoFileName, std::string{name} + ".jpg");
    for (const CloudRecord& nameless : {without("deviceName"), with("deviceName", Date{1})}) {
        EXPECT_EQ(alertOf(nameless)->deviceName, "Mac");
    }
    for (const CloudRecord& silent : {without("sendNotification"), with("sendNotification", std::string{"no"}),
                                      with("sendNotification", std::int64_t{-7})}) {
        EXPECT_TRUE(alertOf(silent)->sendNotification);
    }
}

TEST(AlertRecord, IsUnusableWithoutAReasonATimeOrAName)
{
    std::vector<CloudRecord> unusable{
        without("reason"),
        with("reason", std::string{"earthquake"}),
        with("reason", Date{1}),
        without("timestamp"),
        with("timestamp", 7e8),
        with("timestamp", Date{infinity}),
        with("timestamp", Date{-infinity}),
        with("timestamp", Date{std::numeric_limits<double>::quiet_NaN()}),
    };
    for (const char* const hostile : {"", "../../secret", "5A5A0000-0000-4000-8000-0000000000AF/.."}) {
        unusable.push_back(record());
        unusable.back().name = hostile;
    }
    for (const CloudRecord& alert : unusable) {
        EXPECT_FALSE(alertOf(alert)) << alert.name;
    }
}

TEST(AlertRecord, HugeNamesAreCutBetweenCharacters)
{
    EXPECT_EQ(alertOf(with("deviceName", std::string(10'000'000, 'x')))->deviceName.size(), longestDeviceName);
    std::string letters;
    while (letters.size() < 1000) {
        letters += "ä";
    }
    EXPECT_EQ(alertOf(with("deviceName", letters))->deviceName, letters.substr(0, longestDeviceName - 1));
    EXPECT_EQ(alertOf(with("deviceName", std::string(1000, '\x80')))->deviceName.size(), longestDeviceName - 3);
}

TEST(DeviceCatalog, PresenceAndCommandHaveARecordEach)
{
    const DevicePresence presence{"id", "Mona's MacBook", Date{7e8}, true, false};
    const RemoteCommand command{-3, Date{7e8 + 1}, true};
    EXPECT_EQ(presenceRecord(presence).name, "mac-device-catalog-id");
    EXPECT_EQ(presenceOf(presenceRecord(presence)), presence);
    EXPECT_EQ(commandRecord("id", command).name, "mac-device-catalog-id-command");
    EXPECT_EQ(commandOf(commandRecord("id", command)), command);
}

TEST(DeviceCatalog, WhatSomebodyMangledIsNoPresenceAndNoCommand)
{
    const CloudRecord presence = presenceRecord({"id", "Mac", Date{1}, true, true});
    for (const char* const field : {"deviceID", "lastSeen", "isCompatible", "isArmed"}) {
        CloudRecord mangled = presence;
        mangled.fields[field] = std::vector<std::string>{"surprise"};
        EXPECT_FALSE(presenceOf(mangled)) << field;
    }
    const CloudRecord command = commandRecord("id", {7, Date{1}, false});
    for (const char* const field : {"commandSequence", "requestedArmState"}) {
        CloudRecord mangled = command;
        mangled.fields[field] = std::string{"7"};
        EXPECT_FALSE(commandOf(mangled)) << field;
    }
    CloudRecord undated = command;
    undated.fields["commandIssuedAt"] = Date{infinity};
    EXPECT_EQ(commandOf(undated), (RemoteCommand{7, std::nullopt, false}));
}

TEST(AlertCacheFile, IsReadWholeOrNotAtAll)
{
    const AlertEvent alert = *alertOf(with("photo", CloudAsset{"anywhere"}));
    const UUID other = *UUID::parse("00000000-0000-4000-8000-000000000001");
    const AlertCacheContents contents{"_owner", true, {{alert.id, alert}}, {{other, other}, {alert.id}}};
    const std::string text = encodeAlertCache(contents);
    EXPECT_EQ(decodeAlertCache(bytesOf(text)), contents);
    EXPECT_EQ(decodeAlertCache(bytesOf(encodeAlertCache({}))), AlertCacheContents{});

    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_FALSE(decodeAlertCache(bytesOf(text.substr(0, length)))) << length;
    }
    const auto document = parseJson(bytesOf(text));
    for (const auto& [key, value] : document->items()) {
        for (const Json& wrong : {Json(2), Json("text"), Json::parse("[7]"), Json::parse("{}")}) {
            if (wrong.type() != value.type() || key == "version" || key.starts_with("catalog") || key == "alerts") {
                Json mangled = *document;
                mangled[key] = wrong;
                EXPECT_FALSE(decodeAlertCache(bytesOf(encodeJson(mangled)))) << encodeJson(mangled);
            }
        }
    }
}

TEST(TextList, TheCommonBeginningConsistsOfWholeTexts)
{
    struct Case {
        TextList left;
        TextList right;
        std::size_t common;
    };
    for (const auto& [left, right, common] : {Case{{}, {"a"}, 0},
                                              {{"a", "b"}, {"a", "b", "c"}, 2},
                                              {{"ab", "cd"}, {"ab", "ce"}, 1},
                                              {{"ab", "cd"}, {"xb", "cd"}, 0},
                                              {{"ab", "c"}, {"a", "bc"}, 0},
                                              {{"", "", "a"}, {"", "", "b"}, 2},
                                              {{"a", "b"}, {"a", "bb"}, 1}}) {
        EXPECT_EQ(left.commonWith(right), common) << left.joined() << ' ' << right.joined();
        EXPECT_EQ(right.commonWith(left), common);
        EXPECT_EQ(left.commonWith(left), left.size());
    }
}

} // namespace
} // namespace sentrel
