#include "app/outside_host.h"

#include <cstdlib>

#include "app/console.h"
#include "platform/windows/com_host.h"

namespace quillon {

std::filesystem::path UsualHostFolder() {
    const wchar_t* const named = _wgetenv(L"QUILLON_HOST");
    return named == nullptr ? L"" : named;
}

std::unique_ptr<Host> TheOutsideHost() {
    if (ComHost::IsInstalled()) return std::make_unique<ComHost>();
    throw CommandError(
        "the home-automation host is not installed here (no object " +
        std::string(ComHost::ProgramId) +
        " is registered). Install it, or name a host folder with --host DIR or QUILLON_HOST; "
        "'quillon init' makes one");
}

}  // namespace quillon
