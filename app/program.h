#pragma once

#include <span>

#include "app/console.h"

namespace quillon {

/// The program: does what the arguments (the program's name first) ask for; its exit status.
int RunProgram(std::span<const char* const> arguments, Console console);

/// The same with the standard streams.
int RunProgram(int argumentCount, const char* const* arguments);

}  // namespace quillon
