#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon {

/// A settings file as Windows reads it for a program: `[Section]` lines, `Key=Value` lines, lines
/// that begin with ";" are comments. Letter case of names does not count; of sections or keys of
/// one name only the first is used. Blanks around names and values do not belong to them, nor does
/// one pair of quotes around a value.
///
/// The bytes may be UTF-16 with its mark, UTF-8 with or without its mark, or else ANSI.
class IniFile {
  public:
    using Entry = std::pair<std::string, std::string>;

    /// Every text is a settings file; lines that are none of the above mean nothing.
    static IniFile Parse(std::string_view bytes);

    /// The value's text, which may be empty; nothing when the key or the section is absent.
    std::optional<std::string> Find(std::string_view section, std::string_view key) const;

    /// Keys as written with their values, in the file's order.
    std::vector<Entry> Entries(std::string_view section) const;

    /// All lines under headings of that name, whether they mean anything or not; no comments.
    std::vector<std::string> Lines(std::string_view section) const;

  private:
    void AddLine(std::string_view line);
    void AddEntry(std::string_view line);

    struct Section {
        std::vector<Entry> entries;
        std::map<std::string, std::size_t> positions;  ///< by upper-case key
        std::vector<std::string> lines;
    };
    std::map<std::string, Section> sections_;  ///< by upper-case name
    // While parsing.
    Section* current_ = nullptr;  ///< null before the first heading
    bool isFirstOfName_ = false;  ///< of a later one of the same name nothing counts
};

}  // namespace quillon
