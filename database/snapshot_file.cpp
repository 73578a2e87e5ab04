#include "database/snapshot_file.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

constexpr std::string_view EndWord = "End";
constexpr char Escape = '%';

std::string EndLineText(std::span<const std::size_t> counts) {
    std::string line(EndWord);
    for (const std::size_t count : counts)
        line += ' ' + std::to_string(count);
    return line;
}

/// Whether a character stands for itself: the file is not Unicode, and blanks end a word.
bool IsPlain(char character) {
    return character > ' ' && character < 0x7F && character != Escape;
}

std::size_t KindNumber(const SnapshotFormat& format, std::string_view kind) {
    const auto found = std::find(format.kinds.begin(), format.kinds.end(), kind);
    return static_cast<std::size_t>(found - format.kinds.begin());
}

}  // namespace

std::uint32_t Fingerprint(std::string_view text) {
    constexpr std::uint32_t Start = 2166136261U;
    return Fingerprint(text, Start);
}

std::uint32_t Fingerprint(std::string_view piece, std::uint32_t before) {
    constexpr std::uint32_t Prime = 16777619U;  // FNV-1a
    for (const char letter : piece)
        before = (before ^ static_cast<std::uint8_t>(letter)) * Prime;
    return before;
}

SnapshotWriter::SnapshotWriter(Files& files, std::string_view path, const SnapshotFormat& format)
    : format_(format), file_(files.CreateOwnText(path)), counts_(format.kinds.size()) {
    line_ = format.title;
}

SnapshotWriter& SnapshotWriter::Line(std::string_view kind) {
    EndLine();
    line_ = kind;
    ++counts_.at(KindNumber(format_, kind));
    return *this;
}

SnapshotWriter& SnapshotWriter::Whole(Number number) {
    line_ += ' ';
    if (number) {
        std::array<char, 24> digits{};
        const auto [end, error] = std::to_chars(digits.begin(), digits.end(), *number);
        line_.append(digits.begin(), end);
    } else {
        line_ += SnapshotLine::NullWord;
    }
    return *this;
}

SnapshotWriter& SnapshotWriter::Text(std::string_view text) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    constexpr std::size_t Escaped = 3;
    // Room for the most that it can become, so that each character is just put down.
    std::size_t end = line_.size();
    line_.resize(end + 1 + Escaped * text.size());
    line_[end++] = ' ';
    for (const char character : text) {
        if (IsPlain(character)) {
            line_[end++] = character;
            continue;
        }
        const auto byte = static_cast<unsigned char>(character);
        line_[end++] = Escape;
        line_[end++] = Digits[byte / 16U];
        line_[end++] = Digits[byte % 16U];
    }
    line_.resize(end);
    return *this;
}

void SnapshotWriter::Close() {
    EndLine();
    file_->WriteLine(EndLineText(counts_));
    file_->Close();
}

void SnapshotWriter::EndLine() {
    // All of it is ASCII.
    line_ += "\r\n";
    file_->WriteBytes(line_);
}

std::string_view SnapshotLine::Word() {
    const std::size_t end = std::min(rest_.find(' '), rest_.size());
    const std::string_view word = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return word;
}

std::string SnapshotLine::Text() {
    const std::string_view word = Word();
    std::string text;
    text.reserve(word.size());
    for (std::size_t at = 0; at < word.size(); ++at) {
        const std::size_t plain = std::min(word.find(Escape, at), word.size());
        text += word.substr(at, plain - at);
        at = plain;
        if (at == word.size()) break;
        const std::string_view digits = word.substr(at + 1, 2);
        std::uint8_t byte = 0;
        const char* const begin = digits.data();
        const char* const end = begin + digits.size();
        const auto [stop, error] = std::from_chars(begin, end, byte, 16);
        if (digits.size() != 2 || error != std::errc() || stop != end) {
            well_ = false;
            break;
        }
        text += static_cast<char>(byte);
        at += 2;
    }
    return text;
}

bool ReadSnapshot(Files& files, std::string_view path, const SnapshotFormat& format,
                  const std::function<void(std::string_view kind, SnapshotLine& line)>& visit) {
    const std::unique_ptr<TextReader> file = files.OpenText(path);
    if (file->AtEndOfStream() || file->ReadLine() != format.title) return false;
    std::vector<std::size_t> counts(format.kinds.size());
    while (!file->AtEndOfStream()) {
        const std::string text = file->ReadLine();
        SnapshotLine line(text);
        const std::string_view word = line.Word();
        if (word == EndWord) return text == EndLineText(counts) && file->AtEndOfStream();
        const std::size_t kind = KindNumber(format, word);
        if (kind == counts.size()) return false;
        ++counts[kind];
        visit(word, line);
        if (!line.ReadWell()) return false;
    }
    return false;
}

}  // namespace quillon
