#include "simulation/stage/EarlierRun.hpp"

#include "simulation/stage/MacActions.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/Scenario.hpp"

#include <nlohmann/json.hpp>

namespace sentrel::simulation {

bool leaveFromEarlierRun(MacSession& session, const Scenario& scenario)
{
    if (!scenario.settings.empty()) {
        SettingsStore store{session.mainActor(), session.mac().startProcess().defaults};
        store.setSettings(withFields(store.settings(), scenario.settings));
    }
    if (!scenario.mac.passcode) {
        return true;
    }
    const ports::Platform& platform = session.mac().startProcess();
    UnlockPasscodeStore store{platform.keychain, platform.cryptography, platform.random, platform.generalRandom};
    return storePasscode(store, *scenario.mac.passcode);
}

} // namespace sentrel::simulation
