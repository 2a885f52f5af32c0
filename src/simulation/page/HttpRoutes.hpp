#pragma once

#include "simulation/page/EventHub.hpp"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

/// A request; missing headers are empty.
struct HttpRequest {
    std::string method;
    std::string path; ///< as sent, without the query
    std::string query;
    std::string host;
    std::string origin;
    std::string cookie;
    std::string body;
};

/// A status, and the reason given to a refused request that has no other.
struct HttpStatus {
    int number;
    const char* reason;
};

/// Every status of an answer.
inline constexpr std::array<HttpStatus, 14> httpStatuses{{
    {200, ""},
    {204, ""},
    {303, ""},
    {400, "This is no request."},
    {403, ""},
    {404, "There is nothing here."},
    {405, ""},
    {409, ""},
    {413, "The request is too large."},
    {414, "The request is too large."},
    {415, "Bodies come as they are."},
    {429, ""},
    {431, "The request is too large."},
    {503, "The simulated MacBook has stopped."},
}};

struct HttpAnswer {
    using Headers = std::vector<std::pair<std::string, std::string>>;

    int status = 204;
    Headers headers;
    std::string body;
    std::shared_ptr<EventHub::Subscriber> events; ///< if set, the answer is this stream
};

/// Decides the answers. Called on the server's thread.
class HttpRoutes {
public:
    virtual ~HttpRoutes() = default;

    /// The answer, if it is decided without the body; none lets the body be read and passed to `answer`.
    virtual std::optional<HttpAnswer> answerToHead(const HttpRequest& head) = 0;

    /// The answer to a whole request. The server answers an exception with 503.
    virtual HttpAnswer answer(const HttpRequest& request) = 0;

    /// The answer to a request that the server itself refuses with this status.
    virtual HttpAnswer refusal(int status) = 0;

    /// The stream's page has left.
    virtual void hasLeft(const std::shared_ptr<EventHub::Subscriber>& events) = 0;
};

} // namespace sentrel::simulation
