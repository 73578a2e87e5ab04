#include "playlists/convert.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "database/sql.h"
#include "platform/ansi.h"
#include "platform/basic_text.h"
#include "platform/database.h"
#include "platform/files.h"
#include "playlists/local_list.h"
#include "playlists/m3u.h"
#include "playlists/pla_line.h"
#include "playlists/playlist_folder.h"
#include "playlists/playlist_text.h"
#include "run/counted.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class ConvertStep { ReadFolder = 1, ConvertList = 2, FindTracks = 5 };

/// The tracks that an entry stands for, by their numbers in the database.
std::vector<std::string> TracksOf(Run& run, const PlaFields& fields) {
    if (fields.index != WholeAlbumIndex)
        return {std::to_string(std::int64_t{ToLong(fields.index)} + 1)};
    std::vector<std::string> tracks;
    const std::unique_ptr<RecordSet> rows =
        run.connection->Query("SELECT Track FROM Tracks WHERE cdjid=" + FilterQuoted(fields.cdjid));
    for (; !rows->IsEof(); rows->MoveNext()) {
        std::string track = rows->Text("Track");
        const bool isWaiting = run.movedMusic.KeepDays > 0 && ToNumber(track) == 0.0;
        if (IsNumeric(track) && !isWaiting) tracks.push_back(std::move(track));
    }
    return tracks;
}

void AddEntry(Run& run, Steps& steps, const PlaFields& fields, std::vector<M3uSong>& songs) {
    std::vector<std::string> tracks;
    steps.Try(ConvertStep::FindTracks, [&] { tracks = TracksOf(run, fields); });
    for (const std::string& track : tracks)
        WriteM3uTrack(run, songs, fields.cdjid, track);
}

/// The songs of all lines behind the header; nothing for a list that has none.
std::optional<std::vector<M3uSong>> SongsOf(Run& run, Steps& steps, const FileEntry& file) {
    const std::string text = ReadPlaylist(run.files, file.path);
    const std::vector<std::string_view> lines = LinesOf(text);
    if (lines.size() < 2) return std::nullopt;
    std::vector<M3uSong> songs;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::string line = AnsiToUtf8(lines[i]);
        if (const auto fields = ExactlyTwoFields(line)) AddEntry(run, steps, *fields, songs);
    }
    return songs;
}

/// A list for other players in one of two encodings.
class M3uText {
  public:
    M3uText() { AddLine(std::string(M3uHeader)); }
    void AddLine(const std::string& line) { (bytes_ += line) += PlaylistLineEnd; }
    const std::string& Bytes() const { return bytes_; }

  private:
    std::string bytes_;
};

/// A file that is not named as a playlist makes one of its own name, where anything may lie.
bool MayReplace(Run& run, const FileEntry& file, const std::string& target) {
    if (HasPlaylistName(file.name) || !run.files.FileExists(target)) return true;
    return ReadPlaylist(run.files, target).starts_with(M3uHeader);
}

void TellMissing(Run& run, const std::string& target, const std::vector<std::string>& missing) {
    constexpr std::size_t MostNames = 10;
    std::string text = "PlaToM3u: " + target + " lacks " + std::to_string(missing.size()) +
                       (missing.size() == 1 ? " song, whose path" : " songs, whose paths") +
                       " it cannot hold; " + M3u8Name(target) + " has all: ";
    for (std::size_t i = 0; i < std::min(missing.size(), MostNames); ++i)
        text += (i == 0 ? "" : ", ") + missing[i];
    if (missing.size() > MostNames)
        text += " and " + std::to_string(missing.size() - MostNames) + " more";
    WriteLog(run, LogSource, text);
}

/// Writes the list for players of this machine.
void WriteLocalList(Run& run, const std::string& target, const std::vector<M3uSong>& songs) {
    const LocalList list = MakeLocalList(run.files, target, songs);
    if (WriteIfOther(run.files, target, list.bytes)) ++run.counts.playlistsWritten;
    if (list.unknownCount == 0) return;
    WriteLog(run, LogSource,
             "PlaToM3u: " + target + " has " + std::to_string(list.unknownCount) +
                 (list.unknownCount == 1 ? " path that leads" : " paths that lead") +
                 " nowhere on this machine, such as " + list.unknown +
                 ". If that is music, name its drive in [Drives] of " +
                 std::string(HostSettingsFile));
}

void WriteM3u(Run& run, const std::string& target, const std::vector<M3uSong>& songs) {
    M3uText ansi, utf8;
    std::vector<std::string> missing;
    for (const M3uSong& song : songs) {
        utf8.AddLine(song.information);
        utf8.AddLine(song.soundFile);
        if (const std::optional<std::string> path = Utf8ToAnsiExactly(song.soundFile)) {
            ansi.AddLine(Utf8ToAnsi(song.information));
            ansi.AddLine(*path);
        } else {
            missing.push_back(song.soundFile);
        }
    }
    const std::string whole = M3u8Name(target);
    // One that an earlier run had to make is kept true, even when it is not needed any more.
    if (run.modern.writesLocalLists) {
        WriteLocalList(run, whole, songs);
    } else if (!missing.empty() || run.files.FileExists(whole)) {
        if (WriteIfOther(run.files, whole, utf8.Bytes())) ++run.counts.playlistsWritten;
    }
    if (WriteIfOther(run.files, target, ansi.Bytes())) ++run.counts.playlistsWritten;
    if (!missing.empty()) TellMissing(run, target, missing);
}

}  // namespace

void aPlaToM3u_Click(Run& run) {
    Steps steps(run, "aPlaToM3u_Click");
    PlaylistFolder folder;
    steps.Try(ConvertStep::ReadFolder, [&] { folder = ReadPlaylistFolder(run, steps); });
    for (const FileEntry& file : Counted(run, folder.lists)) {
        run.ProcessEvents();
        if (run.AbortRequested) return;
        PlaToM3u(run, file);
    }
}

void PlaToM3u(Run& run, const FileEntry& file) {
    run.ShowItem("1. Playlist " + file.name);
    Steps steps(run, "PlaToM3u");
    steps.Concerning(file.path);
    steps.Try(ConvertStep::ConvertList, [&] {
        const std::optional<std::vector<M3uSong>> songs = SongsOf(run, steps, file);
        if (!songs) return;
        const std::string target = run.settings.PlayListPath2 + M3uName(file.name);
        if (EqualIgnoringCase(target, file.path)) {
            WriteLog(run, LogSource, "PlaToM3u: " + file.path + " would be replaced by itself");
        } else if (!MayReplace(run, file, target)) {
            LogError(run, LogSource,
                     "PlaToM3u: " + target + " is not a playlist, so " + file.path +
                         " is not converted");
        } else {
            WriteM3u(run, target, *songs);
        }
    });
}

void M3uToPla(Run& run) {
    Steps(run, "M3uToPla").Try([] {});
}

}  // namespace quillon
