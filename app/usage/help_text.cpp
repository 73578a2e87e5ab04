#include "app/usage/help_text.h"

#include <algorithm>

#include "app/text/display_text.h"

namespace quillon {
namespace {

constexpr std::size_t LineColumns = 80, WidestName = 22, Gap = 2;

/// A name and what it means, side by side.
struct Entry {
    std::string name, meaning;
};

std::size_t NameColumns(const std::vector<Entry>& entries) {
    std::size_t widest = 0;
    for (const Entry& entry : entries)
        if (entry.name.size() <= WidestName) widest = std::max(widest, entry.name.size());
    return widest;
}

/// Names that are wider than most have their meaning on the next line.
void AddList(std::string& text, std::string_view title, const std::vector<Entry>& entries) {
    if (entries.empty()) return;
    text.append("\n").append(title).append(":\n");
    const std::size_t names = NameColumns(entries), start = Gap + names + Gap;
    for (const Entry& entry : entries) {
        std::string line = std::string(Gap, ' ') + entry.name;
        if (entry.name.size() > names) {
            text += line + '\n';
            line.clear();
        }
        for (const std::string& words : WrapWords(entry.meaning, LineColumns - start)) {
            line.resize(start, ' ');
            text += line + words + '\n';
            line.clear();
        }
    }
}

std::string Meaning(const OptionDescription& option) {
    return option.help + (option.required && !option.value.empty() ? " (required)" : "");
}

std::vector<Entry> EntriesOf(const std::vector<OptionDescription>& options) {
    std::vector<Entry> entries;
    entries.reserve(options.size());
    for (const OptionDescription& option : options)
        entries.push_back({OptionForms(option), Meaning(option)});
    return entries;
}

/// An example that leaves no room for its remark has it on the line above.
void AddExamples(std::string& text, const CommandDescription& command) {
    if (command.examples.empty()) return;
    text += '\n' + command.examplesTitle + ":\n";
    std::size_t widest = 0;
    bool fits = true;
    for (const ExampleDescription& example : command.examples)
        if (!example.remark.empty()) widest = std::max(widest, example.line.size());
    for (const ExampleDescription& example : command.examples)
        fits = fits && Gap + widest + 2 * Gap + example.remark.size() <= LineColumns;
    for (const ExampleDescription& example : command.examples) {
        std::string line = std::string(Gap, ' ') + example.line;
        if (!example.remark.empty() && fits) {
            line.resize(Gap + widest + 2 * Gap, ' ');
            line += example.remark;
        } else if (!example.remark.empty()) {
            for (const std::string& words : WrapWords(example.remark, LineColumns - Gap - 2))
                text += std::string(Gap, ' ') + "# " + words + '\n';
        }
        text += line + '\n';
    }
}

}  // namespace

std::string HelpText(const CommandDescription& command) {
    std::string text;
    for (const std::string& line : WrapWords(command.summary + ".", LineColumns))
        text += line + '\n';
    text += "\nUsage: " + UsageLine(command) + '\n';
    std::vector<Entry> commands;
    commands.reserve(command.commands.size());
    for (const CommandDescription& below : command.commands)
        commands.push_back({std::string(below.Word()), below.summary});
    AddList(text, "Commands", commands);
    AddList(text, "Arguments", EntriesOf(command.arguments));
    AddList(text, "Options", EntriesOf(command.options));
    for (const std::string& paragraph : command.paragraphs) {
        text += '\n';
        for (const std::string& line : WrapWords(paragraph, LineColumns))
            text += line + '\n';
    }
    AddExamples(text, command);
    return text;
}

}  // namespace quillon
