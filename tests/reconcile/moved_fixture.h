#pragma once

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/real_library.h"
#include "tests/support/sound_file.h"

namespace quillon {

/// Files of which each has a sound of its own, in a library whose rows follow them.
class MovedMusicLibrary {
  public:
    MovedMusicLibrary() { library.run.movedMusic.FollowMovedFiles = true; }

    static std::string Sound(const std::string& name) {
        std::string bytes;
        for (int i = 0; i < 100; ++i)
            bytes += name + std::to_string(i);
        return bytes;
    }

    void Add(const std::string& path, const std::string& sound, int minutes = 0) {
        library.AddFile(path, Sound(sound), minutes);
    }

    /// An album of three songs.
    void AddAlbum(const std::string& folder, const std::string& sound, int minutes = 0) {
        Add(folder + R"(\01 - Ash.mp3)", sound + " a", minutes + 1);
        Add(folder + R"(\02 - Bay.mp3)", sound + " b", minutes + 2);
        Add(folder + R"(\03 - Cam.mp3)", sound + " c", minutes + 3);
    }

    /// Renames a file or a folder, below the root.
    void Move(const std::string& from, const std::string& to) {
        std::filesystem::create_directories(library.Music(to).parent_path());
        std::filesystem::rename(library.Music(from), library.Music(to));
    }

    /// Adds all files to the library and gives each row what only a person can know.
    void Start() {
        library.Reconcile();
        library.Database().Execute("UPDATE Tracks SET TimesPlayed = ID * 10");
        library.Database().Execute("UPDATE Albums SET TimesPlayed = ID * 100");
        // The second run sorts what the first one has numbered by tags.
        Reconcile();
        library.host.log.clear();
    }

    void Reconcile() {
        library.run.counts = {};
        library.Reconcile();
    }

    /// "TimesPlayed|path below the root|Title|Track".
    std::vector<std::string> Tracks() {
        std::vector<std::string> rows = library.Rows(
            "SELECT TimesPlayed, SoundFile, Title, Track FROM Tracks ORDER BY TimesPlayed, "
            "SoundFile");
        for (std::string& row : rows) {
            const std::size_t root = row.find(R"(D:\Music\)");
            if (root != std::string::npos) row.erase(root, std::string_view(R"(D:\Music\)").size());
        }
        return rows;
    }

    /// "TimesPlayed|Artist|Title|Tracks".
    std::vector<std::string> Albums() {
        return library.Rows(
            "SELECT TimesPlayed, Artist, Title, Tracks FROM Albums ORDER BY TimesPlayed, Title");
    }

    std::vector<std::string>& Log() { return library.host.log; }
    std::filesystem::path Sounds() const { return library.DatabaseFile().string() + ".sounds"; }
    std::filesystem::path Missing() const { return library.DatabaseFile().string() + ".missing"; }

    support::RealLibrary library;
};

class MovedMusicFixture : public ::testing::Test, protected MovedMusicLibrary {};

}  // namespace quillon
