#pragma once

#include <string>

#include "app/usage/command_description.h"

namespace quillon {

/// Scripts that complete the words of the program's command line: commands, options, the words an
/// option can have for a value, folders and files.
std::string BashCompletion(const CommandDescription& program);
std::string ZshCompletion(const CommandDescription& program);
std::string FishCompletion(const CommandDescription& program);

}  // namespace quillon
