#pragma once

#include "simulation/icloud/CloudLink.hpp"
#include "simulation/icloud/SimulatedCloudAccount.hpp"
#include "simulation/icloud/SimulatedCloudDatabase.hpp"
#include "simulation/icloud/SimulatedNetwork.hpp"
#include "simulation/icloud/SimulatedRemoteNotifications.hpp"

#include <cstdint>
#include <filesystem>
#include <string>

namespace sentrel::simulation {

/// What of iCloud is on one Mac: the ports and the way to the server. It outlives the product's processes; the server
/// outlives it.
class SimulatedICloud {
public:
    struct Surroundings {
        Scheduler& process;  ///< hears of pushes
        Scheduler& hardware; ///< carries the requests
        ports::Journal& journal;
        PrivateCloud& server;
        std::string device;           ///< tells this Mac apart from the server's other devices
        std::filesystem::path assets; ///< a folder of its own, for downloaded photos; emptied at once
        std::uint64_t seed = 1;       ///< of what goes wrong at random
    };

    explicit SimulatedICloud(const Surroundings& around)
        : link(around.hardware, around.journal, around.server, network, around.device, around.seed),
          account(link),
          database(link, around.assets),
          notifications(link, around.process)
    {
    }

    SimulatedNetwork network;
    CloudLink link;
    SimulatedCloudAccount account;
    SimulatedCloudDatabase database;
    SimulatedRemoteNotifications notifications;
};

} // namespace sentrel::simulation
