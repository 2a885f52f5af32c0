#include "simulation/stage/ScenarioReader.hpp"
#include "foundation/FourCharCode.hpp"
#include "simulation/stage/Language.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;

std::string nested(std::size_t levels)
{
    return "title: " + std::string(levels, '[') + std::string(levels, ']');
}

TEST(ScenarioReader, TimesAddUpAndKeepTheirFractions)
{
    const Scenario scenario =
        parse("steps:\n- {at: 500ms, do: arm}\n- {at: 1.5s, do: unplug}\n- {at: +1s, do: plug-in}\n"
              "- {at: +0s, do: unplug}\n- {at: 2m, do: disarm}\n- {at: 1h, do: quit}\n");
    std::vector<Duration> times;
    for (const Step& each : scenario.steps) {
        times.push_back(each.at);
    }
    EXPECT_EQ(times, (std::vector<Duration>{500ms, 1500ms, 2500ms, 2500ms, 2min, 1h}));
    EXPECT_EQ(scenario.title, "talk") << "the file's name, for want of a title";
}

TEST(ScenarioReader, AudioElementsAreListedForAllPropertiesForSomeOrWithValues)
{
    using Controls = std::map<AudioControl, float>;
    constexpr auto vmvc = fourCharCode("vmvc");
    constexpr auto volm = fourCharCode("volm");
    constexpr auto mute = fourCharCode("mute");
    const auto controls = [](const std::string& keys) {
        return parse("mac: {audio: [{id: 5, " + keys + "}]}\n" + step("do: arm")).mac.audio.front().controls;
    };
    EXPECT_EQ(controls("volume: 0.2"), (Controls{{{vmvc, 0}, 0.2F}, {{mute, 0}, 0.0F}}));
    EXPECT_EQ(controls("elements: [1], volume: 0.2, muted: true"),
              (Controls{{{vmvc, 1}, 0.2F}, {{volm, 1}, 0.2F}, {{mute, 1}, 1.0F}}));
    EXPECT_EQ(controls("elements: {volm: [1, 2]}"), (Controls{{{volm, 1}, 0.5F}, {{volm, 2}, 0.5F}}));
    EXPECT_EQ(controls("elements: {volm: {1: 0.3}, mute: {0: true}}"),
              (Controls{{{volm, 1}, 0.3F}, {{mute, 0}, 1.0F}}));
    EXPECT_EQ(controls("elements: []"), Controls{});
}

TEST(ScenarioReader, SettingsKeepTheirOrderAndTypes)
{
    const Scenario scenario = parse("settings: {alarmVolume: 1, isArmed: false}\n" + step("do: arm"));
    EXPECT_EQ(encodeJson(scenario.settings), R"({"alarmVolume":1,"isArmed":false})");
    EXPECT_TRUE(scenario.settings["alarmVolume"].is_number_float());
}

TEST(ScenarioReader, APortFailsForGoodATimesOrIsHealed)
{
    const Scenario scenario = parse(step("do: {fail: {audio: [read, write], music: {script: 2}, lid: none}}"));
    EXPECT_EQ(std::get<Action>(scenario.steps.front().content).tell({}),
              "From now on a fault is set in the audio: read, write. "
              "From now on a fault is set in the music: script (2 times). "
              "Nothing fails any longer in the lid.");
}

TEST(ScenarioReader, CamerasAreWordsListsOrMaps)
{
    const auto cameras = [](const std::string& text) {
        std::vector<std::string> shown;
        for (const auto& camera : parse("mac: {camera: " + text + "}\n" + step("do: arm"))
                                      .mac.camera.devices.value_or(std::vector<CameraModel>{})) {
            shown.push_back(camera.name + ", " + camera.type + (camera.isContinuityCamera ? ", continuity" : ""));
        }
        return shown;
    };
    using testing::ElementsAre;
    const auto* const builtIn = "FaceTime HD Camera, AVCaptureDeviceTypeBuiltInWideAngleCamera";
    EXPECT_THAT(cameras("built-in"), ElementsAre(builtIn));
    EXPECT_THAT(cameras("{devices: [continuity, built-in]}"),
                ElementsAre("iPhone Camera, AVCaptureDeviceTypeContinuityCamera, continuity", builtIn));
    EXPECT_THAT(cameras("{devices: {name: Desk View, continuity: true}}"),
                ElementsAre("Desk View, AVCaptureDeviceTypeBuiltInWideAngleCamera, continuity"));
    EXPECT_THAT(cameras("none"), testing::IsEmpty());
}

