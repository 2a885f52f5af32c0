#include "simulation/stage/MacActions.hpp"

#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/NearestWord.hpp"
#include "simulation/stage/Person.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <unordered_set>

namespace sentrel::simulation {

namespace {

void setArmed(MacSession& session, bool isArmed)
{
    session.changeSettings([isArmed](AlarmSettings& settings) { settings.isArmed = isArmed; });
}

/// The identifiers of the chosen rows; the list is sorted newest first.
std::unordered_set<UUID> chosen(const std::vector<AlertRow>& rows, DeleteAlerts::Which which)
{
    std::unordered_set<UUID> ids;
    for (const AlertRow& row : rows) {
        ids.insert(row.alert.id);
    }
    if (which != DeleteAlerts::Which::all && !rows.empty()) {
        ids = {(which == DeleteAlerts::Which::newest ? rows.front() : rows.back()).alert.id};
    }
    return ids;
}

/// One overload for each kind of action.
class Performer {
public:
    explicit Performer(MacSession& session) : session_(session) {}

    void operator()(PlainAction action) const
    {
        switch (action) {
        case PlainAction::arm:
            return setArmed(session_, true);
        case PlainAction::disarm:
            return setArmed(session_, false);
        case PlainAction::stopAlarm:
            return session_.stopAlarm();
        case PlainAction::unplug:
            return session_.mac().power.setAC(false);
        case PlainAction::plugIn:
            return session_.mac().power.setAC(true);
        case PlainAction::closeLid:
            return session_.closeLid();
        case PlainAction::openLid:
            return session_.openLid();
        case PlainAction::screensSleep:
            return session_.sleepScreens();
        case PlainAction::crash:
            return session_.crash();
        case PlainAction::relaunch:
            return session_.relaunch();
        case PlainAction::sleep:
            return session_.sleep();
        case PlainAction::wake:
            return session_.wake();
        case PlainAction::quit:
            return session_.quit();
        case PlainAction::refresh:
            return session_.onMain([](SentrelApp& app) { app.alertsService().startRefresh(); });
        }
    }

    void operator()(const SetPower& action) const
    {
        if (action.power == MacDescription::Power::unknown) {
            session_.mac().power.setUnknown();
        } else {
            session_.mac().power.setAC(action.power == MacDescription::Power::ac);
        }
    }

    void operator()(const MoveMachine& action) const
    {
        session_.mac().accelerometer.sample({action.x, action.y, action.z});
    }

    void operator()(const PlayRecording& action) const { session_.mac().accelerometer.play(action.recording); }

    void operator()(const RestMachine& action) const { session_.mac().accelerometer.setResting(action.isResting); }

    void operator()(const ChangeSettings& action) const
    {
        session_.changeSettings([&action](AlarmSettings& settings) { settings = withFields(settings, action.fields); });
    }

    void operator()(const SetVolume& action) const
    {
        const auto volume = action.value ? std::optional{static_cast<float>(*action.value)} : std::nullopt;
        session_.mac().audio.setVolume(action.device, volume, action.muted);
    }

    void operator()(const SetDefaultOutput& action) const { session_.mac().audio.setDefaultOutput(action.device); }

    void operator()(const RemoveAudioDevice& action) const { session_.mac().audio.remove(action.device); }

    void operator()(const UseMusic& action) const
    {
        switch (action.use) {
        case UseMusic::Use::play:
            return session_.mac().music.play();
        case UseMusic::Use::pause:
            return session_.mac().music.pause();
        case UseMusic::Use::quit:
            return session_.mac().music.quit();
        }
    }

    void operator()(const FailPorts& action) const
    {
        auto all = session_.mac().faults();
        for (const FailPort& failing : action.ports) {
            const auto port = std::ranges::find_if(all, [&](const auto& known) { return known.first == failing.port; });
            if (port == all.end()) {
                continue; // refused before the play began
            }
            if (failing.faults.empty()) {
                port->second->clear();
            }
            for (const FailPort::Fault& fault : failing.faults) {
                port->second->set(fault.name, fault.times);
            }
        }
    }

    void operator()(const PlanFault& action) const
    {
        if (!action.fault) {
            session_.plannedFaults().clear();
            session_.mac().files.restorePower();
            return;
        }
        if (action.fault->fate == CallFault::Fate::losesPower) {
            // The disk remembers from now on what a power cut may lose.
            session_.mac().files.cutPowerAfter(std::numeric_limits<std::uint64_t>::max());
        }
        session_.plannedFaults().add(*action.fault);
    }

    void operator()(const MoveClock& action) const { session_.mac().wallClock.move(action.seconds); }

