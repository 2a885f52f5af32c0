#include "simulator/EarlierRun.hpp"

#include "simulator/MacActions.hpp"
#include "simulator/MacSession.hpp"
#include "simulator/Scenario.hpp"

#include <nlohmann/json.hpp>

namespace sentrel::simulator {

bool leaveFromEarlierRun(MacSession& session, const Scenario& scenario)
{
    if (!scenario.settings.empty()) {
        SettingsStore store{session.mainActor(), session.mac().startProcess().defaults};
        store.setSettings(withFields(store.settings(), scenario.settings));
    }
    if (!scenario.mac.passcode) {
        return true;
    }
    const platform::Platform& platform = session.mac().startProcess();
    UnlockPasscodeStore store{platform.keychain, platform.cryptography, platform.random, platform.generalRandom};
    return storePasscode(store, *scenario.mac.passcode);
}

} // namespace sentrel::simulator
