#include "simulation/page/ServeCommand.hpp"

#include "simulation/mac/language/IcuCalendar.hpp"
#include "simulation/page/Browser.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/page/PageServer.hpp"
#include "simulation/page/RunDisk.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/story/PlayCommand.hpp"

#include <openssl/rand.h>

#include <pthread.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <thread>

namespace sentrel::simulation {

namespace {

/// 128 random bits as hexadecimal digits.
std::string randomToken()
{
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw std::runtime_error{"the system does not provide random numbers"};
    }
    std::string token;
    for (const unsigned char byte : bytes) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", byte);
        token += digits.data();
    }
    return token;
}

Date today()
{
    const auto since1970 = std::chrono::system_clock::now().time_since_epoch();
    return Date{std::chrono::duration<double>(since1970).count() - Date::secondsFrom1970To2001};
}

/// The signals that end the program, or tell that a process which it has started has ended; awaited, not handled.
sigset_t awaitedSignals()
{
    sigset_t signals{};
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGCHLD);
    return signals;
}

/// Waits until the program is to end. With a browser wanted, opens it first; the user, who has the address, is told if
/// that fails.
void serveUntilEnd(const sigset_t& signals, const std::string& address, bool opensBrowser, std::ostream& out)
{
    constexpr const char* failure = "The browser can't be opened from here; open the address yourself.\n";
    Browser browser;
    if (opensBrowser && !browser.open(address)) {
        out << failure << std::flush;
    }
    for (int signal = SIGCHLD; signal == SIGCHLD;) {
        sigwait(&signals, &signal);
        if (signal == SIGCHLD && browser.hasFailed()) {
            out << failure << std::flush;
        }
    }
}

} // namespace

int run(const ServeCommand& command, std::ostream& out, std::ostream& err)
{
    // Before any thread is created, so that all threads inherit the mask.
    const sigset_t signals = awaitedSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    Scenario scenario;
    try {
        scenario = readScenario(command.scenario);
    } catch (const ScenarioError& error) {
        err << error.what() << '\n';
        return exitUnreadable;
    }
    if (command.language) {
        if (!IcuCalendar::isLocale(*command.language)) {
            err << "sentrel-simulator: --language must be one such as de, fr_CA or zh-Hans\n";
            return exitUnreadable;
        }
        scenario.mac.language = *command.language;
    }
    if (!scenario.mac.timeZone) {
        // A live MacBook shows the host's local time.
        scenario.mac.timeZone = IcuCalendar::machinesTimeZone();
    }
    const RunDisk disk{command.disk};
    LiveMac mac{scenario, disk.path(), command.resources, command.seed, today(), !command.disk};
    const std::string token = command.token.value_or(randomToken());
    PageServer server{mac, {.web = command.web, .token = token, .port = command.port}};
    if (!server.bind()) {
        err << "sentrel-simulator: port " << command.port << " is taken; try another with --port\n";
        return exitUnreadable;
    }
    mac.start();
    std::thread serving{[&server] { server.run(); }};
    const std::string address = "http://127.0.0.1:" + std::to_string(server.port()) + "/?token=" + token;
    out << "The simulated MacBook is at " << address << "\nCtrl-C ends it.\n" << std::flush;
    serveUntilEnd(signals, address, command.opensBrowser, out);
    server.stop();
    serving.join();
    mac.stop();
    return exitAllHeld;
}

} // namespace sentrel::simulation
