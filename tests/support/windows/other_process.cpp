#include <stdexcept>

#include "tests/support/real_library.h"

namespace quillon::support {

// Tests that need these are no tests here (POSIX_TEST): a process has no copy of itself.

bool RunsWellUnprivileged(const std::filesystem::path& /*folder*/,
                          const std::function<void()>& /*work*/) {
    throw std::logic_error("rights cannot be given up here");
}

bool IsKilled(const std::function<void()>& /*work*/) {
    throw std::logic_error("no copy of this process can be made here");
}

}  // namespace quillon::support
