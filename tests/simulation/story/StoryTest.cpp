#include "simulation/story/Story.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace sentrel::simulation {
namespace {

using Fields = std::vector<std::pair<std::string, Event::Value>>;

Event event(double at, const std::string& name, Fields fields = {})
{
    return {at, name, std::move(fields)};
}

Action action(const std::string& word)
{
    return readAction(parseYaml(word), {});
}

Event enforced(double at)
{
    return event(at, "volume.enforced", {{"device", std::int64_t{73}}});
}

Scenario theft()
{
    Scenario scenario;
    scenario.title = "A theft at the café";
    scenario.mac.audio.front().setVolume(0.3F);
    scenario.mac.audio.front().setMuted(true);
    return scenario;
}

TEST(Story, TellsATheftWithCauseAndEffectAndWithoutRepeatingItself)
{
    std::ostringstream out;
    Story story{out, {.isColoured = false, .width = 80}};
    story.open(theft());
    story.tell(event(0.0, "launched"));
    story.tell(event(0.0, "disarmed"));
    story.remark(2.0, "Maya orders a second coffee. Her Mac stays at the table, with all that she wrote this year.");
    story.perform(2.0, action("arm"));
    story.tell(event(2.0, "armed"));
    story.tell(event(2.0, "assertion.taken", {{"name", std::string{"armed"}}}));
    story.perform(24.0, action("unplug"));
    story.tell(event(24.0, "power.changed", {{"state", std::string{"Battery Power"}}}));
    story.tell(event(24.0, "trigger", {{"reason", std::string{"unplugged"}}}));
    story.tell(
        event(24.0, "alarm.started", {{"mode", std::string{"tone"}}, {"volume", 1.0}})); // only believed when heard
    story.tell(
        event(24.0, "alarm.heard", {{"mode", std::string{"tone"}}, {"device", std::int64_t{73}}, {"volume", 0.85}}));
    story.tell(
        event(24.0, "alert.saved", {{"id", std::string{"A"}}, {"reason", std::string{"unplugged"}}, {"photo", false}}));
    story.tell(enforced(24.9));
    story.tell(enforced(25.8));
    story.tell(event(26.3, "volume.changed", {{"device", std::int64_t{73}}, {"volume", 0.1}, {"muted", false}}));
    story.tell(enforced(26.7));
    story.tell(enforced(27.6));
    story.perform(40.0, action("stop-alarm"));
    story.tell(event(40.0, "alarm.stopped"));
    story.tell(event(41.0, "comet.seen", {{"tails", std::int64_t{2}}, {"name", std::string{"Halley"}}}));
    StorySummary summary;
    summary.held = 12;
    summary.artefacts = {{"The alarm as it was heard", "out/alarm.wav"}};
    story.finish(summary);

    EXPECT_EQ(out.str(), R"(
  A theft at the café
  ───────────────────
  A MacBookPro18,3 called “MacBook” on its charger, its lid open. Sound goes to
  MacBook Pro Speakers at 30 %, muted.

   0:00.0   Sentrel starts.

   0:02.0   Maya orders a second coffee. Her Mac stays at the table, with all
            that she wrote this year.
            The owner arms Sentrel.
            → Sentrel is armed and watches.
            → The Mac is kept awake.

   0:24.0   The charger is pulled out.
            → Sentrel notices: Power Unplugged.
            → The alarm sounds through MacBook Pro Speakers at 85 %.
            → An alert is on disk: Power Unplugged, without a photo.

   0:26.3   The thief turns down MacBook Pro Speakers to 10 %.
   0:26.7   → 0.4 s later Sentrel has it back at 85 %.

   0:40.0   The owner stops the alarm.
            → The alarm is silent, after 16.0 s.
   0:41.0   → comet.seen: tails 2, name “Halley”

  ──────────────────────────────────────────────────────────────────────────────
  ✓ All 12 expectations hold.
    The alarm as it was heard  out/alarm.wav
)");
}

TEST(Story, TellsOfPhotosPasscodesAndTheLoginWhatAStrangerUnderstands)
{
    const auto told = [](const std::string& name, Fields fields) {
        std::ostringstream out;
        Story story{out, {.isColoured = false, .width = 200}};
        story.tell(event(1.0, name, std::move(fields)));
        return out.str().substr(out.str().find("0:01.0   ") + 9);
    };
    const auto text = [](const char* words) { return Event::Value{std::string{words}}; };
    const auto whole = [](std::int64_t number) { return Event::Value{number}; };
    EXPECT_EQ(told("photo.taken", {{"width", whole(1600)}, {"height", whole(900)}, {"attempts", whole(3)}}),
              "→ It is dark: the camera takes 3 photos, one after the other, and the last is kept, 1600 by 900 "
              "pixels.\n");
    EXPECT_EQ(told("photo.taken", {{"attempts", whole(1)}}), "→ The camera takes a photo.\n");
    EXPECT_EQ(told("photo.none", {{"why", text("timed out")}}),
              "→ No photo is taken: the camera gave nothing within 5 s.\n");
    EXPECT_EQ(told("photo.none", {{"why", text("output refused")}}), "→ No photo is taken: output refused.\n");
    EXPECT_EQ(told("cover.shown", {{"windows", whole(2)}}), "→ The lock screen covers 2 displays.\n");
    EXPECT_EQ(told("passcode", {{"outcome", text("triggered")}}), "→ The passcode is wrong, once too often.\n");
    EXPECT_EQ(told("login", {{"reason", text("stop the alarm")}, {"answer", text("cancel")}}),
              "→ macOS asks for the Mac login (“stop the alarm”), and the panel is cancelled.\n");
}

TEST(Story, NamesWhatDidNotHoldWithItsLine)
{
    std::ostringstream out;
    Story story{out, {}};
    StorySummary summary;
    summary.file = "cafe.yaml";
    summary.held = 3;
    summary.mismatches = {{"devices.73.volume", "0.3", "0.85", 42}};
    story.finish(summary);
    EXPECT_THAT(out.str(), testing::HasSubstr("cafe.yaml:42: expected devices.73.volume to be 0.3, but it is 0.85."));
    EXPECT_THAT(out.str(), testing::HasSubstr("3 held, 1 didn't."));
}

TEST(Story, ColoursOnlyWhenAskedAndLetsNoNameDriveTheTerminal)
{
    const auto told = [](bool isColoured) {
        std::ostringstream out;
        Story story{out, {.isColoured = isColoured, .width = 80}};
        story.act(1.0, "A name with \x1b[2J and \xC2\x9B in it.");
        return out.str();
    };
    EXPECT_EQ(told(false), "\n   0:01.0   A name with [2J and in it.\n");
    EXPECT_THAT(told(true), testing::HasSubstr("\x1b[1mA name with [2J and in it.\x1b[0m"));
}

TEST(Story, TimesGrowHoursWhenTheyNeedThem)
{
    EXPECT_EQ(clockText(0.04), "0:00.0");
    EXPECT_EQ(clockText(59.96), "1:00.0");
    EXPECT_EQ(clockText(3661.5), "1:01:01.5");
}

} // namespace
} // namespace sentrel::simulation
