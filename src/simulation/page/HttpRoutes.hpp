#pragma once

#include "simulation/page/EventHub.hpp"

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
