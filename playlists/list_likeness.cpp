#include "playlists/list_likeness.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/sql.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/files.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_text.h"
#include "run/run.h"

namespace quillon {
namespace {

constexpr std::array<std::string_view, 7> NeverLists{".ini", ".mdb", ".ldb", ".mp3",
                                                     ".log", ".m3u", ".m3u8"};

/// A few lines are enough to know nearly all files that are something else.
constexpr std::size_t FirstBytes = 4096;
constexpr std::uint64_t MostBytes = std::uint64_t{1} << 20U;

bool HasOtherMeaning(std::string_view name) {
    const auto isExtension = [name](std::string_view extension) {
        return EqualIgnoringCase(Right(name, extension.size()), extension);
    };
    return name.starts_with("._") || std::any_of(NeverLists.begin(), NeverLists.end(), isExtension);
}

std::string Beginning(Files& files, const FileEntry& file) {
    const std::vector<std::uint8_t> bytes = files.OpenBinary(file.path)->Read(FirstBytes);
    return {bytes.begin(), bytes.end()};
}

/// The entry of a line that holds nothing else; stricter than the readers of lists.
std::optional<PlaFields> PlainEntry(std::string_view line) {
    const std::optional<PlaFields> fields = ExactlyTwoFields(Trim(line));
    if (!fields) return std::nullopt;
    constexpr std::string_view Digits = "0123456789";
    constexpr std::size_t MostDigits = 5;
    const std::string_view index = fields->index;
    const bool isNumber =
        index.size() <= MostDigits && index.find_first_not_of(Digits) == std::string_view::npos;
    return isNumber || index == WholeAlbumIndex ? fields : std::nullopt;
}

/// The first entry behind the first line; nothing where any line holds anything else.
std::optional<PlaFields> FirstOfEntries(std::string_view text) {
    const std::vector<std::string_view> lines = LinesOf(text);
    std::optional<PlaFields> first;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (Trim(lines[i]).empty()) continue;
        const std::optional<PlaFields> fields = PlainEntry(lines[i]);
        if (!fields) return std::nullopt;
        if (!first) first = fields;
    }
    return first;
}

bool BeginsWithHeader(std::string_view text) {
    return text.substr(0, text.find_first_of(PlaylistLineEnd)) == PlaHeader;
}

bool IsAlbum(Connection& connection, std::string_view cdjid) {
    const std::string text = AnsiToUtf8(cdjid);
    return !connection.Query("SELECT ID FROM Tracks WHERE CDJID=" + FilterQuoted(text))->IsEmpty();
}

}  // namespace

bool MayBePlaylist(std::string_view text) {
    constexpr char FirstPrintable = ' ';
    const auto isOfText = [](char byte) {
        return static_cast<unsigned char>(byte) >= FirstPrintable || byte == '\t' || byte == '\r' ||
               byte == '\n';
    };
    if (BeginsWithHeader(text) || std::ranges::all_of(text, isOfText)) return true;
    const std::vector<std::string_view> lines = LinesOf(text);
    return lines.size() > 1 && std::any_of(lines.begin() + 1, lines.end(), PlainEntry);
}

bool ReadsAsPlaylist(Run& run, const FileEntry& file) {
    if (HasOtherMeaning(file.name)) return false;
    std::string text = Beginning(run.files, file);
    if (BeginsWithHeader(text)) return true;
    if (text.size() == FirstBytes) {
        // Its last line is cut off.
        if (!FirstOfEntries(text.substr(0, text.rfind('\n') + 1))) return false;
        if (file.size > MostBytes) return false;
        text = ReadPlaylist(run.files, file.path);
    }
    const std::optional<PlaFields> first = FirstOfEntries(text);
    return first && IsAlbum(*run.connection, first->cdjid);
}

}  // namespace quillon
