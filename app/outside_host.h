#pragma once

#include <filesystem>
#include <memory>

#include "platform/host.h"

namespace quillon {

/// The host folder where no option names one: that of QUILLON_HOST, else the current one, or ""
/// where the home-automation host itself is used then.
std::filesystem::path UsualHostFolder();

/// The home-automation host itself. CommandError where it is not on this computer.
std::unique_ptr<Host> TheOutsideHost();

}  // namespace quillon
