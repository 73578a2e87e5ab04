#pragma once

#include <string>
#include <vector>

#include "playlists/create.h"
#include "tests/playlists/playlist_fixture.h"

namespace quillon {

/// The library of PlaylistTest with a download table, and the making of playlists from both.
class CreateTest : public PlaylistTest {
  protected:
    void AddSpinner(const std::string& artist, const std::string& song, const std::string& genre,
                    int exclude = 0) {
        library.Execute("INSERT INTO Spinner (Artist, Song, Genre, Exclude) VALUES ('" + artist +
                        "', '" + song + "', " + (genre == "Null" ? genre : "'" + genre + "'") +
                        ", " + std::to_string(exclude) + ")");
    }

    /// An album "L0" of that many tracks by one artist of that genre.
    void AddLongAlbum(const std::string& artist, const std::string& genre, int tracks) {
        const auto table = run().connection->OpenTable("Tracks");
        for (int i = 0; i < tracks; ++i) {
            table->AddNew();
            table->Set("CDJID", std::string("L0"));
            table->Set("Artist", artist);
            table->Set("Title", "Song " + std::to_string(i));
            table->Set("Track", std::int64_t{i + 1});
            table->Update();
        }
        AddSpinner(artist, "Song 0", genre);
    }

    void Create() {
        BuildORsRecordset(run());
        CreateNewPlaylists(run());
    }

    std::vector<std::string> Lists() {
        std::vector<std::string> names;
        for (const FileEntry& file : library.files.FilesIn(R"(D:\Lists)"))
            names.push_back(file.name);
        return names;
    }

    std::vector<std::string> Playlists() {
        return library.Rows(
            "SELECT FilePath, Filename, Type, AutoGenre, AutoArtist FROM Playlists ORDER BY ID");
    }
};

}  // namespace quillon
