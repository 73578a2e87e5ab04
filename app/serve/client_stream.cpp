#include "app/serve/client_stream.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace quillon {
namespace {

// Content is of no use here; it is read so that the refusal can be read.
constexpr std::chrono::seconds ContentLimit{1};
constexpr std::chrono::seconds TransferLimit{5}, WholeLimit{60};

}  // namespace

bool SlowClients::Enter() {
    if (count_++ < most_) return true;
    --count_;
    return false;
}

ClientStream::ClientStream(Arrival arrival, SlowClients& slow)
    : arrival_(std::move(arrival)),
      slow_(slow),
      contentEnd_(Clock::now() + ContentLimit),
      end_(Clock::now() + WholeLimit) {}

ClientStream::~ClientStream() {
    shutdown(arrival_.socket, SHUT_RDWR);
    close(arrival_.socket);
}

bool ClientStream::WaitFor(short event, Clock::time_point end) const {
    pollfd watched{arrival_.socket, event, 0};
    if (poll(&watched, 1, 0) > 0) return true;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0 || !slow_.Enter()) return false;
    const int ready = poll(&watched, 1, static_cast<int>(left));
    slow_.Leave();
    return ready > 0;
}

bool ClientStream::is_readable() const {
    return next_ < arrival_.received.size() || WaitFor(POLLIN, contentEnd_);
}

bool ClientStream::is_writable() const {
    return WaitFor(POLLOUT, std::min(end_, Clock::now() + TransferLimit));
}

ssize_t ClientStream::read(char* ptr, size_t size) {
    if (next_ < arrival_.received.size()) {
        const std::size_t count = arrival_.received.copy(ptr, size, next_);
        next_ += count;
        return static_cast<ssize_t>(count);
    }
    if (!is_readable()) return -1;
    return recv(arrival_.socket, ptr, size, MSG_DONTWAIT);
}

/// Writes all of it or fails: the library takes less for all.
ssize_t ClientStream::write(const char* ptr, size_t size) {
    std::size_t done = 0;
    while (done < size) {
        if (!is_writable()) return -1;
        const ssize_t count =
            send(arrival_.socket, ptr + done, size - done, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count < 0 && errno != EINTR && errno != EAGAIN) return -1;
        if (count > 0) done += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

void ClientStream::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip = "127.0.0.1";
    port = 0;
}

void ClientStream::get_local_ip_and_port(std::string& ip, int& port) const {
    get_remote_ip_and_port(ip, port);
}

}  // namespace quillon
