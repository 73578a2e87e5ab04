#include "packaging/completion_words.h"

#include <algorithm>

#include "platform/basic_text.h"

namespace quillon {
namespace {

/// The names alone.
CommandDescription Topic(const CommandDescription& command, const std::string& parent) {
    CommandDescription topic;
    topic.name = parent + ' ' + std::string(command.Word());
    topic.summary = command.summary;
    for (const CommandDescription& below : command.commands)
        topic.commands.push_back(Topic(below, topic.name));
    return topic;
}

bool NamesACommand(const OptionDescription& argument) {
    return KindOf(argument) == WordKind::Command;
}

}  // namespace

WordKind KindOf(const OptionDescription& option) {
    if (!option.choices.empty()) return WordKind::Choice;
    const bool isArgument = !option.names.front().starts_with('-');
    const std::string& name = isArgument ? option.names.front() : option.value;
    if (name == "DIR" || name == "FOLDER") return WordKind::Folder;
    if (name.ends_with("FILE")) return WordKind::File;
    return name == "COMMAND" ? WordKind::Command : WordKind::Anything;
}

CommandDescription AsTyped(const CommandDescription& program) {
    CommandDescription typed = program;
    for (CommandDescription& command : typed.commands) {
        if (!std::ranges::any_of(command.arguments, NamesACommand)) continue;
        std::erase_if(command.arguments, NamesACommand);
        for (const CommandDescription& other : program.commands)
            if (other.name != command.name) command.commands.push_back(Topic(other, command.name));
    }
    return typed;
}

std::vector<const CommandDescription*> AllCommands(const CommandDescription& command) {
    std::vector<const CommandDescription*> all{&command};
    for (const CommandDescription& below : command.commands)
        for (const CommandDescription* const one : AllCommands(below))
            all.push_back(one);
    return all;
}

std::string Quoted(std::string_view text, std::string_view quote) {
    return '\'' + Replace(text, "'", quote) + '\'';
}

}  // namespace quillon
