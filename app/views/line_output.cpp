#include "app/views/line_output.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace quillon {
namespace {

constexpr std::size_t MostPending = std::size_t{1} << 20;
constexpr int FinishMilliseconds = 1000;

bool MayBeTriedAgain(int error) {
    return error == EAGAIN || error == EWOULDBLOCK;
}

}  // namespace

void LineOutput::WriteLine(std::string_view line) {
    if (broken_ || pending_.size() + line.size() >= MostPending) return;
    pending_ += line;
    pending_ += '\n';
    WritePending();
}

void LineOutput::Finish() {
    WritePending();
    while (!pending_.empty()) {
        pollfd writable{.fd = descriptor_, .events = POLLOUT, .revents = 0};
        if (poll(&writable, 1, FinishMilliseconds) <= 0) return;
        WritePending();
    }
}

void LineOutput::WritePending() {
    std::size_t written = 0;
    while (written < pending_.size()) {
        const ssize_t count =
            write(descriptor_, pending_.data() + written, pending_.size() - written);
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
        } else if (MayBeTriedAgain(errno)) {
            break;
        } else if (errno != EINTR) {
            broken_ = true;
            written = pending_.size();
        }
    }
    pending_.erase(0, written);
}

}  // namespace quillon