    void operator()(const ChangeCamera& action) const { apply(action.change, session_.mac().camera); }

    void operator()(const ChangeKeychain& action) const
    {
        SimulatedKeychain& keychain = session_.mac().keychain;
        if (action.dataProtection) {
            keychain.setAccess(KeychainStore::dataProtection, *action.dataProtection);
        }
        if (action.legacy) {
            keychain.setAccess(KeychainStore::legacy, *action.legacy);
        }
        if (action.fail) {
            (*this)(FailPorts{{*action.fail}});
        }
    }

    void operator()(const AnswerLogin& action) const { session_.mac().login.setAnswer(action.answer); }

    void operator()(const SetPasscode& action) const { session_.setPasscode(action.passcode); }

    void operator()(const TypePasscode& action) const { session_.typePasscode(action.passcode); }

    void operator()(const SetDisplays& action) const { session_.mac().displays.setCount(action.count); }

    void operator()(const ChangeCloud& action) const { apply(action.change, session_.mac().iCloud); }

    void operator()(const UsePhone& action) const { session_.commandByPhone(action.command); }

    void operator()(const DeleteAlerts& action) const
    {
        session_.onMain([&action](SentrelApp& app) {
            app.alertsService().deleteAlerts(chosen(*app.alertsService().alerts.get(), action.which));
        });
    }

private:
    MacSession& session_;
};

/// An unknown word among names that are only known at run time.
std::string unknownName(std::string_view what, std::string_view word, const std::vector<std::string>& known)
{
    const std::vector<std::string_view> words{known.begin(), known.end()};
    return unknownWord(what, word, words);
}

/// Finds what is wrong with an action on this MacBook.
class Objector {
public:
    explicit Objector(MacSession& session) : session_(session) {}

    template <class Other> std::string operator()(const Other& /*action*/) const { return {}; }
    std::string operator()(const SetVolume& action) const { return unknownDevice(action.device); }
    std::string operator()(const RemoveAudioDevice& action) const { return unknownDevice(action.device); }
    std::string operator()(const SetDefaultOutput& action) const
    {
        return action.device ? unknownDevice(*action.device) : std::string{};
    }

    std::string operator()(const FailPorts& action) const
    {
        const auto all = session_.mac().faults();
        std::vector<std::string> ports;
        for (const auto& [name, faults] : all) {
            ports.push_back(name);
        }
        for (const FailPort& failing : action.ports) {
            const auto place = std::ranges::find(ports, failing.port);
            if (place == ports.end()) {
                return unknownName("port", failing.port, ports);
            }
            const auto known = all[static_cast<std::size_t>(place - ports.begin())].second->names();
            for (const FailPort::Fault& fault : failing.faults) {
                if (std::ranges::find(known, fault.name) == known.end()) {
                    return unknownName("fault of " + failing.port, fault.name, known);
                }
            }
        }
        return {};
    }

    std::string operator()(const PlanFault& action) const
    {
        std::vector<std::string> ports;
        for (const auto& [name, faults] : session_.mac().faults()) {
            ports.push_back(name);
        }
        const bool isKnown = !action.fault || std::ranges::find(ports, action.fault->port) != ports.end();
        return isKnown ? std::string{} : unknownName("port", action.fault->port, ports);
    }

    std::string operator()(const ChangeKeychain& action) const
    {
        return action.fail ? (*this)(FailPorts{{*action.fail}}) : std::string{};
    }

private:
    [[nodiscard]] std::string unknownDevice(std::uint32_t id) const
    {
        std::vector<std::string> known;
        for (const AudioDevice& device : session_.mac().audio.devices()) {
            if (device.id == id) {
                return {};
            }
            known.push_back(std::to_string(device.id));
        }
        return unknownName("audio device", std::to_string(id), known);
    }

    MacSession& session_;
};

} // namespace

AlarmSettings withFields(AlarmSettings settings, const Json& fields)
{
    Json document = encodeAlarmSettings(settings);
    document.update(fields);
    return decodeAlarmSettings(document).value_or(settings);
}

std::string perform(MacSession& session, const Action& action)
{
    const auto carryOut = [&session](const auto& each) -> std::string {
        if constexpr (requires(const Person& person) { person.perform(each); }) {
            return Person{session}.perform(each);
        } else {
            Performer{session}(each);
            return {};
        }
    };
    std::string why = std::visit(carryOut, action);
    session.clock().runReady();
    return why;
}

std::string objection(MacSession& session, const Action& action)
{
    return std::visit(Objector{session}, action);
}

} // namespace sentrel::simulation
