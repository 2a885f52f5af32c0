#pragma once

#include "simulation/page/HttpConnection.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <cstddef>

namespace sentrel::simulation {

/// HTTP/1.1 on loopback. One thread serves all connections and never waits for a client: each read and write has a
/// deadline, and heads, bodies and connections have a limit. At the limit of connections, the one whose request has
/// taken the longest is closed. Bodies must have a length and no encoding.
class HttpServer {
public:
    HttpServer(HttpRoutes& routes, std::size_t largestBody, HttpAnswer::Headers onEveryAnswer);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;

    /// Listens on a port; 0 means any free one. Returns the port, or 0 if another program listens on it.
    [[nodiscard]] int bind(int port);

    /// Serves until `end`; then closes all connections.
    void serve();

    /// Ends `serve`; it can't be restarted. Any thread, any state.
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

} // namespace sentrel::simulation
