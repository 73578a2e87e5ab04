#include "jet/storage/journal_note.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "jet/storage/format/fingerprint.h"

namespace jet::storage {

namespace {

constexpr std::string_view NoteName = "QuillonJournalNote 1";

/// Takes what stands in front of the next line's end.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

std::optional<std::uint64_t> NumberIn(std::string_view line) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc() || end != line.data() + line.size()) return std::nullopt;
    return number;
}

}  // namespace

bool JournalNote::Concerns(const CommitCounters& counters) const {
    const std::uint64_t now = Fingerprint(counters);
    return now == before || now == after;
}

std::string JournalNote::Text() const {
    std::string text(NoteName);
    for (const std::uint64_t number : {file, before, after})
        text += '\n' + std::to_string(number);
    // The path comes last: it alone may hold a line's end.
    return text + '\n' + journal.string();
}

std::optional<JournalNote> JournalNote::Parse(const std::string& text) {
    std::string_view rest = text;
    if (TakeLine(rest) != NoteName) return std::nullopt;
    JournalNote note;
    for (std::uint64_t* const number : {&note.file, &note.before, &note.after}) {
        const auto value = NumberIn(TakeLine(rest));
        if (!value) return std::nullopt;
        *number = *value;
    }
    note.journal = rest;
    if (!note.journal.is_absolute()) return std::nullopt;
    return note;
}

}  // namespace jet::storage
