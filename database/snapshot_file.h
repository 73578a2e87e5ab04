#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/files.h"

/// Small text files beside the database that keep for a while what a run would otherwise hold in
/// memory alone. Each line is a kind and words with blanks between; the first line names the format
/// and the last one counts the lines of each kind, so that a damaged file is always noticed.
namespace quillon {

/// A number that a text is recognised by.
std::uint32_t Fingerprint(std::string_view text);
/// The same for a text that comes in pieces: pass on what the call before gave.
std::uint32_t Fingerprint(std::string_view piece, std::uint32_t before);

struct SnapshotFormat {
    std::string_view title;                   ///< the first line
    std::span<const std::string_view> kinds;  ///< first words of lines, in the order of the counts
};

/// Writes a snapshot file, whole or not at all. Throws Failure.
class SnapshotWriter {
  public:
    using Number = std::optional<std::int64_t>;

    SnapshotWriter(Files& files, std::string_view path, const SnapshotFormat& format);

    /// Starts a line; `kind` is one of the format's.
    SnapshotWriter& Line(std::string_view kind);
    /// Words of the line.
    SnapshotWriter& Whole(Number number);
    SnapshotWriter& Text(std::string_view text);

    void Close();

  private:
    void EndLine();

    SnapshotFormat format_;
    std::unique_ptr<TextWriter> file_;
    std::vector<std::size_t> counts_;
    std::string line_;
};

/// The words of one line. After a word that is not what was asked for it is damaged for good.
class SnapshotLine {
  public:
    explicit SnapshotLine(std::string_view line) : rest_(line) {}

    template <typename Number>
    Number Whole() {
        return Parse<Number>(Word());
    }
    template <typename Number>
    std::optional<Number> WholeOrNull() {
        const std::string_view word = Word();
        if (word == NullWord) return std::nullopt;
        return Parse<Number>(word);
    }
    std::string Text();

    /// Call it when the words make no sense.
    void Damaged() { well_ = false; }
    bool ReadWell() const { return well_ && rest_.empty(); }

    std::string_view Word();

    /// Stands for the absence of a number.
    static constexpr std::string_view NullWord = "Null";

  private:
    template <typename Number>
    Number Parse(std::string_view word) {
        Number number = 0;
        const char* const begin = word.data();
        const char* const end = begin + word.size();
        const auto [stop, error] = std::from_chars(begin, end, number);
        if (word.empty() || error != std::errc() || stop != end) well_ = false;
        return number;
    }

    std::string_view rest_;
    bool well_ = true;
};

/// Gives each line's kind and words to `visit`, which must read all of them. Whether the file is a
/// whole snapshot; what was visited counts only then. Failure when the file cannot be read.
bool ReadSnapshot(Files& files, std::string_view path, const SnapshotFormat& format,
                  const std::function<void(std::string_view kind, SnapshotLine& line)>& visit);

}  // namespace quillon
