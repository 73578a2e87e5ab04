#include "app/views/output_channel.h"

#include <algorithm>
#include <io.h>
#include <thread>

#include "platform/windows/system_headers.h"

namespace quillon {
namespace {

HANDLE HandleOf(int descriptor) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
}

}  // namespace

// A pipe can be told not to wait; files and consoles take what they are given.
OutputChannel::OutputChannel(int descriptor) : descriptor_(descriptor) {
    const HANDLE handle = HandleOf(descriptor);
    if (GetFileType(handle) != FILE_TYPE_PIPE) return;
    DWORD mode = PIPE_NOWAIT;
    if (SetNamedPipeHandleState(handle, &mode, nullptr, nullptr)) kind_ = Kind::NeverBlocks;
}

OutputChannel::~OutputChannel() {
    DWORD mode = PIPE_WAIT;
    if (kind_ == Kind::NeverBlocks)
        SetNamedPipeHandleState(HandleOf(descriptor_), &mode, nullptr, nullptr);
}

std::size_t OutputChannel::Write(std::string_view text) {
    std::size_t written = 0;
    while (!broken_ && written < text.size()) {
        const long count = WriteOnce(text.substr(written));
        if (count < 0) broken_ = true;
        if (count <= 0) break;
        written += static_cast<std::size_t>(count);
    }
    return written;
}

/// Nothing tells when a pipe has room, so it is tried again before long.
bool OutputChannel::WaitForRoom(std::chrono::milliseconds most) const {
    constexpr std::chrono::milliseconds AWhile{5};
    if (broken_) return false;
    if (kind_ == Kind::NeverBlocks) std::this_thread::sleep_for(std::min(most, AWhile));
    return true;
}

long OutputChannel::WriteOnce(std::string_view text) const {
    // A pipe that does not wait takes all or nothing, and nothing of more than it can hold.
    constexpr std::size_t SmallPiece = 512;
    if (kind_ == Kind::NeverBlocks) text = text.substr(0, SmallPiece);
    DWORD count = 0;
    const auto size = static_cast<DWORD>(std::min(text.size(), std::size_t{1} << 20));
    if (!WriteFile(HandleOf(descriptor_), text.data(), size, &count, nullptr)) return -1;
    return static_cast<long>(count);
}

}  // namespace quillon
