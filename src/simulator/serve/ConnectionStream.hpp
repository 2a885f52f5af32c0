#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <httplib.h>
#include <string>

namespace sentrel::simulator {

/// The bytes of one connection: what is read has bounds in number and time, what is written in time.
class ConnectionStream final : public httplib::Stream {
public:
    explicit ConnectionStream(int socket) : socket_(socket) {}

    /// Called when the bytes that may be read have been.
    std::function<void()> wasReadWhole;

    /// Whether something comes within this time; false when the connection has ended.
    [[nodiscard]] bool waitFor(std::chrono::milliseconds time) const;

    /// From now on so many bytes may be read, until so much time has passed.
    void allow(std::size_t bytes, std::chrono::milliseconds time);

    /// So many of them in the same time.
    void allow(std::size_t bytes);

    /// Reads what may still be read, and forgets it. False when it doesn't come.
    [[nodiscard]] bool skipRest();

    [[nodiscard]] bool is_readable() const override;
    [[nodiscard]] bool is_writable() const override;
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    [[nodiscard]] socket_t socket() const override { return socket_; }

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool hasBuffered() const { return next_ < end_; }

    int socket_;
    std::size_t allowed_ = 0;
    Clock::time_point deadline_;
    std::array<char, 4096> buffer_{};
    std::size_t next_ = 0;
    std::size_t end_ = 0;
};

} // namespace sentrel::simulator
