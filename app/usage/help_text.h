#pragma once

#include <string>

#include "app/usage/command_description.h"

namespace quillon {

/// What `--help` shows of a command, no wider than a terminal of 80 columns where words allow.
std::string HelpText(const CommandDescription& command);

}  // namespace quillon
