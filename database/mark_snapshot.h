#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database.h"
#include "platform/files.h"

namespace quillon {

/// What a marked field held; nothing stands for Null.
using MarkedValue = std::optional<std::int32_t>;

/// The fingerprint of a sound file's folder and its row's date of addition.
std::uint32_t OriginFingerprint(std::string_view soundFile, const Value& dateAdded);

struct MarkedAlbum {
    std::int32_t id = 0;
    MarkedValue count;
    std::uint32_t cdjid = 0;  ///< fingerprint

    bool operator==(const MarkedAlbum&) const = default;
};

struct MarkedTrack {
    std::int32_t id = 0;
    MarkedValue number;
    std::int32_t album = 0;       ///< the album row's ID
    std::uint32_t soundFile = 0;  ///< fingerprint
    std::uint32_t origin = 0;     ///< fingerprint of what stays when the file is renamed

    /// Whether a row with this ID, file and date of addition is the track: the file is the same, or
    /// it was renamed in its folder since.
    bool IsRow(std::string_view rowSoundFile, const Value& dateAdded) const;

    bool operator==(const MarkedTrack&) const = default;
};

/// The counts and numbers of all owned rows. The fingerprints tell a row from another one that
/// happens to have its ID in a database that was replaced since.
class MarkSnapshot {
  public:
    MarkSnapshot() = default;
    MarkSnapshot(std::vector<MarkedAlbum> albums, std::vector<MarkedTrack> tracks);

    const std::vector<MarkedAlbum>& Albums() const { return albums_; }
    const std::vector<MarkedTrack>& Tracks() const { return tracks_; }

    /// The row with this ID; null when the snapshot has none.
    const MarkedAlbum* FindAlbum(std::int64_t id) const;
    const MarkedTrack* FindTrack(std::int64_t id) const;

  private:
    std::vector<MarkedAlbum> albums_;  ///< by ID
    std::vector<MarkedTrack> tracks_;  ///< by ID
};

/// The present counts and numbers. Throws Failure.
MarkSnapshot CaptureMarks(Connection& connection);

/// Writes the snapshot's file, whole or not at all.
void WriteMarkSnapshot(Files& files, std::string_view path, const MarkSnapshot& snapshot);

/// The snapshot in a file; nothing when its content is no whole snapshot. Failure when the file
/// cannot be read.
std::optional<MarkSnapshot> ReadMarkSnapshot(Files& files, std::string_view path);

}  // namespace quillon
