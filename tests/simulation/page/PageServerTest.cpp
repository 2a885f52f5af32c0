#include "simulation/page/PageServer.hpp"

#include "simulation/page/LiveMac.hpp"
#include "simulation/page/Visitors.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using Headers = httplib::Headers;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{patienceInSeconds};

/// Below every deadline of the server: what takes no longer has not waited for one.
constexpr auto atOnce = 4s;

/// A Mac and the server of its page, spoken to as strangers do.
class PageServerThreads : public testing::Test {
protected:
    PageServerThreads()
    {
        EXPECT_GT(port, 0);
        mac.start();
        serving = std::thread{[this] { server.run(); }};
        page.set_default_headers(pageHeaders(port));
        page.set_keep_alive(true);
        page.set_tcp_nodelay(true);
        page.set_read_timeout(patience);
    }
    ~PageServerThreads() override { end(); }

    void end()
    {
        server.stop();
        if (serving.joinable()) {
            serving.join();
        }
    }

    int post(const std::string& path, const std::string& body)
    {
        const auto answer = page.Post("/api/" + path, body, "application/json");
        return answer ? answer->status : 0;
    }

    /// The status line and the head of the answer to these lines, which end with the Host.
    std::string headOf(const std::string& lines, const std::string& body = {})
    {
        RawVisitor visitor{port};
        visitor.send(lines + "\r\nHost: " + host + "\r\n\r\n" + body);
        return visitor.read("\r\n\r\n");
    }

    /// Whether it comes true at last.
    template <class Condition> static bool becomesTrue(Condition condition)
    {
        const auto start = Clock::now();
        while (!condition()) {
            if (Clock::now() - start > patience) {
                return false;
            }
            std::this_thread::yield();
        }
        return true;
    }

    bool isArmed()
    {
        return mac.call([](MacSession& session) { return session.app()->settings().settings().isArmed; });
    }

    TemporaryFolder disk;
    Scenario scenario = parseScenario("title: Page\nmac: {icloud: maya}\nsettings: {requirePasswordForActions: false}\n"
                                      "steps:\n- {at: 1s, do: arm}\n",
                                      "page.yaml");
    LiveMac mac{scenario, disk.path(), SENTREL_SOURCE_DIR "/resources", 1, MacSession::storyDate};
    PageServer server{mac, {.web = SENTREL_SOURCE_DIR "/web", .token = visitorsToken, .port = 0}};
    std::thread serving;
    const int port = server.bind() ? server.port() : 0;
    const std::string host = "127.0.0.1:" + std::to_string(port);
    const std::string cookieLine = "\r\nCookie: " + visitorsCookie(port);
    httplib::Client page{"127.0.0.1", port};
};

TEST_F(PageServerThreads, TheInvitationOpensTheDoorAndNothingElseDoes)
{
    httplib::Client stranger{"127.0.0.1", port};
    const auto invited = stranger.Get(std::string{"/?token="} + visitorsToken);
    ASSERT_TRUE(invited);
    EXPECT_EQ(invited->status, 303);
    EXPECT_EQ(invited->get_header_value("Location"), "/");
    EXPECT_EQ(invited->get_header_value("Set-Cookie"), visitorsCookie(port) + "; Path=/; HttpOnly; SameSite=Strict");
    EXPECT_EQ(stranger.Get("/?token=wrong")->status, 403);
    for (const char* path : {"/", "/main.js", "/api/events", "/api/file/0123456789abcdef.jpg"}) {
        EXPECT_EQ(stranger.Get(path)->status, 403) << path;
    }
    const std::string cookie = visitorsCookie(port);
    const std::string origin = "http://" + host;
    for (const Headers& headers :
         {Headers{{"Origin", origin}}, Headers{{"Cookie", cookie}}, Headers{{"Cookie", cookie}, {"Origin", "null"}},
          Headers{{"Cookie", cookie}, {"Origin", "http://evil.example"}},
          Headers{{"Cookie", cookie}, {"Origin", origin}, {"Host", "evil.example:" + std::to_string(port)}}}) {
        EXPECT_EQ(stranger.Post("/api/action", headers, R"("arm")", "application/json")->status, 403);
    }
    EXPECT_FALSE(isArmed());
    EXPECT_EQ(page.Get("/")->get_header_value("Content-Type"), "text/html; charset=utf-8");
    EXPECT_EQ(post("action", R"("arm")"), 204);
    EXPECT_TRUE(isArmed());
}

