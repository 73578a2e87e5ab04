#include "app/views/output_channel.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon {
namespace {

/// A pipe that has room at all has room for this much.
constexpr std::size_t SmallPiece = 512;

bool MayBeTriedAgain(int error) {
    return error == EAGAIN || error == EWOULDBLOCK;
}

/// The same pipe or terminal with a description of its own: O_NONBLOCK on the given one would reach
/// every process that shares it. -1 where that is not allowed.
int OpenAnew(int descriptor) {
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    return open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

}  // namespace

OutputChannel::OutputChannel(int descriptor) : descriptor_(descriptor) {
    struct stat status{};
    if (fstat(descriptor, &status) != 0) return;
    if (S_ISSOCK(status.st_mode)) {
        kind_ = Kind::Socket;
    } else if (S_ISFIFO(status.st_mode) || isatty(descriptor) != 0) {
        const int anew = OpenAnew(descriptor);
        kind_ = anew >= 0 ? Kind::NeverBlocks : Kind::MayBlock;
        owned_ = anew >= 0;
        if (owned_) descriptor_ = anew;
    }
}

OutputChannel::~OutputChannel() {
    if (owned_) close(descriptor_);
}

std::size_t OutputChannel::Write(std::string_view text) {
    std::size_t written = 0;
    while (!broken_ && written < text.size()) {
        const ssize_t count = WriteOnce(text.substr(written));
        if (count >= 0) {
            written += static_cast<std::size_t>(count);
        } else if (MayBeTriedAgain(errno)) {
            break;
        } else if (errno != EINTR) {
            broken_ = true;
        }
    }
    return written;
}

bool OutputChannel::WaitForRoom(std::chrono::milliseconds most) const {
    pollfd writable{.fd = descriptor_, .events = POLLOUT, .revents = 0};
    return poll(&writable, 1, static_cast<int>(most.count())) > 0;
}

long OutputChannel::WriteOnce(std::string_view text) const {
    if (kind_ == Kind::Socket)
        return send(descriptor_, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (kind_ == Kind::MayBlock) {
        if (!WaitForRoom(std::chrono::milliseconds(0))) {
            errno = EAGAIN;
            return -1;
        }
        text = text.substr(0, SmallPiece);
    }
    return write(descriptor_, text.data(), text.size());
}

}  // namespace quillon
