#pragma once

#include "simulator/serve/HttpConnection.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <cstddef>

namespace sentrel::simulator {

/// HTTP/1.1 on loopback. One thread serves all connections and never waits for a client: each read and write has a
/// deadline, heads, bodies and connections have a limit, and when the connections are used up, the one that has taken
/// the longest with its request makes room. Bodies must have a length and no encoding.
class HttpServer {
public:
    HttpServer(HttpRoutes& routes, std::size_t largestBody, HttpAnswer::Headers onEveryAnswer);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;

    /// Takes a port; 0 means any that is free. Returns the port, or 0 when another program listens on it.
    [[nodiscard]] int bind(int port);

    /// Serves until `end`; then closes all connections.
    void serve();

    /// Ends `serve`, for good. Any thread, any state.
    void end();

private:
    void accept();
    void admit(boost::asio::ip::tcp::socket socket);
    void makeRoom();
    void closeAll();

    HttpConnection::Service service_;
    boost::asio::io_context context_{1};
    boost::asio::ip::tcp::acceptor acceptor_{context_};
    boost::asio::steady_timer pause_{context_};
};

} // namespace sentrel::simulator
