#include "app/outside_host.h"

#include <cstdlib>

#include "app/console.h"

namespace quillon {

std::filesystem::path UsualHostFolder() {
    const char* const named = std::getenv("QUILLON_HOST");
    return named == nullptr || *named == '\0' ? "." : named;
}

std::unique_ptr<Host> TheOutsideHost() {
    throw CommandError("the host folder has no name; name one with --host or QUILLON_HOST");
}

}  // namespace quillon
