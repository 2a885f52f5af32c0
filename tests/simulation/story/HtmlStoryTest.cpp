#include "simulation/story/html/HtmlStory.hpp"

#include "posix/PosixFileSystem.hpp"
#include "simulation/mac/files/Base64.hpp"
#include "simulation/mac/sound/WavWriter.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/story/PlayCommand.hpp"
#include "simulation/story/html/HtmlText.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace sentrel::simulation {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

const fs::path source{SENTREL_SOURCE_DIR};

/// Plays a scenario into a page and returns its text.
std::string playedPage(const std::string& yaml)
{
    TemporaryFolder folder;
    PlayCommand command;
    command.scenario = test::put(folder.path() / "scenario.yaml", yaml);
    command.html = folder.path() / "story.html";
    command.resources = source / "resources";
    command.web = source / "web/story";
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(run(command, out, err), exitAllHeld) << out.str() << err.str();
    EXPECT_THAT(out.str(), HasSubstr("the story as a page"));
    return test::contentOf(*command.html);
}

/// The content of the first data URL of this type.
Bytes embedded(const std::string& page, const std::string& type)
{
    const std::string lead = "\"data:" + type + ";base64,";
    const auto start = page.find(lead) + lead.size();
    return bytesOfBase64(page.substr(start, page.find('"', start) - start)).value_or(Bytes{});
}

