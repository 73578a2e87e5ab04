#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class Connection;
class Run;

/// A length in whole seconds, where it is known.
using Length = std::optional<std::int64_t>;

/// "m:ss", with as many minutes as it takes; "x" where the length is not known.
std::string LengthText(Length length);

struct PickerTrack {
    std::int64_t number = 0;  ///< 0 where the row has none
    std::string title;
    Length length;
    std::string artist = {};  ///< its own, where that is another one than the album's
};

struct PickerAlbum {
    std::string cdjid;
    std::string title;
    std::string artist;
    std::string imageFile;  ///< as stored; may be empty or lead nowhere
    std::int64_t trackCount = 0;
    Length length;                    ///< the album's own, else the sum of its tracks'
    std::string coverFile;            ///< name in the web cover folder
    std::vector<PickerTrack> tracks;  ///< by number
};

/// What the pages show.
struct PickerAlbums {
    std::int64_t inLibrary = 0;       ///< albums of all sizes
    std::vector<PickerAlbum> albums;  ///< those with enough tracks, by artist and title
};

/// The connection string of the picker's own connection.
std::string PickerConnectionString(std::string_view database);

/// Opens it. Throws Failure.
std::unique_ptr<Connection> OpenPickerConnection(Run& run);

/// Reads the albums that have at least `PickerMinimum` tracks. All of them are held at once: the
/// first page's links already need the number of the last one, and of two albums with the same
/// artist and title the tracks come mixed. Stops early, with what it has, after an abort.
PickerAlbums ReadPickerAlbums(Run& run, Connection& connection);

}  // namespace quillon
