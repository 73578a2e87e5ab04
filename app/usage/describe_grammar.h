#pragma once

#include <CLI/CLI.hpp>

#include "app/usage/command_description.h"

namespace quillon {

/// What the grammar knows of a command and of those below it. A block of the footer that has a
/// title and indented lines below it is the examples; the remark on one stands behind four blanks.
CommandDescription Describe(const CLI::App& command);

}  // namespace quillon
