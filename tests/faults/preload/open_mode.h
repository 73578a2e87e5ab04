#pragma once

#include <cstdarg>
#include <fcntl.h>
#include <sys/types.h>

namespace quillon::faults {

/// Whether a call that opens a file with these flags has a mode behind them.
inline bool TakesMode(int flags) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

}  // namespace quillon::faults

/// The mode behind the flags, where there is one.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define QUILLON_MODE_AFTER_FLAGS(mode)                               \
    mode_t mode = 0;                                                 \
    if (quillon::faults::TakesMode(flags)) {                         \
        va_list arguments;                                           \
        va_start(arguments, flags);                                  \
        mode = static_cast<mode_t>(va_arg(arguments, unsigned int)); \
        va_end(arguments);                                           \
    }
// NOLINTEND(bugprone-macro-parentheses)
