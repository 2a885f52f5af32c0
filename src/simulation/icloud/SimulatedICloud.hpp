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

/// One Mac's side of iCloud: the ports and the link to the server. It outlives the product's processes; the server
/// outlives it.
class SimulatedICloud {
public:
    struct Surroundings {
        Scheduler& process;  ///< receives pushes
        Scheduler& hardware; ///< carries the requests
        ports::Journal& journal;
        PrivateCloud& server;
        std::string device;           ///< tells this Mac apart from the server's other devices
        std::filesystem::path assets; ///< a separate folder for downloaded photos; emptied at once
        std::uint64_t seed = 1;       ///< of random faults
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
