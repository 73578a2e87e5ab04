#include <fmt/format.h>
#include <fmt/ranges.h>

#include "packaging/completion_words.h"
#include "packaging/completions.h"

namespace quillon {
namespace {

constexpr std::string_view Head = R"(# Completion of the commands of quillon in bash.
_quillon()
{
    local current=${COMP_WORDS[COMP_CWORD]} command=quillon words= kind= value= taken=0 i
    # "--option=value" comes as three words.
    [[ $current == = ]] && current=
)";

constexpr std::string_view Tail = R"(    case $kind in
        folder) compopt -o dirnames ;;
        file) compopt -o default ;;
    esac
    COMPREPLY=($(compgen -W "$words" -- "$current"))
}
complete -F _quillon quillon
)";

std::string_view KindWord(WordKind kind) {
    if (kind == WordKind::Folder) return "folder";
    return kind == WordKind::File ? "file" : "";
}

/// Options that take the next word, as patterns: "quillon run --host".
std::string ValueCases(const std::vector<const CommandDescription*>& commands) {
    std::string cases;
    for (const CommandDescription* const command : commands) {
        for (const OptionDescription& option : command->options) {
            if (option.value.empty()) continue;
            std::vector<std::string> patterns;
            patterns.reserve(option.names.size());
            for (const std::string& name : option.names)
                patterns.push_back(fmt::format("'{} {}'", command->name, name));
            cases += fmt::format("            {}) words='{}' kind={} value=yes ;;\n",
                                 fmt::join(patterns, " | "), fmt::join(option.choices, " "),
                                 KindWord(KindOf(option)));
        }
    }
    return cases;
}

std::string WordsLine(std::string_view test, const std::vector<std::string_view>& words) {
    if (words.empty()) return "";
    return fmt::format("                [[ $current {} -* ]] && words='{}'\n", test,
                       fmt::join(words, " "));
}

/// What a command offers where no option waits for its value.
std::string CommandCase(const CommandDescription& command) {
    std::vector<std::string_view> options, below;
    for (const OptionDescription& option : command.options)
        options.insert(options.end(), option.names.begin(), option.names.end());
    for (const CommandDescription& one : command.commands)
        below.push_back(one.Word());
    std::string lines = WordsLine("==", options) + WordsLine("!=", below);
    for (std::size_t i = 0; i < command.arguments.size(); ++i) {
        const std::string_view kind = KindWord(KindOf(command.arguments[i]));
        if (kind.empty()) continue;
        lines += fmt::format("                [[ $taken == {} ]] && kind={}\n", i, kind);
    }
    if (lines.empty()) return "";
    return fmt::format("            '{}')\n{}                ;;\n", command.name, lines);
}

}  // namespace

std::string BashCompletion(const CommandDescription& program) {
    const CommandDescription typed = AsTyped(program);
    const std::vector<const CommandDescription*> commands = AllCommands(typed);
    std::vector<std::string> names;
    for (const CommandDescription* const command : commands)
        if (command != &typed) names.push_back('\'' + command->name + '\'');

    std::string script(Head);
    script +=
        "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
        "        [[ ${COMP_WORDS[i]} == = ]] && continue\n"
        "        if [[ $value ]]; then\n"
        "            value=\n"
        "            continue\n"
        "        fi\n"
        "        case \"$command ${COMP_WORDS[i]}\" in\n";
    script += fmt::format("            {}) command+=\" ${{COMP_WORDS[i]}}\" ;;\n",
                          fmt::join(names, " | \\\n                "));
    script += ValueCases(commands);
    script +=
        "            *' -'*) ;;\n"
        "            *) ((taken++)) ;;\n"
        "        esac\n"
        "    done\n"
        "    if [[ ! $value ]]; then\n"
        "        words= kind=\n"
        "        case $command in\n";
    for (const CommandDescription* const command : commands)
        script += CommandCase(*command);
    script +=
        "        esac\n"
        "    fi\n";
    return script.append(Tail);
}

}  // namespace quillon
