#pragma once

#include <string>
#include <unordered_map>

#include "id3/track_artists.h"

namespace quillon {

class Run;

/// The albums of several artists among music that is to be added, by what its tags say.
class Compilations {
  public:
    explicit Compilations(Run& run) : run_(run) {}

    /// Looks at all music below a folder, unless the run reads tags of version 1 alone or gives all
    /// tracks of an album one artist. What cannot be looked at is left out; a tag that cannot be
    /// read is logged. Stops early after an abort.
    void LookBelow(const std::string& folder);

    /// The album artist in the file's tag; "" where it has none, or nobody has looked.
    std::string AlbumArtistOf(const std::string& path) const;

    /// Whether files of this album with that album artist have several artists.
    bool IsOfSeveral(const std::string& albumArtist, const std::string& album) const;

  private:
    void Look(const std::string& path);

    Run& run_;
    std::unordered_map<std::string, std::string> albumArtists_;  ///< by the files' paths
    std::unordered_map<std::string, TrackArtists> artists_;      ///< by album artist and album
};

}  // namespace quillon
