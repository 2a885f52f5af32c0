#include "simulator/serve/HttpServer.hpp"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace sentrel::simulator {

namespace {

constexpr std::size_t mostConnections = 48;
constexpr int mostArriving = 512;
constexpr std::size_t longestHead = std::size_t{32} << 10;
constexpr int mostRequests = 10'000; // on one connection
constexpr std::chrono::seconds longestSilence{15};
constexpr std::chrono::seconds longestRequest{5};
constexpr std::chrono::milliseconds farewell{200};

/// How long the body is that follows the head. Nothing for one whose end can't be known, or isn't believed.
std::optional<std::size_t> bodyLength(const httplib::Request& request)
{
    if (request.has_header("Transfer-Encoding") || request.get_header_value_count("Content-Length") > 1) {
        return std::nullopt;
    }
    if (!request.has_header("Content-Length")) {
        return 0;
    }
    const std::string text = request.get_header_value("Content-Length");
    std::size_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    return error == std::errc{} && end == text.data() + text.size() ? std::optional{length} : std::nullopt;
}

} // namespace

HttpServer::HttpServer(std::size_t largestBody) : largestBody_(largestBody)
{
    new_task_queue = [this] { return new ConnectionThreads(connections_, mostConnections); };
    set_payload_max_length(largestBody);
    set_tcp_nodelay(true); // or an event waits until the one before is acknowledged: 40 ms
}

int HttpServer::bind(int port)
{
    constexpr const char* loopback = "127.0.0.1";
    if (port == 0) {
        port = bind_to_any_port(loopback);
    } else if (!bind_to_port(loopback, port)) {
        return 0;
    }
    if (port > 0) {
        ::listen(svr_sock_, mostArriving); // more than the library lets wait
    }
    return std::max(port, 0);
}

void HttpServer::serve()
{
    isServing_ = true;
    if (!connections_.areCut()) {
        listen_after_bind();
    }
    isServing_ = false;
}

void HttpServer::end()
{
    connections_.cutAll();
    // Between the two, the library isn't there to be stopped.
    while (isServing_ && !is_running()) {
        std::this_thread::yield();
    }
    stop();
}

bool HttpServer::process_and_close_socket(socket_t socket)
{
    {
        Connections::Entry entry{connections_, socket};
        ConnectionStream stream{socket};
        stream.wasReadWhole = [&entry] { entry.setBusy(true); };
        for (int count = 1; count <= mostRequests && stream.waitFor(longestSilence); ++count) {
            if (!answerOne(stream, count == mostRequests)) {
                break;
            }
            entry.setBusy(false);
        }
        // What still arrives would make the system throw away the answer.
        entry.setBusy(false);
        ::shutdown(socket, SHUT_WR);
        stream.allow(largestBody_, farewell);
        static_cast<void>(stream.skipRest());
    }
    ::close(socket);
    return true;
}

/// Answers a request; false when the connection ends with it.
bool HttpServer::answerOne(ConnectionStream& stream, bool isLast)
{
    stream.allow(longestHead, longestRequest);
    bool isEnd = false;
    bool isHeadRead = false;
    const bool isAnswered = process_request(stream, isLast, isEnd, [&](httplib::Request& request) {
        isHeadRead = true;
        const auto length = bodyLength(request);
        if (!length || *length > largestBody_) {
            request.set_header("Connection", "close");
            isEnd = true;
        }
        stream.allow(std::min(length.value_or(0), largestBody_));
        // On loopback there is nothing to gain by packing and by parts of answers, and much to lose.
        request.headers.erase("Accept-Encoding");
        request.headers.erase("Range");
        request.ranges.clear();
    });
    return isAnswered && isHeadRead && !isEnd && stream.skipRest();
}

} // namespace sentrel::simulator
