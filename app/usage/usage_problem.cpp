#include "app/usage/usage_problem.h"

#include <algorithm>
#include <fmt/format.h>

#include "driver/nearest_name.h"

namespace quillon {
namespace {

/// "run, check and db"
std::string CommandWords(const CommandDescription& command, std::string_view beforeLast) {
    std::string words;
    for (std::size_t i = 0; i < command.commands.size(); ++i) {
        if (i > 0) words += i + 1 == command.commands.size() ? beforeLast : ", ";
        words += command.commands[i].Word();
    }
    return words;
}

/// The name that is meant: the nearest one, else the only one that begins like this.
std::string_view MeantName(std::string_view word, const std::vector<std::string_view>& names) {
    // One letter is near to any other.
    constexpr std::size_t Fewest = 2;
    const std::size_t dashes = std::min(word.find_first_not_of('-'), word.size());
    if (word.size() < dashes + Fewest) return "";
    if (const std::string_view nearest = NearestName(word, names); !nearest.empty()) return nearest;
    std::string_view found;
    for (const std::string_view name : names) {
        if (!name.starts_with(word)) continue;
        if (!found.empty()) return "";
        found = name;
    }
    return found;
}

std::string WithMeantName(std::string text, std::string_view word,
                          const std::vector<std::string_view>& names) {
    const std::string_view meant = MeantName(word, names);
    if (!meant.empty()) text += fmt::format("; did you mean '{}'?", meant);
    return text;
}

std::vector<std::string_view> OptionNames(const CommandDescription& command) {
    std::vector<std::string_view> names;
    for (const OptionDescription& option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

bool HasOption(const CommandDescription& command, std::string_view name) {
    return std::ranges::count(OptionNames(command), name) > 0;
}

/// The first command below this one that has the option; null when none has.
const CommandDescription* OwnerOf(std::string_view option, const CommandDescription& command) {
    for (const CommandDescription& below : command.commands) {
        if (HasOption(below, option)) return &below;
        if (const CommandDescription* const owner = OwnerOf(option, below)) return owner;
    }
    return nullptr;
}

std::string UnknownOption(const CommandDescription& program, const CommandDescription& command,
                          std::string_view word) {
    const std::string_view option = word.substr(0, word.find('='));
    std::string text = fmt::format("'{}' has no option {}", command.name, option);
    if (const CommandDescription* const owner = OwnerOf(option, program))
        return text + fmt::format("; '{}' has", owner->name);
    return WithMeantName(std::move(text), option, OptionNames(command));
}

std::string UnknownCommand(const CommandDescription& command, std::string_view word) {
    std::vector<std::string_view> names;
    names.reserve(command.commands.size());
    for (const CommandDescription& below : command.commands)
        names.push_back(below.Word());
    std::string text = command.needsCommand
                           ? fmt::format("'{}' has no command '{}'", command.name, word)
                           : fmt::format("there is no command '{}'", word);
    if (!MeantName(word, names).empty()) return WithMeantName(std::move(text), word, names);
    text += fmt::format("; the commands are {}", CommandWords(command, " and "));
    if (HasOption(command, "--host"))
        text += fmt::format(". A host folder is named with --host {}", word);
    return text;
}

std::string UnexpectedArgument(const CommandDescription& program, const CommandDescription& command,
                               std::string_view word) {
    if (FindCommand(program, fmt::format("{} {}", program.name, word)) != nullptr)
        return fmt::format("'{}' and '{} {}' are two commands; give one at a time", command.name,
                           program.name, word);
    if (!command.arguments.empty())
        return fmt::format(
            "'{}' is one argument too many for '{}'; an argument with blanks needs "
            "quotes",
            word, command.name);
    std::string text = fmt::format("'{}' takes no argument '{}'", command.name, word);
    if (HasOption(command, "--host"))
        text += fmt::format("; name the host folder with --host: {} --host {}", command.name, word);
    return text;
}

/// The problem with an option's value, "--host: 1 required DIR missing", in better words.
std::string WrongCount(const CommandDescription& command, std::string_view text) {
    const std::string_view name = text.substr(0, text.find(':'));
    for (const OptionDescription& option : command.options) {
        if (std::ranges::count(option.names, name) == 0) continue;
        if (text.find("missing") != std::string_view::npos)
            return fmt::format("{} needs a value: {} {}", name, name, option.value);
        if (!option.value.empty()) return fmt::format("{} may be given only once", name);
        return fmt::format("{} takes no value", name);
    }
    return std::string(text);
}

const CommandDescription& Found(const CommandDescription& program, const std::string& name) {
    const CommandDescription* const found = FindCommand(program, name);
    return found == nullptr ? program : *found;
}

std::string FullName(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    return (parent == nullptr ? "" : FullName(*parent) + ' ') + command.get_name();
}

}  // namespace

std::string UnexpectedWord(const CommandDescription& program, const CommandDescription& command,
                           std::string_view word) {
    if (word.size() > 1 && word.starts_with('-')) return UnknownOption(program, command, word);
    if (!command.commands.empty()) return UnknownCommand(command, word);
    return UnexpectedArgument(program, command, word);
}

LeftOverWord FindLeftOver(const CLI::App& program) {
    const std::vector<std::string> words = program.remaining(false);
    for (const std::string& word : words)
        if (word != "--") return {&program, word};
    const std::vector<CLI::App*> chosen = program.get_subcommands();
    return chosen.empty() ? LeftOverWord() : FindLeftOver(*chosen.front());
}

std::string UsageProblem(const CLI::App& program, const CommandDescription& description,
                         const CLI::ParseError& error) {
    const CommandDescription& asked = Found(description, AskedCommand(program));
    const bool isRequired = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    const bool isExtra = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
    if (isRequired || isExtra) {
        if (const LeftOverWord left = FindLeftOver(program); !left.word.empty())
            return UnexpectedWord(description, Found(description, FullName(*left.command)),
                                  left.word);
    }
    if (isRequired && asked.needsCommand)
        return fmt::format("'{}' needs a command: {}", asked.name, CommandWords(asked, " or "));
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        return WrongCount(asked, error.what());
    return error.what();
}

std::string AskedCommand(const CLI::App& program) {
    const CLI::App* command = &program;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    return FullName(*command);
}

}  // namespace quillon