TEST_F(PageServerThreads, EveryAnswerForbidsWhatThePageDoesNotNeed)
{
    const std::string get = "GET /api/events HTTP/1.1" + cookieLine;
    const struct {
        std::string lines;
        const char* status;
    } cases[] = {
        {get, "200"},
        {"GET / HTTP/1.1" + cookieLine, "200"},
        {"GET / HTTP/1.1", "403"},
        {"GET /?token=" + std::string{visitorsToken} + " HTTP/1.1", "303"},
        {"GET /nothing HTTP/1.1" + cookieLine, "404"},
        {"DELETE / HTTP/1.1" + cookieLine, "405"},
        {"OPTIONS * HTTP/1.1" + cookieLine, "405"},
        {"POST /api/menu HTTP/1.1\r\nContent-Length: 2" + cookieLine, "403"},
        {"POST /api/webcam HTTP/1.1\r\nContent-Length: 99999999\r\nOrigin: http://" + host + cookieLine, "413"},
        {"GET /" + std::string(9000, 'a') + " HTTP/1.1" + cookieLine, "414"},
        {"GET /" + std::string(8000, 'a') + " HTTP/1.1" + cookieLine, "404"},
        {"NONSENSE", "400"},
        {"GET / HTTP/9.9" + cookieLine, "400"},
    };
    for (const auto& each : cases) {
        const bool isLarge = each.status == std::string{"413"};
        const std::string head = headOf(each.lines, isLarge ? std::string(std::size_t{3} << 20, 'x') : "");
        EXPECT_EQ(head.substr(0, 12), std::string{"HTTP/1.1 "} + each.status) << each.lines.substr(0, 60);
        for (const char* header :
             {"Content-Security-Policy: default-src 'none'; script-src 'self';", "X-Content-Type-Options: nosniff",
              "Referrer-Policy: no-referrer", "Cross-Origin-Resource-Policy: same-origin"}) {
            EXPECT_NE(head.find(header), std::string::npos) << header << " at " << each.lines.substr(0, 60);
        }
        EXPECT_EQ(head.find("Access-Control"), std::string::npos);
    }
}