TEST(HtmlStory, ShowsATheftWithItsSoundMotionPhotoAndPhone)
{
    const std::string page = playedPage(R"(
title: A <b>theft</b> & "more"
mac:
  localizedName: Maya's <script>alert(1)</script>
  accelerometer: resting
  camera: built-in
  icloud: {account: maya}
steps:
  - {at: 1s, note: '</style><img src=http://elsewhere/>', do: arm}
  - {at: 10s, do: {accelerometer: {sample: [0.6, 0.5, 1.4]}}}
  - {at: 16s, do: stop-alarm}
  - {at: 20s, expect: {isArmed: true}}
)");
    EXPECT_THAT(page, HasSubstr("<h1>A &lt;b&gt;theft&lt;/b&gt; &amp; &quot;more&quot;</h1>"));
    EXPECT_THAT(page, HasSubstr("&lt;/style&gt;&lt;img src=http://elsewhere/&gt;"));
    EXPECT_THAT(page, HasSubstr("Maya&#39;s &lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_THAT(page, Not(HasSubstr("<script>alert")));
    EXPECT_THAT(page, HasSubstr("<time>0:10.0</time><div>\n<p class=\"event\">"));
    EXPECT_THAT(page, HasSubstr("Sentrel notices: Motion Detected."));
    EXPECT_THAT(page, HasSubstr("The one expectation holds."));
    EXPECT_THAT(page, HasSubstr("The alarm sounds beyond 0.67 g"));
    EXPECT_THAT(page, HasSubstr("<b>Motion</b>"));
    EXPECT_THAT(page, HasSubstr("<b>Armed</b>"));

    // Six seconds of the tone, at a quarter of the recording's rate, and not silent.
    const Bytes sound = embedded(page, "audio/wav");
    ASSERT_GT(sound.size(), 44U);
    EXPECT_NEAR(static_cast<double>(sound.size() - 44) / 11'025.0, 5.75, 0.3);
    EXPECT_GT(*std::ranges::max_element(sound.begin() + 44, sound.end()), 200); // of 255, and 128 is silence
    const Bytes photo = embedded(page, "image/jpeg");
    ASSERT_GT(photo.size(), 1000U);
    EXPECT_EQ(photo[0], 0xFF);
    EXPECT_EQ(photo[1], 0xD8);

    // Nothing comes from elsewhere, and the browser would not fetch it.
    for (const std::string lead : {" src=\"", " href=\"", " action=\"", "url(", "@import", "<link", "<iframe"}) {
        for (auto found = page.find(lead); found != std::string::npos; found = page.find(lead, found + 1)) {
            EXPECT_EQ(page.substr(found, lead.size() + 5), " src=\"data:");
        }
    }
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
    EXPECT_LT(page.size(), 500'000U);
}

TEST(HtmlStory, TellsWhenThereIsNothingToHearOrToSee)
{
    const auto quiet = [](const std::string& end) {
        return playedPage("title: Quiet\nmac: {}\nsteps:\n  - {at: " + end + ", do: arm}\n");
    };
    const std::string page = quiet("10m");
    EXPECT_THAT(page, HasSubstr("Nothing was heard."));
    EXPECT_THAT(quiet("601s"), HasSubstr("Only the first ten minutes are recorded."));
    EXPECT_THAT(page, Not(HasSubstr("<audio")));
    EXPECT_THAT(page, Not(HasSubstr("id=\"photos\"")));
    EXPECT_THAT(page, Not(HasSubstr("id=\"motion\"")));
}

TEST(HtmlStory, ThatCantBeWrittenIsAnError)
{
    TemporaryFolder folder;
    PlayCommand command;
    command.scenario = source / "scenarios/desk-bump.yaml";
    command.html = folder.path() / "missing/story.html";
    command.resources = source / "resources";
    command.web = source / "web/story";
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(run(command, out, err), exitUnreadable);
    EXPECT_THAT(err.str(), HasSubstr("can't write '" + command.html->string() + "'"));
}

TEST(HtmlStory, WritesNumbersAndTextsThatCantBreakOutOfTheirPlace)
{
    EXPECT_EQ(htmlText("a\x1b[1m'\"<&>\n"), "a [1m&#39;&quot;&lt;&amp;&gt; ");
    EXPECT_EQ(htmlNumber(1.0), "1");
    EXPECT_EQ(htmlNumber(-0.5), "-0.5");
    EXPECT_EQ(htmlNumber(0.12345), "0.123");
    EXPECT_EQ(htmlNumber(std::nan("")), "0");
    EXPECT_EQ(htmlNumber(1e300), "0");
}

TEST(SoundClips, CutsAtPausesOfTwoSecondsAndKeepsAsMuchAsThereIsRoomFor)
{
    TemporaryFolder folder;
    const fs::path file = folder.path() / "sound.wav";
    const std::vector<std::int16_t> loud(44'100, 16'000);
    {
        WavWriter writer{file, 44'100};
        writer.appendSilence(44'100);
        writer.append(loud);
        writer.appendSilence(44'100 * 19 / 10);
        writer.append(loud);
        writer.appendSilence(44'100 * 21 / 10);
        writer.append(loud);
        ASSERT_TRUE(writer.finish());
    }
    const auto clips = soundClips(file, 4.5);
    ASSERT_EQ(clips.size(), 2U);
    EXPECT_NEAR(clips[0].start, 1.0, 0.001);
    EXPECT_NEAR(clips[0].seconds, 3.9, 0.001);
    EXPECT_NEAR(clips[0].kept, 3.9, 0.001);
    EXPECT_NEAR(clips[1].start, 7.0, 0.001);
    EXPECT_NEAR(clips[1].seconds, 1.0, 0.001);
    EXPECT_NEAR(clips[1].kept, 0.6, 0.001);
    EXPECT_NEAR(clips[0].peaks.front(), 0.488F, 0.001F);
    EXPECT_FLOAT_EQ(clips[0].peaks[clips[0].peaks.size() / 2], 0.0F);
    EXPECT_TRUE(soundClips(folder.path() / "missing.wav", 1.0).empty());
}

TEST(MotionTrace, StaysSmallHoweverLongItTakesAndKeepsTheGreatest)
{
    MotionTrace trace;
    for (int sample = 0; sample < 100'000; ++sample) {
        trace.add(sample * 0.02, sample == 61'803 ? 0.7 : 0.01);
    }
    EXPECT_LE(trace.peaks().size(), MotionTrace::mostSpans);
    EXPECT_EQ(trace.highest(), 0.7);
    EXPECT_DOUBLE_EQ(trace.highestAt(), 61'803 * 0.02);
    const auto place = static_cast<std::size_t>(trace.highestAt() / trace.span());
    EXPECT_EQ(trace.peaks()[place], 0.7);
    EXPECT_EQ(trace.peaks()[place + 1], 0.01);
}

} // namespace
} // namespace sentrel::simulation
