#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/usage/command_description.h"

namespace quillon {

/// What an option's value or an argument names.
enum class WordKind { Anything, Folder, File, Command, Choice };

/// Told by the name that stands for it: DIR and FOLDER, FILE, COMMAND.
WordKind KindOf(const OptionDescription& option);

/// The program's commands as one sees them who types: an argument that names a command makes all
/// commands follow it, without what they take.
CommandDescription AsTyped(const CommandDescription& program);

/// The command and all below it, those above first.
std::vector<const CommandDescription*> AllCommands(const CommandDescription& command);

/// The text within single quotes; `quote` is how the shell writes one inside.
std::string Quoted(std::string_view text, std::string_view quote);

}  // namespace quillon