TEST_F(PageServerThreads, BodiesThatAreTooLargeOrMakeNoSenseAreRefusedAndTheConnectionGoesOn)
{
    const std::string deep = std::string(20'000, '[') + std::string(20'000, ']');
    const struct {
        const char* path;
        std::string body;
        int status;
    } cases[] = {
        {"ui", std::string((std::size_t{64} << 10) + 1, ' '), 413},
        {"action", '"' + std::string(std::size_t{1} << 20, 'x') + '"', 413},
        {"webcam", std::string((std::size_t{2} << 20) + 1, 'x'), 413},
        {"webcam", std::string(std::size_t{2} << 20, 'x'), 400},
        {"webcam", "\xff\xd8\xff\xe0 no picture", 400},
        {"webcam", "", 204},
        {"action", deep, 400},
        {"action", R"({"unplug": {"unplug": []}})", 400},
        {"nothing", "{}", 404},
        {"Menu", "{}", 404},
        {"menu/", R"({"open": true})", 404},
    };
    for (const auto& each : cases) {
        const auto answer = page.Post(std::string{"/api/"} + each.path, each.body, "application/json");
        ASSERT_TRUE(answer) << each.path;
        EXPECT_EQ(answer->status, each.status) << each.path << ' ' << each.body.substr(0, 40);
        if (each.status != 204) {
            const auto told = parseJson(bytesOf(answer->body));
            EXPECT_TRUE(told && told->contains("error")) << answer->body;
        }
    }
    // Neither packed nor without a length, which would have no bound.
    Headers packed = pageHeaders(port);
    packed.emplace("Content-Encoding", "gzip");
    EXPECT_EQ(page.Post("/api/action", packed, "x", "application/json")->status, 415);
    EXPECT_EQ(headOf("POST /api/action HTTP/1.1\r\nTransfer-Encoding: chunked\r\nOrigin: http://" + host + cookieLine,
                     "5\r\n\"arm\"\r\n0\r\n\r\n")
                  .substr(9, 3),
              "415");
    EXPECT_EQ(post("action", R"("unplug")"), 204);
}

TEST_F(PageServerThreads, ARefusedBodyIsNoRequest)
{
    const std::string inner = "POST /api/action HTTP/1.1\r\nHost: " + host + "\r\nOrigin: http://" + host + cookieLine +
                              "\r\nContent-Length: 5\r\n\r\n\"arm\"";
    RawVisitor visitor{port};
    visitor.send("POST /api/menu HTTP/1.1\r\nHost: " + host + "\r\nContent-Length: " + std::to_string(inner.size()) +
                 "\r\n\r\n" + inner + inner);
    const std::string answers = visitor.read();
    EXPECT_EQ(answers.substr(9, 3), "403");
    EXPECT_EQ(answers.find("HTTP/1.1", 1), std::string::npos) << "the connection ends with it";
    EXPECT_FALSE(isArmed());
}

TEST_F(PageServerThreads, APortThatIsListenedOnIsTaken)
{
    PageServer second{mac, {.web = SENTREL_SOURCE_DIR "/web", .token = visitorsToken, .port = port}};
    EXPECT_FALSE(second.bind());
}

TEST_F(PageServerThreads, NoWayLeadsOutOfThePagesFolder)
{
    for (const char* path : {"/..%2fREADME.md", "/%2e%2e/README.md", "/../README.md", "/..\\README.md",
                             "/..%5cREADME.md", "//etc/passwd", "/%2fetc%2fpasswd", "/main.js%00.png", "/PROTOCOL.md",
                             "/.hidden.js", "/a/../main.js", "/api/file/../../x.jpg", "/api/file/..%2f..%2fREADME.md",
                             "/api/file/0123456789abcdef.jpg", "/api/file/0123456789ABCDEF.jpg"}) {
        EXPECT_EQ(headOf(std::string{"GET "} + path + " HTTP/1.1" + cookieLine).substr(9, 3), "404") << path;
    }
    EXPECT_EQ(page.Get("/main.js")->get_header_value("Content-Type"), "text/javascript; charset=utf-8");
}

TEST_F(PageServerThreads, AFloodIsSlowedDownAndAStrangersFloodConcernsNobody)
{
    httplib::Client stranger{"127.0.0.1", port};
    stranger.set_keep_alive(true);
    for (int count = 0; count < 400; ++count) {
        ASSERT_EQ(stranger.Get("/")->status, 403);
    }
    EXPECT_EQ(page.Get("/nothing")->status, 404);
    // Sent without waiting for answers, so that they come faster than they may on any machine.
    const std::string request = "GET /nothing HTTP/1.1\r\nHost: " + host + cookieLine + "\r\n";
    std::string flood;
    for (int count = 0; count < 3000; ++count) {
        flood += request + "\r\n";
    }
    RawVisitor visitor{port};
    std::thread sending{[&] { visitor.send(flood + request + "Connection: close\r\n\r\n"); }};
    const std::string answers = visitor.read();
    sending.join();
    EXPECT_EQ(answers.substr(9, 3), "404");
    EXPECT_NE(answers.find("HTTP/1.1 429"), std::string::npos);
    EXPECT_TRUE(becomesTrue([this] { return page.Get("/nothing")->status == 404; }));
}

TEST_F(PageServerThreads, AStreamBeginsWithEverythingAndGoesOnWithWhatChanges)
{
    ListeningPage first{port};
    const Json whole = first.next();
    for (const char* key : {"run", "menuBar", "screen", "panels", "hardware", "sound", "cloud", "phone", "story"}) {
        EXPECT_TRUE(whole.contains(key)) << key;
    }
    ListeningPage second{port};
    EXPECT_EQ(second.next().size(), whole.size());
    EXPECT_EQ(post("action", R"({"music": "play"})"), 204);
    EXPECT_EQ(post("action", R"("unplug")"), 204);
    const auto untilBattery = [](ListeningPage& listening) {
        for (Json change = listening.next(); !change.is_null(); change = listening.next()) {
            EXPECT_FALSE(change.contains("run") || change.contains("menuBar")) << "nothing of it has changed";
            if (change.contains("hardware") && change["hardware"]["power"] == "battery") {
                return change;
            }
        }
        return Json(nullptr);
    };
    const Json heard = untilBattery(first);
    EXPECT_FALSE(heard.is_null());
    EXPECT_EQ(heard, untilBattery(second));
    ListeningPage again{port};
    const Json anew = again.next();
    EXPECT_EQ(anew.size(), whole.size());
    EXPECT_EQ(anew["hardware"]["power"], "battery");
    EXPECT_EQ(anew["story"]["from"], 0);
}

TEST_F(PageServerThreads, APageThatStopsReadingHoldsUpNobodyAndTakesNoMemory)
{
    RawVisitor stalled{port, 4096};
    stalled.send("GET /api/events HTTP/1.1\r\nHost: " + host + cookieLine + "\r\n\r\n");
    stalled.read("data: ");
    ListeningPage reading{port};
    reading.next();
    EXPECT_EQ(mac.hub().subscribers(), 2U);
    const std::string large = '"' + std::string(std::size_t{1} << 20, 'x') + '"';
    mac.hub().publish("large", large);
    ASSERT_EQ(reading.nextText("large").size(), large.size());
    for (int count = 0; count < 20; ++count) {
        mac.hub().publish("large", large);
        ASSERT_EQ(reading.nextText("large").size(), large.size());
    }
    EXPECT_EQ(mac.hub().subscribers(), 1U) << "what waits for the stalled page has grown beyond its bound";
    EXPECT_EQ(post("action", R"("unplug")"), 204);
    EXPECT_TRUE(reading.hears("hardware", Json::json_pointer{"/power"}, "battery"));
}

TEST_F(PageServerThreads, OnlySoManyPagesListenAndOneThatLeavesMakesRoom)
{
    std::vector<std::unique_ptr<ListeningPage>> pages;
    for (std::size_t count = 0; count < EventHub::mostSubscribers; ++count) {
        ASSERT_EQ(pages.emplace_back(std::make_unique<ListeningPage>(port))->status(), 200);
    }
    EXPECT_EQ(page.Get("/api/events")->status, 429);
    EXPECT_EQ(post("menu", R"({"open": true})"), 204);
    pages.pop_back();
    EXPECT_TRUE(becomesTrue([this] { return ListeningPage{port}.status() == 200; }));
}

TEST_F(PageServerThreads, WhoeverIsConnectedItEndsAtOnce)
{
    ListeningPage listening{port};
    RawVisitor stalled{port, 4096};
    stalled.send("GET /api/events HTTP/1.1\r\nHost: " + host + cookieLine + "\r\n\r\n");
    stalled.read("data: ");
    mac.hub().publish("large", std::string(std::size_t{4} << 20, 'x'));
    RawVisitor half{port};
    half.send("GET / HT");
    RawVisitor silent{port};
    EXPECT_EQ(page.Get("/")->status, 200); // and its connection stays open
    const auto start = Clock::now();
    end();
    EXPECT_LT(Clock::now() - start, atOnce);
    EXPECT_EQ(half.read(), "");
}

TEST_F(PageServerThreads, HalfRequestsAndEndlessOnesHoldUpNobody)
{
    // More than there are connections: silent ones, and such that begin a head or a body.
    const std::string beginnings[] = {"", "GET / HTTP/1.1\r\nHost:",
                                      "POST /api/menu HTTP/1.1\r\nHost: " + host + "\r\nOrigin: http://" + host +
                                          cookieLine + "\r\nContent-Length: 9\r\n\r\n{"};
    std::vector<std::unique_ptr<RawVisitor>> slow;
    const auto start = Clock::now();
    for (std::size_t count = 0; count < 400; ++count) {
        slow.push_back(std::make_unique<RawVisitor>(port));
        EXPECT_TRUE(slow.back()->send(beginnings[count % 3]));
    }
    EXPECT_EQ(post("action", R"("unplug")"), 204);
    EXPECT_EQ(slow.front()->read(), "") << "it has made room";
    EXPECT_LT(Clock::now() - start, atOnce);

    RawVisitor endless{port};
    endless.send("GET / HTTP/1.1\r\n");
    int lines = 0;
    while (lines < 100'000 && endless.send("X-Line: " + std::string(1000, 'x') + "\r\n")) {
        ++lines;
    }
    EXPECT_LT(lines, 10'000) << "a head has an end";
    EXPECT_EQ(post("action", R"("plug-in")"), 204);
}

TEST_F(PageServerThreads, OfAWindowThatStaysTheNewContentIsTold)
{
    ListeningPage listening{port};
    std::string room; // where the window's content is told
    const auto nextContent = [&] {
        for (Json state = listening.next(); !state.is_null(); state = listening.next()) {
            if (state.contains("screen") && !state["screen"]["windows"].empty()) {
                room = state["screen"]["windows"][0]["content"];
            }
            if (state.contains(room)) {
                return state[room];
            }
        }
        return Json(nullptr);
    };
    EXPECT_EQ(post("action", R"({"open": "main"})"), 204);
    Json content = nextContent();
    for (const bool isOn : {false, true}) {
        mac.call([isOn](MacSession& session) {
            session.changeSettings([isOn](AlarmSettings& settings) { settings.triggerOnMotion = isOn; });
        });
        const Json before = std::exchange(content, nextContent());
        EXPECT_TRUE(content.is_object());
        EXPECT_NE(content, before);
    }
    const std::string window =
        mac.call([](MacSession& session) { return session.mac().displays.windows().front().identifier; });
    const std::string frame = R"("frame": {"x": 9, "y": 40, "width": 440, "height": 720})";
    EXPECT_EQ(post("window", R"({"do": "move", )" + frame + R"(, "window": ")" + window + "\"}"), 204);
    for (Json state = listening.next(); !state.contains("screen"); state = listening.next()) {
        ASSERT_FALSE(state.is_null());
        if (state.contains(room)) {
            EXPECT_NE(std::exchange(content, state[room]), state[room]) << "it is told only when it has changed";
        }
    }
    EXPECT_EQ(post("window", R"({"do": "close", "window": ")" + window + "\"}"), 204);
    EXPECT_TRUE(listening.hears(room, Json::json_pointer{}, nullptr)) << "pages need not keep what is gone";
}

