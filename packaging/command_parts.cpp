#include <fmt/format.h>

#include "packaging/roff.h"

namespace quillon {
namespace {

bool IsGeneral(const OptionDescription& option) {
    return option.names.back() == "--help" || option.names.back() == "--version";
}

std::string Bold(std::string_view text) {
    return "\\fB" + RoffText(text) + "\\fR";
}

std::string Italic(std::string_view text) {
    return "\\fI" + RoffText(text) + "\\fR";
}

/// Words to be typed are bold, words that stand for others are not.
std::string Forms(const OptionDescription& option, bool isArgument) {
    std::string forms;
    for (const std::string& name : option.names)
        forms += (forms.empty() ? "" : ", ") + (isArgument ? Italic(name) : Bold(name));
    if (option.choices.empty())
        return option.value.empty() ? forms : forms + ' ' + Italic(option.value);
    for (const std::string& choice : option.choices)
        forms += (choice == option.choices.front() ? " " : "|") + Bold(choice);
    return forms;
}

std::string Entry(const OptionDescription& option, bool isArgument) {
    const std::string help = option.help + (option.required && !isArgument ? ". Required." : ".");
    return fmt::format(".TP\n{}\n{}", Forms(option, isArgument), RoffParagraph(help));
}

std::string Examples(const CommandDescription& command) {
    std::string text = ".RS 4\n.EX\n";
    for (const ExampleDescription& example : command.examples) {
        if (!example.remark.empty()) text += "# " + RoffText(example.remark) + '\n';
        text += RoffText(example.line) + '\n';
    }
    return text + ".EE\n.RE\n";
}

std::string CommandText(const CommandDescription& command) {
    std::string text = fmt::format(".SS {}\n{}", RoffText(UsageLine(command)),
                                   RoffParagraph(command.summary + '.'));
    for (const std::string& paragraph : command.paragraphs)
        text += ".PP\n" + RoffParagraph(paragraph);
    for (const OptionDescription& argument : command.arguments)
        text += Entry(argument, true);
    for (const OptionDescription& option : command.options)
        if (!IsGeneral(option)) text += Entry(option, false);
    if (!command.examples.empty())
        text += ".PP\n" + RoffText(command.examplesTitle) + ":\n" + Examples(command);
    return text;
}

/// A command that only holds others needs no heading of its own.
void AddCommands(const CommandDescription& command, std::string& text) {
    for (const CommandDescription& below : command.commands) {
        if (!below.needsCommand) text += CommandText(below);
        AddCommands(below, text);
    }
}

void AddSynopsis(const CommandDescription& command, std::string& text) {
    const auto argument = [](const OptionDescription& one) {
        return one.required
                   ? Italic(one.names.front())
                   : fmt::format("[{}{}]", Italic(one.names.front()), one.repeats ? "..." : "");
    };
    if (!command.needsCommand) {
        if (!text.empty()) text += ".br\n";
        text += Bold(command.name) + " [" + Italic("OPTIONS") + ']';
        for (const OptionDescription& option : command.options)
            if (option.required) text += ' ' + Forms(option, false);
        for (const OptionDescription& one : command.arguments)
            text += ' ' + argument(one);
        text += '\n';
    }
    for (const CommandDescription& below : command.commands)
        AddSynopsis(below, text);
}

}  // namespace

std::map<std::string, std::string> CommandParts(const CommandDescription& program) {
    std::map<std::string, std::string> parts;
    for (const CommandDescription& command : program.commands)
        AddSynopsis(command, parts["SYNOPSIS"]);
    AddCommands(program, parts["COMMANDS"]);
    for (const OptionDescription& option : program.options)
        if (IsGeneral(option)) parts["OPTIONS"] += Entry(option, false);
    parts["EXAMPLES"] = Examples(program);
    return parts;
}

}  // namespace quillon
