#include "simulation/page/HttpConnection.hpp"

#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http.hpp>

#include <exception>
#include <utility>

namespace sentrel::simulation {

namespace {

namespace net = boost::asio;
namespace http = boost::beast::http;
using boost::beast::error_code;
using net::ip::tcp;
using Clock = std::chrono::steady_clock;
using Response = http::response<http::string_body>;

constexpr std::size_t longestHead = std::size_t{32} << 10;
constexpr std::size_t longestTarget = std::size_t{8} << 10;
constexpr std::chrono::seconds longestSilence{15}; // between requests
constexpr std::chrono::seconds longestRequest{5};
constexpr std::chrono::seconds longestAnswer{15};
constexpr std::chrono::seconds longestEvent{5};
constexpr std::chrono::seconds keepAlive{15};             // comment interval of a stream without events
constexpr std::size_t mostSkipped = std::size_t{4} << 20; // bytes read and dropped after the last answer
constexpr std::chrono::milliseconds farewell{500};

std::string text(boost::beast::string_view view)
{
    return {view.data(), view.size()};
}

HttpRequest headOf(const http::request<http::string_body>& message)
{
    HttpRequest head;
    head.method = text(message.method_string());
    head.path = text(message.target());
    if (const auto question = head.path.find('?'); question != std::string::npos) {
        head.query = head.path.substr(question + 1);
        head.path.resize(question);
    }
    head.host = text(message[http::field::host]);
    head.origin = text(message[http::field::origin]);
    head.cookie = text(message[http::field::cookie]);
    return head;
}

/// The status for an invalid request; 0 if the connection has ended.
int statusFor(const error_code& error)
{
    if (error == http::error::header_limit) {
        return 431;
    }
    if (error == http::error::body_limit) {
        return 413;
    }
    const bool isParsed = error.category() == make_error_code(http::error::bad_method).category();
    return isParsed && error != http::error::end_of_stream && error != http::error::partial_message ? 400 : 0;
}

} // namespace

HttpConnection::HttpConnection(Service& service, tcp::socket socket)
    : service_(service), stream_(std::move(socket)), timer_(stream_.get_executor()), buffer_(2 * longestHead)
{
}

void HttpConnection::close()
{
    const auto self = shared_from_this();
    service_.connections.erase(self);
    stream_.close();
    timer_.cancel();
    if (const auto events = std::exchange(events_, nullptr)) {
        events->setListener({});
        service_.routes.hasLeft(events);
    }
}

void HttpConnection::awaitRequest()
{
    since_ = Clock::now();
    parser_.emplace();
    parser_->header_limit(longestHead);
    parser_->body_limit(service_.largestBody);
    if (buffer_.size() > 0) {
        return readHead();
    }
    stream_.expires_after(longestSilence);
    stream_.async_read_some(buffer_.prepare(unwanted_.size()), then([](HttpConnection& self, std::size_t size) {
                                self.buffer_.commit(size);
                                self.readHead();
                            }));
}

void HttpConnection::readHead()
{
    stream_.expires_after(longestRequest); // covers the body too
    http::async_read_header(
        stream_, buffer_, *parser_,
        [self = shared_from_this()](const error_code& error, std::size_t) { self->headIsRead(error); });
}

void HttpConnection::headIsRead(const error_code& error)
{
    if (error) {
        const int status = statusFor(error);
        return status == 0 ? close() : answer(service_.routes.refusal(status), true);
    }
    const auto& message = parser_->get();
    if (message.target().size() > longestTarget) {
        return answer(service_.routes.refusal(414), true);
    }
    request_ = headOf(message);
    // The connection can't continue after an unread body, nor after a HEAD, whose answer must have no body.
    const bool isLast =
        parser_->chunked() || parser_->content_length().value_or(0) > 0 || message.method() == http::verb::head;
    if (auto early = service_.routes.answerToHead(request_)) {
        return answer(std::move(*early), isLast);
    }
    if (parser_->chunked() || message.count(http::field::content_encoding) > 0) {
        return answer(service_.routes.refusal(415), true);
    }
    readBody();
}

void HttpConnection::readBody()
{
    http::async_read(stream_, buffer_, *parser_, then([](HttpConnection& self, std::size_t) {
                         self.request_.body = std::move(self.parser_->get().body());
                         self.answer(self.answerToRequest(), false);
                     }));
}

HttpAnswer HttpConnection::answerToRequest()
{
    try {
        return service_.routes.answer(request_);
    } catch (const std::exception&) {
        return service_.routes.refusal(503);
    }
}

void HttpConnection::answer(HttpAnswer answer, bool isLast)
{
    events_ = std::move(answer.events);
    const auto response = std::make_shared<Response>();
    response->result(static_cast<unsigned>(answer.status));
    answer.headers.insert(answer.headers.end(), service_.onEveryAnswer.begin(), service_.onEveryAnswer.end());
    for (const auto& [name, value] : answer.headers) {
        response->set(name, value);
    }
    response->body() = std::move(answer.body);
    isLast = isLast || events_ != nullptr || !parser_->keep_alive();
    response->keep_alive(!isLast);
    if (events_ == nullptr) {
        response->prepare_payload();
    }
    stream_.expires_after(longestAnswer);
    http::async_write(stream_, *response, [self = shared_from_this(), response, isLast](error_code error, std::size_t) {
        if (error && error != http::error::end_of_stream) {
            return self->close();
        }
        return self->events_ != nullptr ? self->beginStream() : isLast ? self->sayFarewell() : self->awaitRequest();
    });
}

/// Ends the connection after the client has had time to read the answer. Closing a connection on which bytes still
/// arrive would reset it, and the client would lose what it has not read.
void HttpConnection::sayFarewell()
{
    error_code ignored;
    stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
    stream_.expires_after(farewell);
    skipRest();
}

void HttpConnection::skipRest()
{
    stream_.async_read_some(net::buffer(unwanted_), then([](HttpConnection& self, std::size_t size) {
                                self.skipped_ += size;
                                return self.skipped_ > mostSkipped ? self.close() : self.skipRest();
                            }));
}

void HttpConnection::beginStream()
{
    // The client sends nothing more: a read that returns means that it has left.
    since_ = Clock::time_point::max();
    stream_.expires_never();
    stream_.async_read_some(net::buffer(unwanted_), then([](HttpConnection& self, std::size_t) { self.close(); }));
    events_->setListener([weak = weak_from_this(), executor = stream_.get_executor()] {
        net::post(executor, [weak] {
            if (const auto self = weak.lock()) {
                self->sendEvents();
            }
        });
    });
    sendEvents();
}

/// Sends the waiting events; the listener calls this again for later ones.
void HttpConnection::sendEvents()
{
    if (events_ == nullptr || isSending_) {
        return;
    }
    auto event = events_->next();
    if (event == nullptr) {
        return close();
    }
    if (!event->empty()) {
        return send(std::move(event));
    }
    timer_.expires_after(keepAlive);
    timer_.async_wait([self = shared_from_this()](const error_code& ended) {
        if (!ended && !self->isSending_) {
            static const auto comment = std::make_shared<const std::string>(": still here\n\n");
            self->send(comment);
        }
    });
}

void HttpConnection::send(std::shared_ptr<const std::string> event)
{
    isSending_ = true;
    timer_.cancel();
    stream_.expires_after(longestEvent);
    net::async_write(stream_, net::buffer(*event), then([event](HttpConnection& self, std::size_t) {
                         self.isSending_ = false;
                         self.sendEvents();
                     }));
}

} // namespace sentrel::simulation