TEST_F(PageServerThreads, WhatComesTooLateIsRefused)
{
    ListeningPage listening{port};
    EXPECT_EQ(post("launch", "{}"), 409);
    EXPECT_EQ(post("ui", R"({"in": "menu", "node": "armed", "do": "switch", "value": true})"), 409) << "it is closed";
    EXPECT_EQ(post("action", R"({"open": "main"})"), 204);
    ASSERT_TRUE(listening.hears("screen", Json::json_pointer{"/windows/0/isKey"}, true));
    const std::string window =
        mac.call([](MacSession& session) { return session.mac().displays.windows().front().identifier; });
    const std::string closing = R"({"do": "close", "window": ")" + window + "\"}";
    EXPECT_EQ(post("window", closing), 204);
    EXPECT_EQ(post("window", closing), 409);
    EXPECT_EQ(post("ui", R"({"node": "", "do": "press", "in": ")" + window + "\"}"), 409);
    EXPECT_EQ(post("panel", R"({"panel": "login", "answer": "succeed"})"), 409);
    EXPECT_EQ(post("action", R"("quit")"), 204);
    EXPECT_TRUE(listening.hears("run", Json::json_pointer{"/process"}, "ended"));
    EXPECT_EQ(post("menu", R"({"open": true})"), 409);
    EXPECT_EQ(post("launch", "{}"), 204);
    EXPECT_EQ(post("launch", "{}"), 409);
}

} // namespace
} // namespace sentrel::simulation
