#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "id3/write_id3.h"
#include "tags/tag_reader.h"
#include "tests/support/test_library.h"

namespace quillon {

/// An album of the database with the song Dawn, number 4, 3:05, and its row in the download table.
class StoreID3Test : public ::testing::Test {
  protected:
    StoreID3Test() {
        library.run.GenreNames[17] = "Rock";
        library.run.GenreNames[40] = "AlternRock";
        library.AddAlbumRow("252E671073EC0001", "Alder", "First Light", 1);
        AddTrack("252E671073EC0001", 4, "Dawn", 3, 5);
        library.Execute(
            "INSERT INTO Spinner (Artist, Album, Song, Genre, Length, FileName) VALUES (\"Alder\", "
            "\"First Light\", \"Dawn\", \"Rock\", 200, \"rtsp://host/spinlinks/000-Jazz-000.rm\")");
    }

    void AddTrack(const std::string& cdjid, int number, const std::string& title, int minutes,
                  int seconds) {
        library.Execute("INSERT INTO Tracks (CDJID, Track, Title, Minutes, Seconds) VALUES ('" +
                        cdjid + "', " + std::to_string(number) + ", \"" + title + "\", " +
                        std::to_string(minutes) + ", " + std::to_string(seconds) + ")");
    }

    static support::RawTag OldTag() {
        return {.marker = "TAG",
                .song = "Dusk",
                .artist = "Adler",
                .album = "Last Light",
                .year = "1999",
                .comment = "live",
                .track = 9,
                .genre = 40};
    }

    void AddFile(const std::string& path, const support::RawTag& tag = OldTag()) {
        library.AddFile(path, tag, 5);
    }

    void AddDifference(const std::string& field, const std::string& tagValue = "",
                       const std::string& title = "Dawn", const std::string& artist = "Alder",
                       const std::string& album = "First Light") {
        library.Execute(
            "INSERT INTO SpinnerID3Differences (Field, ID3Value, DBValue, Artist, "
            "Album, Track) VALUES (\"" +
            field + "\", \"" + tagValue + "\", \"\", \"" + artist + "\", \"" + album + "\", \"" +
            title + "\")");
    }

    void Write() { WriteID3(library.run); }
    std::string Record(const std::string& path = File) {
        const auto tag = ReadID3(library.run, std::string(support::TestLibrary::Root) + path);
        return tag ? TagRecord(*tag) : "";
    }
    std::vector<std::string> Writes() { return library.calls.Of({"WriteEnd"}); }
    const std::vector<std::string>& Log() { return library.host.log; }

    static constexpr const char* Folder = R"(Alder\First Light\)";
    static constexpr const char* File = R"(Alder\First Light\Alder - Dawn.mp3)";

    support::TestLibrary library;
};

}  // namespace quillon
