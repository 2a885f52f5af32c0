#include "simulation/storm/Occasion.hpp"

#include <algorithm>
#include <iterator>

namespace sentrel::simulation {

namespace {

/// Thefts, and the Mac that waits for them.
std::vector<Occasion> alarms()
{
    return {
        {.name = "rest", .setup = {}, .acts = {{70'000, "{volume: {device: 73, value: 0.4}}"}}, .after = {}},
        {.name = "launch",
         .setup = {},
         .acts = {{0, "crash"}, {1000, "relaunch"}, {6000, "arm"}, {3000, "arm"}},
         .after = {}},
        {.name = "arming",
         .setup = {{0, "disarm"}},
         .acts = {{2000, "arm"}, {3000, "disarm"}, {2000, "{menu: armed}"}, {3000, "arm"}},
         .after = {}},
        {.name = "alarm",
         .setup = {{0, "{music: play}"}},
         .acts = {{0, "unplug"}, {9000, "plug-in"}, {1000, "stop-alarm"}, {4000, "arm"}},
         .after = {}},
        {.name = "stop",
         .setup = {{0, "{login: succeed}"}, {0, "unplug"}},
         .acts = {{9000, "{menu: stopAlarm}"}, {3000, "{menu: stopAlarm}"}, {3000, "plug-in"}},
         .after = {{0, "{login: cancel}"}, {0, "stop-alarm"}, {0, "plug-in"}, {0, "arm"}}},
        {.name = "photo",
         .setup = {{0, "{camera: {devices: built-in, authorization: authorized, share: 16}}"},
                   {0, "{set: {capturePhoto: true}}"}},
         .acts = {{0, "unplug"}, {12'000, "plug-in"}, {1000, "stop-alarm"}, {4000, "arm"}},
         .after = {{0, "{set: {capturePhoto: false}}"}}},
        {.name = "permission",
         .setup = {{0, "{camera: {devices: built-in, authorization: notDetermined}}"}, {0, "disarm"}},
         .acts = {{0, "{set: {capturePhoto: true}}"},
                  {1000, "arm"},
                  {2000, "{camera: {authorization: authorized}}"},
                  {3000, "arm"}},
         .after = {{0, "{camera: {authorization: authorized}}"}, {0, "{set: {capturePhoto: false}}"}}},
        {.name = "lid",
         .setup = {{0, "{set: {triggerOnLidClosed: true}}"}},
         .acts = {{3000, "close-lid"}, {5000, "open-lid"}, {1000, "stop-alarm"}, {4000, "arm"}},
         .after = {}},
        {.name = "motion",
         .setup = {{0, "{set: {triggerOnMotion: true}}"}, {0, "disarm"}},
         .acts = {{1000, "arm"},
                  {1000, "{accelerometer: {sample: [0, 0, 1]}}"},
                  {20, "{accelerometer: {sample: [0.6, 0.2, 1.5]}}"},
                  {5000, "{accelerometer: {sample: [0, 0, 1]}}"},
                  {0, "stop-alarm"},
                  {2000, "disarm"},
                  {1000, "arm"}},
         .after = {}},
    };
}

/// Alarms on a Mac on which something has failed before: what the product does then can fail, too.
std::vector<Occasion> hardAlarms()
{
    return {
        {.name = "beeps",
         .setup = {{0, "{fail: {audio-engine: {start: 30}}}"}},
         .acts = {{0, "unplug"}, {6000, "plug-in"}, {1000, "stop-alarm"}, {3000, "arm"}},
         .after = {{0, "{fail: {audio-engine: none}}"}}},
        {.name = "no music",
         .setup = {{0, "{fail: {music: {consent: 1}}}"}, {0, "{music: play}"}},
         .acts = {{0, "unplug"}, {5000, "plug-in"}, {1000, "stop-alarm"}, {2000, "arm"}},
         .after = {}},
        {.name = "music that no script pauses",
         .setup = {{0, "{fail: {music: {script: 1}}}"}, {0, "{music: play}"}},
         .acts = {{0, "unplug"}, {5000, "plug-in"}, {1000, "stop-alarm"}, {2000, "arm"}},
         .after = {{0, "{fail: {music: none}}"}}},
        {.name = "no login",
         .setup = {{0, "{login: unavailable}"}, {0, "unplug"}},
         .acts = {{5000, "{menu: stopAlarm}"}, {4000, "plug-in"}},
         .after = {{0, "{login: cancel}"}, {0, "stop-alarm"}, {0, "arm"}}},
        {.name = "another camera, whose first photo fails",
         .setup = {{0, "{camera: {devices: external, authorization: authorized, share: 16}}"},
                   {0, "{set: {capturePhoto: true}}"},
                   {0, "{fail: {camera: {photo: 1}}}"}},
         .acts = {{0, "unplug"}, {12'000, "plug-in"}, {1000, "stop-alarm"}, {4000, "arm"}},
         .after = {{0, "{fail: {camera: none}}"}, {0, "{camera: built-in}"}, {0, "{set: {capturePhoto: false}}"}}},
        {.name = "crash while sounding",
         .setup = {},
         .acts = {{0, "unplug"}, {3000, "crash"}, {1000, "relaunch"}, {5000, "plug-in"}, {1000, "arm"}},
         .after = {}},
    };
}

/// The lock screen and its passcode.
std::vector<Occasion> lockScreen()
{
    return {
        {.name = "cover",
         .setup = {{0, "disarm"}, {0, "{set: {lockScreenOnArm: true, lockScreenSleepDelay: 5.0}}"}},
         .acts = {{1000, "arm"}, {3000, "{displays: 2}"}, {4000, "{displays: 1}"}, {2000, "disarm"}},
         .after = {{0, "crash"}, {1000, "relaunch"}, {3000, "{set: {lockScreenOnArm: false}}"}, {0, "arm"}},
         .needsPasscode = true},
        {.name = "passcode",
         .setup = {{0, "disarm"}, {0, "{set: {lockScreenOnArm: true, triggerOnFailedUnlock: true}}"}},
         .acts = {{1000, "arm"},
                  {2000, "{type-passcode: \"1111\"}"},
                  {2000, "{type-passcode: \"2468\"}"},
                  {3000, "{type-passcode: \"2468\"}"},
                  {3000, "stop-alarm"}},
         .after = {{0, "crash"}, {1000, "relaunch"}, {3000, "{set: {lockScreenOnArm: false}}"}, {0, "arm"}},
         .needsPasscode = true,
         .isSlow = true},
        {.name = "new passcode",
         .setup = {},
         .acts = {{0, "{set-passcode: \"2468\"}"}, {1000, "arm"}},
         .after = {},
         .isSlow = true},
        {.name = "no passcode any more",
         .setup = {{0, "disarm"}, {0, "{login: succeed}"}, {0, "{open: main}"}},
         .acts = {{1000, "{click: Remove}"},
                  {1000, "{click: Remove Passcode}"},
                  {2000, "{set-passcode: \"2468\"}"},
                  {1000, "arm"}},
         .after = {{0, "{close: main}"}, {0, "{login: cancel}"}, {0, "{set-passcode: \"2468\"}"}},
         .needsPasscode = true,
         .isSlow = true},
    };
}

/// Windows, iCloud, the machine and its processes.
std::vector<Occasion> ownersDays()
{
    return {
        {.name = "windows",
         .setup = {{0, "{login: succeed}"}},
         .acts = {{0, "{menu: open}"},
                  {500, "{menu: close}"},
                  {500, "{open: main}"},
                  {500, "{click: On failed unlock}"},
                  {500, "{click: On failed unlock}"},
                  {500, "{menu: openAtLogin}"},
                  {500, "{menu: openAtLogin}"},
                  {500, "{close: main}"}},
         .after = {{0, "{close: main}"}, {0, "{login: cancel}"}}},
        {.name = "list",
         .setup = {{0, "{login: succeed}"},
                   {0, "{camera: {devices: built-in, authorization: authorized, share: 16}}"},
                   {0, "{set: {capturePhoto: true}}"},
                   {0, "arm"},
                   {2000, "unplug"},
                   {9000, "plug-in"},
                   {0, "stop-alarm"},
                   {5000, "{set: {capturePhoto: false}}"},
                   {0, "{save-panel: Downloads}"}},
         .acts = {{0, "{open: alerts}"},
                  {1000, "{select: [0]}"},
                  {2000, "{click: preview}"},
                  {1000, "{press: escape}"},
                  {500, "{click: Download Photo}"},
                  {1000, "{click: Toggle Sidebar}"},
                  {500, "{click: Toggle Sidebar}"},
                  {500, "{press: delete}"},
                  {500, "{click: Cancel}"},
                  {500, "{close: alerts}"}},
         .after = {{0, "{press: escape}"}, {0, "{close: alerts}"}, {0, "{login: cancel}"}}},
        {.name = "list of another month",
         .setup = {{0, "{login: succeed}"},
                   {0, "unplug"},
                   {4000, "plug-in"},
                   {0, "stop-alarm"},
                   {4000, "{clock: {ahead: 1000h}}"}},
         .acts = {{0, "{open: alerts}"}, {1000, "{select: [0]}"}, {500, "{close: alerts}"}},
         .after = {{0, "{close: alerts}"}, {0, "{login: cancel}"}, {0, "{clock: {back: 1000h}}"}}},
        {.name = "deletion",
         .setup = {},
         .acts = {{0, "{delete-alerts: newest}"}, {4000, "refresh"}, {4000, "arm"}},
         .after = {}},
        {.name = "phone",
         .setup = {},
         .acts = {{0, "{phone: disarm}"}, {8000, "{phone: arm}"}, {8000, "arm"}},
         .after = {}},
        {.name = "quit",
         .setup = {{0, "{login: succeed}"}},
         .acts = {{0, "quit"}, {5000, "relaunch"}, {5000, "arm"}},
         .after = {{0, "{login: cancel}"}, {0, "relaunch"}, {4000, "arm"}}},
        {.name = "network",
         .setup = {},
         .acts = {{0, "{network: down}"}, {5000, "{network: up}"}, {9000, "arm"}},
         .after = {{0, "{network: up}"}}},
        {.name = "account",
         .setup = {},
         .acts = {{0, "{icloud: none}"}, {5000, "{icloud: {user: maya, account: available}}"}, {15'000, "arm"}},
         .after = {{0, "{icloud: {user: maya, account: available}}"}}},
        {.name = "other user",
         .setup = {{0, "unplug"}, {9000, "plug-in"}, {0, "stop-alarm"}, {8000, "arm"}},
         .acts = {{0, "{icloud: noor}"}, {28'000, "{icloud: {user: maya, account: available}}"}, {15'000, "arm"}},
         .after = {{0, "{icloud: {user: maya, account: available}}"}}},
        {.name = "sleep", .setup = {}, .acts = {{0, "sleep"}, {60'000, "wake"}, {8000, "arm"}}, .after = {{0, "wake"}}},
    };
}

} // namespace

const std::vector<Occasion>& occasions()
{
    static const std::vector<Occasion> all = [] {
        std::vector<Occasion> together;
        for (std::vector<Occasion> some : {alarms(), hardAlarms(), lockScreen(), ownersDays()}) {
            std::ranges::move(some, std::back_inserter(together));
        }
        return together;
    }();
    return all;
}

} // namespace sentrel::simulation
