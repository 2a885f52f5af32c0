#include "simulation/page/PageServer.hpp"

#include "foundation/Fatal.hpp"
#include "foundation/Json.hpp"
#include "simulation/page/HttpServer.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/page/PageRequests.hpp"
#include "simulation/page/RequestGuard.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr std::size_t largestBody = std::size_t{64} << 10;
constexpr std::size_t largestPicture = std::size_t{2} << 20;

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

std::optional<std::string> contentOf(const std::filesystem::path& file)
{
    std::ifstream stream{file, std::ios::binary};
    if (!stream) {
        return std::nullopt;
    }
    return std::string{std::istreambuf_iterator<char>{stream}, {}};
}

/// `status` must be one of `httpStatuses`.
HttpAnswer refused(int status, std::string why = {})
{
    const auto known = std::ranges::find(httpStatuses, status, &HttpStatus::number);
    if (known == httpStatuses.end()) {
        fatalError("the page's server refused a request with a status that its protocol lacks");
    }
    if (why.empty()) {
        why = known->reason;
    }
    return {status,
            {{"Content-Type", "application/json"}},
            Json{{"error", why}}.dump(-1, ' ', false, Json::error_handler_t::replace),
            nullptr};
}

/// The value of `token` in the address.
std::string tokenOf(std::string_view query)
{
    constexpr std::string_view name = "token=";
    while (!query.empty() && !query.starts_with(name)) {
        query.remove_prefix(std::min(query.find('&'), query.size() - 1) + 1);
    }
    return std::string{query.empty() ? query : query.substr(name.size(), query.find('&') - name.size())};
}

RequestGuard::Request described(const HttpRequest& request)
{
    return {request.method, request.host, request.origin, request.cookie, tokenOf(request.query)};
}

/// The path without this prefix; none if it has another one.
std::optional<std::string> rest(const std::string& path, std::string_view beginning)
{
    return path.starts_with(beginning) ? std::optional{path.substr(beginning.size())} : std::nullopt;
}

} // namespace

/// Answers each request.
class PageServer::Routes final : public HttpRoutes {
public:
    Routes(LiveMac& mac, Setup setup) : mac_(mac), setup_(std::move(setup)) {}

    bool bind()
    {
        port_ = server_.bind(setup_.port);
        guard_.emplace(setup_.token, port_);
        return port_ != 0;
    }

    [[nodiscard]] int port() const { return port_; }
    void run() { server_.serve(); }
    void stop()
    {
        mac_.hub().closeAll();
        server_.end();
    }

private:
    std::optional<HttpAnswer> answerToHead(const HttpRequest& head) override
    {
        const RequestGuard::Request request = described(head);
        const auto refusal = guard_->refusal(request);
        if (!refusal) {
            return std::nullopt;
        }
        if (refusal->status == 403 && head.method == "GET" && head.path == "/" && guard_->isInvitation(request)) {
            return HttpAnswer{303, {{"Set-Cookie", guard_->cookieHeader()}, {"Location", "/"}}, {}, nullptr};
        }
        return refused(refusal->status, refusal->why);
    }

    HttpAnswer answer(const HttpRequest& request) override
    {
        if (request.method == "POST") {
            const auto name = rest(request.path, "/api/");
            return name ? answerPost(*name, request.body) : refusal(404);
        }
        if (request.path == "/api/events") {
            return openStream();
        }
        const auto file = rest(request.path, "/api/file/");
        return file ? sendFile(*file) : sendPage(request.path == "/" ? "index.html" : request.path.substr(1));
    }

    HttpAnswer refusal(int status) override { return refused(status); }

    void hasLeft(const std::shared_ptr<EventHub::Subscriber>& events) override { mac_.hub().unsubscribe(events); }

    HttpAnswer answerPost(const std::string& name, const std::string& body)
    {
        if (name != webcamRequest && body.size() > largestBody) {
            return refusal(413);
        }
        const PageAnswer answer = name == webcamRequest ? showWebcam(mac_, body) : answerPage(mac_, name, body);
        return answer.error.empty() ? HttpAnswer{answer.status, {}, {}, nullptr} : refused(answer.status, answer.error);
    }

    HttpAnswer openStream()
    {
        auto events = mac_.listen();
        if (events == nullptr) {
            return refused(429, "Too many pages are open.");
        }
        return {200, {{"Content-Type", "text/event-stream"}, {"Cache-Control", "no-store"}}, {}, std::move(events)};
    }

    HttpAnswer sendFile(const std::string& name)
    {
        const auto file = mac_.files().find(name);
        if (!file) {
            return refused(404, "The file is no longer kept.");
        }
        return {200,
                {{"Content-Type", file->type}, {"Cache-Control", "private, max-age=31536000, immutable"}},
                {reinterpret_cast<const char*>(file->content->data()), file->content->size()},
                nullptr};
    }

    HttpAnswer sendPage(const std::filesystem::path& name)
    {
        const auto type = std::ranges::find_if(
            fileTypes, [&](const auto& entry) { return entry.first == name.extension().string(); });
        // Only plain names: no path out of the folder, no hidden files.
        if (type == fileTypes.end() || name.has_parent_path() || name.native().starts_with('.')) {
            return refusal(404);
        }
        auto content = contentOf(setup_.web / name);
        if (!content) {
            return refusal(404);
        }
        return {200, {{"Content-Type", type->second}, {"Cache-Control", "no-cache"}}, std::move(*content), nullptr};
    }

    LiveMac& mac_;
    const Setup setup_;
    int port_ = 0;
    std::optional<RequestGuard> guard_;
    HttpServer server_{*this,
                       largestPicture,
                       {{"Content-Security-Policy", contentSecurityPolicy},
                        {"X-Content-Type-Options", "nosniff"},
                        {"Referrer-Policy", "no-referrer"},
                        {"Cross-Origin-Resource-Policy", "same-origin"}}};
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

} // namespace sentrel::simulation
