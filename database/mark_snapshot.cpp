#include "database/mark_snapshot.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <utility>
#include <variant>

namespace quillon {
namespace {

constexpr std::string_view FirstLine = "Quillon mark snapshot 2";
constexpr std::string_view AlbumWord = "Album", TrackWord = "Track", EndWord = "End";
constexpr std::string_view NullWord = "Null";

template <typename Row>
void SortById(std::vector<Row>& rows) {
    const auto less = [](const Row& a, const Row& b) { return a.id < b.id; };
    const auto same = [](const Row& a, const Row& b) { return a.id == b.id; };
    std::sort(rows.begin(), rows.end(), less);
    // A join over a duplicated identifier names its tracks more than once.
    rows.erase(std::unique(rows.begin(), rows.end(), same), rows.end());
    rows.shrink_to_fit();
}

template <typename Row>
const Row* FindById(const std::vector<Row>& rows, std::int64_t id) {
    const auto found =
        std::lower_bound(rows.begin(), rows.end(), id,
                         [](const Row& row, std::int64_t wanted) { return row.id < wanted; });
    return found != rows.end() && found->id == id ? &*found : nullptr;
}

MarkedValue MarkedField(const RecordSet& rows, std::string_view field) {
    if (IsNull(rows.Get(field))) return std::nullopt;
    return static_cast<std::int32_t>(rows.Integer(field));
}

std::string ValueText(MarkedValue value) {
    return value ? std::to_string(*value) : std::string(NullWord);
}

/// Reads the blank-separated words of one line. Anything unexpected makes it false for good.
class LineReader {
  public:
    explicit LineReader(std::string_view line) : rest_(line) {}

    std::string_view Word() {
        const std::size_t end = std::min(rest_.find(' '), rest_.size());
        const std::string_view word = rest_.substr(0, end);
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return word;
    }

    template <typename Number>
    Number Whole() {
        return Parse<Number>(Word());
    }

    MarkedValue Marked() {
        const std::string_view word = Word();
        if (word == NullWord) return std::nullopt;
        return Parse<std::int32_t>(word);
    }

    bool ReadWell() const { return well_ && rest_.empty(); }

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

std::string EndLine(std::size_t albums, std::size_t tracks) {
    return std::string(EndWord) + ' ' + std::to_string(albums) + ' ' + std::to_string(tracks);
}

}  // namespace

std::uint32_t Fingerprint(std::string_view text) {
    constexpr std::uint32_t Start = 2166136261U, Prime = 16777619U;  // FNV-1a
    std::uint32_t value = Start;
    for (const char letter : text)
        value = (value ^ static_cast<std::uint8_t>(letter)) * Prime;
    return value;
}

std::uint32_t OriginFingerprint(std::string_view soundFile, const Value& dateAdded) {
    std::string origin(soundFile.substr(0, soundFile.rfind('\\') + 1));
    if (const auto* const date = std::get_if<DateTime>(&dateAdded))
        origin += std::to_string(date->days);
    return Fingerprint(origin);
}

bool MarkedTrack::IsRow(std::string_view rowSoundFile, const Value& dateAdded) const {
    return soundFile == Fingerprint(rowSoundFile) ||
           origin == OriginFingerprint(rowSoundFile, dateAdded);
}

MarkSnapshot::MarkSnapshot(std::vector<MarkedAlbum> albums, std::vector<MarkedTrack> tracks)
    : albums_(std::move(albums)), tracks_(std::move(tracks)) {
    SortById(albums_);
    SortById(tracks_);
}

const MarkedAlbum* MarkSnapshot::FindAlbum(std::int64_t id) const {
    return FindById(albums_, id);
}

const MarkedTrack* MarkSnapshot::FindTrack(std::int64_t id) const {
    return FindById(tracks_, id);
}

MarkSnapshot CaptureMarks(Connection& connection) {
    std::vector<MarkedAlbum> albums;
    const auto albumRows =
        connection.Query("SELECT ID, CDJID, Tracks FROM Albums WHERE Player=1001");
    for (; !albumRows->IsEof(); albumRows->MoveNext()) {
        albums.push_back({.id = static_cast<std::int32_t>(albumRows->Integer("ID")),
                          .count = MarkedField(*albumRows, "Tracks"),
                          .cdjid = Fingerprint(albumRows->Text("CDJID"))});
    }
    std::vector<MarkedTrack> tracks;
    const auto trackRows = connection.Query(
        "SELECT Tracks.ID AS TrackID, Tracks.Track, Tracks.SoundFile, Tracks.DateAdded, "
        "Albums.ID AS AlbumID "
        "FROM Albums INNER JOIN Tracks ON Albums.CDJID = Tracks.CDJID "
        "WHERE Albums.Player=1001");
    for (; !trackRows->IsEof(); trackRows->MoveNext()) {
        const std::string soundFile = trackRows->Text("SoundFile");
        tracks.push_back({.id = static_cast<std::int32_t>(trackRows->Integer("TrackID")),
                          .number = MarkedField(*trackRows, "Track"),
                          .album = static_cast<std::int32_t>(trackRows->Integer("AlbumID")),
                          .soundFile = Fingerprint(soundFile),
                          .origin = OriginFingerprint(soundFile, trackRows->Get("DateAdded"))});
    }
    return {std::move(albums), std::move(tracks)};
}

void WriteMarkSnapshot(Files& files, std::string_view path, const MarkSnapshot& snapshot) {
    const std::unique_ptr<TextWriter> file = files.CreateText(path);
    file->WriteLine(FirstLine);
    std::string line;
    for (const MarkedAlbum& album : snapshot.Albums()) {
        line = AlbumWord;
        line += ' ' + std::to_string(album.id) + ' ' + ValueText(album.count) + ' ' +
                std::to_string(album.cdjid);
        file->WriteLine(line);
    }
    for (const MarkedTrack& track : snapshot.Tracks()) {
        line = TrackWord;
        line += ' ' + std::to_string(track.id) + ' ' + ValueText(track.number) + ' ' +
                std::to_string(track.album) + ' ' + std::to_string(track.soundFile) + ' ' +
                std::to_string(track.origin);
        file->WriteLine(line);
    }
    file->WriteLine(EndLine(snapshot.Albums().size(), snapshot.Tracks().size()));
    file->Close();
}

std::optional<MarkSnapshot> ReadMarkSnapshot(Files& files, std::string_view path) {
    const std::unique_ptr<TextReader> file = files.OpenText(path);
    if (file->AtEndOfStream() || file->ReadLine() != FirstLine) return std::nullopt;
    std::vector<MarkedAlbum> albums;
    std::vector<MarkedTrack> tracks;
    while (!file->AtEndOfStream()) {
        const std::string text = file->ReadLine();
        LineReader line(text);
        const std::string_view word = line.Word();
        if (word == EndWord) {
            if (text != EndLine(albums.size(), tracks.size()) || !file->AtEndOfStream()) break;
            return MarkSnapshot(std::move(albums), std::move(tracks));
        }
        if (word == AlbumWord) {
            albums.push_back({.id = line.Whole<std::int32_t>(),
                              .count = line.Marked(),
                              .cdjid = line.Whole<std::uint32_t>()});
        } else if (word == TrackWord) {
            tracks.push_back({.id = line.Whole<std::int32_t>(),
                              .number = line.Marked(),
                              .album = line.Whole<std::int32_t>(),
                              .soundFile = line.Whole<std::uint32_t>(),
                              .origin = line.Whole<std::uint32_t>()});
        } else {
            break;
        }
        if (!line.ReadWell()) break;
    }
    return std::nullopt;
}

}  // namespace quillon
