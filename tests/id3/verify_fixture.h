#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "database/remove_duplicates.h"
#include "id3/verify_tags.h"
#include "reconcile/refresh_database.h"
#include "tests/support/test_library.h"

namespace quillon {

/// A library with the album First Light of the artist Alder in it, whose rows a test adds.
class VerifyTest : public ::testing::Test {
  protected:
    VerifyTest() { library.AddAlbumRow(Cdjid, "Alder", "First Light", 1); }

    static support::RawTag TagOf(const std::string& song, std::uint8_t track = 1) {
        support::RawTag tag;
        tag.song = song;
        tag.artist = "Alder";
        tag.album = "First Light";
        tag.track = track;
        return tag;
    }

    void AddFile(const std::string& name, const support::RawTag& tag) {
        library.AddFile(Album + name, tag);
    }

    /// A file and its row, with plays to be lost.
    void AddTrack(const std::string& name, const std::string& title, const support::RawTag& tag) {
        AddFile(name, tag);
        AddRow(name, title);
    }
    void AddRow(const std::string& name, const std::string& title) {
        ++plays;
        library.AddTrackRow(Cdjid, plays, PathOf(name), title);
        library.Execute("UPDATE Tracks SET TimesPlayed=" + std::to_string(plays) +
                        ", Minutes=-1, Seconds=-1 WHERE TimesPlayed Is Null");
    }

    void Verify() { VerifyID3Tags(library.run); }
    /// Gives the rows the numbers of their tags, as the folder walk does.
    void TakeNumbers() {
        for (TrackRow& track : library.run.TheLibrary().Tracks()) {
            if (track.tagNumber) track.number.Set(track.tagNumber);
        }
        library.run.TheLibrary().Save();
    }
    /// The log without what tells of renames and removals.
    std::vector<std::string> Trouble() const {
        std::vector<std::string> lines = library.host.log;
        std::erase_if(lines, [](const std::string& line) {
            return line.find(" is now ") != std::string::npos ||
                   line.find(" was removed as a duplicate of ") != std::string::npos;
        });
        return lines;
    }

    /// The phases of a reconciliation, as the driver runs them.
    void Reconcile() {
        RemoveDuplicates(library.run);
        library.Execute("DELETE * FROM SpinnerID3Differences");
        Verify();
        RefreshDatabase(library.run);
    }

    static std::string PathOf(const std::string& name) {
        return std::string(support::TestLibrary::Root) + Album + name;
    }
    std::vector<std::string> Differences() {
        return library.Rows("SELECT Field, ID3Value, DBValue, Track FROM SpinnerID3Differences");
    }
    /// Names of the album's files.
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const FileEntry& file : library.files.FilesIn(R"(D:\Music\Alder\First Light)"))
            names.push_back(file.name);
        return names;
    }
    /// Rows as "name|title|number|plays".
    std::vector<std::string> Tracks() {
        std::vector<std::string> rows =
            library.Rows("SELECT SoundFile, Title, Track, TimesPlayed FROM Tracks ORDER BY ID");
        for (std::string& row : rows) {
            if (row.starts_with(PathOf(""))) row.erase(0, PathOf("").size());
        }
        return rows;
    }

    static constexpr const char* Cdjid = "252E671073EC0001";
    static constexpr const char* Album = R"(Alder\First Light\)";
    support::TestLibrary library;
    int plays = 0;
};

}  // namespace quillon
