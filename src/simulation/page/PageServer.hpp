#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace sentrel::simulation {

class LiveMac;

/// Serves the page and the simulated MacBook behind it on loopback, to whoever knows the token. Any thread.
class PageServer {
public:
    struct Setup {
        std::filesystem::path web; ///< the page's files
        std::string token;
        int port = 0; ///< 0: any that is free
    };

    PageServer(LiveMac& mac, Setup setup);
    ~PageServer();
    PageServer(const PageServer&) = delete;

    /// Takes the port. False when it is taken already.
    [[nodiscard]] bool bind();
    [[nodiscard]] int port() const;

    /// Answers requests until `stop`.
    void run();

    /// Ends `run`, and every open stream. Safe in any state.
    void stop();

private:
    class Routes;
    std::unique_ptr<Routes> routes_;
};

} // namespace sentrel::simulation
