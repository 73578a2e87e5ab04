#pragma once

#include "platform/windows/system_headers.h"

namespace quillon {

/// The standard library's error number for an error code of the system. From there on a failure has
/// the same wording on every system (platform/portable/system_failure.h).
int ErrnoOf(DWORD code);

/// The one for what this thread's last call failed with.
inline int LastErrno() {
    return ErrnoOf(GetLastError());
}

/// An open object of the system, closed with this one.
class SystemHandle {
  public:
    explicit SystemHandle(HANDLE handle) : handle_(handle) {}
    SystemHandle(const SystemHandle&) = delete;
    SystemHandle& operator=(const SystemHandle&) = delete;
    ~SystemHandle() {
        if (*this) CloseHandle(handle_);
    }

    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle_; }
    /// The caller's from now on.
    HANDLE Release() {
        HANDLE const handle = handle_;
        handle_ = INVALID_HANDLE_VALUE;
        return handle;
    }

  private:
    HANDLE handle_;
};

}  // namespace quillon
