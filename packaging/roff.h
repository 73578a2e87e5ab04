#pragma once

#include <map>
#include <string>
#include <string_view>

#include "app/usage/command_description.h"

namespace quillon {

/// Text of a manual page that shows just these characters, whatever roff takes them for.
std::string RoffText(std::string_view text);

/// The same, in lines of a length that people can edit, each with a line end.
std::string RoffParagraph(std::string_view text);

/// A frame, which is a page with "@NAME@" on lines of their own or within lines, with these values
/// in their places. A name without a value is a std::runtime_error: the page would show it.
std::string FillFrame(std::string_view frame, const std::map<std::string, std::string>& values);

/// The parts of quillon(1) that the command line tells: SYNOPSIS, COMMANDS, OPTIONS and EXAMPLES.
std::map<std::string, std::string> CommandParts(const CommandDescription& program);

/// The parts of quillon-settings(5) that the program's settings tell: SETTINGS, all of Quillon.ini
/// with types and defaults, and the default of each limit by its name.
std::map<std::string, std::string> SettingParts();

}  // namespace quillon
