#include "simulation/page/PageRequests.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <semaphore>

#include <thread>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

/// A Mac that lives in real time, and one page that listens.
class PageThreads : public testing::Test {
protected:
    PageThreads() { mac.start(); }

    PageAnswer ask(const char* name, const std::string& body) { return answerPage(mac, name, body); }

    /// Whether a stream says this before it ends or nothing comes for a long time.
    static bool says(EventHub::Subscriber& stream, const std::string& text)
    {
        std::counting_semaphore<> arrived{0};
        stream.setListener([&arrived] { arrived.release(); });
        std::string heard;
        bool isHeard = false;
        for (auto event = stream.next(); event != nullptr && !isHeard; event = stream.next()) {
            heard += *event;
            isHeard = heard.find(text) != std::string::npos;
            if (event->empty() && !arrived.try_acquire_for(30s)) {
                break;
            }
        }
        stream.setListener({});
        return isHeard;
    }

    TemporaryFolder disk;
    Scenario scenario = parseScenario("title: Page\nmac: {icloud: maya}\nsettings: {requirePasswordForActions: false}\n"
                                      "steps:\n- {at: 1s, do: arm}\n",
                                      "page.yaml");
    LiveMac mac{scenario, disk.path(), SENTREL_SOURCE_DIR "/resources", 1, MacSession::storyDate};
};

TEST_F(PageThreads, ArmOnOnePageAndTheOtherSeesIt)
{
    const auto stream = mac.listen();
    EXPECT_TRUE(says(*stream, R"("icon":"MenuBarIcon")"));
    EXPECT_EQ(ask("menu", R"({"open": true})").error, "");
    EXPECT_EQ(ask("ui", R"({"in": "menu", "node": "armed", "do": "switch", "value": true})").error, "");
    EXPECT_TRUE(says(*stream, R"("icon":"MenuBarIconArmed")"));
    EXPECT_EQ(ask("action", R"("unplug")").status, 204);
    EXPECT_TRUE(says(*stream, R"("power":"battery")"));
    EXPECT_TRUE(mac.call([](MacSession& session) { return session.app()->coordinator().isAlarmActive.get(); }));
}

TEST_F(PageThreads, ShowHowAnArmedMacMoves)
{
    const auto stream = mac.listen();
    EXPECT_EQ(ask("action", R"({"accelerometer": "resting"})").status, 204);
    EXPECT_EQ(ask("action", R"("arm")").status, 204);
    EXPECT_TRUE(says(*stream, R"("departures":[)"));
    EXPECT_FALSE(mac.call([](MacSession& session) { return session.app()->coordinator().isAlarmActive.get(); }));
}

TEST_F(PageThreads, RefuseWhatMakesNoSenseInPlainWordsAndGoOn)
{
    const std::string deep = std::string(600, '[') + std::string(600, ']');
    const struct {
        const char* name;
        std::string body;
        int status;
    } cases[] = {
        {"ui", "", 400},
        {"ui", "{", 400},
        {"ui", "[1]", 400},
        {"ui", "\xff\xfe", 400},
        {"ui", deep, 400},
        {"ui", R"({"in": "menu"})", 400},
        {"ui", R"({"in": 1, "node": 2, "do": 3})", 400},
        {"menu", R"({"open": "yes"})", 400},
        {"ui", R"({"in": "menu", "node": "armed", "do": "switch", "value": true})", 409},
        {"ui", R"({"in": "no-such-window", "node": "", "do": "press"})", 409},
        {"ui", R"({"in": "cover:9", "node": "", "do": "press"})", 409},
        {"window", R"({"window": "sentrel-main-window", "do": "resize", "frame": {"x": "a"}})", 400},
        {"window", R"({"window": "sentrel-main-window", "do": "close"})", 409},
        {"panel", R"({"panel": "login", "answer": "succeed"})", 409},
        {"panel", R"({"panel": "door", "answer": "open"})", 400},
        {"action", R"("steal")", 400},
        {"action", R"({"camera": {"photo": "/etc/passwd"}})", 400},
        {"action", R"({"accelerometer": {"file": "/etc/passwd"}})", 400},
        {"launch", "{}", 409},
        {"replace", "{}", 409},
        {"nothing", "{}", 404},
    };
    for (const auto& each : cases) {
        const PageAnswer answer = ask(each.name, each.body);
        EXPECT_EQ(answer.status, each.status) << each.name << ' ' << each.body.substr(0, 80);
        EXPECT_NE(answer.error, "") << each.name << ' ' << each.body.substr(0, 80);
    }
    EXPECT_EQ(showWebcam(mac, "no picture").status, 400);
    EXPECT_EQ(ask("action", R"("arm")").status, 204);
}

TEST_F(PageThreads, ANewMacTakesTheOldOnesPlaceOnEveryPageWhileOthersUseIt)
{
    TemporaryFolder temporary;
    LiveMac live{scenario, temporary.path(), SENTREL_SOURCE_DIR "/resources", 1, MacSession::storyDate, true};
    live.start();
    const auto isArmed = [](MacSession& session) { return session.app()->coordinator().isArmed.get(); };
    const auto stream = live.listen();
    EXPECT_EQ(answerPage(live, "action", R"("arm")").status, 204);
    EXPECT_TRUE(says(*stream, R"("isArmed":true)"));
    std::thread other{[&live] {
        for (int count = 0; count < 50; ++count) {
            EXPECT_EQ(answerPage(live, "action", R"("unplug")").error, "");
        }
    }};
    EXPECT_EQ(answerPage(live, "replace", "{}").error, "");
    EXPECT_EQ(answerPage(live, "replace", "{}").error, "");
    other.join();
    EXPECT_TRUE(says(*stream, R"("story":{"from":0,)"));
    EXPECT_FALSE(live.call(isArmed));
    EXPECT_EQ(answerPage(live, "action", R"("arm")").error, "");
    EXPECT_TRUE(live.call(isArmed));
}

TEST_F(PageThreads, APageThatNeverReadsIsCutOffAndAStoppedMacAnswersNobody)
{
    const auto stream = mac.hub().subscribe();
    for (int count = 0; count < 20; ++count) {
        mac.hub().publish("state", std::string(std::size_t{1} << 20, 'x'));
    }
    EXPECT_TRUE(stream->isClosed());
    mac.stop();
    EXPECT_THROW(static_cast<void>(ask("action", R"("arm")")), std::runtime_error);
    EXPECT_EQ(mac.hub().subscribe(), nullptr);
}

} // namespace
} // namespace sentrel::simulation
