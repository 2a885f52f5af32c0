#include "simulator/serve/PageServer.hpp"

#include "foundation/Json.hpp"
#include "simulator/serve/HttpServer.hpp"
#include "simulator/serve/LiveMac.hpp"
#include "simulator/serve/PageRequests.hpp"
#include "simulator/serve/RequestGuard.hpp"

#include <algorithm>
#include <httplib.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace sentrel::simulator {

namespace {

constexpr std::size_t largestBody = std::size_t{64} << 10;
constexpr std::size_t largestPicture = std::size_t{2} << 20;
constexpr std::size_t slice = std::size_t{64} << 10;

// How often a stream looks whether its page is still there, and after how many looks it says that it is itself.
constexpr std::chrono::seconds look{1};
constexpr int looksUntilComment = 15;

constexpr const char* contentSecurityPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src 'self'; "
    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

constexpr std::array<std::pair<std::string_view, const char*>, 5> fileTypes{{
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
}};

const char* meaningOf(int status)
{
    return status == 413   ? "The request is too large."
           : status == 404 ? "There is nothing here."
           : status == 400 ? "This is no request."
                           : "The request was refused.";
}

std::optional<std::string> contentOf(const std::filesystem::path& file)
{
    std::ifstream stream{file, std::ios::binary};
    if (!stream) {
        return std::nullopt;
    }
    return std::string{std::istreambuf_iterator<char>{stream}, {}};
}

void refuse(httplib::Response& response, int status, const std::string& why)
{
    response.status = status;
    response.set_content(Json{{"error", why}}.dump(-1, ' ', false, Json::error_handler_t::replace), "application/json");
}

RequestGuard::Request described(const httplib::Request& request)
{
    return {request.method, request.get_header_value("Host"), request.get_header_value("Origin"),
            request.get_header_value("Cookie"), request.get_param_value("token")};
}

/// Writes to the page that listens what comes next; false when its stream has ended.
bool writeNext(EventHub::Subscriber& subscriber, int& looks, httplib::DataSink& sink)
{
    const auto event = subscriber.next(look);
    if (event == nullptr) {
        return false;
    }
    if (event->empty()) {
        if (++looks < looksUntilComment) {
            return sink.is_writable();
        }
        constexpr std::string_view comment = ": still here\n\n";
        looks = 0;
        return sink.write(comment.data(), comment.size());
    }
    looks = 0;
    for (std::size_t from = 0; from < event->size(); from += slice) {
        if (subscriber.isClosed() || !sink.write(event->data() + from, std::min(slice, event->size() - from))) {
            return false;
        }
    }
    return true;
}

} // namespace

/// What is answered to which request.
class PageServer::Routes {
public:
    Routes(LiveMac& mac, Setup setup) : mac_(mac), setup_(std::move(setup)) {}

    bool bind()
    {
        port_ = server_.bind(setup_.port);
        if (port_ == 0) {
            return false;
        }
        guard_.emplace(setup_.token, port_);
        setUp();
        return true;
    }

    [[nodiscard]] int port() const { return port_; }
    void run() { server_.serve(); }
    void stop()
    {
        mac_.hub().closeAll();
        server_.end();
    }

private:
    void setUp()
    {
        server_.set_default_headers({{"Content-Security-Policy", contentSecurityPolicy},
                                     {"X-Content-Type-Options", "nosniff"},
                                     {"Referrer-Policy", "no-referrer"},
                                     {"Cross-Origin-Resource-Policy", "same-origin"}});
        server_.set_pre_routing_handler(
            [this](const httplib::Request& request, httplib::Response& response) { return guard(request, response); });
        server_.set_error_handler([](const httplib::Request&, httplib::Response& response) {
            if (response.body.empty()) {
                refuse(response, response.status, meaningOf(response.status));
            }
        });
        server_.set_exception_handler(
            [](const httplib::Request&, httplib::Response& response, const std::exception_ptr&) {
                refuse(response, 503, "The simulated MacBook has stopped.");
            });
        server_.Get("/api/events", [this](const auto&, auto& response) { openStream(response); });
        server_.Get(R"(/api/file/([0-9a-f]{16}\.(?:jpg|wav)))",
                    [this](const auto& request, auto& response) { sendFile(request.matches[1].str(), response); });
        server_.Post("/api/webcam",
                     [this](const auto& request, auto& response) { answer(showWebcam(mac_, request.body), response); });
        server_.Post(R"(/api/([a-z]+))", [this](const auto& request, auto& response) {
            if (request.body.size() > largestBody) {
                return refuse(response, 413, "The request is too large.");
            }
            answer(answerPage(mac_, request.matches[1].str(), request.body), response);
        });
        server_.Get(R"(/([A-Za-z][A-Za-z0-9-]*\.(?:html|js|css|svg|png))?)",
                    [this](const auto& request, auto& response) { sendPage(request.matches[1].str(), response); });
    }

