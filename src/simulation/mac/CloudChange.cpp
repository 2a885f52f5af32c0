#include "simulation/mac/CloudChange.hpp"

#include "simulation/icloud/SimulatedICloud.hpp"

namespace sentrel::simulation {

void apply(const CloudChange& change, SimulatedICloud& iCloud)
{
    if (change.isNetworkUp) {
        iCloud.network.setUp(*change.isNetworkUp);
    }
    if (change.user) {
        iCloud.account.signIn(*change.user);
    }
    if (change.account) {
        iCloud.account.setStatus(*change.account);
    }
    CloudLink& link = iCloud.link;
    if (change.quota) {
        link.server().setQuota(link.device().user, *change.quota);
    }
    if (change.latency) {
        link.setLatency(*change.latency);
    }
    if (change.fault && *change.fault) {
        link.faults().add(**change.fault);
    } else if (change.fault) {
        link.faults().clear();
    }
    if (change.lostAnswers) {
        link.faults().loseAnswers(change.lostAnswers->times, change.lostAnswers->operation);
    }
}

} // namespace sentrel::simulation
