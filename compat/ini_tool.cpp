#include "compat/ini_tool.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/failure.h"

namespace quillon {
namespace {

constexpr std::string_view IniToolSource = "IniTool";

std::string EntryKey(std::string_view section, std::string_view key) {
    return UpperCase(section) + "~" + UpperCase(key);
}

/// A line of the file to be written.
struct Row {
    std::string header;
    std::string key;
    std::string value;
};

void RequireLength(std::string_view text, std::size_t longest, const char* what) {
    if (Utf16Length(text) <= longest) return;
    throw Failure::Described(FailureNumber::Database, std::string(what) + " of more than " +
                                                          std::to_string(longest) +
                                                          " characters: " + std::string(text));
}

}  // namespace

void IniTool::Load(std::string_view fileName, Diagnostics diagnostics) {
    Clear();
    fileName_ = fileName;
    if (!files_.FileExists(fileName_)) {
        if (diagnostics == Diagnostics::On) {
            host_.WriteLog(IniToolSource,
                           "Ini file " + fileName_ + " not found in homeseer directory");
        }
        return;
    }
    const std::unique_ptr<TextReader> reader = files_.OpenText(fileName_);
    std::string section;
    while (!reader->AtEndOfStream()) {
        const std::string whole = reader->ReadLine();
        const std::string_view line = Trim(whole);
        if (line.starts_with(';')) continue;
        if (line.starts_with('[') && line.ends_with(']')) {
            section = line.substr(1, line.size() - 2);
            // Users' files were never accepted with a section in two places, and a second one that
            // silently joined the first would hide which of two values counts.
            Add(UpperCase(section), section);
        } else if (!line.empty()) {
            AddEntry(section, line, diagnostics);
        }
    }
}

void IniTool::AddEntry(std::string_view section, std::string_view line, Diagnostics diagnostics) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        if (diagnostics == Diagnostics::On) {
            host_.WriteLog(IniToolSource, " Equal sign not found on line " + std::string(line));
        }
        return;
    }
    std::string key = EntryKey(section, line.substr(0, equals));
    if (Find(key) == nullptr) Add(std::move(key), line.substr(equals + 1));
}

std::string IniTool::Read(std::string_view section, std::string_view key,
                          std::string_view fallback) const {
    const std::string* item = Find(EntryKey(section, key));
    return item == nullptr || item->empty() ? std::string(fallback) : *item;
}

void IniTool::Remove(std::string_view section, std::string_view key) {
    const auto found = index_.find(EntryKey(section, key));
    if (found == index_.end()) return;
    const std::size_t position = found->second;
    index_.erase(found);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
    for (auto& [name, place] : index_) {
        if (place > position) --place;
    }
}

std::vector<std::string> IniTool::Headers() const {
    std::vector<std::string> names;
    for (const Entry& entry : entries_) {
        if (UpperCase(entry.item) == entry.key) names.push_back(entry.item);
    }
    return names;
}

void IniTool::Clear() {
    entries_.clear();
    index_.clear();
}

void IniTool::Save() const {
    std::vector<Row> rows;
    for (const auto& [key, item] : entries_) {
        const std::size_t tilde = key.find('~');
        if (item == key || tilde == std::string::npos) continue;
        Row row{key.substr(0, tilde), key.substr(tilde + 1), item};
        RequireLength(row.header, 100, "Section");
        RequireLength(row.key, 65, "Key");
        RequireLength(row.value, 255, "Value");
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Row& left, const Row& right) {
        return std::tie(left.header, left.key) < std::tie(right.header, right.key);
    });

    const std::unique_ptr<TextWriter> writer = files_.CreateText(fileName_);
    std::string header;
    for (const Row& row : rows) {
        if (row.header != header) writer->WriteLine("[" + row.header + "]");
        header = row.header;
        writer->WriteLine(row.key + "=" + row.value);
    }
    writer->Close();
}

void IniTool::DumpHashTable(TextWriter& out) const {
    out.Write("<PRE>");
    for (const auto& [key, item] : entries_) {
        out.Write(key);
        out.Write(" = ");
        out.Write(item);
        out.Write("\r\n");
    }
    out.Write("</PRE>");
}

const std::string* IniTool::Find(const std::string& key) const {
    const auto found = index_.find(key);
    return found == index_.end() ? nullptr : &entries_[found->second].item;
}

void IniTool::Add(std::string key, std::string_view item) {
    if (!index_.emplace(key, entries_.size()).second) {
        throw Failure(FailureNumber::DuplicateKey, fileName_ + ", section " + std::string(item));
    }
    entries_.push_back({std::move(key), std::string(item)});
}

}  // namespace quillon
