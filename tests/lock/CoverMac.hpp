#pragma once

#include "core/SettingsStore.hpp"
#include "lock/PasscodeMac.hpp"
#include "lock/ScreenCoverAlarm.hpp"
#include "lock/ScreenCoverService.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/SimulatedWallClock.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"
#include "simulation/mac/display/SimulatedDisplays.hpp"
#include "simulation/mac/files/DefaultsFile.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "ui/Node.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace sentrel {

/// An alarm that only remembers.
struct RememberingAlarm final : ScreenCoverAlarm {
    [[nodiscard]] bool isArmed() const override { return armed; }
    [[nodiscard]] bool isAlarmActive() const override { return active; }
    void trigger(TriggerReason reason) override { triggers.push_back(reason); }
    void stopAlarm() override
    {
        active = false;
        ++stops;
    }

    bool armed = true;
    bool active = false;
    std::vector<TriggerReason> triggers;
    int stops = 0;
};

/// The part of a simulated MacBook that the screen cover touches, and the person in front of it.
template <class Clocked> struct CoverMac {
    explicit CoverMac(Clocked& ticking) : scheduler(ticking)
    {
        AlarmSettings chosen;
        chosen.failedUnlockAttemptLimit = 100.0;
        settings.setSettings(chosen);
    }

    /// Stores a passcode whose check takes no time to speak of.
    void setPasscode(std::string_view passcode)
    {
        const auto record = passcodes.store.makeRecord(bytesOf(passcode), passcodes.store.makeSalt(), 1);
        if (!record || !passcodes.store.save(record->view())) {
            throw std::runtime_error{"the passcode can't be set"};
        }
    }

    void setTriggering(double limit)
    {
        AlarmSettings chosen = settings.settings();
        chosen.triggerOnFailedUnlock = true;
        chosen.failedUnlockAttemptLimit = limit;
        settings.setSettings(chosen);
    }

    /// The text of a cover's message.
    [[nodiscard]] std::string message(std::size_t index = 0) const
    {
        const auto covers = displays.covers();
        const auto node = index < covers.size() ? ui::find(covers[index].content, "message") : std::nullopt;
        return node ? ui::visibleText(*node->view) : "no cover";
    }

    /// How many characters a cover's field holds.
    [[nodiscard]] std::size_t typedLength(std::size_t index = 0) const
    {
        const auto covers = displays.covers();
        const auto node = ui::find(covers.at(index).content, "passcode");
        return ui::elementOf<ui::SecureField>(*node->view)->text.value.view().size();
    }

    [[nodiscard]] std::vector<std::string> outcomes() const
    {
        std::vector<std::string> noted;
        for (const auto& event : journal.named("passcode")) {
            noted.emplace_back(event.text("outcome"));
        }
        return noted;
    }

    std::unique_ptr<ScreenCoverService> makeService()
    {
        return std::make_unique<ScreenCoverService>(
            main, alarm, passcodes.store, settings,
            ScreenCoverService::Ports{displays, displays, activation, wallClock, language, journal});
    }

    Clocked& scheduler;
    MainActor main{scheduler};
    simulation::EventLog journal{scheduler};
    PasscodeMac passcodes;
    simulation::DefaultsFile defaults{passcodes.files, journal, passcodes.disk.path(), "pelma.Sentrel"};
    SettingsStore settings{main, defaults};
    simulation::SimulatedApplicationActivation activation;
    simulation::SimulatedDisplays displays{scheduler, journal, activation};
    simulation::SimulatedWallClock wallClock{scheduler, Date{800'000'000.0}};
    simulation::IcuLanguage language{std::filesystem::path{SENTREL_SOURCE_DIR} / "resources", journal};
    RememberingAlarm alarm;
    std::unique_ptr<ScreenCoverService> cover = makeService();
};

} // namespace sentrel
