#include "selftest/SelfTest.hpp"

#include "runtime/Detached.hpp"
#include "runtime/Semaphore.hpp"
#include "selftest/Steps.hpp"

#include <algorithm>
#include <array>
#include <exception>
#include <memory>

namespace sentrel::selftest {

namespace {

using namespace std::chrono_literals;
using Place = Step::Place;

constexpr Duration quick = 5s;
constexpr Duration byPerson = 60s;

// From what needs nobody to what asks somebody: an answer that is missing then costs the least.
constexpr Step steps[] = {
    {"Computer", Place::anyThread, quick, "Sentrel runs on MacBooks with macOS 14 or later.", "Which Mac is this?",
     checkComputer},
    {"System texts", Place::anyThread, quick,
     "This version of macOS calls things by other names; what depends on them stays silent.", "", checkSystemTexts},
    {"Power", Place::mainThread, quick, "Pulling out the charger is not noticed.",
     "Is the charger plugged in, or does this Mac have no battery?", checkPower},
    {"Lid", Place::anyThread, quick, "Closing the lid is not noticed.", "Is the lid closed, with a display connected?",
     checkLid},
    {"Motion", Place::anyThread, 10s,
     "Moving this Mac is not noticed. The charger, the lid and the lock screen are watched all the same.", "",
     checkMotion},
    {"Audio devices", Place::anyThread, quick,
     "The alarm can't turn the built-in speaker up: it is as loud as the speaker happens to be.", "",
     checkAudioDevices},
    {"Tone", Place::anyThread, 10s, "The alarm falls back to the system's beep.", "Did you hear a tone of a second?",
     checkTone},
    {"Screens", Place::mainThread, quick, "The lock screen can't cover the display.", "", checkScreens},
    {"Keychain", Place::anyThread, byPerson, "The unlock passcode can't be kept: the lock screen stays off.", "",
     checkKeychain},
    {"Login item", Place::mainThread, quick, "Sentrel doesn't start with the Mac.", "", checkLoginItem},
    {"Network", Place::mainThread, quick, "A network that comes back isn't noticed at once.", "Is this Mac offline?",
     checkNetwork},
    {"iCloud account", Place::mainThread, 20s, "Alerts stay on this Mac.",
     "Is this build meant to use iCloud, and is this Mac signed in to an Apple Account?", checkCloudAccount},
    {"iCloud record", Place::mainThread, 40s, "Alerts stay on this Mac until iCloud takes them.",
     "Is this build meant to use iCloud?", checkCloudRecord},
    {"Music", Place::anyThread, byPerson, "Music plays on beside the alarm.",
     "Does Music run, and may this program control it (System Settings, Privacy & Security, Automation)?", checkMusic},
    {"Photo", Place::anyThread, 90s, "Alerts have no photo.",
     "May this program use the camera (System Settings, Privacy & Security, Camera)?", checkPhoto},
    {"Login panel", Place::mainThread, byPerson,
     "Nobody can confirm being the owner: disarming and the settings stay shut.", "Did you cancel the panel?",
     checkLogin},
};

/// A step's answer, shared by the step and the wait for it.
struct Answer {
    Semaphore arrived;
    Outcome outcome{Verdict::fail, "the system raised an exception"};
};

Async<void> answer(std::shared_ptr<Answer> to, const Bench& bench, const Step& step)
{
    try {
        Outcome outcome = co_await step.run(bench);
        to->outcome = std::move(outcome);
    } catch (const std::exception& error) {
        to->outcome.fact = error.what();
    } catch (...) {
        // An exception of the system keeps the outcome that says so.
    }
    to->arrived.signal();
}

Async<Outcome> runBounded(const Bench& bench, const Step& step)
{
    Scheduler& scheduler = bench.platform.scheduler;
    const auto answered = std::make_shared<Answer>();
    const Task<void> task = step.place == Place::mainThread
                                ? MainActor{scheduler}.spawn(answer(answered, bench, step))
                                : detached(scheduler, QualityOfService::userInitiated, answer(answered, bench, step));
    const bool hasAnswer = co_await answered->arrived.waitUntil(scheduler.now() + step.limit);
    if (!hasAnswer) {
        task.cancel();
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(step.limit).count();
        co_return Outcome{Verdict::fail, "no answer within " + std::to_string(seconds) + " s"};
    }
    co_return answered->outcome;
}

const char* nameOf(Verdict verdict)
{
    constexpr std::array names{"PASS", "FAIL", "ASK "};
    return names.at(static_cast<std::size_t>(verdict));
}

} // namespace

Async<std::vector<Finding>> SelfTest::run(std::function<void(const Finding&)> found)
{
    const Bench bench{platform_, differingTexts_};
    std::vector<Finding> findings;
    for (const Step& step : steps) {
        Outcome outcome = co_await runBounded(bench, step);
        const char* const advice = outcome.verdict == Verdict::fail  ? step.meaning
                                   : outcome.verdict == Verdict::ask ? step.question
                                                                     : "";
        findings.push_back({outcome.verdict, step.title, std::move(outcome.fact), advice});
        found(findings.back());
    }
    co_return findings;
}

bool hasFailed(const std::vector<Finding>& findings)
{
    return std::ranges::find(findings, Verdict::fail, &Finding::verdict) != findings.end();
}

std::string textOf(const Finding& finding)
{
    constexpr std::size_t titleWidth = 16;
    std::string title = finding.title;
    title.resize(std::max(title.size(), titleWidth), ' ');
    std::string text = std::string{nameOf(finding.verdict)} + "  " + title + finding.fact + "\n";
    if (!finding.advice.empty()) {
        text += "      " + finding.advice + "\n";
    }
    return text;
}

std::string heading()
{
    return "Sentrel self-test. Put this page into a bug report, with your answers to what says ASK.\n"
           "It holds the names of audio devices and no other name, no photo, no passcode and no account.\n\n";
}

std::string summary(const std::vector<Finding>& findings)
{
    const auto count = [&](Verdict verdict) {
        return std::to_string(std::ranges::count(findings, verdict, &Finding::verdict));
    };
    return "\n" + count(Verdict::pass) + " passed, " + count(Verdict::fail) + " failed, " + count(Verdict::ask) +
           " to answer\n";
}

} // namespace sentrel::selftest
