#include "tests/outside/child_process.h"

#include <stdexcept>
#include <windows.h>

namespace outside {

void KillThisProcess() {
    TerminateProcess(GetCurrentProcess(), 1);
    throw std::logic_error("still there");
}

// Tests that need these are no tests here (POSIX_TEST).

ChildProcess::ChildProcess(const std::function<int()>& /*work*/) : process_(0) {
    throw std::logic_error("no copy of this process can be made here");
}

ChildProcess::~ChildProcess() = default;

void ChildProcess::Kill() const {}

int ChildProcess::Wait() {
    return status_;
}

std::string AsOrdinaryUser(const std::function<std::string()>& /*action*/) {
    throw std::logic_error("rights cannot be given up here");
}

std::string WithFilesUpTo(std::size_t /*bytes*/, const std::function<std::string()>& /*action*/) {
    throw std::logic_error("the size of files cannot be limited here");
}

}  // namespace outside
