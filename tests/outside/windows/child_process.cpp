#include "tests/outside/child_process.h"

#include <stdexcept>

namespace outside {

// Tests that need these are no tests here (POSIX_TEST).

std::string AsOrdinaryUser(const std::function<std::string()>& /*action*/) {
    throw std::logic_error("rights cannot be given up here");
}

std::string WithFilesUpTo(std::size_t /*bytes*/, const std::function<std::string()>& /*action*/) {
    throw std::logic_error("the size of files cannot be limited here");
}

}  // namespace outside
