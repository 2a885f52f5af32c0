#pragma once

#include "simulator/serve/ConnectionStream.hpp"
#include "simulator/serve/Connections.hpp"

#include <atomic>
#include <cstddef>
#include <httplib.h>

namespace sentrel::simulator {

/// A server of HTTP on loopback that nobody holds up: neither who sends half of a request, or one without end, nor who
/// doesn't read the answer, nor who opens connections and is silent. Bodies have a length and are not packed; answers
/// come whole and as they are.
class HttpServer final : public httplib::Server {
public:
    explicit HttpServer(std::size_t largestBody);

    /// Takes a port; 0: any that is free. Gives the port, or 0 when it is taken already.
    [[nodiscard]] int bind(int port);

    /// Answers until `end`.
    void serve();

    /// Ends `serve`, and each connection, at once. Safe in any state.
    void end();

private:
    bool process_and_close_socket(socket_t socket) override;
    [[nodiscard]] bool answerOne(ConnectionStream& stream, bool isLast);

    const std::size_t largestBody_;
    Connections connections_;
    std::atomic<bool> isServing_ = false;
};

} // namespace sentrel::simulator
