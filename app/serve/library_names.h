#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quillon {

/// The names of one album and its tracks.
struct AlbumNames {
    std::string artist, title;
    std::map<std::int64_t, std::string> tracks;  ///< by number
};

/// What the database calls the albums.
struct NameTable {
    std::unordered_map<std::string, AlbumNames> albums;  ///< by CDJID

    /// nullptr for an album that the database does not have.
    const AlbumNames* Find(const std::string& cdjid) const;
};

/// Names from the database, which is opened for reading alone and just for as long as it takes,
/// when names are asked for and the file has changed since. So a run is never kept waiting; while
/// one is under way, or anybody else has the database open, the names known so far have to do. May
/// be used from several threads at a time.
class LibraryNames {
  public:
    /// The names as far as they can be had.
    struct Answer {
        std::shared_ptr<const NameTable> names;  ///< never nullptr
        std::string problem;  ///< why they are not those of this moment; "" when they are
    };

    /// Without a path there are no names, for the reason given.
    LibraryNames(std::optional<std::filesystem::path> database, std::string problem);

    Answer Get();

  private:
    struct Stamp {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
        bool operator==(const Stamp&) const = default;
    };

    std::string Refresh();

    std::optional<std::filesystem::path> database_;
    std::string problem_;
    std::mutex mutex_;
    std::optional<Stamp> stamp_;  ///< of the file that the names were read from
    std::shared_ptr<const NameTable> names_ = std::make_shared<const NameTable>();
};

}  // namespace quillon
