#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <httplib.h>
#include <string>

#include "app/serve/arrivals.h"

namespace quillon {

/// How many clients may make the threads that answer wait for them at a time.
class SlowClients {
  public:
    explicit SlowClients(std::size_t most) : most_(most) {}

    /// False when there are as many already.
    bool Enter();
    void Leave() { --count_; }

  private:
    const std::size_t most_;
    std::atomic<std::size_t> count_{0};
};

/// The rest of a connection whose request has arrived: a client that does not send or take its part
/// in time, or that is one too many of the slow ones, is disconnected. Closes the socket when it is
/// destroyed.
class ClientStream : public httplib::Stream {
  public:
    /// `slow` must outlive the stream.
    ClientStream(Arrival arrival, SlowClients& slow);
    ~ClientStream() override;
    ClientStream(const ClientStream&) = delete;
    ClientStream& operator=(const ClientStream&) = delete;

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* ptr, size_t size) override;
    ssize_t write(const char* ptr, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return arrival_.socket; }

  private:
    using Clock = std::chrono::steady_clock;
    bool WaitFor(short event, Clock::time_point end) const;

    Arrival arrival_;
    std::size_t next_ = 0;  ///< in what had been received
    SlowClients& slow_;
    Clock::time_point contentEnd_, end_;
};

}  // namespace quillon
