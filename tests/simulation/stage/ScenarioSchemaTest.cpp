#include "simulation/stage/PlayedScenario.hpp"
#include "simulation/stage/TextFile.hpp"
#include "simulation/stage/YamlValue.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace sentrel::simulation {
namespace {

bool allows(const Json& schema, const YamlValue& value);

bool isOfType(const Json& type, const YamlValue& value)
{
    if (type.is_array()) {
        return std::ranges::any_of(type, [&](const Json& each) { return isOfType(each, value); });
    }
    return type == "object"  ? value.isMap()
           : type == "array" ? value.isList()
           : type == "null"  ? value.isNull()
                             : value.isScalar();
}

bool allowsKeys(const Json& schema, const YamlValue& map)
{
    const Json properties = schema.value("properties", Json::object());
    const Json others = schema.value("additionalProperties", Json(true));
    for (std::size_t i = 0; i < map.keys.size(); ++i) {
        const Json* const known = member(properties, map.keys[i].text);
        if (!allows(known != nullptr ? *known : others, map.items[i])) {
            return false;
        }
    }
    return std::ranges::all_of(schema.value("required", Json::array()), [&](const Json& key) {
        return std::ranges::find(map.keys, key.get<std::string>(), &YamlValue::text) != map.keys.end();
    });
}

/// As much of JSON Schema as decides about keys, words and shapes.
bool allows(const Json& schema, const YamlValue& value)
{
    if (schema.is_boolean()) {
        return schema.get<bool>();
    }
    if (const Json* const choices = member(schema, "anyOf")) {
        return std::ranges::any_of(*choices, [&](const Json& each) { return allows(each, value); });
    }
    if (const Json* const words = member(schema, "enum")) {
        return std::ranges::any_of(*words, [&](const Json& word) {
            return word.is_null() ? value.isNull() : value.isScalar() && word == value.text;
        });
    }
    const Json* const type = member(schema, "type");
    if (type != nullptr && !isOfType(*type, value)) {
        return false;
    }
    const Json items = schema.value("items", Json(true));
    return value.isMap() ? allowsKeys(schema, value)
                         : std::ranges::all_of(value.isList() ? value.items : std::vector<YamlValue>{},
                                               [&](const YamlValue& item) { return allows(items, item); });
}

class ScenarioSchema : public PlayedScenario {};

TEST_F(ScenarioSchema, AllowsEveryScenarioThatComesWithTheProgramAndEachHolds)
{
    const Json schema = scenarioSchema();
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator{SENTREL_SOURCE_DIR "/scenarios"}) {
        EXPECT_TRUE(allows(schema, parseYaml(readTextFile(entry.path(), 1UL << 20U)))) << entry.path();
        EXPECT_THAT(played(readScenario(entry.path())), testing::IsEmpty()) << entry.path();
        ++count;
    }
    EXPECT_GE(count, 21U);
}

TEST_F(ScenarioSchema, RefusesUnknownKeysAndWords)
{
    const auto allowed = [](const std::string& step) {
        return allows(scenarioSchema(), parseYaml("steps: [{at: 1s, " + step + "}]"));
    };
    EXPECT_TRUE(allowed("do: arm"));
    EXPECT_FALSE(allowed("do: armm"));
    EXPECT_TRUE(allowed("do: {camera: {devices: [built-in, {name: A}], brightness: none}}"));
    EXPECT_FALSE(allowed("do: {camera: {devices: [built-in, {nam: A}]}}"));
    EXPECT_FALSE(allowed("do: {volume: {value: 1}}")) << "the device is missing";
    EXPECT_TRUE(allowed("expect: {lastAlert: null, window: {main: {texts: {lacks: [a]}}}}"));
    EXPECT_FALSE(allowed("expect: {window: {main: {texts: {has: [a]}}}}"));
    EXPECT_FALSE(allowed("expect: {lastTrigger: lid}"));
    EXPECT_FALSE(allows(scenarioSchema(), parseYaml("mac: {power: ac}"))) << "no steps";
}

} // namespace
} // namespace sentrel::simulation
