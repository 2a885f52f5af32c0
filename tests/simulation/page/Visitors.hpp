#pragma once

#include "foundation/Json.hpp"

#include <arpa/inet.h>
#include <httplib.h>
#include <nlohmann/json.hpp>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace sentrel::simulation {

/// How long a visitor waits for what is to come: far longer than it takes on a machine that has other work.
inline constexpr int patienceInSeconds = 60;

inline constexpr const char* visitorsToken = "0123456789abcdef0123456789abcdef";

/// A connection that sends exactly these bytes, however wrong they are.
class RawVisitor {
public:
    explicit RawVisitor(int port, int receiveBuffer = 0) : socket_(::socket(AF_INET, SOCK_STREAM, 0))
    {
        if (receiveBuffer > 0) {
            ::setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
        }
        timeval patience{patienceInSeconds, 0};
        ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        isConnected_ = ::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    ~RawVisitor() { ::close(socket_); }
    RawVisitor(const RawVisitor&) = delete;

    bool send(std::string_view bytes)
    {
        while (isConnected_ && !bytes.empty()) {
            const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent <= 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return isConnected_;
    }

    /// Everything up to this text or, without one, the end of the connection; after long silence all that has come so
    /// far.
    std::string read(std::string_view until = {})
    {
        std::string all;
        std::array<char, 4096> part{};
        while (until.empty() || all.find(until) == std::string::npos) {
            const ssize_t received = ::recv(socket_, part.data(), part.size(), 0);
            if (received <= 0) {
                break;
            }
            all.append(part.data(), static_cast<std::size_t>(received));
        }
        return all;
    }

private:
    int socket_;
    bool isConnected_ = false;
};

/// The cookie that the page has.
inline std::string visitorsCookie(int port)
{
    return "sentrel-" + std::to_string(port) + "=" + visitorsToken;
}

/// The page: it has the cookie, and says where it comes from.
inline httplib::Headers pageHeaders(int port)
{
    return {{"Cookie", visitorsCookie(port)}, {"Origin", "http://127.0.0.1:" + std::to_string(port)}};
}

/// A page that listens to the events until it is closed.
class ListeningPage {
public:
    explicit ListeningPage(int port) : client_("127.0.0.1", port), thread_([this, port] { listen(port); })
    {
        std::unique_lock lock{mutex_};
        arrived_.wait(lock, [this] { return hasEnded_ || status_ != 0; });
    }
    ~ListeningPage()
    {
        client_.stop();
        thread_.join();
    }
    ListeningPage(const ListeningPage&) = delete;

    [[nodiscard]] int status() const { return status_; }

    /// The data of the next event of this name; empty after long silence, or at the end of the stream.
    std::string nextText(const std::string& event)
    {
        std::unique_lock lock{mutex_};
        while (arrived_.wait_for(lock, std::chrono::seconds{patienceInSeconds}, [this] {
            return hasEnded_ || !events_.empty();
        }) && !events_.empty()) {
            const std::string text = std::move(events_.front());
            events_.pop_front();
            const auto data = text.find("\ndata: ");
            if (text.find("\nevent: " + event + "\n") != std::string::npos) {
                return text.substr(data + 7);
            }
        }
        return {};
    }

    /// The next state; null when there is none.
    Json next()
    {
        const std::string text = nextText("state");
        return text.empty() ? Json(nullptr) : Json::parse(text);
    }

    /// Whether a state with this key comes, and this in it.
    bool hears(const std::string& key, const Json::json_pointer& place, const Json& value)
    {
        for (Json state = next(); !state.is_null(); state = next()) {
            if (state.contains(key) && state[key].contains(place) && state[key][place] == value) {
                return true;
            }
        }
        return false;
    }

private:
    void listen(int port)
    {
        client_.set_read_timeout(std::chrono::seconds{patienceInSeconds});
        std::string rest;
        static_cast<void>(client_.Get(
            "/api/events", pageHeaders(port),
            [this](const httplib::Response& response) {
                tell([&] { status_ = response.status; });
                return true;
            },
            [this, &rest](const char* bytes, std::size_t size) {
                const std::size_t known = rest.empty() ? 0 : rest.size() - 1;
                rest.append(bytes, size);
                for (auto end = rest.find("\n\n", known); end != std::string::npos; end = rest.find("\n\n")) {
                    tell([&] { events_.push_back(rest.substr(0, end)); });
                    rest.erase(0, end + 2);
                }
                return true;
            }));
        tell([this] { hasEnded_ = true; });
    }

    template <class Change> void tell(Change change)
    {
        {
            const std::lock_guard guard{mutex_};
            change();
        }
        arrived_.notify_all();
    }

    httplib::Client client_;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<std::string> events_;
    std::atomic<int> status_ = 0;
    bool hasEnded_ = false;
    std::thread thread_; // last: it uses all others
};

} // namespace sentrel::simulation
