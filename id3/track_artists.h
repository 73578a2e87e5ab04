#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// The artists that the tags of an album's files name. Where they name several, each track has its
/// own, and the album keeps that of its folder.
class TrackArtists {
  public:
    /// What one file's tag says; nothing counts for none. A text that version 1 has cut is the same
    /// as the whole one.
    void Add(std::string_view tagArtist);

    bool AreSeveral() const { return areSeveral_; }

    /// Of a file with this artist in its tag: its own where there are several, unless that is what
    /// the name of the album's folder stands for, or too long for the database.
    std::string Of(std::string_view tagArtist, std::string_view folderArtist) const;

  private:
    std::string first_;
    bool areSeveral_ = false;
};

}  // namespace quillon