    httplib::Server::HandlerResponse guard(const httplib::Request& request, httplib::Response& response)
    {
        using Outcome = httplib::Server::HandlerResponse;
        const RequestGuard::Request what = described(request);
        const auto refusal = guard_->refusal(what);
        if (!refusal && (request.has_header("Transfer-Encoding") || request.has_header("Content-Encoding"))) {
            refuse(response, 415, "Bodies come as they are.");
            return Outcome::Handled;
        }
        if (!refusal) {
            return Outcome::Unhandled;
        }
        if (refusal->status == 403 && request.method == "GET" && request.path == "/" && guard_->isInvitation(what)) {
            response.status = 303;
            response.set_header("Set-Cookie", guard_->cookieHeader());
            response.set_header("Location", "/");
            return Outcome::Handled;
        }
        refuse(response, refusal->status, refusal->why);
        return Outcome::Handled;
    }

    static void answer(const PageAnswer& answer, httplib::Response& response)
    {
        if (answer.error.empty()) {
            response.status = answer.status;
            return;
        }
        refuse(response, answer.status, answer.error);
    }

    void openStream(httplib::Response& response)
    {
        auto subscriber = mac_.listen();
        if (subscriber == nullptr) {
            return refuse(response, 429, "Too many pages are open.");
        }
        response.set_header("Cache-Control", "no-store");
        response.set_chunked_content_provider(
            "text/event-stream",
            [subscriber, looks = 0](std::size_t, httplib::DataSink& sink) mutable {
                return writeNext(*subscriber, looks, sink);
            },
            [this, subscriber](bool) { mac_.hub().unsubscribe(subscriber); });
    }

    void sendFile(const std::string& name, httplib::Response& response)
    {
        const auto file = mac_.files().find(name);
        if (!file) {
            return refuse(response, 404, "The file is not kept any more.");
        }
        response.set_header("Cache-Control", "private, max-age=31536000, immutable");
        response.set_content(reinterpret_cast<const char*>(file->content->data()), file->content->size(), file->type);
    }

    void sendPage(const std::string& wanted, httplib::Response& response)
    {
        const std::filesystem::path name = wanted.empty() ? "index.html" : wanted;
        const auto content = contentOf(setup_.web / name);
        const auto type = std::ranges::find_if(
            fileTypes, [&](const auto& entry) { return entry.first == name.extension().string(); });
        if (!content || type == fileTypes.end()) {
            return refuse(response, 404, "There is no such file.");
        }
        response.set_header("Cache-Control", "no-cache");
        response.set_content(*content, type->second);
    }

    LiveMac& mac_;
    const Setup setup_;
    int port_ = 0;
    std::optional<RequestGuard> guard_;
    HttpServer server_{largestPicture};
};

PageServer::PageServer(LiveMac& mac, Setup setup) : routes_(std::make_unique<Routes>(mac, std::move(setup)))
{
}

PageServer::~PageServer()
{
    stop();
}

bool PageServer::bind()
{
    return routes_->bind();
}

int PageServer::port() const
{
    return routes_->port();
}

void PageServer::run()
{
    routes_->run();
}

void PageServer::stop()
{
    routes_->stop();
}

} // namespace sentrel::simulator
