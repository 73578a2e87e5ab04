#include <fmt/format.h>

#include "packaging/completion_words.h"
#include "packaging/completions.h"
#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::string_view Quote = "'\\''";

/// Text inside an _arguments entry, where brackets and colons mean something.
std::string Plain(std::string_view text) {
    std::string plain = Replace(text, "\\", "\\\\");
    plain = Replace(Replace(plain, "[", "\\["), "]", "\\]");
    return Replace(plain, ":", "\\:");
}

std::string Action(const OptionDescription& option) {
    switch (KindOf(option)) {
        case WordKind::Folder:
            return "_files -/";
        case WordKind::File:
            return "_files";
        case WordKind::Choice: {
            std::string words;
            for (const std::string& choice : option.choices)
                words += (words.empty() ? "" : " ") + choice;
            return '(' + words + ')';
        }
        default:
            return " ";
    }
}

std::string FunctionName(const CommandDescription& command) {
    return '_' + Replace(command.name, " ", "_");
}

std::string OptionLine(const OptionDescription& option) {
    std::string all, entries;
    for (const std::string& name : option.names)
        all += (all.empty() ? "" : " ") + name;
    const std::string value =
        option.value.empty() ? "" : fmt::format(":{}:{}", Plain(option.value), Action(option));
    for (const std::string& name : option.names) {
        const bool takesEquals = !option.value.empty() && name.starts_with("--");
        const std::string entry = fmt::format("({}){}{}[{}]{}", all, name, takesEquals ? "=" : "",
                                              Plain(option.help), value);
        entries += " \\\n        " + Quoted(entry, Quote);
    }
    return entries;
}

std::string ArgumentLine(const OptionDescription& argument) {
    const std::string entry = fmt::format("{}:{}:{}", argument.repeats ? "*" : "",
                                          Plain(argument.names.front()), Action(argument));
    return " \\\n        " + Quoted(entry, Quote);
}

/// The function of a command that has others below it: the first word is looked at, the rest is
/// left to the function of that command.
std::string GroupPart(const CommandDescription& command) {
    std::string text =
        " \\\n        ': :->command' '*:: :->rest'\n"
        "    case $state in\n"
        "        command)\n"
        "            local -a commands=(\n";
    for (const CommandDescription& below : command.commands)
        text += "                " +
                Quoted(fmt::format("{}:{}", below.Word(), Plain(below.summary)), Quote) + '\n';
    text +=
        "            )\n"
        "            _describe command commands\n"
        "            ;;\n"
        "        rest)\n"
        "            case $words[1] in\n";
    for (const CommandDescription& below : command.commands)
        text += fmt::format("                {}) {} ;;\n", below.Word(), FunctionName(below));
    return text +
           "            esac\n"
           "            ;;\n"
           "    esac\n";
}

std::string Function(const CommandDescription& command) {
    std::string text = fmt::format(
        "{}() {{\n    local curcontext=$curcontext state line\n    typeset -A opt_args\n"
        "    _arguments -C",
        FunctionName(command));
    for (const OptionDescription& option : command.options)
        text += OptionLine(option);
    for (const OptionDescription& argument : command.arguments)
        text += ArgumentLine(argument);
    return text + (command.commands.empty() ? "\n" : GroupPart(command)) + "}\n\n";
}

}  // namespace

std::string ZshCompletion(const CommandDescription& program) {
    const CommandDescription typed = AsTyped(program);
    std::string script = "#compdef quillon\n# Completion of the commands of quillon in zsh.\n\n";
    for (const CommandDescription* const command : AllCommands(typed))
        script += Function(*command);
    return script + "_quillon \"$@\"\n";
}

}  // namespace quillon
