#include <fmt/format.h>

#include "packaging/completion_words.h"
#include "packaging/completions.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

std::string InQuotes(std::string_view text) {
    return Quoted(Replace(text, "\\", "\\\\"), "\\'");
}

/// The beginning of a line that counts while the words so far are those of the command.
std::string LineFor(const CommandDescription& command) {
    return fmt::format("complete -c quillon -n '__quillon_is {}'", command.name);
}

std::string WordsOf(const OptionDescription& option) {
    switch (KindOf(option)) {
        case WordKind::Folder:
            return " -x -a '(__fish_complete_directories)'";
        case WordKind::File:
            return " -r -F";
        case WordKind::Choice: {
            std::string words;
            for (const std::string& choice : option.choices)
                words += (words.empty() ? "" : " ") + choice;
            return " -x -a " + InQuotes(words);
        }
        default:
            return option.value.empty() ? "" : " -x";
    }
}

std::string OptionLine(const CommandDescription& command, const OptionDescription& option) {
    std::string line = LineFor(command);
    for (const std::string& name : option.names) {
        const bool isLong = name.starts_with("--");
        line += fmt::format(" {} {}", isLong ? "-l" : "-s", name.substr(isLong ? 2 : 1));
    }
    return line + WordsOf(option) + " -d " + InQuotes(option.help) + '\n';
}

std::string Lines(const CommandDescription& command) {
    std::string lines;
    for (const CommandDescription& below : command.commands)
        lines += fmt::format("{} -a {} -d {}\n", LineFor(command), below.Word(),
                             InQuotes(below.summary));
    for (const OptionDescription& option : command.options)
        lines += OptionLine(command, option);
    for (const OptionDescription& argument : command.arguments) {
        const WordKind kind = KindOf(argument);
        if (kind == WordKind::Folder)
            lines += LineFor(command) + " -a '(__fish_complete_directories)'\n";
        if (kind == WordKind::File) lines += LineFor(command) + " -F\n";
    }
    return lines;
}

}  // namespace

std::string FishCompletion(const CommandDescription& program) {
    const CommandDescription typed = AsTyped(program);
    std::string names, lines;
    for (const CommandDescription* const command : AllCommands(typed)) {
        if (command != &typed) names += fmt::format(" '{}'", command->name);
        lines += Lines(*command);
    }
    return "# Completion of the commands of quillon in fish.\n"
           "function __quillon_is\n"
           "    set -l command quillon\n"
           "    for word in (commandline -opc)[2..-1]\n"
           "        switch \"$command $word\"\n"
           "            case" +
           names +
           "\n"
           "                set command \"$command $word\"\n"
           "        end\n"
           "    end\n"
           "    test \"$command\" = \"$argv\"\n"
           "end\n"
           "complete -c quillon -f\n" +
           lines;
}

}  // namespace quillon
