#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "reconcile/add_files_to_library.h"
#include "tests/support/test_library.h"

namespace quillon {

/// Files wait in D:\New to be added to the library in D:\Music; covers go to D:\Covers.
class AddingTest : public ::testing::Test {
  protected:
    AddingTest() {
        library.run.settings.FromFilesPath = R"(D:\New)";
        library.run.settings.AlbumCoverFolder = R"(D:\Covers\)";
        library.files.AddFolder(R"(D:\New)");
        library.files.AddFolder(R"(D:\Covers)");
        library.calls.Forget();
    }

    static support::RawTag TagOf(const std::string& song, const std::string& artist,
                                 const std::string& album, std::uint8_t track = 0,
                                 std::uint8_t genre = 17) {
        support::RawTag tag;
        tag.song = song;
        tag.artist = artist;
        tag.album = album;
        tag.track = track;
        tag.genre = genre;
        return tag;
    }

    void AddNew(const std::string& path) {
        library.files.AddFile(R"(D:\New\)" + path, support::UntaggedSoundFile());
    }
    void AddNew(const std::string& path, const support::RawTag& tag) {
        library.files.AddFile(R"(D:\New\)" + path, support::SoundFile(tag));
    }
    void AddImage(const std::string& path, const std::string& bytes = "image") {
        library.files.AddFile(R"(D:\New\)" + path, bytes);
    }

    void Add() { AddFilesToLibrary(library.run); }

    /// All rows of the tables that adding may touch.
    std::vector<std::string> AllRows() {
        std::vector<std::string> rows;
        for (const char* const table : {"Albums", "Tracks", "Spinner", "SpinnerArtist"}) {
            for (const std::string& row :
                 library.Rows("SELECT * FROM " + std::string(table) + " ORDER BY ID"))
                rows.push_back(std::string(table) + ": " + row);
        }
        return rows;
    }

    std::vector<std::string>& Log() { return library.host.log; }

    support::TestLibrary library;
};

}  // namespace quillon
