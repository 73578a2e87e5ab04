#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

#include "app/usage/command_description.h"

namespace quillon {

/// What is wrong with a word that the command does not take, with what was probably meant:
/// "there is no command 'rum'; did you mean 'run'?"
std::string UnexpectedWord(const CommandDescription& program, const CommandDescription& command,
                           std::string_view word);

/// A word that nothing in the grammar took, and the command that it was given to.
struct LeftOverWord {
    const CLI::App* command = nullptr;
    std::string word;  ///< "" when there is none
};

/// The first such word of a command line that has been parsed.
LeftOverWord FindLeftOver(const CLI::App& program);

/// What is wrong with a command line that did not parse, in a sentence without a full stop.
std::string UsageProblem(const CLI::App& program, const CommandDescription& description,
                         const CLI::ParseError& error);

/// The command that was asked for, as it is called.
std::string AskedCommand(const CLI::App& program);

}  // namespace quillon
