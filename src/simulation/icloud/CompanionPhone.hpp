#pragma once

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"
#include "foundation/Json.hpp"
#include "ports/Registration.hpp"
#include "simulation/Guarded.hpp"
#include "simulation/icloud/ServerRecord.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::ports {
class WallClock;
}

namespace sentrel::simulation {

class PrivateCloud;

/// The companion phone and its application: another device of an account, always online and without latency. It talks
/// to the Macs only through records. Requests throw `CloudError`. Any thread.
class CompanionPhone {
public:
    struct Alert {
        std::string id;
        std::string reason;
        std::string triggerName;
        std::string deviceName;
        Date timestamp{};
        bool sendNotification = true;
        std::optional<Bytes> photo; ///< JPEG
    };

    struct Mac {
        std::string deviceID;
        std::string deviceName;
        bool isArmed = false;
        bool isCompatible = false;
        Date lastSeen{};
    };

    /// A notification that the phone has shown.
    struct Notification {
        std::string text;
        std::string alertID;
        Date date{}; ///< when it was shown
    };

    /// A command of the phone's owner to a Mac.
    struct Command {
        bool arm = true;
        std::optional<std::int64_t> sequence{}; ///< none: one more than the last that was sent to the Mac
        double issuedAgo = 0.0;                 ///< seconds before now
    };

    CompanionPhone(PrivateCloud& cloud, ports::WallClock& clock, std::string user, std::string device = "phone");
    CompanionPhone(const CompanionPhone&) = delete;

    /// Switches to another account. Keeps the notifications shown.
    void signIn(std::string user) { state_->user = std::move(user); }

    /// Every alert that it can decode, newest first, with its photo.
    [[nodiscard]] std::vector<Alert> alerts();

    /// The catalog's Macs with a valid record, in its order.
    [[nodiscard]] std::vector<Mac> macs();

    /// The notifications shown so far, oldest first.
    [[nodiscard]] std::vector<Notification> notifications() const { return state_->notifications; }

    /// Sets the callback for each notification shown; it runs on the thread that wrote the record.
    void onNotification(std::function<void(const Notification&)> shown) { state_->shown = std::move(shown); }

    /// Writes the command for the Mac; returns its sequence.
    std::int64_t send(const std::string& deviceID, const Command& command);

private:
    struct State {
        std::string user;
        std::vector<Notification> notifications;
        std::function<void(const Notification&)> shown;
    };

    [[nodiscard]] std::string user() const { return state_->user; }
    [[nodiscard]] std::optional<ServerRecord> read(const std::string& name);
    void receive(const std::string& user, const Json& push);

    PrivateCloud& cloud_;
    ports::WallClock& clock_;
    const std::string device_;
    Guarded<State> state_;
    ports::RegistrationPtr pushes_; // last: no push arrives after the other members end
};

} // namespace sentrel::simulation
