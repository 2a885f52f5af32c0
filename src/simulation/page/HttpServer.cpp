#include "simulation/page/HttpServer.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sentrel::simulation {

namespace {

using boost::asio::ip::tcp;
using boost::beast::error_code;

constexpr std::size_t mostConnections = 256;
constexpr std::size_t mostAtOnce = mostConnections / 4; // so that new connections do not close each other unheard
constexpr int mostArriving = 512;                       // connections that the system queues until they are accepted
constexpr std::chrono::milliseconds pauseAfterFailure{100};

} // namespace

HttpServer::HttpServer(HttpRoutes& routes, std::size_t largestBody, HttpAnswer::Headers onEveryAnswer)
    : service_{.routes = routes, .largestBody = largestBody, .onEveryAnswer = std::move(onEveryAnswer)}
{
}

HttpServer::~HttpServer()
{
    closeAll();
}

int HttpServer::bind(int port)
{
    const tcp::endpoint place{boost::asio::ip::address_v4::loopback(), static_cast<unsigned short>(port)};
    error_code error;
    acceptor_.open(place.protocol(), error);
    // A port with connections in TIME_WAIT can be bound; one with a listener can't.
    acceptor_.set_option(tcp::acceptor::reuse_address(true), error);
    acceptor_.bind(place, error);
    if (!error) {
        acceptor_.listen(mostArriving, error);
        acceptor_.non_blocking(true);
    }
    return error ? 0 : acceptor_.local_endpoint().port();
}

/// Accepts up to `mostAtOnce` connections at a time, so that clients that arrive together are served together.
void HttpServer::accept()
{
    acceptor_.async_wait(tcp::acceptor::wait_read, [this](error_code error) {
        for (std::size_t count = 0; count < mostAtOnce && !error; ++count) {
            tcp::socket socket{context_};
            acceptor_.accept(socket, error);
            if (!error) {
                admit(std::move(socket));
            }
        }
        if (!error || error == boost::asio::error::would_block) {
            return accept();
        }
        makeRoom(); // out of descriptors
        pause_.expires_after(pauseAfterFailure);
        pause_.async_wait([this](const error_code& ended) { ended ? void() : accept(); });
    });
}

void HttpServer::admit(tcp::socket socket)
{
    if (service_.connections.size() >= mostConnections) {
        makeRoom();
    }
    if (service_.connections.size() >= mostConnections) {
        return;
    }
    error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    const auto connection = std::make_shared<HttpConnection>(service_, std::move(socket));
    service_.connections.insert(connection);
    connection->awaitRequest();
}

/// Closes the connection whose request began first, so that slow clients give way to later ones. Streams stay: they
/// have a limit of their own.
void HttpServer::makeRoom()
{
    const auto since = [](const auto& each) { return each->since(); };
    const auto longest = std::ranges::min_element(service_.connections, {}, since);
    if (longest != service_.connections.end() && since(*longest) != std::chrono::steady_clock::time_point::max()) {
        const auto connection = *longest;
        connection->close();
    }
}

void HttpServer::closeAll()
{
    error_code ignored;
    acceptor_.close(ignored);
    while (!service_.connections.empty()) {
        const auto connection = *service_.connections.begin();
        connection->close();
    }
}

void HttpServer::serve()
{
    accept();
    context_.run();
    closeAll();
}

void HttpServer::end()
{
    context_.stop();
}

} // namespace sentrel::simulation
