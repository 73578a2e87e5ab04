#pragma once

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "playlists/capture.h"
#include "playlists/refresh.h"
#include "run/playlist_entries.h"
#include "tests/support/test_library.h"

namespace quillon {

/// Playlists in D:\Lists\ beside two albums of three tracks each, A0 and B0; tracks have the keys 1
/// to 6.
class PlaylistTest : public ::testing::Test {
  protected:
    PlaylistTest() {
        library.run.settings.PlayListPath = Folder;
        library.run.settings.PlayListPath2 = R"(D:\M3u\)";
        library.files.AddFolder(R"(D:\Lists)");
        library.files.AddFolder(R"(D:\M3u)");
        AddAlbum("A0", "Ann", {"One", "Two", "Three"});
        AddAlbum("B0", "Bob", {"Four", "Five", "Six"});
    }

    void AddAlbum(const std::string& cdjid, const std::string& artist,
                  const std::vector<std::string>& titles) {
        library.AddAlbumRow(cdjid, artist, "Album " + cdjid, static_cast<int>(titles.size()));
        int number = 0;
        for (const std::string& title : titles) {
            library.AddTrackRow(cdjid, ++number, TestFile(cdjid, title), title);
            library.Execute("UPDATE Tracks SET Artist='" + artist + "' WHERE Title='" + title +
                            "'");
        }
    }

    static std::string TestFile(const std::string& cdjid, const std::string& title) {
        return R"(D:\Music\)" + cdjid + R"(\)" + title + ".mp3";
    }

    /// A playlist file of these lines behind a header.
    void AddList(const std::string& name, const std::vector<std::string>& lines) {
        std::string text = "CDJ Playlist V1.1\r\n";
        for (const std::string& line : lines)
            text += line + "\r\n";
        library.files.AddFile(Folder + name, text);
    }

    std::string List(const std::string& name) { return library.files.Content(Folder + name); }
    bool ListExists(const std::string& name) { return library.files.FileExists(Folder + name); }

    /// The entries of a playlist, without its header.
    std::vector<std::string> Lines(const std::string& name) {
        std::vector<std::string> lines;
        const auto text = library.files.OpenText(Folder + name);
        for (text->ReadLine(); !text->AtEndOfStream();)
            lines.push_back(text->ReadLine());
        return lines;
    }

    /// Moves a track to another number, as a reconciliation may.
    void Renumber(const std::string& title, int number) {
        library.Execute("UPDATE Tracks SET Track=" + std::to_string(number) + " WHERE Title='" +
                        title + "'");
    }

    /// Starts another run over the same library.
    void NextRun() {
        BuildORsRecordset(run());
        library.host.log.clear();
    }

    quillon::Run& run() { return library.run; }
    PlaylistEntries& Entries() { return library.run.playlistEntries; }

    /// All entries as "Playlist CDJID Track ID".
    std::vector<std::string> Captured() {
        std::vector<std::string> texts;
        for (PlaylistEntries::Position at = 0; at < Entries().Count(); ++at) {
            const PlaylistEntry entry = Entries().At(at);
            texts.push_back(std::string(entry.Playlist) + " " + std::string(entry.CDJID) + " " +
                            std::to_string(entry.Track) + " " + std::to_string(entry.ID));
        }
        return texts;
    }

    static constexpr const char* Folder = R"(D:\Lists\)";
    static constexpr const char* Snapshot = R"(D:\Data\jukebox.mdb.playlists)";

    support::TestLibrary library;
};

}  // namespace quillon
