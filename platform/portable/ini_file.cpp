#include "platform/portable/ini_file.h"

#include <algorithm>

#include "platform/basic_text.h"
#include "platform/encoded_text.h"

namespace quillon {
namespace {

constexpr std::string_view LineEnds = "\r\n";

std::string_view WithoutBlanks(std::string_view text) {
    constexpr std::string_view Blanks = " \t";
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

std::string_view WithoutQuotes(std::string_view value) {
    const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

IniFile IniFile::Parse(std::string_view bytes) {
    IniFile file;
    const std::string decoded = DecodeText(bytes);
    std::string_view text = decoded;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(LineEnds), text.size());
        file.AddLine(WithoutBlanks(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    file.current_ = nullptr;
    return file;
}

void IniFile::AddLine(std::string_view line) {
    if (line.empty() || line.front() == ';') return;
    if (line.front() != '[') {
        AddEntry(line);
        return;
    }
    const std::string_view name = WithoutBlanks(line.substr(1, line.find(']') - 1));
    const auto [section, isFirst] = sections_.try_emplace(UpperCase(name));
    current_ = &section->second;
    isFirstOfName_ = isFirst;
}

void IniFile::AddEntry(std::string_view line) {
    if (current_ == nullptr) return;
    current_->lines.emplace_back(line);
    const std::size_t equals = line.find('=');
    if (!isFirstOfName_ || equals == std::string_view::npos) return;
    const std::string_view key = WithoutBlanks(line.substr(0, equals));
    const std::string_view value = WithoutQuotes(WithoutBlanks(line.substr(equals + 1)));
    const bool isFirst =
        current_->positions.try_emplace(UpperCase(key), current_->entries.size()).second;
    if (isFirst) current_->entries.emplace_back(key, value);
}

std::optional<std::string> IniFile::Find(std::string_view section, std::string_view key) const {
    const auto found = sections_.find(UpperCase(section));
    if (found == sections_.end()) return std::nullopt;
    const auto position = found->second.positions.find(UpperCase(key));
    if (position == found->second.positions.end()) return std::nullopt;
    return found->second.entries[position->second].second;
}

std::vector<IniFile::Entry> IniFile::Entries(std::string_view section) const {
    const auto found = sections_.find(UpperCase(section));
    return found == sections_.end() ? std::vector<Entry>{} : found->second.entries;
}

std::vector<std::string> IniFile::Lines(std::string_view section) const {
    const auto found = sections_.find(UpperCase(section));
    return found == sections_.end() ? std::vector<std::string>{} : found->second.lines;
}

}  // namespace quillon
