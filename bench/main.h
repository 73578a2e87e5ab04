#pragma once

#include <span>

namespace quillon::bench {

/// What a measuring program does; main.cpp calls it. `arguments` begin with the program's own name.
/// Returns the exit status; an exception is told on the error output, and the status is 2.
int Main(std::span<char*> arguments);

}  // namespace quillon::bench
