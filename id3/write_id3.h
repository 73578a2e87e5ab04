#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "id3/song_files.h"

namespace quillon {

class Run;

/// The songs of one artist for which a verification has left differences.
struct ArtistSongs {
    struct Song {
        std::string album;
        std::string title;
    };
    std::string artist;
    std::vector<Song> songs;
};

/// Writes the tags of one artist's files that differ from the database. A row of any field that a
/// tag holds and the database knows leads to it: Tag, Song, Artist, Album, Comment, Track, Genre
/// and the missing track number; the whole tag is then written anew. All files of the title in the
/// album's folder are written, with the artist in their names or without, because a row does not
/// say which of them it means. A file that has been renamed by its tag's title since the row was
/// made is found by that title. What cannot be written is logged with "StoreID3" or by the routine
/// that could not, and the next file follows. Stops between files when Abort is requested.
void StoreID3(Run& run, SongFiles& files, const ArtistSongs& artist);

/// The mode: writes tags for the differences of all artists, artist by artist.
void WriteID3(Run& run);

}  // namespace quillon
