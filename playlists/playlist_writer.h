#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/database.h"
#include "platform/files.h"

namespace quillon {

class Run;

/// Which of the two families of generated playlists a file belongs to.
enum class GeneratedBy { Genre, Artist };

/// Writes generated playlists of one family, one file at a time, and keeps their rows in the table
/// `Playlists`, by which a later run finds them. A file appears when it is complete. All operations
/// throw Failure.
class PlaylistWriter {
  public:
    PlaylistWriter(Run& run, GeneratedBy generator);

    /// Completes the file in hand and begins the list of a genre or artist, named after it. A file
    /// of that name is replaced, even one that another genre's name has led to. A name of which
    /// nothing is left makes no file: it is logged, and lines are dropped until the next list.
    void Begin(std::string_view genreOrArtist);

    /// Writes an entry. Where the file in hand is full, the list goes on in a next part, whose name
    /// has a number of three digits behind it. "Full" is one entry more than `MaxPlaylistLength`,
    /// as it has always been: people have set the limit by what they saw.
    void WriteTrack(std::string_view cdjid, std::int32_t track);

    /// Writes a whole album; these lists are never split.
    void WriteAlbum(std::string_view cdjid);

    /// Completes the file in hand.
    void End();

  private:
    void OpenFile(const std::string& name);
    void RecordFile(const std::string& name);
    void WriteLine(const std::string& line);
    std::string PartName() const;

    Run& run_;
    std::string_view mark_;  ///< the field of the table that tells the family
    std::unique_ptr<RecordSet> playlists_;
    std::unique_ptr<TextWriter> file_;  ///< null between lists and in a list without a name
    std::string name_;                  ///< of the list, without part number
    std::int32_t part_ = 0, count_ = 0;
};

}  // namespace quillon
