#include "playlists/convert.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
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
#include "run/file_bytes.h"
#include "run/log.h"
#include "run/run.h"
#include "run/steps.h"

namespace quillon {
namespace {

enum class ConvertStep { ReadFolder = 1, ConvertList = 2, FindTracks = 5 };

/// Where failures of one list are said to be.
constexpr const char* Location = "PlaToM3u";

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

/// The files that playlists are converted to. They are written in groups, as a flush for each takes
/// most of the time. One that would not change keeps its time, and programs that watch the folder
/// see nothing happen.
class M3uFiles {
  public:
    explicit M3uFiles(Run& run)
        : run_(run),
          batch_(run.files.CreateTexts([this](const Failure* failure) { Done(failure); })) {}

    /// Before a look at a file, which may be one that has not got its name yet.
    void Settle(std::string_view path) {
        if (paths_.contains(LowerCase(path))) Close();
    }

    /// Brings a file to these bytes; `list` is the playlist that it is made from. Failure: it
    /// cannot be read or written.
    void Bring(const std::string& path, const std::string& bytes, const std::string& list) {
        Settle(path);
        if (HoldsJust(run_.files, path, bytes)) return;
        lists_.push_back(list);
        paths_.insert(LowerCase(path));
        try {
            batch_->Write(path, bytes);
        } catch (const Failure&) {
            // Nobody will be told of it.
            lists_.pop_back();
            throw;
        }
    }

    void Close() {
        batch_->Close();
        paths_.clear();
    }

  private:
    void Done(const Failure* failure) {
        Steps steps(run_, Location);
        steps.Concerning(lists_.front());
        lists_.pop_front();
        const bool isWritten = steps.Try(ConvertStep::ConvertList, [&] {
            if (failure != nullptr) throw Failure(*failure);
        });
        if (isWritten) ++run_.counts.playlistsWritten;
    }

    Run& run_;
    std::deque<std::string> lists_;          ///< those of files without their names as yet
    std::unordered_set<std::string> paths_;  ///< of these files and of some more, without case
    std::unique_ptr<TextBatch> batch_;
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

void TellUnknown(Run& run, const std::string& target, const LocalList& list) {
    WriteLog(run, LogSource,
             "PlaToM3u: " + target + " has " + std::to_string(list.unknownCount) +
                 (list.unknownCount == 1 ? " path that leads" : " paths that lead") +
                 " nowhere on this machine, such as " + list.unknown +
                 ". If that is music, name its drive in [Drives] of " +
                 std::string(HostSettingsFile));
}

/// Makes the list for players of this machine.
std::string LocalListOf(Run& run, const std::string& target, const std::vector<M3uSong>& songs) {
    LocalList list = MakeLocalList(run.files, target, songs);
    if (list.unknownCount > 0) TellUnknown(run, target, list);
    return std::move(list.bytes);
}

void WriteM3u(Run& run, M3uFiles& files, const std::string& list, const std::string& target,
              const std::vector<M3uSong>& songs) {
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
    files.Settle(whole);
    // One that an earlier run had to make is kept true, even when it is not needed any more.
    if (run.modern.writesLocalLists) {
        files.Bring(whole, LocalListOf(run, whole, songs), list);
    } else if (!missing.empty() || run.files.FileExists(whole)) {
        files.Bring(whole, utf8.Bytes(), list);
    }
    files.Bring(target, ansi.Bytes(), list);
    if (!missing.empty()) TellMissing(run, target, missing);
}

/// Converts one playlist. One without entries makes no file; another list of the name is replaced.
void PlaToM3u(Run& run, M3uFiles& files, const FileEntry& file) {
    run.ShowItem("1. Playlist " + file.name);
    Steps steps(run, Location);
    steps.Concerning(file.path);
    steps.Try(ConvertStep::ConvertList, [&] {
        files.Settle(file.path);
        const std::optional<std::vector<M3uSong>> songs = SongsOf(run, steps, file);
        if (!songs) return;
        const std::string target = run.settings.PlayListPath2 + M3uName(file.name);
        files.Settle(target);
        if (EqualIgnoringCase(target, file.path)) {
            WriteLog(run, LogSource, "PlaToM3u: " + file.path + " would be replaced by itself");
        } else if (!MayReplace(run, file, target)) {
            LogError(run, LogSource,
                     "PlaToM3u: " + target + " is not a playlist, so " + file.path +
                         " is not converted");
        } else {
            WriteM3u(run, files, file.path, target, *songs);
        }
    });
}

}  // namespace

void aPlaToM3u_Click(Run& run) {
    Steps steps(run, "aPlaToM3u_Click");
    PlaylistFolder folder;
    steps.Try(ConvertStep::ReadFolder, [&] { folder = ReadPlaylistFolder(run, steps); });
    M3uFiles files(run);
    for (const FileEntry& file : Counted(run, folder.lists)) {
        run.ProcessEvents();
        if (run.AbortRequested) break;
        PlaToM3u(run, files, file);
    }
    steps.Try(ConvertStep::ConvertList, [&] { files.Close(); });
}

void M3uToPla(Run& run) {
    Steps(run, "M3uToPla").Try([] {});
}

}  // namespace quillon
