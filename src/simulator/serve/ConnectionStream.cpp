#include "simulator/serve/ConnectionStream.hpp"

#include <algorithm>
#include <array>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>

namespace sentrel::simulator {

namespace {

/// Who doesn't read for so long has stopped.
constexpr std::chrono::seconds longestStall{5};

constexpr const char* loopback = "127.0.0.1";

/// What of the events happened within the time; 0 for nothing.
short polled(int socket, short events, std::chrono::milliseconds time)
{
    pollfd entry{socket, events, 0};
    int found = 0;
    do {
        found = ::poll(&entry, 1, static_cast<int>(std::max<std::int64_t>(time.count(), 0)));
    } while (found < 0 && errno == EINTR);
    return found > 0 ? entry.revents : short{0};
}

} // namespace

bool ConnectionStream::waitFor(std::chrono::milliseconds time) const
{
    return hasBuffered() || (polled(socket_, POLLIN, time) & POLLIN) != 0;
}

void ConnectionStream::allow(std::size_t bytes, std::chrono::milliseconds time)
{
    deadline_ = Clock::now() + time;
    allow(bytes);
}

void ConnectionStream::allow(std::size_t bytes)
{
    allowed_ = bytes;
    if (allowed_ == 0 && wasReadWhole) {
        wasReadWhole();
    }
}

bool ConnectionStream::skipRest()
{
    std::array<char, 4096> unwanted{};
    while (allowed_ > 0) {
        if (read(unwanted.data(), unwanted.size()) <= 0) {
            return false;
        }
    }
    return true;
}

bool ConnectionStream::is_readable() const
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
    return allowed_ > 0 && waitFor(left);
}

bool ConnectionStream::is_writable() const
{
    // Who has closed its side doesn't listen any more, either.
    const short found = polled(socket_, POLLOUT | POLLRDHUP, longestStall);
    return (found & POLLOUT) != 0 && (found & (POLLRDHUP | POLLHUP | POLLERR)) == 0;
}

ssize_t ConnectionStream::read(char* bytes, std::size_t size)
{
    if (!is_readable()) {
        return -1;
    }
    if (!hasBuffered()) {
        const ssize_t received = ::recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
        if (received <= 0) {
            return received;
        }
        next_ = 0;
        end_ = static_cast<std::size_t>(received);
    }
    const std::size_t taken = std::min({size, allowed_, end_ - next_});
    std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(next_), taken, bytes);
    next_ += taken;
    allow(allowed_ - taken);
    return static_cast<ssize_t>(taken);
}

ssize_t ConnectionStream::write(const char* bytes, std::size_t size)
{
    if ((polled(socket_, POLLOUT, longestStall) & POLLOUT) == 0) {
        return -1;
    }
    const ssize_t sent = ::send(socket_, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
    return sent < 0 && errno == EAGAIN ? 0 : sent;
}

void ConnectionStream::get_remote_ip_and_port(std::string& address, int& port) const
{
    address = loopback;
    port = 0;
}

void ConnectionStream::get_local_ip_and_port(std::string& address, int& port) const
{
    address = loopback;
    port = 0;
}

} // namespace sentrel::simulator
