#include "app/usage/command_description.h"

namespace quillon {

std::string_view CommandDescription::Word() const {
    return std::string_view(name).substr(name.rfind(' ') + 1);
}

std::string OptionForms(const OptionDescription& option) {
    std::string forms;
    for (const std::string& name : option.names)
        forms += (forms.empty() ? "" : ", ") + name;
    return option.value.empty() ? forms : forms + ' ' + option.value;
}

std::string UsageLine(const CommandDescription& command) {
    std::string line = command.name + " [OPTIONS]";
    for (const OptionDescription& option : command.options)
        if (option.required) line += ' ' + OptionForms(option);
    for (const OptionDescription& argument : command.arguments) {
        const std::string name = argument.names.front() + (argument.repeats ? "..." : "");
        line += argument.required ? ' ' + name : " [" + name + ']';
    }
    if (!command.commands.empty()) line += command.needsCommand ? " COMMAND" : " [COMMAND]";
    return line;
}

const CommandDescription* FindCommand(const CommandDescription& program, std::string_view name) {
    if (program.name == name) return &program;
    for (const CommandDescription& below : program.commands)
        if (const CommandDescription* const found = FindCommand(below, name)) return found;
    return nullptr;
}

}  // namespace quillon
