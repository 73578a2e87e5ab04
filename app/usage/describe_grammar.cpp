#include "app/usage/describe_grammar.h"

#include "platform/basic_text.h"

namespace quillon {
namespace {

constexpr std::string_view RemarkGap = "    ";

ExampleDescription ExampleOf(std::string_view line) {
    line = Trim(line);
    const std::size_t gap = line.find(RemarkGap);
    if (gap == std::string_view::npos) return {std::string(line), ""};
    return {std::string(line.substr(0, gap)), std::string(Trim(line.substr(gap)))};
}

bool IsExamples(const std::vector<std::string>& lines) {
    if (lines.size() < 2 || !lines.front().ends_with(':')) return false;
    for (std::size_t i = 1; i < lines.size(); ++i)
        if (!lines[i].starts_with("  ")) return false;
    return true;
}

void ReadFooter(const std::string& footer, CommandDescription& command) {
    for (const std::string& block : Split(footer, "\n\n")) {
        const std::vector<std::string> lines = Split(block, "\n");
        if (!IsExamples(lines)) {
            if (!block.empty()) command.paragraphs.push_back(Replace(block, "\n", " "));
            continue;
        }
        command.examplesTitle = lines.front().substr(0, lines.front().size() - 1);
        for (std::size_t i = 1; i < lines.size(); ++i)
            command.examples.push_back(ExampleOf(lines[i]));
    }
}

OptionDescription DescribeOption(const CLI::Option& option) {
    OptionDescription described;
    described.help = option.get_description();
    described.required = option.get_required();
    if (option.get_positional()) {
        described.names.push_back(option.get_name(true));
        described.repeats = option.get_expected_max() > 1;
        return described;
    }
    for (const std::string& name : option.get_snames())
        described.names.push_back('-' + name);
    for (const std::string& name : option.get_lnames())
        described.names.push_back("--" + name);
    const bool isFlag = option.get_expected_max() == 0 || option.get_type_size_max() == 0;
    if (isFlag) return described;
    described.value = option.get_type_name();
    if (described.value.find('|') != std::string::npos)
        described.choices = Split(described.value, "|");
    return described;
}

CommandDescription DescribeBelow(const CLI::App& command, const std::string& parent) {
    CommandDescription described;
    described.name = parent + command.get_name();
    described.summary = command.get_description();
    described.needsCommand = command.get_require_subcommand_min() > 0;
    ReadFooter(command.get_footer(), described);
    for (const CLI::Option* const option : command.get_options())
        (option->get_positional() ? described.arguments : described.options)
            .push_back(DescribeOption(*option));
    const auto all = [](const CLI::App*) { return true; };
    for (const CLI::App* const below : command.get_subcommands(all))
        described.commands.push_back(DescribeBelow(*below, described.name + ' '));
    return described;
}

}  // namespace

CommandDescription Describe(const CLI::App& command) {
    return DescribeBelow(command, "");
}

}  // namespace quillon
