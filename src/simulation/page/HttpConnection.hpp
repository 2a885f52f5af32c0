#pragma once

#include "simulation/page/HttpRoutes.hpp"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace sentrel::simulation {

/// One connection: requests and answers in turn, possibly ending with a stream of events. It lives while one of its
/// operations is under way or it is listed as open.
class HttpConnection : public std::enable_shared_from_this<HttpConnection> {
public:
    /// State shared by all connections; it must outlive them.
    struct Service {
        HttpRoutes& routes;
        std::size_t largestBody = 0;
        HttpAnswer::Headers onEveryAnswer;
        std::set<std::shared_ptr<HttpConnection>> connections{}; ///< open connections
    };

    HttpConnection(Service& service, boost::asio::ip::tcp::socket socket);

    /// Waits for the next request; answers requests until the connection ends.
    void awaitRequest();

    /// Ends the connection. Further calls have no effect.
    void close();

    /// When the wait for the latest request began; for a stream the maximal time.
    [[nodiscard]] std::chrono::steady_clock::time_point since() const { return since_; }

private:
    using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

    /// Wraps a handler: keeps this alive, and closes the connection on an error.
    template <class Function> auto then(Function next)
    {
        return [self = shared_from_this(), next](const boost::beast::error_code& error, std::size_t size) {
            return error ? self->close() : next(*self, size);
        };
    }

    void readHead();
    void headIsRead(const boost::beast::error_code& error);
    void readBody();
    void answer(HttpAnswer answer, bool isLast);
    [[nodiscard]] HttpAnswer answerToRequest();
    void sayFarewell();
    void skipRest();
    void beginStream();
    void sendEvents();
    void send(std::shared_ptr<const std::string> event);

    Service& service_;
    boost::beast::tcp_stream stream_;
    boost::asio::steady_timer timer_;
    boost::beast::flat_buffer buffer_;
    std::optional<Parser> parser_;
    HttpRequest request_;
    std::chrono::steady_clock::time_point since_;
    std::shared_ptr<EventHub::Subscriber> events_;
    bool isSending_ = false;
    std::size_t skipped_ = 0;
    std::array<char, 4096> unwanted_{};
};

} // namespace sentrel::simulation
