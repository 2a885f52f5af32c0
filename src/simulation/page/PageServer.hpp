#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace sentrel::simulation {

class LiveMac;

/// Serves the page and its simulated MacBook on loopback, to clients with the token. Any thread.
class PageServer {
public:
    struct Setup {
        std::filesystem::path web; ///< the page's files
        std::string token;
        int port = 0; ///< 0: any free one
    };

    PageServer(LiveMac& mac, Setup setup);
    ~PageServer();
    PageServer(const PageServer&) = delete;

    /// Listens on the port. False if it is in use.
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
