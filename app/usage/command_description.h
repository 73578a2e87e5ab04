#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The command line as data. Help, manual page and completions are made of this and of nothing
/// else, so that they cannot tell different stories.
namespace quillon {

/// An option, a flag or an argument of a command.
struct OptionDescription {
    std::vector<std::string> names;    ///< "-h" and "--help"; of an argument its name, "FILE"
    std::string value;                 ///< what stands for an option's value, "DIR"; "": a flag
    std::vector<std::string> choices;  ///< the words that the value can be; empty: any text
    std::string help;
    bool required = false;
    bool repeats = false;  ///< an argument that may be given several times
};

/// A command line to copy, and what it is good for.
struct ExampleDescription {
    std::string line;
    std::string remark;  ///< often ""
};

/// A command, or the whole program.
struct CommandDescription {
    std::string name;  ///< as it is called: "quillon db query"
    std::string summary;
    std::vector<std::string> paragraphs;  ///< what there is to know beyond that
    std::string examplesTitle;            ///< "Examples"
    std::vector<ExampleDescription> examples;
    std::vector<OptionDescription> arguments;
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> commands;
    bool needsCommand = false;  ///< it does nothing without one of its commands

    /// The last word of the name.
    std::string_view Word() const;
};

/// An option as it is written: "-h, --help" or "--host DIR".
std::string OptionForms(const OptionDescription& option);

/// A call of the command with all that it needs: "quillon init [OPTIONS] --music FOLDER DIR".
std::string UsageLine(const CommandDescription& command);

/// The command of that whole name, "quillon db query"; null when there is none.
const CommandDescription* FindCommand(const CommandDescription& program, std::string_view name);

}  // namespace quillon
