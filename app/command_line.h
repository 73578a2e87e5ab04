#pragma once

#include <span>

#include "app/requests.h"
#include "app/usage/command_description.h"

namespace quillon {

/// What the arguments (the program's name first) ask for. The host folder is the one of `--host`,
/// else of the environment variable QUILLON_HOST, else the current folder.
Request ParseCommandLine(std::span<const char* const> arguments);

/// All commands with their options, for help, manual page and completions.
CommandDescription DescribeCommandLine();

}  // namespace quillon