TEST(ScenarioReader, ExpectationsAreReadAsTheStateSaysThem)
{
    const Scenario scenario = parse(step("expect: {lastTrigger: null, defaultOutput: none, alerts: 2, "
                                         "devices: {73: {volume: 1}, 91: null}, alertReasons: [motion]}"));
    const auto& found = std::get<std::vector<Expectation>>(scenario.steps.front().content);
    std::vector<std::string> texts;
    for (const Expectation& each : found) {
        texts.push_back(each.key + " " + encodeJson(each.expected));
    }
    EXPECT_THAT(texts, testing::ElementsAre("lastTrigger null", "defaultOutput null", "alerts 2",
                                            R"(devices {"73":{"volume":1},"91":null})", R"(alertReasons ["motion"])"));
    EXPECT_EQ(found.front().line, 2);
}

struct BadScenario {
    std::string text;
    std::string message; ///< how the refusal begins
};

TEST(ScenarioReader, NamesFileLineAndNearestWordOfTheFirstFault)
{
    const BadScenario cases[] = {
        // Words
        {"titel: x\n" + step("do: arm"), "talk.yaml:1: unknown key 'titel'; did you mean 'title'?"},
        {"mac:\n  power: ac\n  modle: x\n", "talk.yaml:3: unknown key 'modle'; did you mean 'model'? (in 'mac')"},
        {"mac: {lid: opne}\n", "talk.yaml:1: unknown lid 'opne'; did you mean 'open'?"},
        {"mac: {language: klingon}\n", "talk.yaml:1: 'language' must be a known one, such as de, fr_CA or zh-Hans"},
        {"mac: {timeZone: Europe/Atlantis}\n",
         "talk.yaml:1: 'timeZone' must be a known one, such as UTC or Europe/Paris"},
        {"mac: {bundleIdentifier: ../../../elsewhere}\n",
         "talk.yaml:1: 'bundleIdentifier' may contain only letters, digits, '.' and '-', unlike '../../../elsewhere'"},
        {"mac: {bundleIdentifier: ..}\n", "talk.yaml:1: 'bundleIdentifier' may contain only letters, digits"},
        {"mac: {audio: [{id: 2, transport: blutooth}]}\n",
         "talk.yaml:1: unknown transport 'blutooth'; did you mean 'bluetooth'?"},
        {"settings: {alarmvolume: 1}\n", "talk.yaml:1: unknown key 'alarmvolume'; did you mean 'alarmVolume'?"},
        {step("do: unplugg"), "talk.yaml:2: unknown action 'unplugg'; did you mean 'unplug'?"},
        {step("do: {volum: {device: 73}}"), "talk.yaml:2: unknown action 'volum'; did you mean 'volume'?"},
        {step("do: {set: {isArmd: true}}"), "talk.yaml:2: unknown key 'isArmd'; did you mean 'isArmed'?"},
        {step("expect: {lastAlert: {raeson: motion}}"), "talk.yaml:2: unknown key 'raeson'; did you mean 'reason'?"},
        {step("expect: {lastTrigger: lid}"), "talk.yaml:2: unknown reason 'lid'; did you mean"},
        {step("when: now, do: arm"), "talk.yaml:2: unknown key 'when'; did you mean"},
        // Times
        {stepOf("at: 3sec, do: arm"), "talk.yaml:2: unknown unit 'sec' in the time '3sec'; did you mean 's'?"},
        {stepOf("at: 3 minutes, do: arm"), "talk.yaml:2: unknown unit ' minutes'"},
        {stepOf("at: 3, do: arm"), "talk.yaml:2: the time '3' has no unit: write for example '3s'"},
        {stepOf("at: -3s, do: arm"), "talk.yaml:2: a time can't be negative"},
        {stepOf("at: soon, do: arm"), "talk.yaml:2: 'at' must be a time such as 3s"},
        {stepOf("at: .nan, do: arm"), "talk.yaml:2: 'at' must be a time such as 3s"},
        {stepOf("at: 1e9h, do: arm"), "talk.yaml:2: unknown unit 'e9h'"},
        {stepOf("at: 99999999999999999999999h, do: arm"),
         "talk.yaml:2: the time '99999999999999999999999h' is too long"},
        {"steps:\n- {at: 2s, do: arm}\n- {at: 1s, do: disarm}\n",
         "talk.yaml:3: the time is before that of the previous"},
        {stepOf("at: 366000000s, do: arm"), "talk.yaml:2: the time '366000000s' is too long"},
        {"steps:\n- {at: 8000h, do: arm}\n- {at: +8000h, do: arm}\n", "talk.yaml:3: the time is too late"},
        // Shapes
        {"", "talk.yaml:1: the file is empty"},
        {"# nothing\n", "talk.yaml:1: "},
        {"just words\n", "talk.yaml:1: a scenario must be a map"},
        {"title: x\n", "talk.yaml:1: a scenario needs 'steps'"},
        {"steps:\n", "talk.yaml:1: 'steps' must be a list, not nothing"},
        {"steps: []\n", "talk.yaml:1: 'steps' is empty"},
        {stepOf("do: arm"), "talk.yaml:2: a step needs 'at'"},
        {stepOf("at: 0s"), "talk.yaml:2: a step needs 'do' or 'expect'"},
        {step("do: arm, expect: {alerts: 0}"), "talk.yaml:2: a step has 'do' or 'expect', not both"},
        {step("at: 1s, do: arm"), "talk.yaml:2: 'at' is repeated"},
        {step("expect: {}"), "talk.yaml:2: 'expect' is empty"},
        {step("do: power"), "talk.yaml:2: 'power' needs a value, for example {do: {power: battery}}"},
        {step("do: {arm: true}"), "talk.yaml:2: 'arm' takes no value"},
        {step("do: [arm]"), "talk.yaml:2: 'do' takes one action"},
        {step("do: {accelerometer: {sample: [1, 2]}}"), "talk.yaml:2: a sample has three numbers"},
        {step("do: {volume: {device: 73}}"), "talk.yaml:2: 'volume' needs 'value', 'muted' or both"},
        {"? [a]\n: b\n", "talk.yaml:1: a key must be a word"},
        // Types
        {"settings: {isArmed: yes}\n", "talk.yaml:1: 'isArmed' must be true or false: write true instead of 'yes'"},
        {"settings: {isArmed: 1}\n", "talk.yaml:1: 'isArmed' must be true or false, not '1'"},
        {"settings: {alarmVolume: \"1\"}\n", "talk.yaml:1: 'alarmVolume' must be a number: write 1 without quotes"},
        {"settings: {alarmVolume: .nan}\n", "talk.yaml:1: 'alarmVolume' must be a number"},
        {"settings: {alarmVolume: 1e999}\n", "talk.yaml:1: 'alarmVolume' is too large"},
        {"settings: {motionSensitivity: 5}\n", "talk.yaml:1: 'motionSensitivity' must be from 0 to 1, not '5'"},
        {"mac: {audio: [{id: 1}]}\n", "talk.yaml:1: the number of an audio device must be a whole number from 2"},
        {"mac: {audio: [{id: 4294967296}]}\n", "talk.yaml:1: the number of an audio device must be a whole number"},
        {"mac: {audio: [{id: 2}, {id: 2}]}\n", "talk.yaml:1: two audio devices have the id 2"},
        {"mac: {audio: [{id: 2, volume: 1.5}]}\n", "talk.yaml:1: 'volume' must be from 0 to 1, not '1.5'"},
        {"mac:\n  defaultOutput: 9\n", "talk.yaml:2: 'defaultOutput' is 9, but no audio device has this id"},
        // Cameras, keychains, locks
        {"mac: {camera: built-inn}\n", "talk.yaml:1: unknown camera 'built-inn'; did you mean 'built-in'?"},
        {"mac: {camera: {devices: [{name: A, type: inner}]}}\n", "talk.yaml:1: unknown type of camera 'inner'"},
        {"mac: {login: succed}\n", "talk.yaml:1: unknown login 'succed'; did you mean 'succeed'?"},
        {"mac: {passcode: \"\"}\n", "talk.yaml:1: 'passcode' must be text"},
        {"mac: {displays: 17}\n", "talk.yaml:1: the number of displays must be a whole number from 0 to 16"},
        {step("do: {camera: {}}"), "talk.yaml:2: 'camera' needs at least one key"},
        {step("do: {camera: {brightness: 5}}"), "talk.yaml:2: 'brightness' must be from 0 to 1, not '5'"},
        {step("do: {camera: {delay: 6}}"), "talk.yaml:2: the time '6' has no unit"},
        {step("do: {camera: {delay: +6s}}"), "talk.yaml:2: 'delay' must be a time such as 6s"},
        {step("do: {camera: {authorization: notdetermined}}"),
         "talk.yaml:2: unknown authorization 'notdetermined'; did you mean 'notDetermined'?"},
        {step("do: {camera: {photo: none.jpg}}"), "talk.yaml:2: the photo 'none.jpg' doesn't exist"},
        {step("do: {camera: {photo: .}}"), "talk.yaml:2: .: a folder, not a file"},
        {step("do: {keychain: {legacy: shut}}"), "talk.yaml:2: unknown keychain access 'shut'"},
        {step("do: type-passcode"), "talk.yaml:2: 'type-passcode' needs a value"},
        {step("expect: {cover: lockedOut}"), "talk.yaml:2: unknown word 'lockedOut'; did you mean"},
        {step("expect: {cameraSession: true}"), "talk.yaml:2: unknown word 'true'"},
        {step("expect: {photo: true}"), "talk.yaml:2: 'photo' must be a map"},
        // YAML's odd corners
        {"a: &x [1]\nb: *x\n", "talk.yaml:2: aliases"},
        {"title: !!binary aGk=\n", "talk.yaml:1: tags can't be used"},
        {nested(33), "talk.yaml:1: the values are nested more than 32 levels deep"},
        {nested(20'000), "talk.yaml:1: the values are nested more than 32 levels deep"},
        {std::string(70'000, 'x'), "talk.yaml:1: a line is longer than 65536 bytes"},
        {"title: 'x\n", "talk.yaml:"},
        {"title: x\n---\ntitle: y\n", "talk.yaml:3: the file has a second document"},
        {"title: x\nmac: \xFF\xFE\n", "talk.yaml:2: the text is not UTF-8"},
        {std::string{"title: x\0y\n", 11}, "talk.yaml:1: control characters"},
    };
    for (const BadScenario& bad : cases) {
        EXPECT_THAT(refusal(bad.text), StartsWith(bad.message)) << bad.text.substr(0, 200);
    }
}

class ScenarioFiles : public testing::Test {
protected:
    std::filesystem::path write(const std::string& name, const std::string& text) const
    {
        return test::put(folder / name, text);
    }

    [[nodiscard]] static std::string refusalOf(const std::filesystem::path& file)
    {
        try {
            static_cast<void>(readScenario(file));
        } catch (const ScenarioError& error) {
            return error.what();
        }
        return "accepted";
    }

    TemporaryFolder temporary;
    std::filesystem::path folder = temporary.path();
};

TEST_F(ScenarioFiles, NameTheirDiskAndRecordingsRelativeToThemselves)
{
    write("walk.csv", "t_seconds,x_g,y_g,z_g\n0,0,0,1\n0.02,0.1,0,1\n");
    std::filesystem::create_directories(folder / "disk");
    const auto file = write("a.yaml", "mac: {files: disk}\n" + step("do: {accelerometer: {file: walk.csv}}"));
    const Scenario scenario = readScenario(file);
    EXPECT_EQ(scenario.mac.files, folder / "disk");
    EXPECT_EQ(std::get<Action>(scenario.steps.front().content).tell({}), "The Mac moves as recorded in walk.csv.");
}

TEST_F(ScenarioFiles, ThatCantBeUsedAreRefused)
{
    EXPECT_THAT(refusalOf(folder / "none.yaml"), testing::EndsWith("none.yaml: no such file"));
    EXPECT_THAT(refusalOf(folder), testing::EndsWith(": a folder, not a file"));
    EXPECT_THAT(refusalOf(write("big.yaml", std::string(2UL << 20U, '#'))), testing::EndsWith("larger than 1 MB"));
    EXPECT_THAT(refusalOf(write("b.yaml", "mac: {files: nowhere}\n")), HasSubstr("b.yaml:1: the folder 'nowhere'"));
    write("disk.txt", "");
    EXPECT_THAT(refusalOf(write("c.yaml", "mac: {files: disk.txt}\n")),
                HasSubstr("c.yaml:1: 'files' must be a folder"));
    EXPECT_THAT(refusalOf(write("d.yaml", step("do: {accelerometer: {file: no.csv}}"))),
                HasSubstr("d.yaml:2: the recording 'no.csv' doesn't exist"));
    write("bad.csv", "t_seconds,x_g,y_g,z_g\n0,0,zero,1\n");
    const std::string bad = refusalOf(write("e.yaml", step("do: {accelerometer: {file: bad.csv}}")));
    EXPECT_THAT(bad, HasSubstr("e.yaml:2: "));
    EXPECT_THAT(bad, HasSubstr("bad.csv:2: "));
}

} // namespace
} // namespace sentrel::simulation
