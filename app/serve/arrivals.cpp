#include "app/serve/arrivals.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <list>
#include <mutex>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace quillon {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds HeadLimit{3};
constexpr std::size_t LongestHead = std::size_t{1} << 20U;
constexpr std::string_view HeadEnd = "\r\n\r\n";

void Close(int socket) {
    shutdown(socket, SHUT_RDWR);
    close(socket);
}

struct Waiting {
    Arrival arrival;
    Clock::time_point deadline;
};

enum class Progress { Waits, Complete, Broken };

/// Takes what has arrived, as much as there is.
Progress Receive(Arrival& arrival) {
    std::array<char, 65536> buffer{};
    std::string& text = arrival.received;
    while (text.size() < LongestHead) {
        const ssize_t count = recv(arrival.socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return Progress::Waits;
        if (count < 0) return Progress::Broken;
        if (count == 0) return text.empty() ? Progress::Broken : Progress::Complete;
        // The end of the head may have come in two pieces.
        const std::size_t from = text.size() < HeadEnd.size() ? 0 : text.size() - HeadEnd.size();
        text.append(buffer.data(), static_cast<std::size_t>(count));
        if (text.find(HeadEnd, from) != std::string::npos) return Progress::Complete;
    }
    return Progress::Complete;
}

}  // namespace

class Arrivals::Implementation {
  public:
    explicit Implementation(Handler handler)
        : handler_(std::move(handler)), wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (wake_ < 0) throw std::runtime_error("no more files can be opened");
        thread_ = std::thread([this] { Run(); });
    }

    ~Implementation() {
        ends_ = true;
        Wake();
        thread_.join();
        for (const Waiting& one : waiting_)
            Close(one.arrival.socket);
        for (const int socket : new_)
            Close(socket);
        close(wake_);
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    void Take(int socket) {
        {
            const std::lock_guard lock(mutex_);
            new_.push_back(socket);
        }
        Wake();
    }

  private:
    void Wake() const {
        const std::uint64_t one = 1;
        // It fails only where the thread is awake already.
        if (write(wake_, &one, sizeof one) < 0) return;
    }

    void Run() {
        while (!ends_) {
            const std::vector<pollfd> seen = Look();
            AdmitNew();
            Serve(seen);
            LetGo();
        }
    }

    /// Waits until somebody says something or has waited too long.
    std::vector<pollfd> Look() {
        std::vector<pollfd> watched{{wake_, POLLIN, 0}};
        for (const Waiting& one : waiting_)
            watched.push_back({one.arrival.socket, POLLIN, 0});
        int timeout = -1;
        if (!waiting_.empty()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                waiting_.front().deadline - Clock::now());
            timeout = static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
        }
        if (poll(watched.data(), watched.size(), timeout) < 0)
            for (pollfd& one : watched)
                one.revents = 0;
        return watched;
    }

    void AdmitNew() {
        std::uint64_t count = 0;
        if (read(wake_, &count, sizeof count) < 0) return;
        const std::lock_guard lock(mutex_);
        for (const int socket : new_)
            waiting_.push_back({{socket, ""}, Clock::now() + HeadLimit});
        new_.clear();
    }

    /// Those that were looked at come first in the list, in the same order.
    void Serve(const std::vector<pollfd>& seen) {
        auto one = waiting_.begin();
        for (std::size_t i = 1; i < seen.size(); ++i) {
            const auto current = one++;
            if (seen[i].revents == 0) continue;
            const Progress progress = Receive(current->arrival);
            if (progress == Progress::Waits) continue;
            if (progress == Progress::Complete) {
                handler_(std::move(current->arrival));
            } else {
                Close(current->arrival.socket);
            }
            waiting_.erase(current);
        }
    }

    /// They stand in the order in which they came, and so do their deadlines.
    void LetGo() {
        const Clock::time_point now = Clock::now();
        while (!waiting_.empty() &&
               (waiting_.size() > MostWaiting || waiting_.front().deadline <= now)) {
            Close(waiting_.front().arrival.socket);
            waiting_.pop_front();
        }
    }

    Handler handler_;
    std::list<Waiting> waiting_;  ///< of the thread alone
    std::mutex mutex_;
    std::vector<int> new_;  ///< guarded by `mutex_`
    std::atomic<bool> ends_{false};
    int wake_;
    std::thread thread_;
};

Arrivals::Arrivals(Handler handler)
    : implementation_(std::make_unique<Implementation>(std::move(handler))) {}

Arrivals::~Arrivals() = default;

void Arrivals::Take(int socket) {
    implementation_->Take(socket);
}

}  // namespace quillon
